#include "dbui_dialogs/widget_message_boxes.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Message boxes are really shown, but never on the screen of the person who runs the tests.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    dbui::register_message_boxes();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
