// The two installation texts through their dialogs: written, read back by the
// routines the printouts use, and left alone on cancel.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

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
    for (const auto& [typed, key, stored] : {std::tuple{"לא נשמר", Qt::Key_Escape, "משרד ישן"},
                                             std::tuple{"  כהן ושות' רואי חשבון ", Qt::Key_Return, "כהן ושות' רואי חשבון"}}) {
        NameDialog dlg(dir.path());
        dlg.show();
        auto* txt = dlg.findChild<QLineEdit*>(QStringLiteral("txtName"));
        EXPECT_EQ(dlg.focusWidget(), txt);
        EXPECT_TRUE(txt->text().isEmpty());  // the stored name is not shown
        typeText(txt, QString::fromUtf8(typed));
        QTest::keyClick(txt, key);
        EXPECT_EQ(dlg.result(), key == Qt::Key_Return ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(storage::UserName(data), stored);
    }
}

TEST(PniaDialogTest, LetterRoundTripsAndClearsOnlyOnTheScreen) {
    QTemporaryDir dir;
    const std::string data = dir.path().toStdString();
    const QString letter = QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,");
    auto button = [](PniaDialog& dlg, const char* name) { return dlg.findChild<QPushButton*>(QLatin1String(name)); };
    {
        PniaDialog dlg(dir.path());
        auto* txt = dlg.findChild<QPlainTextEdit*>(QStringLiteral("txtPnia"));
        EXPECT_TRUE(txt->toPlainText().isEmpty());  // no file yet
        txt->setPlainText(letter);
        button(dlg, "cmdSave")->click();
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        dlg.show();
        auto* txt = dlg.findChild<QPlainTextEdit*>(QStringLiteral("txtPnia"));
        EXPECT_EQ(dlg.focusWidget(), txt);
        EXPECT_EQ(txt->toPlainText(), letter);
        QTest::keyClick(txt, Qt::Key_Tab);  // leaves the letter rather than typing into it
        EXPECT_EQ(txt->toPlainText(), letter);
        EXPECT_EQ(dlg.focusWidget(), button(dlg, "cmdSave"));
        button(dlg, "cmdDelPnia")->click();
        EXPECT_TRUE(txt->toPlainText().isEmpty());
        EXPECT_EQ(dlg.focusWidget(), txt);
        button(dlg, "cmdCancel")->click();
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        button(dlg, "cmdDelPnia")->click();
        button(dlg, "cmdSave")->click();
    }
    EXPECT_EQ(storage::Pnia(data), "");
}

}  // namespace
