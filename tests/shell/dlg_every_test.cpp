// What every dialog shares: it can be worked from the keyboard, Tab reaching
// each control that takes the focus (of a group of options, the chosen one)
// and Esc cancelling; and its picture for a person to look at (clipping, right
// to left), written only when ZELMOR_DIALOG_SHOTS names a folder. And the two
// small dialogs of the installation texts.
#include "shell/dlg_doch_list.h"
#include "shell/dlg_madadim.h"
#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_print.h"
#include "shell/dlg_sim.h"
#include "shell/dlg_test_support.h"
#include "shell/explain_panel.h"
#include "shell/main_window.h"
#include "shell/result_view.h"
#include "storage/install_files.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

class EveryDialog : public DataFolderTest {
protected:
    void SetUp() override { saveGoldenReports(db); }
    // A print dialog with a part chosen, so that the preview and the appendix are offered.
    std::unique_ptr<PrintDialog> printDialog() {
        auto d = std::make_unique<PrintDialog>(
            PrintSession{&report, &out, SectionId::Yegia, SheetId::CHishuv, true, [](NishumOutput&, trace::Trace*) { return true; }},
            PrintSetup{dir.path(), today, {}});
        for (const char* box : {"chkDetails", "chkCalc"}) child<QCheckBox>(d.get(), box)->setChecked(true);
        return d;
    }

    storage::ReportDb db{dir.filePath(QStringLiteral("D2015.BRK")).toStdString()};
    NishumInput report = goldenReport(QStringLiteral("couple.json"));
    NishumOutput out;
};

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
    DochListDialog list(db);
    expectKeyboardComplete(list, "taxpayer list");
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
    expectKeyboardComplete(*printDialog(), "print");
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

TEST_F(EveryDialog, Pictures) {
    ZELMOR_PICTURES_OR_SKIP(folder);
    auto shoot = [&](QWidget& w, const QString& name) { savePicture(w, folder, name); };
    DochListDialog list(db);
    shoot(list, "doch_list");
    child<QLineEdit>(&list, "txtSearch")->setText(QStringLiteral("03"));
    shoot(list, "doch_list_search");
    const std::tuple<SimQuestion, Amount, const char*> questions[] = {{SimQuestion::IncomeForBalance, 5000, "sim1"},
        {SimQuestion::IncomeForTaxPaid, 0, "sim2"}, {SimQuestion::IncomeChange, -12000, "sim3"}, {SimQuestion::TaxChange, 6000, "sim4"}};
    for (const auto& [q, sum, sim] : questions) {
        SimDialog dlg(q, report, c, madad, today);
        if (q != SimQuestion::IncomeForTaxPaid) shoot(dlg, QLatin1String(sim) + "_empty");
        dlg.runSim(sum);
        shoot(dlg, QLatin1String(sim));
    }
    NameDialog name(dir.path());
    name.findChild<QLineEdit*>()->setText(QStringLiteral("כהן ושות' רואי חשבון"));
    shoot(name, "name");
    PniaDialog pnia(dir.path());
    pnia.findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
    shoot(pnia, "pnia");
    MadadimDialog madadim(madad);
    shoot(madadim, "madadim");
    auto print = printDialog();
    print->setPrinters({QStringLiteral("HP LaserJet 400 (חדר 2)"), QStringLiteral("Office")});
    print->setCurrentPrinter(QStringLiteral("Office"));
    shoot(*print, "print");

    // The entry pages, every sheet of three reports, and an explanation.
    MainWindow window({dir.path(), dir.filePath(QStringLiteral("D2015.BRK")), today});
    window.loadReport(report);
    for (int page = 1; page <= 9; ++page) {
        window.goPage(page);
        shoot(window, QStringLiteral("entry-%1").arg(page));
    }
    for (const char* name : {"couple", "joint-couple", "fixed-rate-income"}) {
        window.loadReport(readReport((std::string_view(name) == "joint-couple" ? kShellData : kGoldenReports) + name + ".json"));
        window.calculate(1);
        for (int sheet = 1; sheet <= 8; ++sheet) {
            window.goSheet(sheet);
            shoot(*window.resultView(), QStringLiteral("sheet-%1-%2").arg(QLatin1String(name)).arg(sheet));
        }
    }
    window.explainCell(SheetId::CMain, QStringLiteral("MasMagiaM"));
    window.explainPanel()->tree()->expandToDepth(1);
    window.explainPanel()->resize(760, 520);
    shoot(*window.explainPanel(), "explain-panel");
}

}  // namespace
