#include "dbapi/db_connections.h"
#include "dbui/connection_registry.h"
#include "dbui/connections_file.h"
#include "dbui/connections_path.h"

#include "tests/support/case_table.h"
#include "tests/support/child_process.h"
#include "tests/support/stored_connections.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace fs = std::filesystem;
using test_support::read_file;
using test_support::start_child;
using test_support::status_of;
using test_support::stored_lines;
using test_support::write_file;

namespace {
const DbuiConnection kLab("lab", "QMYSQL", "dbhost", "3306", "meas", "eng", "secret");
const DbuiConnection kLite("lite", "QSQLITE", "", "", "/data/a b.db", "", "");
const std::string kDeclaration = "<?xml version=\"1.0\"?>";

std::string message(const std::string& what, const std::string& path)
{
    return "Failed to " + what + " \"" + path + "\"!\n";
}

class ConnectionsFile : public testing::Test
{
protected:
    /// Puts a folder where a file belongs.
    static void block(const std::string& path)
    {
        fs::remove_all(path);
        fs::create_directory(path);
    }

    test_support::TempDirectory folder;
    const std::string path = folder.connections_file();
    std::string error = "left over";
};
} // namespace

TEST_F(ConnectionsFile, HasThisLayout)
{
    ASSERT_TRUE(dbui_save_connections_to_file(
        {kLab, kLite, {"<ä>&\"b\"'c'", "QMYSQL", "h", "abc", "", "", ""}}, &error));
    const std::string text = read_file(path);
    const std::string pwd = read_cases("connections.case", "password", 6).at(2).fields.at(5);
    EXPECT_EQ(
        text,
        kDeclaration +
            "\n<DB_Connections>\n"
            "    <DbConnection ConnectionName=\"lab\" DbDriverName=\"QMYSQL\" Hostname=\"dbhost\" "
            "Port=\"3306\" DatabaseName=\"meas\" User=\"eng\" Pwd=\"" +
            pwd +
            "\"/>\n"
            "    <DbConnection ConnectionName=\"lite\" DbDriverName=\"QSQLITE\" "
            "DatabaseName=\"/data/a b.db\"/>\n"
            "    <DbConnection ConnectionName=\"&lt;ä&gt;&amp;&quot;b&quot;&apos;c&apos;\" "
            "DbDriverName=\"QMYSQL\" Hostname=\"h\" Port=\"abc\" DatabaseName=\"\"/>\n"
            "</DB_Connections>\n");
    EXPECT_EQ(
        stored_lines(), "lab|QMYSQL|dbhost|3306|meas|eng|secret;lite|QSQLITE|||/data/a b.db||;"
                        "<ä>&\"b\"'c'|QMYSQL|h|abc|||;");
}

TEST_F(ConnectionsFile, ReadsWhatPeopleWrite)
{
    check_cases("connections.case", "reading", 1, [this](const std::vector<std::string>& fields) {
        write_file(path, fields[0]);
        return stored_lines();
    });
    fs::remove(path);
    std::vector<DbuiConnection> connections = {kLab};
    EXPECT_FALSE(dbui_get_connections_from_file(&connections, &error));
    EXPECT_EQ(error, message("open database connections storage file:", path));
    EXPECT_TRUE(connections.empty());
}

TEST_F(ConnectionsFile, LiesWhereTheEnvironmentSays)
{
    check_cases("connections.case", "path", 1, [](const std::vector<std::string>& fields) {
        setenv("VANTO_DB_CONNECTIONS_DIRECTORY", fields[0].c_str(), 1);
        return dbui_connections_file();
    });
    unsetenv("VANTO_DB_CONNECTIONS_DIRECTORY");
    const std::string home = getenv("HOME");
    EXPECT_EQ(dbui_connections_file(), home + "/tarsier/config/vanto_db_connections.xml");
}

TEST_F(ConnectionsFile, IsCreatedOnlyWhenMissing)
{
    setenv("VANTO_DB_CONNECTIONS_DIRECTORY", folder.file("new/deep").c_str(), 1);
    EXPECT_TRUE(dbui_create_connections_file_if_not_found(&error));
    EXPECT_EQ(read_file(folder.file("new/deep/vanto_db_connections.xml")), kDeclaration);

    setenv("VANTO_DB_CONNECTIONS_DIRECTORY", folder.path().c_str(), 1);
    write_file(path, "no xml");
    EXPECT_TRUE(dbui_create_connections_file_if_not_found(&error));
    EXPECT_EQ(read_file(path), "no xml");

    block(path);
    EXPECT_FALSE(dbui_create_connections_file_if_not_found(&error));
    EXPECT_EQ(error, message("create database connections storage file:", path));
}

TEST_F(ConnectionsFile, AnnouncesEverySave)
{
    test_support::SignalLog signalLog;
    EXPECT_TRUE(dbui_save_connections_to_file({kLite}, &error));
    EXPECT_EQ(signalLog.take(), "pre changed post ");
    EXPECT_EQ(error, "");

    for (const std::string& blocked : {path + ".lock", path}) {
        block(blocked);
        EXPECT_FALSE(dbui_save_connections_to_file({}, &error));
        EXPECT_EQ(signalLog.take(), "pre post ");
        EXPECT_EQ(error, message("save database connections storage file:", path));
        fs::remove(blocked);
    }

    write_file(folder.file("plain"), "");
    const std::string below = folder.file("plain/deep");
    setenv("VANTO_DB_CONNECTIONS_DIRECTORY", below.c_str(), 1);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dbui_save_connections_to_file({kLab}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message("create directory path", below));
    EXPECT_EQ(signalLog.take(), "pre ");
    EXPECT_TRUE(dbui_make_path_if_required(below + "/file")) << "published: true without a text";
}

TEST_F(ConnectionsFile, LetsASlotSave)
{
    QObject context;
    const auto save = [name = std::string("slot")]() mutable {
        if (name.size() < 7) {
            name += "+";
            EXPECT_TRUE(dbui_add_connection({name, "", "", "", "", "", ""}, false));
        }
    };
    using Listener = dbConnectionNameListener;
    const auto listener = Listener::getInstance();
    QObject::connect(listener.data(), &Listener::preNotifyConnectionNamesChanged, &context, save);
    QObject::connect(listener.data(), &Listener::connectionNamesListChanged, &context, save);
    EXPECT_TRUE(dbui_add_connection(kLite, false));
    std::set<std::string> names;
    dbui_get_connection_names(&names);
    EXPECT_EQ(names, (std::set<std::string>{"lite", "slot+", "slot++", "slot+++"}));
}

TEST_F(ConnectionsFile, KeepsLinksAndWhatItCannotRead)
{
    const std::string real = folder.file("dotfiles/real.xml");
    fs::create_directory(folder.file("dotfiles"));
    fs::create_symlink("second", path);
    fs::create_symlink("dotfiles/real.xml", folder.file("second"));
    EXPECT_TRUE(dbui_create_connections_file_if_not_found());
    EXPECT_EQ(read_file(real), kDeclaration);

    write_file(real, "<broken");
    fs::permissions(real, fs::perms(0644));
    EXPECT_TRUE(dbui_add_connection(kLite, false));
    EXPECT_EQ(stored_lines(), "lite|QSQLITE|||/data/a b.db||;");
    EXPECT_EQ(read_file(path + ".unreadable"), "<broken");
    const uid_t owner = geteuid() == 0 ? test_support::kNobody : geteuid();
    EXPECT_EQ(chown(real.c_str(), owner, getegid()), 0);
    fs::remove(real + ".lock");
    EXPECT_TRUE(dbui_add_connection(kLab, false));
    EXPECT_TRUE(fs::is_symlink(path) && fs::is_symlink(folder.file("second")));
    struct stat status = {};
    for (const std::string& file : {real, path + ".unreadable"}) {
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644)) << file;
    }
    for (const std::string& file : {real, real + ".lock"}) {
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, owner) << file << ": the administrator took it away";
    }
}

TEST_F(ConnectionsFile, HoldsOnlyWhatEveryReaderOfXmlReads)
{
    const std::string odd[] = {"a\x01", "a\r\nb", "a\tb", "\x7f", "\xff"};
    for (const std::string& text : odd) {
        for (const DbuiConnection& record :
             {DbuiConnection(text, "", "", "", "", "", ""),
              DbuiConnection("a", "QMYSQL", text, "", "", "", ""),
              DbuiConnection("a", "QMYSQL", "h", "1", "d", text, "p")}) {
            EXPECT_FALSE(dbui_add_connection(record, false, &error));
            EXPECT_NE(error.find("cannot be stored.\n"), std::string::npos) << error;
        }
    }
    EXPECT_FALSE(dbapi::db_create_sqlite_connection("a", folder.file("a\r\nb.db"), &error));
    EXPECT_EQ(
        error,
        "Could not create the given database connection with name \"a\".\nThe database of the "
        "connection holds a control character, such as a line end, so it cannot be stored.\n");
    EXPECT_FALSE(fs::exists(folder.file("a\r\nb.db")));

    // What is stored already does not keep the rest from being changed.
    const DbuiConnection password("p", "QMYSQL", "h", "", "d", "u", "a\r\nb\x01");
    write_file(
        path, "<DB_Connections><DbConnection ConnectionName=\"a&#1;\" DbDriverName=\"\" "
              "DatabaseName=\"\"/></DB_Connections>");
    EXPECT_TRUE(dbui_add_connection(password, false, &error)) << error;
    EXPECT_EQ(stored_lines(), "a\x01||||||;p|QMYSQL|h||d|u|a\r\nb\x01;");
}

TEST_F(ConnectionsFile, RefusesWhatIsTooLargeToBeRead)
{
    std::string attributes;
    for (int i = 0; i < 65; ++i) {
        attributes += " a" + std::to_string(i) + "='>\"'";
    }
    const std::string start = message("open database connections storage file:", path);
    const std::pair<std::string, std::string> files[] = {
        {"<DB_Connections><!-- it's --><DbConnection ConnectionName='a'" + attributes +
             "/></DB_Connections>",
         "An element in it has more than 64 attributes, so it is no list of connections.\n"},
        {"<DB_Connections>" + std::string((4 << 20) + 1, ' ') + "</DB_Connections>",
         "It is larger than 4 MiB, so it is no list of connections.\n"}};
    for (const auto& [text, fault] : files) {
        write_file(path, text);
        std::vector<DbuiConnection> connections;
        EXPECT_FALSE(dbui_get_connections_from_file(&connections, &error));
        EXPECT_EQ(error, start + fault);
    }
    EXPECT_FALSE(dbui_add_connection(kLite, false, &error));
    EXPECT_EQ(
        error, message("save database connections storage file:", path) +
                   "It is larger than 4 MiB, so it is no list of connections.\n");
}

TEST_F(ConnectionsFile, LosesNothingBetweenTwoProcesses)
{
    constexpr std::size_t kEach = 200;
    const auto add = [](const std::string& writer) {
        bool done = true;
        for (std::size_t i = 0; i < kEach; ++i) {
            done &=
                dbui_add_connection({writer + std::to_string(i), "", "", "", "", "", ""}, false);
        }
        return done;
    };
    const pid_t one = start_child([&add] { return add("one"); });
    const pid_t two = start_child([&add] { return add("two"); });
    EXPECT_EQ(status_of(one), 0);
    EXPECT_EQ(status_of(two), 0);
    std::set<std::string> names;
    dbui_get_connection_names(&names);
    EXPECT_EQ(names.size(), 2 * kEach);
}

TEST_F(ConnectionsFile, StaysAsItIsWhereItCannotBeSaved)
{
    ASSERT_TRUE(dbui_save_connections_to_file({kLite}));
    const std::string before = read_file(path);
    const auto fails = [this] {
        std::string text;
        const bool saved = dbui_add_connection(kLab, false, &text);
        return !saved && text == message("save database connections storage file:", path);
    };
    EXPECT_EQ(
        status_of(start_child([&fails] {
            // As on a full disk: a part of the file is written, the rest is not.
            const rlimit limit{100, 100};
            signal(SIGXFSZ, SIG_IGN);
            return setrlimit(RLIMIT_FSIZE, &limit) == 0 && fails();
        })),
        0);
    for (const char* file : {"", "/vanto_db_connections.xml", "/vanto_db_connections.xml.lock"}) {
        EXPECT_TRUE(
            geteuid() != 0 ||
            chown((folder.path() + file).c_str(), test_support::kNobody, getgid()) == 0);
    }
    fs::permissions(folder.path(), fs::perms(0555));
    EXPECT_EQ(
        status_of(start_child([&fails] {
            test_support::become_nobody();
            return fails();
        })),
        0);
    fs::permissions(folder.path(), fs::perms(0755));
    EXPECT_EQ(read_file(path), before);
    EXPECT_FALSE(fs::exists(path + ".new"));
}

// Kills a writer before and after each of its system calls: nobody ever sees half a file, and the
// next writer is not held up.
TEST_F(ConnectionsFile, SurvivesAWriterKilledAtAnyMoment)
{
    constexpr int kMoments = 200;
    std::set<std::string> seen;
    for (int moment = 0; moment < kMoments; ++moment) {
        ASSERT_TRUE(dbui_save_connections_to_file({kLite}));
        const pid_t child = start_child([] {
            bool isSaved = ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 && raise(SIGSTOP) == 0;
            for (int i = 0; i < kMoments && isSaved; ++i) {
                isSaved = dbui_save_connections_to_file({kLab}) &&
                          dbui_save_connections_to_file({kLite, kLab});
            }
            return isSaved;
        });
        int status = status_of(child);
        for (int i = 0; i < moment && WIFSTOPPED(status); ++i) {
            ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
            status = status_of(child);
        }
        ASSERT_TRUE(WIFSTOPPED(status)) << "the writer failed, or may not be traced here";
        kill(child, SIGKILL);
        status_of(child);
        seen.insert(stored_lines());
    }
    const std::string lab = test_support::line_of(kLab) + ";";
    const std::string lite = test_support::line_of(kLite) + ";";
    EXPECT_EQ(seen, (std::set<std::string>{lite, lab, lite + lab}));
}
