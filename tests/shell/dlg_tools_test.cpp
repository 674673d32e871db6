// The tools menu's outside programs: which calculator is found, and the form
// 6111 program's failure message. Nothing here opens a window of its own.
#include "shell/dlg_test_support.h"
#include "shell/tools.h"

using namespace zelmor::shell;

namespace {

// A PATH of fake programs, and settings in a folder of the test's own.
class ToolsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        oldPath = qgetenv("PATH");
        QDir(dir.path()).mkdir(QStringLiteral("bin"));
        qputenv("PATH", dir.filePath(QStringLiteral("bin")).toLocal8Bit());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir.filePath(QStringLiteral("config")));
    }
    void TearDown() override {
        qputenv("PATH", oldPath);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    }
    void program(const QString& path) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("#!/bin/sh\nexit 0\n");
        f.close();
        f.setPermissions(f.permissions() | QFileDevice::ExeOwner);
    }

    QTemporaryDir dir;
    QByteArray oldPath;
};

// Each calculator found is preferred to those found before it.
TEST_F(ToolsTest, CalculatorsAreLookedForInOrder) {
    EXPECT_FALSE(tools::calculatorAvailable());
    EXPECT_FALSE(tools::startCalculator());
    for (const char* name : {"xcalc", "galculator", "kcalc", "gnome-calculator"}) {
        program(dir.filePath(QStringLiteral("bin/") + QLatin1String(name)));
        EXPECT_EQ(QFileInfo(tools::findCalculator()).fileName(), QLatin1String(name));
    }
    EXPECT_TRUE(tools::calculatorAvailable());
}

TEST_F(ToolsTest, Form6111StartsFromItsFolderOrSaysItCannot) {
    MessageRecorder recorder;
    EXPECT_FALSE(tools::startForm6111(nullptr, dir.path(), QStringLiteral("031112220")));
    ASSERT_EQ(recorder.shown.size(), 1u);
    EXPECT_EQ(recorder.shown[0].title, QStringLiteral("טופס 6111"));
    EXPECT_EQ(recorder.shown[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(recorder.shown[0].text, QStringLiteral("בעיה בהפעלת טופס 6111.\nניתן לפנות לתמיכה"));

    // The default folder in the data folder, then a folder of the settings.
    QDir(dir.path()).mkdir(QStringLiteral("T6111ME"));
    program(dir.filePath(QStringLiteral("T6111ME/T611111.EXE")));
    EXPECT_TRUE(tools::startForm6111(nullptr, dir.path(), QStringLiteral("031112220")));
    QSettings(QStringLiteral("Zelmor"), QStringLiteral("Zelmor"))
        .setValue(QStringLiteral("tools/form6111Folder"), dir.filePath(QStringLiteral("elsewhere")));
    EXPECT_FALSE(tools::startForm6111(nullptr, dir.path(), QStringLiteral("031112220")));
    EXPECT_EQ(recorder.shown.size(), 2u);
}

}  // namespace
