#include "dbif/connection/connection.h"
#include "dbui/connection_registry.h"

#include "tests/support/box_clicker.h"
#include "tests/support/child_process.h"
#include "tests/support/editor_robot.h"
#include "tests/support/stored_connections.h"
#include "tests/support/temp_directory.h"
#include "tools/connection_manager/connection_manager.h"
#include "tools/connection_manager/manager_translations.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>
#include <QTranslator>
#include <QTreeWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
using connection_manager::ConnectionManager;
using test_support::BoxClicker;
using test_support::Editor;
using test_support::InNextEditor;
using test_support::stored_lines;
using testing::HasSubstr;

class ConnectionManagerWindow : public testing::Test
{
protected:
    /// Opens the window with these SQLite connections.
    void open(const std::vector<std::string>& names)
    {
        for (const std::string& name : names) {
            dbui_add_connection(record(name), false);
        }
        window = std::make_unique<ConnectionManager>();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    [[nodiscard]] DbuiConnection record(const std::string& name) const
    {
        return {name, "QSQLITE", "", "", folder.file(name + ".db"), "", ""};
    }

    [[nodiscard]] std::string line(const std::string& name) const
    {
        return test_support::line_of(record(name)) + ";";
    }

    [[nodiscard]] QTreeWidget* list() const
    {
        return window->findChild<QTreeWidget*>(QStringLiteral("connections"));
    }

    /// The names in the list, with a star behind the selected one.
    [[nodiscard]] std::string shown() const
    {
        std::string text;
        for (int i = 0; i < list()->topLevelItemCount(); ++i) {
            const QTreeWidgetItem* item = list()->topLevelItem(i);
            text += dbif::to_utf8(item->text(0)) + (item->isSelected() ? "*;" : ";");
        }
        return text;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        window->activateWindow(); // a desktop does that when a dialog closes
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QTest::keyClick(list(), key, modifiers);
    }

    void click(const char* button) const
    {
        QTest::mouseClick(
            window->findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
    }

    test_support::TempDirectory folder;
    std::unique_ptr<ConnectionManager> window;
};
} // namespace

TEST_F(ConnectionManagerWindow, AddsByKeyboardAndChecksWhileOneTypes)
{
    open({"lab"});
    {
        const InNextEditor robot([this](const Editor& editor) {
            EXPECT_EQ(editor.word("name") + editor.word("file"), "needed!needed!");
            EXPECT_EQ(editor.window->focusWidget(), editor.field("name"));
            editor.type("name", " lab");
            EXPECT_EQ(editor.word("name"), "taken!");
            editor.type("name", "new one ");
            EXPECT_EQ(editor.word("name"), "!");
            const std::pair<std::string, const char*> files[] = {
                {"/nowhere/x.db", "no such folder!"},
                {folder.path(), "a folder!"},
                {folder.file("new one.db"), "new file"}};
            for (const auto& [file, word] : files) {
                editor.type("file", file);
                EXPECT_EQ(editor.word("file"), word);
            }
            editor.press(Qt::Key_Return);
        });
        press(Qt::Key_A, Qt::AltModifier);
        robot.wait();
    }
    EXPECT_EQ(stored_lines(), line("lab") + line("new one"));
    EXPECT_EQ(shown(), "lab;new one*;");
    EXPECT_TRUE(std::filesystem::exists(folder.file("new one.db")));

    const InNextEditor robot([](const Editor& editor) {
        editor.type("name", "server");
        QTest::keyClick(editor.window->findChild<QComboBox*>(QStringLiteral("kind")), Qt::Key_Down);
        EXPECT_FALSE(editor.field("file")->isVisible());
        for (const char* needed : {"host", "database", "user"}) {
            EXPECT_EQ(editor.word(needed), "needed!") << needed;
            editor.type(needed, "x");
        }
        const std::pair<const char*, const char*> ports[] = {
            {"abc", "no number!"}, {"70000", "1 to 65535!"}, {"+3306", ""}};
        for (const auto& [port, word] : ports) {
            editor.type("port", port);
            EXPECT_EQ(editor.word("port"), word);
        }
        EXPECT_EQ(editor.field("password")->echoMode(), QLineEdit::Password);
        editor.press(Qt::Key_Escape);
    });
    press(Qt::Key_Insert);
    robot.wait();
    EXPECT_EQ(stored_lines(), line("lab") + line("new one"));
}

TEST_F(ConnectionManagerWindow, EditsAndDuplicates)
{
    open({"a", "b"});
    const BoxClicker boxes;
    {
        const InNextEditor robot([](const Editor& editor) {
            EXPECT_EQ(editor.field("name")->text(), QStringLiteral("a"));
            editor.type("name", "b");
            EXPECT_EQ(editor.word("name"), "taken!");
            editor.press(Qt::Key_Return);
            EXPECT_TRUE(editor.window->isVisible());
        });
        press(Qt::Key_Return);
    }
    EXPECT_EQ(stored_lines(), line("a") + line("b"));
    {
        const InNextEditor robot([this](const Editor& editor) {
            editor.type("name", "c");
            editor.type("file", folder.file("c.db"));
            editor.press(Qt::Key_Return);
        });
        click("edit");
    }
    EXPECT_EQ(stored_lines(), line("b") + line("c"));
    EXPECT_EQ(shown(), "b;c*;");

    const InNextEditor robot([](const Editor& editor) { editor.press(Qt::Key_Return); });
    click("duplicate");
    EXPECT_EQ(shown(), "b;c;c 2*;");
}

TEST_F(ConnectionManagerWindow, StoresWhatDoesNotOpenOnlyOnYes)
{
    open({});
    test_support::write_file(folder.file("text.db"), std::string(200, '.'));
    const std::string failure =
        "question: Add connection: The connection does not open at the moment. Store it all the "
        "same?\n\nCheck Database Connection Error: Failed to open valid database connection.\nThe "
        "SQLite file \"" +
        folder.file("text.db") + "\" does not open: file is not a database.[&Yes][&No*]";
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        BoxClicker boxes(answer);
        const InNextEditor robot([this, answer](const Editor& editor) {
            editor.type("name", "text");
            editor.type("file", folder.file("text.db"));
            editor.press(Qt::Key_Return);
            EXPECT_EQ(editor.window->isVisible(), answer == QMessageBox::No);
        });
        click("add");
        EXPECT_EQ(boxes.take(), failure);
        EXPECT_EQ(shown(), answer == QMessageBox::No ? "" : "text*;");
    }
}

TEST_F(ConnectionManagerWindow, RemovesOnlyOnYes)
{
    open({"a", "b"});
    {
        BoxClicker boxes(QMessageBox::No);
        press(Qt::Key_Delete);
        EXPECT_EQ(
            boxes.take(), "question: Remove connection: Forget the connection \"a\"? Its database "
                          "stays as it is.[&Yes][&No*]");
    }
    EXPECT_EQ(shown(), "a*;b;");
    BoxClicker boxes(QMessageBox::Yes);
    press(Qt::Key_Delete);
    EXPECT_EQ(stored_lines(), line("b"));
    EXPECT_EQ(shown(), "b*;");

    // A folder in the place of the lock: the call says itself that it failed.
    boxes.take();
    const std::string lock = folder.connections_file() + ".lock";
    std::filesystem::remove(lock);
    std::filesystem::create_directory(lock);
    click("remove");
    EXPECT_THAT(boxes.take(), HasSubstr("warning: Remove connection: Failed to save"));
    EXPECT_EQ(shown(), "b*;");

    press(Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ConnectionManagerWindow, FollowsChangesByAnybody)
{
    open({"a", "b"});
    list()->setCurrentItem(list()->topLevelItem(1));
    dbui_remove_connection(record("a"), false);
    EXPECT_EQ(shown(), "b*;");
    const auto addC = [this] {
        return dbui_add_connection(record("c"), false);
    };
    EXPECT_EQ(test_support::status_of(test_support::start_child(addC)), 0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown() == "b*;c;"; }, 30'000)) << shown();

    // An editor writes over the file, which may stand behind a link.
    const std::string file = folder.connections_file();
    const std::string text = test_support::read_file(file);
    const std::filesystem::path target =
        std::filesystem::path(file).parent_path() / "deep/real.xml";
    std::filesystem::create_directory(target.parent_path());
    test_support::write_file(target, "<DB_Connections/>");
    std::filesystem::remove(file);
    std::filesystem::create_symlink(target, file);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown().empty(); }, 30'000)) << shown();
    test_support::write_file(target, text);
    EXPECT_TRUE(QTest::qWaitFor([this] { return shown() == "b*;c;"; }, 30'000)) << shown();
}

TEST_F(ConnectionManagerWindow, StoresNothingOverWhatOthersStoredMeanwhile)
{
    open({"a"});
    BoxClicker boxes;
    const auto store_in_vain = [this, &boxes](const char* button, const std::string& name) {
        const InNextEditor robot([this, &boxes, &name](const Editor& editor) {
            if (name == "a") {
                dbui_update_connection(record("a"), record("moved"), false);
            } else {
                editor.type("name", name);
                editor.type("file", folder.file("x.db"));
                dbui_add_connection(record(name), false);
            }
            editor.press(Qt::Key_Return);
            EXPECT_TRUE(editor.window->isVisible());
            EXPECT_EQ(editor.word("name"), name == "a" ? "" : "taken!");
        });
        click(button);
        return boxes.take();
    };
    EXPECT_EQ(
        store_in_vain("add", "b"), "warning: Add connection: Another connection has this name by "
                                   "now. Choose another name.[OK]");
    list()->setCurrentItem(list()->topLevelItem(0));
    EXPECT_THAT(
        store_in_vain("edit", "a"),
        HasSubstr("The connection was changed or removed by another program"));
    EXPECT_EQ(stored_lines(), line("b") + line("moved"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("x.db")));
}

TEST_F(ConnectionManagerWindow, ReplacesADamagedFileOnlyOnYes)
{
    open({"a", "b"});
    const std::string file = folder.connections_file();
    std::string damaged = test_support::read_file(file);
    damaged.resize(damaged.rfind("</DB"));
    test_support::write_file(file, damaged);
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        BoxClicker boxes(answer);
        const InNextEditor robot([this](const Editor& editor) {
            editor.type("name", "c");
            editor.type("file", folder.file("c.db"));
            editor.press(Qt::Key_Return);
        });
        click("add");
        EXPECT_EQ(
            boxes.take(),
            "question: Add connection: The file " + file +
                " is damaged: its connections cannot be read. Begin a new list with this "
                "connection? The damaged file is kept as " +
                file + ".unreadable.[&Yes][&No*]");
        EXPECT_EQ(stored_lines(), answer == QMessageBox::Yes ? line("c") : "unreadable");
    }
    EXPECT_EQ(test_support::read_file(file + ".unreadable"), damaged);
}

TEST_F(ConnectionManagerWindow, TestsWithoutFreezing)
{
    open({"a"});
    const auto* view = window->findChild<QTextBrowser*>(QStringLiteral("diagnosis"));
    const auto* test = window->findChild<QPushButton*>(QStringLiteral("test"));
    const auto text = [view] {
        return dbif::to_utf8(view->toPlainText());
    };
    const auto test_to_the_end = [&] {
        click("test");
        EXPECT_EQ(test->text(), QStringLiteral("&Stop"));
        EXPECT_TRUE(
            QTest::qWaitFor([test] { return test->text() == QStringLiteral("&Test"); }, 60'000));
    };
    test_to_the_end();
    EXPECT_THAT(text(), testing::StartsWith("\"a\" does not work\n"));
    EXPECT_THAT(text(), HasSubstr("Put the file back or correct the path."));

    DBIF_Connection("QSQLITE", "", folder.file("a.db").c_str(), "", "", 0)
        .initializeSchemaIfMissing();
    test_to_the_end();
    EXPECT_THAT(text(), testing::StartsWith("\"a\" works\n"));

    // Stop frees the window at once, and a window may go while its test goes on.
    click("test");
    click("test");
    EXPECT_EQ(test->text(), QStringLiteral("&Test"));
    EXPECT_EQ(text(), "The test of \"a\" was stopped");
    click("test");
    window.reset();
}

TEST_F(ConnectionManagerWindow, StaysAliveWhileAServerDoesNotAnswer)
{
    // Connections are made to it, and nobody ever says a word.
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(bind(listener, generic, length) + listen(listener, 9), 0);
    ASSERT_EQ(getsockname(listener, generic, &length), 0);
    open({});
    BoxClicker boxes(QMessageBox::No);
    const InNextEditor robot([&](const Editor& editor) {
        editor.type("name", "silent");
        QTest::keyClick(editor.window->findChild<QComboBox*>(QStringLiteral("kind")), Qt::Key_Down);
        editor.type("host", "127.0.0.1");
        editor.type("port", std::to_string(ntohs(address.sin_port)));
        editor.type("database", "d");
        editor.type("user", "u");
        QTest::keyClick(editor.window->focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(editor.isOpening());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        editor.press(Qt::Key_Escape);
        EXPECT_TRUE(editor.window->isVisible()) << "the first Escape gives the opening up";
        EXPECT_EQ(editor.word("name"), "");

        auto* test = editor.window->findChild<QPushButton*>(QStringLiteral("testTyped"));
        for (const char* text : {"S&top", "&Test"}) {
            QTest::mouseClick(test, Qt::LeftButton);
            EXPECT_EQ(test->text(), QString::fromLatin1(text));
        }
        close(listener); // so that what was given up ends
    });
    click("add");
    EXPECT_EQ(stored_lines() + boxes.take(), "unreadable");
}

TEST_F(ConnectionManagerWindow, SortsAndTellsWhatToDoWithoutAny)
{
    open({"b", "<i>a</i>"});
    EXPECT_EQ(shown(), "b*;<i>a</i>;");
    list()->sortByColumn(0, Qt::AscendingOrder);
    EXPECT_EQ(shown(), "<i>a</i>;b*;");
    EXPECT_EQ(list()->header()->sectionResizeMode(0), QHeaderView::Interactive);
    BoxClicker boxes(QMessageBox::Yes);
    press(Qt::Key_Delete);
    EXPECT_EQ(stored_lines(), line("<i>a</i>"));
    list()->setCurrentItem(list()->topLevelItem(0));
    click("remove");
    EXPECT_EQ(stored_lines(), "");
    const QLabel* note = window->findChild<QLabel*>(QStringLiteral("note"));
    EXPECT_THAT(dbif::to_utf8(note->text()), HasSubstr("No connection is stored yet."));
}

TEST_F(ConnectionManagerWindow, SpeaksGerman)
{
    connection_manager::install_translations(QLocale(QStringLiteral("de_AT")));
    open({"a"});
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Datenbankverbindungen"));
    const InNextEditor robot(
        [](const Editor& editor) { EXPECT_EQ(editor.word("file"), "fehlt!"); });
    click("add");
    qDeleteAll(QApplication::instance()->findChildren<QTranslator*>());
}
