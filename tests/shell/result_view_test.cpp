// The result screens: the figures on every sheet are those of the result
// document, the keys move between the sheets as the menus expect, and the
// interest date changes only the interest.
#include <memory>

#include "core/values.h"
#include "engine/calc.h"
#include "print/paper.h"
#include "shell/dlg_test_support.h"
#include "shell/result_view.h"
#include "shell/sheet_canvas.h"

namespace zelmor::shell {
namespace {

const QString kCouple = QStringLiteral(ZELMOR_SOURCE_DIR "/examples/couple.json");
const QString kJoint = testing::kShellData + QStringLiteral("joint-couple.json");

QString text(const std::string& s) { return QString::fromStdString(s); }

Date isoDate(const QString& s) {
    const QDate d = QDate::fromString(s, Qt::ISODate);
    return *Date::fromYmd(d.year(), d.month(), d.day());
}

class ResultViewTest : public testing::DataFolderTest {
protected:
    void show(const CalcResult& r, int sheet = 1) {
        view = std::make_unique<ResultView>(c, madad, today);
        view->resize(600, 400);
        view->show();
        view->setResult(r);
        view->goSheet(sheet);
    }
    CalcResult calc(const QString& path) const { return CalcDoch(testing::readReport(path), c, madad, today); }
    // The result document `zelmor-cli calc` writes for a report.
    QJsonObject cliDocument(const QString& report) const {
        const QStringList args{"calc", report, "--today", "2016-06-30", "--data-dir", dir.path()};
        return QJsonDocument::fromJson(testing::runCli(args)).object();
    }
    SheetCanvas* canvas() const {
        for (SheetCanvas* s : view->findChildren<SheetCanvas*>())
            if (s->isVisibleTo(view.get())) return s;
        return nullptr;
    }
    QLabel* label(const char* name) const { return canvas()->findChild<QLabel*>(QString::fromUtf8(name)); }
    QLineEdit* dateField() const { return canvas()->dateField(); }

    std::unique_ptr<ResultView> view;
};

// Every amount shown on every sheet equals the document's figure in the
// cell's format, and every shown row shows all its cells.
TEST_F(ResultViewTest, EverySheetShowsTheFiguresOfTheCalcCommand) {
    for (const QString& path : {kCouple, kJoint}) {
        SCOPED_TRACE(path.toStdString());
        const QJsonObject doc = cliDocument(path);
        ASSERT_EQ(doc.value("format").toString(), "zelmor-results");
        show(calc(path));
        int compared = 0;
        for (int page = 1; page <= 8; ++page) {
            view->goSheet(page);
            const SheetId sheet = static_cast<SheetId>(page);
            const char* name = allSheets()[static_cast<std::size_t>(page - 1)].name;
            const QJsonObject values = doc.value(QString::fromUtf8(name)).toObject();
            ASSERT_FALSE(values.isEmpty()) << name;
            for (const Placed& p : placeRows(view->result().out, sheet, sheetParams(c))) {
                if (p.what != WalkStep::Row) continue;
                for (int slot = 0; slot < 8; ++slot) {
                    const char* field = p.row->fields[static_cast<std::size_t>(slot)];
                    if (!field || (p.row->screenOmits & (1u << slot))) continue;
                    const QJsonValue v = values.value(QString::fromUtf8(field));
                    const QString expected = v.isString() ? text(FormatDate(isoDate(v.toString())))
                                                          : text(FormatAmount(v.toDouble(), cellDecimals(sheet, *p.row, slot)));
                    if (sheet == SheetId::CMain && std::string_view(field) == "RibitDate") {
                        EXPECT_EQ(dateField()->text(), expected);
                        continue;
                    }
                    QLabel* shown = label(field);
                    if (!shown) {
                        // Only the gross and the deduction of a special rate without a deduction stay off.
                        EXPECT_EQ(sheet, SheetId::CMeyuchad) << name << "." << field;
                        continue;
                    }
                    EXPECT_EQ(shown->text(), expected) << name << "." << field;
                    EXPECT_TRUE(shown->isVisibleTo(view.get())) << name << "." << field;
                    ++compared;
                }
            }
        }
        EXPECT_GT(compared, 60);
    }
}

// Only a couple filing jointly is shown the two sums compared and the mode chosen.
TEST_F(ResultViewTest, TheJointCoupleIsJointAndShowsTheComparedSums) {
    show(calc(kCouple));
    EXPECT_EQ(label("lblCompared"), nullptr);
    show(calc(kJoint));
    ASSERT_EQ(view->result().FilingMode, ModeJoint);
    const QLabel* line = label("lblCompared");
    ASSERT_NE(line, nullptr);
    for (const std::string& part : {FormatAmount(view->result().MasMeuchad.value()), FormatAmount(view->result().MasNifrad.value()),
                                    std::string(ModeTitle(ModeJoint))})
        EXPECT_TRUE(line->text().contains(text(part))) << part;
}

TEST_F(ResultViewTest, PageKeysTurnWithoutWrapAndEscReturnsToTheSummary) {
    show(calc(kCouple));
    QTest::keyClick(dateField(), Qt::Key_PageDown);  // the date field lets Page Down through
    EXPECT_EQ(view->sheet(), 2);
    const struct { int from; Qt::Key key; int to; } moves[] = {
        {2, Qt::Key_PageUp, 1}, {1, Qt::Key_PageUp, 1}, {7, Qt::Key_PageDown, 8}, {8, Qt::Key_PageDown, 8}, {5, Qt::Key_Escape, 1}};
    for (const auto& m : moves) {
        view->goSheet(m.from);
        QTest::keyClick(view.get(), m.key);
        EXPECT_EQ(view->sheet(), m.to) << "from " << m.from;
    }
    QSignalSpy changed(view.get(), &ResultView::sheetChanged);
    QTest::keyClick(dateField(), Qt::Key_Escape);  // on the summary Esc does nothing
    EXPECT_EQ(changed.count(), 0);
    // The buttons of the summary open their sheets.
    for (int page = 2; page <= 7; ++page) {
        view->goSheet(1);
        auto* b = canvas()->findChild<QPushButton*>(QStringLiteral("cmdDetails%1").arg(page));
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(b->text(), QStringLiteral("F%1").arg(page + 1));
        b->click();
        EXPECT_EQ(view->sheet(), page);
    }
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
    const CalcResult original = calc(kCouple);
    show(original);
    auto enter = [&](const char* typed) {
        dateField()->setText(QString::fromUtf8(typed));
        QTest::keyClick(dateField(), Qt::Key_Return);
    };
    const Date endOf2016 = *Date::fromYmd(2016, 12, 31);
    enter("31/12/2016");
    const sheets::CMain& main = view->result().out.Main;
    EXPECT_EQ(main.RibitDate, endOf2016);
    EXPECT_NE(main.Ribit, original.out.Main.Ribit);
    EXPECT_EQ(allButInterest(view->result().out), allButInterest(original.out));
    EXPECT_EQ(dateField()->text(), "31/12/2016");
    EXPECT_EQ(label("Ribit")->text(), text(FormatAmount(main.Ribit.value())));
    EXPECT_TRUE(recorder.shown.empty());

    // A day that does not exist: the message, and the last good date stays;
    // the empty mask does nothing.
    enter("31/02/2015");
    testing::expectLastMessage(recorder, MsgIcon::Exclamation, "חישוב ריבית", "תאריך לא חוקי");
    EXPECT_EQ(view->result().out.Main.RibitDate, endOf2016);
    enter("");
    EXPECT_EQ(recorder.shown.size(), 1u);
    EXPECT_EQ(view->result().out.Main.RibitDate, endOf2016);

    // A date picked from the calendar goes through the same rule.
    canvas()->dateButton()->click();
    auto* picker = view->findChild<QCalendarWidget*>();
    ASSERT_NE(picker, nullptr);
    emit picker->clicked(QDate(2016, 9, 1));
    EXPECT_EQ(view->result().out.Main.RibitDate, *Date::fromYmd(2016, 9, 1));
    EXPECT_EQ(dateField()->text(), "01/09/2016");
    EXPECT_EQ(allButInterest(view->result().out), allButInterest(original.out));
}

// Which rows and cells show, where, and how their amounts read.
TEST_F(ResultViewTest, RowsAndCellsShowOnlyWhatCounts) {
    CalcResult r = calc(kCouple);
    r.out.Main.PtorRibit = 0;
    show(r);
    EXPECT_EQ(label("lblPtor"), nullptr);  // the exemption only when there is one
    r.out.Main.PtorRibit = 1234;
    show(r);
    ASSERT_NE(label("lblPtor"), nullptr);
    EXPECT_EQ(label("PtorRibit")->text(), "1,234");

    r = {};
    r.out.Hachnasot.N158 = 5000;
    r.out.Hachnasot.TTLM = 5000;
    show(r, 2);
    const int firstRowY = label("N158")->y();
    // Amounts that cancel out hide their row; the row below takes its place.
    r.out.Hachnasot.N150 = 1000;
    r.out.Hachnasot.N170 = -1000;
    show(r, 2);
    EXPECT_EQ(label("N150"), nullptr);
    EXPECT_EQ(label("N158")->y(), firstRowY);
    // A shown row above pushes it one row down.
    r.out.Hachnasot.N170 = -2000;
    show(r, 2);
    EXPECT_EQ(label("N150")->y(), firstRowY);
    EXPECT_GT(label("N158")->y(), firstRowY);
    // Amounts read left to right with the minus behind the digits; a zero is a blank.
    EXPECT_EQ(label("N170")->text(), "2,000-");
    EXPECT_EQ(label("N170")->layoutDirection(), Qt::LeftToRight);
    EXPECT_EQ(label("N172")->text(), "");

    // Credit points with two decimals; other credits without their rate.
    r = {};
    r.out.Zikuim.NEKUDA_020M = 2.25;
    r.out.Zikuim.ZIKUY_020M = 5886;
    r.out.Zikuim.AcherimM = 1000;
    r.out.Zikuim.HUTAR_AcherimM = 1000;
    r.out.Zikuim.RATE_AcherimM = 35;
    r.out.Zikuim.ZIKUY_AcherimM = 350;
    r.out.Zikuim.ZIKUY_TTL_M = 6236;
    show(r, 6);
    EXPECT_EQ(label("NEKUDA_020M")->text(), "2.25");
    EXPECT_EQ(label("ZIKUY_AcherimM")->text(), "350");
    EXPECT_EQ(label("RATE_AcherimM"), nullptr);
}

TEST_F(ResultViewTest, CtrlCCopiesTheSheetAsTabSeparatedText) {
    show(calc(kCouple), 2);
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(view.get(), Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QGuiApplication::clipboard()->text().split('\n');
    EXPECT_EQ(lines.value(0), "הכנסות בשיעורי מס רגילים");
    EXPECT_TRUE(lines.contains("סעיף 1 - עסק ומשלח יד\t184,000\t")) << lines.join('|').toStdString();
    EXPECT_TRUE(lines.contains("סה\"כ הכנסה בשיעורי מס רגילים\t280,000\t228,000"));
}

}  // namespace
}  // namespace zelmor::shell
