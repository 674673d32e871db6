// Every dialog can be worked from the keyboard: Tab reaches each control that
// takes the focus (of a group of options, the chosen one) and Esc cancels.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QRadioButton>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include "core/tax_year.h"
#include "shell/dlg_doch_list.h"
#include "shell/dlg_madadim.h"
#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_print.h"
#include "shell/dlg_sim.h"
#include "shell/dlg_test_support.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

QSet<QWidget*> tabStops(QDialog& dlg) {
    QSet<QWidget*> stops;
    for (QWidget* w : dlg.findChildren<QWidget*>()) {
        if (!w->isVisible() || !w->isEnabled() || !(w->focusPolicy() & Qt::TabFocus)) continue;
        if (auto* radio = qobject_cast<QRadioButton*>(w); radio && !radio->isChecked()) continue;
        if (w->focusProxy()) continue;
        stops.insert(w);
    }
    return stops;
}

void expectKeyboardComplete(QDialog& dlg, const char* what) {
    SCOPED_TRACE(what);
    dlg.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dlg));
    const QSet<QWidget*> expected = tabStops(dlg);
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

TEST(DialogKeys, TabReachesEveryControlAndEscCancels) {
    QTemporaryDir dir;
    MessageRecorder recorder;
    storage::ReportDb db(dir.filePath(QStringLiteral("D2015.BRK")).toStdString());
    ASSERT_TRUE(db.saveNishum(goldenReport(QStringLiteral("single.json"))).ok);
    MadadTable madad(dir.path());
    const ConstDoch c;
    NishumInput report = goldenReport(QStringLiteral("single.json"));
    const Date today = *Date::fromYmd(2016, 6, 30);

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

    NishumOutput out;
    PrintDialog print({&report, &out, SectionId::Yegia, SheetId::CHishuv, true, [](NishumOutput&, trace::Trace*) { return true; }},
                      {dir.path(), today, {}});
    for (const char* box : {"chkDetails", "chkCalc"})  // the preview and the appendix are then offered
        print.findChild<QCheckBox*>(QLatin1String(box))->setChecked(true);
    expectKeyboardComplete(print, "print");
}

}  // namespace
