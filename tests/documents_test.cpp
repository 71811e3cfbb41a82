#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"

#include "tests/support/command_fixture.h"

#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

namespace {
using namespace test_support;

/// A command line of a document, and what the document says that it writes.
struct Shown
{
    std::string command;
    std::string output;
};

/// The indented lines that begin with "$ ", each with the indented lines behind it.
std::vector<Shown> shown_in(const std::string& document)
{
    constexpr std::string_view kIndent = "    ";
    std::vector<Shown> all;
    std::istringstream lines(read_file(document));
    std::string line;
    bool isOpen = false;
    bool isContinued = false;
    std::string emptyLines;
    while (std::getline(lines, line)) {
        const bool isIndented = line.starts_with(kIndent);
        const std::string text = isIndented ? line.substr(kIndent.size()) : std::string();
        if (isContinued) {
            all.back().command += "\n" + text;
        } else if (text.starts_with("$ ")) {
            all.push_back({text.substr(2), {}});
            isOpen = true;
            emptyLines.clear();
        } else if (isOpen && line.empty()) {
            emptyLines += "\n";
            continue;
        } else if (isOpen && isIndented) {
            all.back().output += emptyLines + text + "\n";
            emptyLines.clear();
            continue;
        } else {
            isOpen = false;
            continue;
        }
        isContinued = all.back().command.ends_with('\\');
    }
    return all;
}

/// What stays on a terminal: a progress bar is gone in the end.
std::string left_on_terminal(const std::string& written)
{
    constexpr std::string_view kClear = "\x1b[K";
    std::string left;
    std::istringstream lines(written);
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t cleared = line.rfind(kClear);
        left += cleared == std::string::npos ? line : line.substr(cleared + kClear.size());
        left.erase(left.find_last_not_of('\r') + 1);
        left += "\n";
    }
    return left;
}

std::string without(const std::string& part, std::string text)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
        text.erase(at, part.size());
    }
    return text;
}

/// How long something took is another time each time.
std::string without_times(const std::string& text)
{
    static const QRegularExpression kTime(QStringLiteral("[0-9.]+ (us|ms|s)\\b"));
    return dbif::to_utf8(dbif::to_qt(text).replace(kTime, QStringLiteral("TIME")));
}

/// A document may show the first lines of an output only, and end with "...".
std::string as_far_as(const std::string& shown, const std::string& written)
{
    constexpr std::string_view kCut = "...\n";
    return shown.ends_with(kCut) && written.starts_with(shown.substr(0, shown.size() - kCut.size()))
               ? shown
               : written;
}

/// Each document begins with an empty folder, in which the sample is called examples/measurements.
TEST(Documents, ShowWhatTheCommandWrites)
{
    const bool hasGnuplot = !QStandardPaths::findExecutable(QStringLiteral("gnuplot")).isEmpty();
    for (const char* document : {"README.md", "docs/commands.md"}) {
        const TempDirectory folder;
        std::filesystem::create_directory(folder.file("examples"));
        std::filesystem::create_directory_symlink(
            SAMPLE_DIRECTORY, folder.file("examples/measurements"));
        const std::vector<Shown> all = shown_in(std::string(DOCUMENTS_DIRECTORY) + "/" + document);
        EXPECT_GT(all.size(), 4U) << document;
        for (const Shown& shown : all) {
            if (!hasGnuplot && shown.command.find("--plot") != std::string::npos) {
                continue;
            }
            const Outcome outcome = run_on_terminal(
                {"/bin/bash", "-c",
                 "cd '" + folder.path() +
                     "'; NO_COLOR=1; export NO_COLOR; dbapi() { " DBAPI_COMMAND " \"$@\"; }\n" +
                     shown.command});
            const std::string output = without_times(shown.output);
            const std::string written =
                without_times(without(folder.path() + "/", left_on_terminal(outcome.data)));
            EXPECT_EQ(as_far_as(output, written), output) << document << ": " << shown.command;
        }
    }
}

/// The headers that a program may include and those that the page tells of are the same.
TEST(Documents, TellOfEveryPublishedHeader)
{
    const std::string root = DOCUMENTS_DIRECTORY;
    std::set<std::string> published;
    std::istringstream lines(read_file(root + "/cmake/published_headers.txt"));
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != '#') {
            published.insert(line.substr(0, line.find(' ')));
        }
    }
    std::set<std::string> told;
    const QRegularExpression header(QStringLiteral("`([a-z_]+/[a-z_]+\\.h)`"));
    auto found = header.globalMatch(dbif::to_qt(read_file(root + "/docs/published.md")));
    while (found.hasNext()) {
        told.insert(dbif::to_utf8(found.next().captured(1)));
    }
    EXPECT_EQ(told, published);
}

/// The cells of the table rows of a document, trimmed, from a heading to the next one.
std::vector<std::vector<std::string>> table_under(const std::string& heading)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(read_file(std::string(DOCUMENTS_DIRECTORY) + "/docs/keywords.md"));
    bool isUnder = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("## ")) {
            isUnder = line == "## " + heading;
        } else if (isUnder && line.starts_with("| ")) {
            rows.emplace_back();
            std::istringstream cells(line.substr(1));
            for (std::string cell; std::getline(cells, cell, '|');) {
                rows.back().push_back(dbif::trimmed(cell));
            }
        }
    }
    return rows;
}

/// The texts in a cell that stand between backticks.
std::vector<std::string> words_in(const std::string& cell)
{
    std::vector<std::string> words;
    for (std::size_t begin = cell.find('`'); begin != std::string::npos;) {
        const std::size_t end = cell.find('`', begin + 1);
        words.push_back(cell.substr(begin + 1, end - begin - 1));
        begin = cell.find('`', end + 1);
    }
    return words;
}

/// The page on keywords tells of every spelling of a table and of every builtin keyname, and the
/// library knows no others.
TEST(Documents, TellOfEveryWordOfKeywords)
{
    const std::map<std::string, std::string> datatypes{
        {"D", "DOUBLE"}, {"S", "TEXT"}, {"X", "COMPLEX"}, {"M", "MATRIX"}};
    std::map<std::string, std::pair<std::string, std::string>> spellings;
    for (const std::vector<std::string>& row : table_under("Tables")) {
        const std::string category = row[2] == "an input"    ? "IN"
                                     : row[2] == "an output" ? "OUT"
                                                             : row[2].substr(row[2].find(' ') + 1);
        for (const std::string& word : words_in(row[0])) {
            spellings[word] = {row[1], category};
            for (const auto& [letter, datatype] : datatypes) {
                if (word.size() <= 4 && word != "DIE") {
                    spellings[word + letter] = {row[1], category + "|" + datatype};
                }
            }
        }
    }
    EXPECT_EQ(dbapi::build_tablenames_vocabulary(), spellings);

    std::map<std::string, std::string> columns;
    for (const std::vector<std::string>& row : table_under("Builtin keynames")) {
        for (std::size_t i = 0; i + 1 < row.size(); i += 2) {
            for (const std::string& builtin : words_in(row[i])) {
                columns[builtin] = row[i + 1];
            }
        }
    }
    EXPECT_EQ(dbapi::build_builtin_keywords(false), columns);
}
} // namespace
