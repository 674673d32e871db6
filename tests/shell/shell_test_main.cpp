// Widget tests run inside one QApplication on the offscreen platform, right to
// left as the program runs. Message boxes never open: the tests record them.
#include <gtest/gtest.h>

#include <QApplication>

#include "shell/messages.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setLayoutDirection(Qt::RightToLeft);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
