// The report's sections and the result sheets on paper, read back from PDF.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "pdf_text.h"
#include "print/print_nishum.h"
#include "report/entry_layout.h"

using namespace zelmor;
using namespace zelmor::test;

namespace {

const PrintSetup kSetup{"/nonexistent", *Date::fromYmd(2016, 5, 1), {}};

NishumInput sampleReport() {
    NishumInput r;
    r.Pratim.FirstNameM = "ישראל";
    r.Pratim.LastNameM = "כהן";
    r.Pratim.isFemale = r.Pratim.isNasuy = r.Klaliim.isHul = true;
    r.Yegia.N150 = 123456;
    r.Yegia.N170 = -5000;
    r.Yegia.N205 = 4321;
    r.Nekudot.N181 = 2;
    r.Zikuim.N093 = 1;
    return r;
}

// All of one job in one file, read back.
struct Paper {
    QStringList pages;
    std::vector<PdfWord> words;
    double lineOfWord(const char* text) const { return lineOf(findWord(words, text)); }
};
template <class Job>
Paper printed(const QString& name, Job job) {
    const QString path = printedPdf(name, job);
    return {pdfPages(path), pdfWords(path)};
}
Paper printedReport(const QString& name, const NishumInput& r, bool current = false, SectionId section = SectionId::Pratim) {
    return printed(name, [&](PrintTarget& t) { return PrintNishum(t, kSetup, r, current, section); });
}
Paper printedSheets(const QString& name, const NishumOutput& out, bool bl) {
    return printed(name, [&](PrintTarget& t) { return PrintNishum(t, kSetup, sampleReport(), out, false, bl); });
}

// Phrases compare by skeleton; exact texts (digits beside marks) as they stand.
void expectOnPaper(const QStringList& pages, std::initializer_list<const char*> phrases,
                   std::initializer_list<const char*> exact = {}, bool present = true) {
    const QString all = pages.join('\n');
    for (const char* p : phrases) EXPECT_EQ(anyPageHas(pages, QString::fromUtf8(p)), present) << p;
    for (const char* e : exact) EXPECT_EQ(all.contains(QString::fromUtf8(e)), present) << e;
}

}  // namespace

TEST(ReportOnPaper, NineSectionsWithCodesAmountsAndGaps) {
    const Paper report = printedReport("report.pdf", sampleReport());
    const QStringList& pages = report.pages;
    ASSERT_GE(pages.size(), 3);
    expectPageNumbers(pages);
    // The titles, in the order of the form.
    const QString all = skeleton(pages.join('\n'));
    qsizetype at = -1;
    for (const char* title : {"ב. פרטים אישיים", "ג. הכנסות מיגיעה אישית", "ה. הכנסות מרכוש בשעורי מס מיוחדים",
                              "ז. נתונים נוספים", "יב. ניכויים אישיים", "יג. נקודות זיכוי", "יד. זיכויים",
                              "טו. ניכוי במקור ותשלומים", "א. פרטים כלליים"}) {
        const qsizetype found = all.indexOf(skeleton(QString::fromUtf8(title)));
        EXPECT_GT(found, at) << title;
        at = found;
    }
    // Captions with their codes, with or without amounts; a negative amount has
    // its minus behind the digits, which in right-to-left reading stands on
    // their left. Lists, marks and the female form of the marital line.
    expectOnPaper(pages,
                  {"תואר 2", "גבול הצפון (תקרה 193,080)", "מצב משפחתי: נקבה נשואה",
                   "x בשנת המס היו לי או למשפחתי נכסים בחו\"ל", "דו\"ח זה כולל את הכנסותי ואת הכנסות הנאמנות"},
                  {"123,456 :150", "-5,000 :170", ":250", ":372"});
    // Three lines between sections: the last row of one, the title of the next.
    ASSERT_EQ(findWord(report.words, "4,321").page, findWord(report.words, "12-25").page);
    EXPECT_DOUBLE_EQ(report.lineOfWord("12-25") - report.lineOfWord("4,321"), 3);

    // The current section alone.
    const QStringList one = printedReport("section.pdf", NishumInput{}, true, SectionId::Tashlumim).pages;
    EXPECT_EQ(one.size(), 1);
    expectOnPaper(one, {"טו. ניכוי במקור ותשלומים", "77. ניכוי במקור מריבית (סעיף 18,19)"});
    expectOnPaper(one, {"ג. הכנסות מיגיעה אישית"}, {}, false);
}

// Every word that the layout gives paper is printed: headings, line ranges,
// column heads, row and cell captions (a caption broken over two lines, both).
TEST(ReportOnPaper, EveryPaperWordOfTheLayoutIsPrinted) {
    const QStringList pages = printedReport("words.pdf", NishumInput{}).pages;
    // Compared by letters alone: digits beside letters come back in the order they stand on paper.
    auto letters = [](const QString& text) { return skeleton(text).remove(QRegularExpression("\\d")); };
    QStringList lines;
    for (const QString& page : pages)
        for (const QString& line : page.split('\n')) lines << letters(line);
    auto expectPrinted = [&](const char* words, const char* where) {
        for (const QString& part : QString::fromUtf8(words).split('\n')) {
            const QString want = letters(part);
            EXPECT_TRUE(want.isEmpty() || std::ranges::any_of(lines, [&](const QString& l) { return l.contains(want); }))
                << where << ": " << part.toStdString();
        }
    };
    for (const SectionDef& s : allSections())
        for (const EntryBlock& b : entryLayout(s.id).blocks) {
            if (!onPaper(b.medium)) continue;
            expectPrinted(b.heading.paper, s.name);
            expectPrinted(b.lines.paper, s.name);
            for (const ColumnHead& h : b.columns) expectPrinted(h.text.paper, s.name);
            for (const EntryRow& r : b.rows) {
                if (!onPaper(r.medium)) continue;
                expectPrinted(r.caption.paper, s.name);
                for (const EntryCell& c : r.cells) {
                    // The sex and the marital status print only the words of the options chosen.
                    const bool chosenOnly = s.id == SectionId::Pratim && findField(s.name, c.field)->control == Control::Option;
                    if (onPaper(c.medium) && !chosenOnly) expectPrinted(c.caption.paper, c.field);
                }
            }
        }
}

TEST(ResultsOnPaper, EmptySheetsTakeBackTheirGapAndInsuranceWaitsForItsOwnJob) {
    NishumOutput out;
    out.Main.HachnasotM = 280000;
    out.Main.Itra = -4928;
    out.Main.ItraDate = out.Main.RibitDate = *Date::fromYmd(2016, 5, 1);
    out.Main.Ribit = 77;
    out.Main.PtorRibit = 12;
    out.Tashlumim.N042M = out.Tashlumim.TTL = 4242;
    out.BL.BLM_AZMAI_MUF = 55555;
    const Paper sheets = printedSheets("results.pdf", out, false);
    ASSERT_EQ(sheets.pages.size(), 1);
    expectOnPaper(sheets.pages,
                  {"חישוב המס המגיע לשנת 2015", "ריבית והצמדה ליום 01/05/2016 בניכוי פטור 12",
                   "6. תשלומים על חשבון המס לשנת 2015"},
                  {"280,000", "-4,928"});
    expectOnPaper(sheets.pages, {"1. הכנסות בשיעורי מס רגילים", "חבות משוערת בדמי ביטוח לאומי"}, {"55,555"}, false);
    // After the summary's last line the payments sheet follows one gap (3
    // lines) lower; its first row stands 2.5 lines under its title. The five
    // empty sheets between cost nothing.
    EXPECT_DOUBLE_EQ(sheets.lineOfWord("4,242") - sheets.lineOfWord("-4,928"), 1 + 3 + 2.5);

    const QStringList bl = printedSheets("bl.pdf", out, true).pages;
    ASSERT_EQ(bl.size(), 1);
    // The rate comes from the year's constants.
    expectOnPaper(bl, {"חבות משוערת בדמי ביטוח לאומי"}, {"55,555", "9.82%"});
    expectOnPaper(bl, {"חישוב המס המגיע לשנת 2015"}, {}, false);
}

TEST(ResultsOnPaper, SheetRowsColumnsAndTotals) {
    NishumOutput out;
    out.Hachnasot.N158 = out.Hachnasot.TTLM = 96000;
    out.Hachnasot.N172 = 1000;
    out.Hishuv.MSUM_1 = out.Hishuv.MSUM_TTL = 63240;
    out.Hishuv.MMAS_1 = 6324;
    out.Meyuchad.N211 = 9000;
    out.Meyuchad.NIKUY_211 = 1000;
    out.Meyuchad.NET_211 = 8000;
    out.Meyuchad.RATE_211 = 15;
    out.Meyuchad.MAS_211 = 1200;
    out.Zikuim.NEKUDA_020F = 2.25;
    out.Zikuim.ZIKUY_020F = 5886;
    out.Zikuim.ZIKUY_TTL_F = 5886;
    const QStringList pages = printedSheets("sheets.pdf", out, false).pages;
    // Rates, points with two decimals, the worth of a point whole; mixed runs
    // read right to left: "15% =" and "2,616 X" stand so on paper.
    expectOnPaper(pages,
                  {"סעיף 3 - משכורת", "סה\"כ הכנסה בשיעורי מס רגילים", "13. רווח מני\"ע ודיב.", "בניכוי 1,000"},
                  {"10.00%", "= 15%", "2.25", "X 2,616", "5,886"});
    // Nothing paid: no deductions sheet.
    expectOnPaper(pages, {"סעיף 1 - עסק ומשלח יד", "סכום ששולם"}, {}, false);
}

TEST(PrintDialog, JobsTheirOrderAndTheCalculationFirst) {
    using J = PrintJob;
    EXPECT_TRUE(printJobs({}, true).empty());
    EXPECT_EQ(printJobs({.details = true, .bl = true, .currPage = true, .calc = true}, true),
              (std::vector<J>{J::ReportSections, J::ResultSheets, J::CurrentSection}));
    EXPECT_EQ(printJobs({.bl = true, .currPage = true}, false), (std::vector<J>{J::NationalInsurance, J::CurrentSheet}));

    // The sheets' jobs calculate first; a calculation that fails prints nothing.
    NishumInput r;
    NishumOutput out;
    int calculations = 0;
    PrintSession session{&r, &out, SectionId::Pratim, SheetId::CMain, true, [&](NishumOutput& o, trace::Trace*) {
                             o.Main.HachnasotM = 1;
                             return ++calculations == 1;
                         }};
    PdfFileTarget target(tempPdfPath("dialog.pdf"));
    EXPECT_EQ(runPrintJobs(target, kSetup, {.details = true, .calc = true}, session), 2);
    EXPECT_EQ(runPrintJobs(target, kSetup, {.bl = true}, session), 0);
    EXPECT_EQ(calculations, 2);
    target.cancel();
}

// The command-line tool's print: where the PDF goes, the covering letter from
// the data folder, and the appendix of explanations.
class PrintCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!QFile::exists(ZELMOR_BINARY_DIR "/bin/zelmor-cli")) GTEST_SKIP() << "zelmor-cli is not built";
    }
    struct Run {
        int status;
        QByteArray out;
        QString err;
    };
    static Run print(const QStringList& args) {
        QProcess p;
        p.start(ZELMOR_BINARY_DIR "/bin/zelmor-cli", QStringList{"print", ZELMOR_SOURCE_DIR "/examples/couple.json"} + args);
        EXPECT_TRUE(p.waitForFinished(60000));
        return {p.exitCode(), p.readAllStandardOutput(), QString::fromUtf8(p.readAllStandardError())};
    }
    QTemporaryDir dir;
};

// "-" is standard output; the covering letter comes from the data folder.
TEST_F(PrintCommand, WritesThePdfToStandardOutputOrAFileWithTheLetter) {
    const Run piped = print({"--report", "--pdf", "-", "--data-dir", dir.path()});
    EXPECT_EQ(piped.status, 0) << piped.err.toStdString();
    EXPECT_TRUE(piped.out.startsWith("%PDF-") && piped.out.trimmed().endsWith("%%EOF"));

    const QString out = dir.filePath("out.pdf");
    QFile letter(dir.filePath("PNIA.TXT"));
    ASSERT_TRUE(letter.open(QIODevice::WriteOnly));
    letter.write("שורה א\r\nשורה ב\r\n");
    letter.close();
    ASSERT_EQ(print({"--pdf", out, "--bl", "--today", "2016-05-01", "--data-dir", dir.path()}).status, 0);
    expectOnPaper(pdfPages(out), {"חבות משוערת בדמי ביטוח לאומי", "שורה א", "שורה ב"}, {"01/05/2016"});
}

// The appendix follows the result sheets only when asked for, and shows the
// tax due as its formula with its numbers: M's gross tax less the credits
// gives the tax due (the figures of the golden calculation of the same report).
TEST_F(PrintCommand, ExplainAddsTheAppendixWithTheFormulasNumbers) {
    const QStringList common{"--today", "2016-06-30", "--data-dir", dir.path()};
    const QString with = dir.filePath("with.pdf"), without = dir.filePath("without.pdf");
    EXPECT_EQ(print(QStringList{"--pdf", with, "--results", "--explain"} + common).status, 0);
    EXPECT_EQ(print(QStringList{"--pdf", without, "--results"} + common).status, 0);
    const QStringList pages = pdfPages(with), plain = pdfPages(without);
    EXPECT_FALSE(anyPageHas(plain, "נספח הסברים"));
    // The sheets come first, as without the appendix, which starts a page of its own.
    ASSERT_GT(pages.size(), plain.size());
    EXPECT_EQ(pages.mid(0, plain.size()), plain);
    EXPECT_TRUE(pages[plain.size()].contains("נספח הסברים"));
    const QStringList appendix = pages.mid(plain.size()).join('\n').split('\n');
    EXPECT_TRUE(std::ranges::any_of(appendix, [](const QString& line) {
        return line.contains("מס מגיע") && line.contains("51,438") && line.contains("10,016") && line.contains("41,422");
    }));
}
