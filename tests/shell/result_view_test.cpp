// The result screens: the figures on every sheet are those of the result
// document, the keys move between the sheets as the menus expect, and the
// interest date changes only the interest.
#include <gtest/gtest.h>

#include <QAction>
#include <QCalendarWidget>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest/QTest>
#include <memory>

#include "core/values.h"
#include "engine/calc.h"
#include "print/paper.h"
#include "report/report_json.h"
#include "shell/dlg_test_support.h"
#include "shell/messages.h"
#include "shell/result_view.h"
#include "shell/sheet_canvas.h"
#include "tables/madad_table.h"

namespace zelmor::shell {
namespace {

const Date kToday = *Date::fromYmd(2016, 6, 30);

NishumInput loadReport(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read " + path.toStdString());
    return parseReportDocument(f.readAll().toStdString());
}

// A data folder with the index table that ships with the program, shared by
// the view and the command line tool.
struct Fixture {
    QTemporaryDir dir;
    std::unique_ptr<MadadTable> madad = std::make_unique<MadadTable>(dir.path());
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

// The result document `zelmor-cli calc` writes for a report.
QJsonObject cliDocument(const QString& report) {
    QProcess p;
    p.start(QStringLiteral(ZELMOR_BINARY_DIR "/bin/zelmor-cli"),
            {QStringLiteral("calc"), report, QStringLiteral("--today"), QStringLiteral("2016-06-30"),
             QStringLiteral("--data-dir"), fixture().dir.path()});
    p.waitForFinished(60000);
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

SheetCanvas* canvasOf(const ResultView& v) {
    for (SheetCanvas* c : v.findChildren<SheetCanvas*>())
        if (c->isVisibleTo(&v)) return c;
    return nullptr;
}

QLabel* valueLabel(const ResultView& v, const char* field) {
    return canvasOf(v)->findChild<QLabel*>(QString::fromUtf8(field));
}

QString text(const std::string& s) { return QString::fromStdString(s); }

Date isoDate(const QString& s) {
    const QDate d = QDate::fromString(s, Qt::ISODate);
    return *Date::fromYmd(d.year(), d.month(), d.day());
}

class ResultViewTest : public ::testing::Test {
protected:
    void show(const CalcResult& r) {
        view = std::make_unique<ResultView>(ConstDoch(), *fixture().madad, kToday);
        view->resize(600, 400);
        view->show();
        view->setResult(r);
    }
    CalcResult calc(const QString& path) { return CalcDoch(loadReport(path), ConstDoch(), *fixture().madad, kToday); }
    MessageRecorder messages;
    std::unique_ptr<ResultView> view;
};

// Every amount shown on every sheet equals the document's figure in the
// cell's format, and every shown row shows all its cells.
void expectSheetsMatchDocument(ResultView& view, const QJsonObject& doc) {
    int compared = 0;
    for (int page = 1; page <= 8; ++page) {
        view.goSheet(page);
        ASSERT_EQ(view.sheet(), page);
        const SheetId sheet = static_cast<SheetId>(page);
        const char* name = allSheets()[static_cast<std::size_t>(page - 1)].name;
        const QJsonObject values = doc.value(QString::fromUtf8(name)).toObject();
        ASSERT_FALSE(values.isEmpty()) << name;
        for (const Placed& p : placeRows(view.result().out, sheet, sheetParams(ConstDoch()))) {
            if (p.what != WalkStep::Row) continue;
            for (int slot = 0; slot < 8; ++slot) {
                const char* field = p.row->fields[static_cast<std::size_t>(slot)];
                if (!field || (p.row->screenOmits & (1u << slot))) continue;
                const QJsonValue v = values.value(QString::fromUtf8(field));
                if (sheet == SheetId::CMain && std::string_view(field) == "RibitDate") {
                    const QLineEdit* date = canvasOf(view)->dateField();
                    ASSERT_NE(date, nullptr);
                    EXPECT_EQ(date->text(), text(FormatDate(isoDate(v.toString()))));
                    continue;
                }
                QLabel* label = valueLabel(view, field);
                if (!label) {
                    // Only the gross and the deduction of a special rate without a deduction stay off.
                    EXPECT_EQ(sheet, SheetId::CMeyuchad) << name << "." << field;
                    continue;
                }
                QString expected;
                if (v.isString())
                    expected = text(FormatDate(isoDate(v.toString())));
                else
                    expected = text(FormatAmount(v.toDouble(), cellDecimals(sheet, *p.row, slot)));
                EXPECT_EQ(label->text(), expected) << name << "." << field;
                EXPECT_TRUE(label->isVisibleTo(&view)) << name << "." << field;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 60);
}

TEST_F(ResultViewTest, EverySheetShowsTheFiguresOfTheCalcCommand) {
    for (const char* path : {ZELMOR_SOURCE_DIR "/examples/couple.json", ZELMOR_SOURCE_DIR "/tests/shell/data/joint-couple.json"}) {
        SCOPED_TRACE(path);
        const QJsonObject doc = cliDocument(QString::fromUtf8(path));
        ASSERT_EQ(doc.value("format").toString(), "zelmor-results");
        show(calc(QString::fromUtf8(path)));
        expectSheetsMatchDocument(*view, doc);
    }
}

TEST_F(ResultViewTest, TheJointCoupleIsJointAndShowsTheComparedSums) {
    show(calc(ZELMOR_SOURCE_DIR "/tests/shell/data/joint-couple.json"));
    ASSERT_EQ(view->result().FilingMode, ModeJoint);
    const QLabel* line = canvasOf(*view)->findChild<QLabel*>("lblCompared");
    ASSERT_NE(line, nullptr);
    EXPECT_TRUE(line->text().contains(text(FormatAmount(view->result().MasMeuchad.value()))));
    EXPECT_TRUE(line->text().contains(text(FormatAmount(view->result().MasNifrad.value()))));
    EXPECT_TRUE(line->text().contains(QString::fromUtf8(ModeTitle(ModeJoint))));

    show(calc(ZELMOR_SOURCE_DIR "/examples/couple.json"));
    EXPECT_EQ(canvasOf(*view)->findChild<QLabel*>("lblCompared"), nullptr);
}

TEST_F(ResultViewTest, PageKeysTurnWithoutWrapAndEscReturnsToTheSummary) {
    show(calc(ZELMOR_SOURCE_DIR "/examples/couple.json"));
    QSignalSpy changed(view.get(), &ResultView::sheetChanged);
    // From the interest date field Page Down turns the sheet.
    QTest::keyClick(canvasOf(*view)->dateField(), Qt::Key_PageDown);
    EXPECT_EQ(view->sheet(), 2);
    QTest::keyClick(view.get(), Qt::Key_PageUp);
    QTest::keyClick(view.get(), Qt::Key_PageUp);
    EXPECT_EQ(view->sheet(), 1);
    view->goSheet(7);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(view->sheet(), 8);
    QTest::keyClick(view.get(), Qt::Key_PageDown);
    EXPECT_EQ(view->sheet(), 8);
    view->goSheet(5);
    QTest::keyClick(view.get(), Qt::Key_Escape);
    EXPECT_EQ(view->sheet(), 1);
    const int before = static_cast<int>(changed.count());
    QTest::keyClick(canvasOf(*view)->dateField(), Qt::Key_Escape);
    EXPECT_EQ(view->sheet(), 1);
    EXPECT_EQ(changed.count(), before);
    // The buttons of the summary open their sheets.
    for (int page = 2; page <= 7; ++page) {
        view->goSheet(1);
        auto* b = canvasOf(*view)->findChild<QPushButton*>(QStringLiteral("cmdDetails%1").arg(page));
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->text(), QStringLiteral("F%1").arg(page + 1));
        b->click();
        EXPECT_EQ(view->sheet(), page);
    }
}

TEST_F(ResultViewTest, FunctionKeysReachTheWindowFromTheDateField) {
    QWidget window;
    auto* inner = new ResultView(ConstDoch(), *fixture().madad, kToday, &window);
    inner->resize(600, 400);
    int f2 = 0, f11 = 0;
    auto* back = new QAction(&window);
    back->setShortcut(Qt::Key_F2);
    QObject::connect(back, &QAction::triggered, [&] { ++f2; });
    auto* bl = new QAction(&window);
    bl->setShortcut(Qt::Key_F11);
    QObject::connect(bl, &QAction::triggered, [&] { ++f11; });
    window.addActions({back, bl});
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    inner->setResult(calc(ZELMOR_SOURCE_DIR "/examples/couple.json"));
    QLineEdit* date = canvasOf(*inner)->dateField();
    ASSERT_TRUE(date->hasFocus());
    QTest::keyClick(date, Qt::Key_F2);
    QTest::keyClick(date, Qt::Key_F11);
    EXPECT_EQ(f2, 1);
    EXPECT_EQ(f11, 1);
}

// The fields of every sheet but the five interest fields, as numbers.
std::vector<double> allButInterest(const NishumOutput& out) {
    std::vector<double> v;
    for (const SheetFieldDef& f : allSheetFields()) {
        const std::string_view n = f.name;
        if (f.sheet == SheetId::CMain &&
            (n == "Ribit" || n == "RibitDate" || n == "PtorRibit" || n == "Itra" || n == "ItraDate"))
            continue;
        v.push_back(sheetValue(out, f.sheet, n));
    }
    return v;
}

TEST_F(ResultViewTest, TheInterestDateChangesOnlyTheInterest) {
    const CalcResult original = calc(ZELMOR_SOURCE_DIR "/examples/couple.json");
    show(original);
    auto enter = [&](const char* typed) {
        QLineEdit* date = canvasOf(*view)->dateField();
        date->setText(QString::fromUtf8(typed));
        QTest::keyClick(date, Qt::Key_Return);
    };
    enter("31/12/2016");
    const sheets::CMain& main = view->result().out.Main;
    EXPECT_EQ(main.RibitDate, *Date::fromYmd(2016, 12, 31));
    EXPECT_NE(main.Ribit, original.out.Main.Ribit);
    EXPECT_EQ(allButInterest(view->result().out), allButInterest(original.out));
    EXPECT_EQ(canvasOf(*view)->dateField()->text(), "31/12/2016");
    EXPECT_EQ(valueLabel(*view, "Ribit")->text(), text(FormatAmount(main.Ribit.value())));
    EXPECT_TRUE(messages.shown.empty());

    // A day that does not exist: the message, and the last good date stays.
    enter("31/02/2015");
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_EQ(messages.shown[0].text, "תאריך לא חוקי");
    EXPECT_EQ(messages.shown[0].title, "חישוב ריבית");
    EXPECT_EQ(messages.shown[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(view->result().out.Main.RibitDate, *Date::fromYmd(2016, 12, 31));

    // The empty mask does nothing.
    enter("");
    EXPECT_EQ(messages.shown.size(), 1u);
    EXPECT_EQ(view->result().out.Main.RibitDate, *Date::fromYmd(2016, 12, 31));

    // A date picked from the calendar goes through the same rule.
    canvasOf(*view)->dateButton()->click();
    auto* picker = view->findChild<QCalendarWidget*>();
    ASSERT_NE(picker, nullptr);
    emit picker->clicked(QDate(2016, 9, 1));
    EXPECT_EQ(view->result().out.Main.RibitDate, *Date::fromYmd(2016, 9, 1));
    EXPECT_EQ(canvasOf(*view)->dateField()->text(), "01/09/2016");
    EXPECT_EQ(allButInterest(view->result().out), allButInterest(original.out));
}

TEST_F(ResultViewTest, ExemptionShowsOnlyWhenThereIsOne) {
    CalcResult r = calc(ZELMOR_SOURCE_DIR "/examples/couple.json");
    r.out.Main.PtorRibit = 0;
    show(r);
    EXPECT_EQ(canvasOf(*view)->findChild<QLabel*>("lblPtor"), nullptr);
    r.out.Main.PtorRibit = 1234;
    show(r);
    ASSERT_NE(canvasOf(*view)->findChild<QLabel*>("lblPtor"), nullptr);
    EXPECT_EQ(valueLabel(*view, "PtorRibit")->text(), "1,234");
}

TEST_F(ResultViewTest, AHiddenRowTakesNoPlace) {
    CalcResult r;
    r.out.Hachnasot.N158 = 5000;
    r.out.Hachnasot.TTLM = 5000;
    show(r);
    view->goSheet(2);
    const int firstRowY = valueLabel(*view, "N158")->y();
    // Amounts that cancel out hide their row; the row below takes its place.
    r.out.Hachnasot.N150 = 1000;
    r.out.Hachnasot.N170 = -1000;
    show(r);
    view->goSheet(2);
    EXPECT_EQ(valueLabel(*view, "N150"), nullptr);
    EXPECT_EQ(valueLabel(*view, "N158")->y(), firstRowY);
    // A shown row above pushes it one row down.
    r.out.Hachnasot.N170 = -2000;
    show(r);
    view->goSheet(2);
    EXPECT_EQ(valueLabel(*view, "N150")->y(), firstRowY);
    EXPECT_GT(valueLabel(*view, "N158")->y(), firstRowY);
    // Amounts read left to right with the minus behind the digits; a zero is a blank.
    EXPECT_EQ(valueLabel(*view, "N170")->text(), "2,000-");
    EXPECT_EQ(valueLabel(*view, "N170")->layoutDirection(), Qt::LeftToRight);
    EXPECT_EQ(valueLabel(*view, "N172")->text(), "");
}

TEST_F(ResultViewTest, CreditsShowPointsWithTwoDecimalsAndOtherCreditsWithoutRate) {
    CalcResult r;
    r.out.Zikuim.NEKUDA_020M = 2.25;
    r.out.Zikuim.ZIKUY_020M = 5886;
    r.out.Zikuim.AcherimM = 1000;
    r.out.Zikuim.HUTAR_AcherimM = 1000;
    r.out.Zikuim.RATE_AcherimM = 35;
    r.out.Zikuim.ZIKUY_AcherimM = 350;
    r.out.Zikuim.ZIKUY_TTL_M = 6236;
    show(r);
    view->goSheet(6);
    EXPECT_EQ(valueLabel(*view, "NEKUDA_020M")->text(), "2.25");
    EXPECT_EQ(valueLabel(*view, "ZIKUY_AcherimM")->text(), "350");
    EXPECT_EQ(valueLabel(*view, "RATE_AcherimM"), nullptr);
}

TEST_F(ResultViewTest, CtrlCCopiesTheSheetAsTabSeparatedText) {
    show(calc(ZELMOR_SOURCE_DIR "/examples/couple.json"));
    view->goSheet(2);
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(view.get(), Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QGuiApplication::clipboard()->text().split('\n');
    EXPECT_EQ(lines.value(0), "הכנסות בשיעורי מס רגילים");
    EXPECT_TRUE(lines.contains("סעיף 1 - עסק ומשלח יד\t184,000\t")) << lines.join('|').toStdString();
    EXPECT_TRUE(lines.contains("סה\"כ הכנסה בשיעורי מס רגילים\t280,000\t228,000"));
}

// A picture of every sheet of the example, the joint couple and a report with
// special-rate income, for a person to look at; written only when
// ZELMOR_DIALOG_SHOTS names a folder.
TEST_F(ResultViewTest, Pictures) {
    ZELMOR_PICTURES_OR_SKIP(folder);
    for (const auto& [name, path] : {std::pair{"couple", ZELMOR_SOURCE_DIR "/examples/couple.json"},
                                     std::pair{"joint", ZELMOR_SOURCE_DIR "/tests/shell/data/joint-couple.json"},
                                     std::pair{"special", ZELMOR_SOURCE_DIR "/tests/golden/reports/fixed-rate-income.json"}}) {
        show(calc(QString::fromUtf8(path)));
        for (int page = 1; page <= 8; ++page) {
            view->goSheet(page);
            testing::savePicture(*view, folder, QStringLiteral("sheet-%1-%2").arg(QString::fromUtf8(name)).arg(page));
        }
    }
}

}  // namespace
}  // namespace zelmor::shell
