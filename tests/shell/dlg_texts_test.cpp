// The two installation texts through their dialogs: written, read back by the
// routines the printouts use, and left alone on cancel.
#include <gtest/gtest.h>

#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_test_support.h"
#include "storage/install_files.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

TEST(NameDialogTest, StoresTheTrimmedNameOnOkOnly) {
    QTemporaryDir dir;
    const std::string data = dir.path().toStdString();
    storage::SaveUserName(data, "משרד ישן");
    {
        NameDialog dlg(dir.path());
        dlg.show();
        auto* txt = dlg.findChild<QLineEdit*>(QStringLiteral("txtName"));
        EXPECT_EQ(dlg.focusWidget(), txt);
        EXPECT_TRUE(txt->text().isEmpty());  // the stored name is not shown
        typeText(txt, QStringLiteral("לא נשמר"));
        QTest::keyClick(txt, Qt::Key_Escape);
        EXPECT_EQ(dlg.result(), QDialog::Rejected);
        EXPECT_EQ(storage::UserName(data), "משרד ישן");
    }
    {
        NameDialog dlg(dir.path());
        dlg.show();
        typeText(dlg.findChild<QLineEdit*>(QStringLiteral("txtName")), QStringLiteral("  כהן ושות' רואי חשבון "));
        QTest::keyClick(dlg.findChild<QLineEdit*>(QStringLiteral("txtName")), Qt::Key_Return);
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
        EXPECT_EQ(storage::UserName(data), "כהן ושות' רואי חשבון");
    }
}

TEST(PniaDialogTest, LetterRoundTripsAndClearsOnlyOnTheScreen) {
    QTemporaryDir dir;
    const std::string data = dir.path().toStdString();
    {
        PniaDialog dlg(dir.path());
        auto* txt = dlg.findChild<QPlainTextEdit*>(QStringLiteral("txtPnia"));
        EXPECT_TRUE(txt->toPlainText().isEmpty());  // no file yet
        txt->setPlainText(QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
        dlg.findChild<QPushButton*>(QStringLiteral("cmdSave"))->click();
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        dlg.show();
        auto* txt = dlg.findChild<QPlainTextEdit*>(QStringLiteral("txtPnia"));
        EXPECT_EQ(dlg.focusWidget(), txt);
        EXPECT_EQ(txt->toPlainText(), QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
        // Tab leaves the letter rather than typing into it.
        QTest::keyClick(txt, Qt::Key_Tab);
        EXPECT_EQ(txt->toPlainText(), QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
        EXPECT_EQ(dlg.focusWidget(), dlg.findChild<QPushButton*>(QStringLiteral("cmdSave")));
        dlg.findChild<QPushButton*>(QStringLiteral("cmdDelPnia"))->click();
        EXPECT_TRUE(txt->toPlainText().isEmpty());
        EXPECT_EQ(dlg.focusWidget(), txt);
        dlg.findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click();
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        dlg.findChild<QPushButton*>(QStringLiteral("cmdDelPnia"))->click();
        dlg.findChild<QPushButton*>(QStringLiteral("cmdSave"))->click();
    }
    EXPECT_EQ(storage::Pnia(data), "");
}

}  // namespace
