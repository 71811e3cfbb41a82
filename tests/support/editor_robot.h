#pragma once

#include "dbif/host/host_string.h"

#include "tools/connection_manager/connection_editor.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace test_support {
/// Operates an editor as a person would.
struct Editor
{
    QWidget* window;

    [[nodiscard]] QLineEdit* field(const char* name) const
    {
        return window->findChild<QLineEdit*>(QString::fromLatin1(name));
    }

    void type(const char* name, const std::string& text) const
    {
        field(name)->selectAll();
        QTest::keyClick(field(name), Qt::Key_Delete);
        QTest::keyClicks(field(name), dbif::to_qt(text));
    }

    /// The word beside a field, with a "!" when the connection cannot be stored.
    [[nodiscard]] std::string word(const char* name) const
    {
        const QString label = QString::fromLatin1(name) + QStringLiteral("Word");
        const bool isReady = window->findChild<QPushButton*>(QStringLiteral("store"))->isEnabled();
        return dbif::to_utf8(window->findChild<QLabel*>(label)->text()) + (isReady ? "" : "!");
    }

    /// Presses the key, and waits while a connection is being opened.
    void press(Qt::Key key) const
    {
        QTest::keyClick(window->focusWidget(), key);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !isOpening(); }, 60'000));
    }

    [[nodiscard]] bool isOpening() const
    {
        return window->findChild<QLabel*>(QStringLiteral("opening"))->isVisible();
    }
};

/// Does the work once in the next editor that opens, while that is on the screen.
class InNextEditor
{
public:
    explicit InNextEditor(std::function<void(const Editor&)> work)
    {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this, work = std::move(work)] {
            auto* editor = qobject_cast<connection_manager::ConnectionEditor*>(
                QApplication::activeModalWidget());
            if (editor == nullptr) {
                return;
            }
            timer_.stop();
            ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
            work({editor});
            if (editor->isVisible()) {
                editor->reject();
            }
            isDone_ = true;
        });
        timer_.start(0);
    }

    /// A key that presses a button takes a moment to do so.
    void wait() const
    {
        EXPECT_TRUE(QTest::qWaitFor([this] { return isDone_; }, 30'000));
    }

private:
    bool isDone_ = false;
    QTimer timer_;
};
} // namespace test_support
