#include "tests/support/case_table.h"

#include "dbif/host/host_string.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace {
std::string unescaped(const std::string& field)
{
    const std::string letters = "stnrvf\\";
    const std::string meanings = " \t\n\r\v\f\\";
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\') {
            text += meanings.at(letters.find(field.at(++i)));
        } else {
            text += field[i];
        }
    }
    return text;
}

std::vector<std::string> split_fields(const std::string& line)
{
    std::vector<std::string> fields;
    const std::string padded = " " + line + " ";
    for (std::size_t begin = 0; begin != std::string::npos;) {
        const std::size_t separator = padded.find(" ~ ", begin);
        const std::size_t length = separator == std::string::npos ? separator : separator - begin;
        fields.push_back(unescaped(dbif::trimmed(padded.substr(begin, length))));
        begin = separator == std::string::npos ? separator : separator + 2;
    }
    return fields;
}
} // namespace

std::vector<Case>
read_cases(const std::string& file, const std::string& section, std::size_t fields)
{
    std::ifstream stream(std::string(CASES_DIRECTORY) + "/" + file);
    std::vector<Case> cases;
    std::string line;
    std::string current;
    for (int number = 1; std::getline(stream, line); ++number) {
        if (line.rfind("@ ", 0) == 0) {
            current = line.substr(2);
        } else if (current == section && !line.empty() && line[0] != '#') {
            cases.push_back({file + ":" + std::to_string(number), split_fields(line)});
        }
    }
    if (cases.empty()) {
        throw std::runtime_error("no cases under \"" + section + "\" in " + file);
    }
    for (const Case& one : cases) {
        if (one.fields.size() != fields) {
            throw std::runtime_error(one.place + " has another number of fields");
        }
    }
    return cases;
}

void check_cases(
    const std::string& file,
    const std::string& section,
    std::size_t inputs,
    const std::function<std::string(const std::vector<std::string>&)>& run)
{
    for (Case& one : read_cases(file, section, inputs + 1)) {
        const std::string expected = one.fields.back();
        one.fields.pop_back();
        EXPECT_EQ(run(one.fields), expected) << one.place;
    }
}
