#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Message boxes are really shown, but never on the screen of the person who runs the tests.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
