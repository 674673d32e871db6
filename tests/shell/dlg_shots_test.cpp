// Pictures of every dialog and entry page for a person to look at (clipping, right to left).
// Runs only when ZELMOR_DIALOG_SHOTS names the folder to write them to.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QtTest>

#include "core/tax_year.h"
#include "shell/dlg_doch_list.h"
#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_sim.h"
#include "shell/dlg_test_support.h"
#include "shell/entry_page.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

void shoot(QWidget& w, const QString& folder, const char* name) { savePicture(w, folder, QLatin1String(name)); }

TEST(DialogShots, EveryDialog) {
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
        if (k.q != SimQuestion::IncomeForTaxPaid) shoot(dlg, folder, (std::string(k.name) + "_empty").c_str());
        dlg.runSim(k.sum);
        shoot(dlg, folder, k.name);
    }

    NameDialog name(dir.path());
    name.findChild<QLineEdit*>()->setText(QStringLiteral("כהן ושות' רואי חשבון"));
    shoot(name, folder, "name");
    PniaDialog pnia(dir.path());
    pnia.findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("לכבוד\nפקיד השומה\nשלום רב,"));
    shoot(pnia, folder, "pnia");

    for (const SectionDef& s : allSections()) {
        EntryPage page(s.id, &report);
        page.var2Map(report);
        savePicture(page, folder, QStringLiteral("entry-%1-%2").arg(int(s.id)).arg(QLatin1String(s.name)));
    }
}

}  // namespace
