#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// Tables of cases in text files under tests/cases. A line is one case; its fields stand between "
/// ~ " and lose their outer blanks. `\s` (blank), `\t`, `\n`, `\r`, `\v`, `\f` and `\\` write what
/// could not be seen. Lines that begin with
/// "#" are comments, a line "@ NAME" begins a section.
struct Case
{
    std::string place; ///< file and line, for failure messages
    std::vector<std::string> fields;
};

/// The cases of one section, all with the same number of fields. Throws `std::runtime_error` when
/// the file or section does not exist or is empty, or a case has another number of fields.
std::vector<Case>
read_cases(const std::string& file, const std::string& section, std::size_t fields);

/// Runs every case of a section: `run` is given the first `inputs` fields, and what it returns is
/// expected to be the one field behind them.
void check_cases(
    const std::string& file,
    const std::string& section,
    std::size_t inputs,
    const std::function<std::string(const std::vector<std::string>&)>& run);
