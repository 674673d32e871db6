// What every dialog shares: it can be worked from the keyboard, Tab reaching
// each control that takes the focus (of a group of options, the chosen one)
// and Esc cancelling. And the two small dialogs of the installation texts.
#include "shell/dlg_doch_list.h"
#include "shell/dlg_madadim.h"
#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_print.h"
#include "shell/dlg_sim.h"
#include "shell/dlg_test_support.h"
#include "storage/install_files.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

using EveryDialog = DataFolderTest;

void expectKeyboardComplete(QDialog& dlg, const char* what) {
    SCOPED_TRACE(what);
    dlg.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dlg));
    QSet<QWidget*> expected;
    for (QWidget* w : dlg.findChildren<QWidget*>()) {
        if (!w->isVisible() || !w->isEnabled() || !(w->focusPolicy() & Qt::TabFocus) || w->focusProxy()) continue;
        if (auto* radio = qobject_cast<QRadioButton*>(w); radio && !radio->isChecked()) continue;
        expected.insert(w);
    }
    ASSERT_FALSE(expected.isEmpty());
    QSet<QWidget*> reached;
    for (int i = 0; i < expected.size() * 2 && dlg.focusWidget(); ++i) {
        reached.insert(dlg.focusWidget());
        QTest::keyClick(dlg.focusWidget(), Qt::Key_Tab);
    }
    for (QWidget* w : expected)
        EXPECT_TRUE(reached.contains(w)) << w->metaObject()->className() << " " << w->objectName().toStdString();
    QTest::keyClick(dlg.focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(dlg.result(), QDialog::Rejected);
    EXPECT_FALSE(dlg.isVisible());
}

TEST_F(EveryDialog, TabReachesEveryControlAndEscCancels) {
    storage::ReportDb db(dir.filePath(QStringLiteral("D2015.BRK")).toStdString());
    saveGoldenReports(db);
    DochListDialog list(db);
    expectKeyboardComplete(list, "taxpayer list");
    NishumInput report = goldenReport(QStringLiteral("couple.json"));
    for (auto q : {SimQuestion::IncomeForBalance, SimQuestion::IncomeChange, SimQuestion::TaxChange}) {
        SimDialog sim(q, report, c, madad, today);
        sim.runSim(1000);  // with an answer, so that "עדכון" is enabled
        expectKeyboardComplete(sim, "solving");
    }
    NameDialog name(dir.path());
    expectKeyboardComplete(name, "user name");
    PniaDialog pnia(dir.path());
    expectKeyboardComplete(pnia, "covering letter");
    MadadimDialog madadim(madad);
    expectKeyboardComplete(madadim, "index table");
    // With a part chosen, so that the preview and the appendix are offered.
    NishumOutput out;
    PrintDialog print({&report, &out, SectionId::Yegia, SheetId::CHishuv, true, [](NishumOutput&, trace::Trace*) { return true; }},
                      {dir.path(), today, {}});
    for (const char* box : {"chkDetails", "chkCalc"}) child<QCheckBox>(&print, box)->setChecked(true);
    expectKeyboardComplete(print, "print");
}

// The two installation texts: written, read back by the routines the
// printouts use, and left alone on cancel.
TEST_F(EveryDialog, TheNameIsStoredTrimmedOnOkOnly) {
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

TEST_F(EveryDialog, TheLetterRoundTripsAndClearsOnlyOnTheScreen) {
    const std::string data = dir.path().toStdString();
    const QString letter = QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,");
    const auto click = [](PniaDialog& dlg, const char* name) { child<QPushButton>(&dlg, name)->click(); };
    {
        PniaDialog dlg(dir.path());
        auto* txt = child<QPlainTextEdit>(&dlg, "txtPnia");
        EXPECT_TRUE(txt->toPlainText().isEmpty());  // no file yet
        txt->setPlainText(letter);
        click(dlg, "cmdSave");
        EXPECT_EQ(dlg.result(), QDialog::Accepted);
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        dlg.show();
        auto* txt = child<QPlainTextEdit>(&dlg, "txtPnia");
        EXPECT_EQ(dlg.focusWidget(), txt);
        EXPECT_EQ(txt->toPlainText(), letter);
        click(dlg, "cmdDelPnia");
        EXPECT_TRUE(txt->toPlainText().isEmpty());
        EXPECT_EQ(dlg.focusWidget(), txt);
        click(dlg, "cmdCancel");
    }
    EXPECT_EQ(storage::Pnia(data), "לכבוד\r\nפקיד השומה\r\nשלום רב,");
    {
        PniaDialog dlg(dir.path());
        click(dlg, "cmdDelPnia");
        click(dlg, "cmdSave");
    }
    EXPECT_EQ(storage::Pnia(data), "");
}

}  // namespace
