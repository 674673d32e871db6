// Pictures of every screen for a person to look at (clipping, right to left).
// Runs only when ZELMOR_DIALOG_SHOTS names the folder to write them to.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "core/tax_year.h"
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
#include "storage/report_db.h"
#include "tables/madad_table.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

void shoot(QWidget& w, const QString& folder, const QString& name) { savePicture(w, folder, name); }

TEST(DialogShots, EveryScreen) {
    ZELMOR_PICTURES_OR_SKIP(folder);
    QTemporaryDir dir;
    MessageRecorder recorder;
    storage::ReportDb db(dir.filePath(QStringLiteral("D2015.BRK")).toStdString());
    for (const char* name : {"single.json", "couple.json", "couple-low-spouse.json", "widow.json"})
        db.saveNishum(goldenReport(QLatin1String(name)));
    {
        DochListDialog dlg(db);
        shoot(dlg, folder, "doch_list");
        dlg.findChild<QLineEdit*>(QStringLiteral("txtSearch"))->setText(QStringLiteral("03"));
        shoot(dlg, folder, "doch_list_search");
    }

    MadadTable madad(dir.path());
    const ConstDoch c;
    const Date today = *Date::fromYmd(2016, 6, 30);
    NishumInput report = goldenReport(QStringLiteral("couple.json"));
    const struct {
        SimQuestion q;
        Amount sum;
        const char* name;
    } questions[] = {{SimQuestion::IncomeForBalance, 5000, "sim1"},
                     {SimQuestion::IncomeForTaxPaid, 0, "sim2"},
                     {SimQuestion::IncomeChange, -12000, "sim3"},
                     {SimQuestion::TaxChange, 6000, "sim4"}};
    for (const auto& k : questions) {
        SimDialog dlg(k.q, report, c, madad, today);
        if (k.q != SimQuestion::IncomeForTaxPaid) shoot(dlg, folder, QLatin1String(k.name) + "_empty");
        dlg.runSim(k.sum);
        shoot(dlg, folder, QLatin1String(k.name));
    }

    NameDialog name(dir.path());
    name.findChild<QLineEdit*>()->setText(QStringLiteral("כהן ושות' רואי חשבון"));
    shoot(name, folder, "name");
    PniaDialog pnia(dir.path());
    pnia.findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
    shoot(pnia, folder, "pnia");
    MadadimDialog madadim(madad);
    shoot(madadim, folder, "madadim");

    NishumOutput out;
    PrintDialog print({&report, &out, SectionId::Yegia, SheetId::CHishuv, true, [](NishumOutput&, trace::Trace*) { return true; }},
                      {dir.path(), today, {}});
    print.setPrinters({QStringLiteral("HP LaserJet 400 (חדר 2)"), QStringLiteral("Office")});
    print.setCurrentPrinter(QStringLiteral("Office"));
    print.findChild<QCheckBox*>(QStringLiteral("chkDetails"))->setChecked(true);
    shoot(print, folder, "print");

    // The entry pages, every sheet of three reports, and an explanation.
    MainWindow window({dir.path(), dir.filePath(QStringLiteral("D2015.BRK")), today});
    window.loadReport(report);
    for (int page = 1; page <= 9; ++page) {
        window.goPage(page);
        shoot(window, folder, QStringLiteral("entry-%1").arg(page));
    }
    for (const char* name : {"couple", "joint-couple", "fixed-rate-income"}) {
        window.loadReport(std::string_view(name) == "joint-couple"
                              ? readReport(QStringLiteral(ZELMOR_SOURCE_DIR "/tests/shell/data/joint-couple.json"))
                              : goldenReport(QLatin1String(name) + ".json"));
        window.calculate(1);
        for (int sheet = 1; sheet <= 8; ++sheet) {
            window.goSheet(sheet);
            shoot(*window.resultView(), folder, QStringLiteral("sheet-%1-%2").arg(QLatin1String(name)).arg(sheet));
        }
    }
    window.explainCell(SheetId::CMain, QStringLiteral("MasMagiaM"));
    window.explainPanel()->tree()->expandToDepth(1);
    window.explainPanel()->resize(760, 520);
    shoot(*window.explainPanel(), folder, "explain-panel");
}

}  // namespace
