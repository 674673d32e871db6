// The report's sections and the result sheets on paper, read back from PDF.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "pdf_text.h"
#include "print/print_nishum.h"

using namespace zelmor;
using namespace zelmor::test;

namespace {

const PrintSetup kSetup{QStringLiteral("/nonexistent"), *Date::fromYmd(2016, 5, 1), {}};

NishumInput sampleReport() {
    NishumInput r;
    r.Pratim.FirstNameM = "ישראל";
    r.Pratim.LastNameM = "כהן";
    r.Pratim.isFemale = true;
    r.Pratim.isNasuy = true;
    r.Yegia.N150 = 123456;
    r.Yegia.N170 = -5000;
    r.Yegia.N205 = 4321;
    r.Nekudot.N181 = 2;
    r.Zikuim.N093 = 1;
    r.Klaliim.isHul = true;
    return r;
}

// All of one job in one file; the pages as text.
template <class Job>
QStringList printed(const QString& name, Job job, std::vector<PdfWord>* words = nullptr) {
    const QString path = tempPdfPath(name);
    PdfFileTarget target(path);
    EXPECT_TRUE(job(target));
    QString error;
    EXPECT_TRUE(target.finish(&error)) << error.toStdString();
    if (words) *words = pdfWords(path);
    return pdfPages(path);
}

bool anyPageHas(const QStringList& pages, const QString& phrase) {
    for (const QString& p : pages)
        if (hasPhrase(p, phrase)) return true;
    return false;
}

}  // namespace

TEST(ReportOnPaper, NineSectionsWithCodesAmountsAndBlanks) {
    const NishumInput r = sampleReport();
    std::vector<PdfWord> words;
    const QStringList pages =
        printed(QStringLiteral("report.pdf"), [&](PrintTarget& t) { return PrintNishum(t, kSetup, r, false); }, &words);
    ASSERT_GE(pages.size(), 3);
    const QString all = pages.join(QLatin1Char('\n'));

    // The titles, in the order of the form.
    qsizetype at = -1;
    for (const char* title : {"ב. פרטים אישיים", "ג. הכנסות מיגיעה אישית", "ה. הכנסות מרכוש בשעורי מס מיוחדים",
                              "ז. נתונים נוספים", "יב. ניכויים אישיים", "יג. נקודות זיכוי", "יד. זיכויים",
                              "טו. ניכוי במקור ותשלומים", "א. פרטים כלליים"}) {
        const QString want = skeleton(QString::fromUtf8(title));
        const qsizetype found = skeleton(all).indexOf(want);
        EXPECT_GT(found, at) << title;
        at = found;
    }
    // Amounts with their codes; a negative amount has its minus behind the
    // digits, which in right-to-left reading stands on their left.
    EXPECT_TRUE(all.contains(QStringLiteral("123,456 :150")));
    EXPECT_TRUE(all.contains(QStringLiteral("-5,000 :170")));
    // Lines without amounts keep their codes.
    EXPECT_TRUE(all.contains(QStringLiteral(":250")));
    EXPECT_TRUE(all.contains(QStringLiteral(":372")));
    // Lists, marks and the female form of the marital line.
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("תואר 2")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("גבול הצפון (תקרה 193,080)")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("מצב משפחתי: נקבה נשואה")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("x בשנת המס היו לי או למשפחתי נכסים בחו\"ל")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("דו\"ח זה כולל את הכנסותי ואת הכנסות הנאמנות")));
    for (int i = 0; i < pages.size(); ++i)
        EXPECT_TRUE(pages[i].contains(QRegularExpression(QStringLiteral("-\\s*%1\\s*-").arg(i + 1))));

    // Three lines between sections: the last row of one, the title of the next.
    const PdfWord lastRow = findWord(words, QStringLiteral("4,321"));
    const PdfWord nextTitle = findWord(words, QStringLiteral("12-25"));
    ASSERT_EQ(lastRow.page, nextTitle.page);
    EXPECT_DOUBLE_EQ(lineOf(nextTitle) - lineOf(lastRow), 3);
}

TEST(ReportOnPaper, OneSectionAlone) {
    const QStringList pages = printed(QStringLiteral("section.pdf"), [](PrintTarget& t) {
        return PrintNishum(t, kSetup, NishumInput{}, true, SectionId::Tashlumim);
    });
    ASSERT_EQ(pages.size(), 1);
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("טו. ניכוי במקור ותשלומים")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("77. ניכוי במקור מריבית (סעיף 18,19)")));
    EXPECT_FALSE(hasPhrase(pages[0], QStringLiteral("ג. הכנסות מיגיעה אישית")));
}

TEST(ResultsOnPaper, EmptySheetsTakeBackTheirGapAndInsuranceWaitsForItsOwnJob) {
    NishumOutput out;
    out.Main.HachnasotM = 280000;
    out.Main.Itra = -4928;
    out.Main.ItraDate = *Date::fromYmd(2016, 5, 1);
    out.Main.RibitDate = *Date::fromYmd(2016, 5, 1);
    out.Main.Ribit = 77;
    out.Main.PtorRibit = 12;
    out.Tashlumim.N042M = 4242;
    out.Tashlumim.TTL = 4242;
    out.BL.BLM_AZMAI_MUF = 55555;
    const NishumInput r = sampleReport();
    std::vector<PdfWord> words;
    const QStringList pages = printed(
        QStringLiteral("results.pdf"), [&](PrintTarget& t) { return PrintNishum(t, kSetup, r, out, false, false); },
        &words);
    ASSERT_EQ(pages.size(), 1);
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("חישוב המס המגיע לשנת 2015")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("280,000")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("-4,928")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("ריבית והצמדה ליום 01/05/2016 בניכוי פטור 12")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("6. תשלומים על חשבון המס לשנת 2015")));
    EXPECT_FALSE(hasPhrase(pages[0], QStringLiteral("1. הכנסות בשיעורי מס רגילים")));
    EXPECT_FALSE(hasPhrase(pages[0], QStringLiteral("חבות משוערת בדמי ביטוח לאומי")));
    EXPECT_FALSE(pages[0].contains(QStringLiteral("55,555")));
    // After the summary's last line the payments sheet follows one gap (3
    // lines) lower; its first row stands 2.5 lines under its title. The five
    // empty sheets between cost nothing.
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("4,242"))) - lineOf(findWord(words, QStringLiteral("-4,928"))),
                     1 + 3 + 2.5);

    const QStringList bl = printed(QStringLiteral("bl.pdf"),
                                   [&](PrintTarget& t) { return PrintNishum(t, kSetup, r, out, false, true); });
    ASSERT_EQ(bl.size(), 1);
    EXPECT_TRUE(hasPhrase(bl[0], QStringLiteral("חבות משוערת בדמי ביטוח לאומי")));
    EXPECT_TRUE(bl[0].contains(QStringLiteral("55,555")));
    EXPECT_TRUE(bl[0].contains(QStringLiteral("9.82%")));  // the rate comes from the year's constants
    EXPECT_FALSE(hasPhrase(bl[0], QStringLiteral("חישוב המס המגיע לשנת 2015")));
}

TEST(ResultsOnPaper, SheetRowsColumnsAndTotals) {
    NishumOutput out;
    out.Hachnasot.N158 = 96000;
    out.Hachnasot.N172 = 1000;
    out.Hachnasot.TTLM = 96000;
    out.Hishuv.MSUM_1 = 63240;
    out.Hishuv.MMAS_1 = 6324;
    out.Hishuv.MSUM_TTL = 63240;
    out.Meyuchad.N211 = 9000;
    out.Meyuchad.NIKUY_211 = 1000;
    out.Meyuchad.NET_211 = 8000;
    out.Meyuchad.RATE_211 = 15;
    out.Meyuchad.MAS_211 = 1200;
    out.Zikuim.NEKUDA_020F = 2.25;
    out.Zikuim.ZIKUY_020F = 5886;
    out.Zikuim.ZIKUY_TTL_F = 5886;
    const QStringList pages = printed(QStringLiteral("sheets.pdf"), [&](PrintTarget& t) {
        return PrintNishum(t, kSetup, NishumInput{}, out, false, false);
    });
    const QString all = pages.join(QLatin1Char('\n'));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("סעיף 3 - משכורת")));
    EXPECT_FALSE(anyPageHas(pages, QStringLiteral("סעיף 1 - עסק ומשלח יד")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("סה\"כ הכנסה בשיעורי מס רגילים")));
    EXPECT_TRUE(all.contains(QStringLiteral("10.00%")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("13. רווח מני\"ע ודיב.")));
    EXPECT_TRUE(anyPageHas(pages, QStringLiteral("בניכוי 1,000")));
    // Mixed runs read right to left: "15% =" and "2,616 X" stand so on paper.
    EXPECT_TRUE(all.contains(QStringLiteral("= 15%")));
    // Points with two decimals, the worth of a point whole.
    EXPECT_TRUE(all.contains(QStringLiteral("2.25")));
    EXPECT_TRUE(all.contains(QStringLiteral("X 2,616")));
    EXPECT_FALSE(anyPageHas(pages, QStringLiteral("סכום ששולם")));  // nothing paid: no deductions sheet
}

TEST(PrintDialog, JobsAndTheirOrder) {
    using J = PrintJob;
    EXPECT_TRUE(printJobs({}, true).empty());
    EXPECT_EQ(printJobs({.details = true, .bl = true, .currPage = true, .calc = true}, true),
              (std::vector<J>{J::ReportSections, J::ResultSheets, J::CurrentSection}));
    EXPECT_EQ(printJobs({.bl = true, .currPage = true}, false), (std::vector<J>{J::NationalInsurance, J::CurrentSheet}));

    // The sheets' jobs calculate first; a calculation that fails prints nothing.
    NishumInput r;
    NishumOutput out;
    int calculations = 0;
    PrintSession session{&r, &out, SectionId::Pratim, SheetId::CMain, true, [&](NishumOutput& o) {
                             ++calculations;
                             o.Main.HachnasotM = 1;
                             return calculations == 1;
                         }};
    PdfFileTarget target(tempPdfPath(QStringLiteral("dialog.pdf")));
    EXPECT_EQ(runPrintJobs(target, kSetup, {.details = true, .calc = true}, session), 2);
    EXPECT_EQ(runPrintJobs(target, kSetup, {.bl = true}, session), 0);
    EXPECT_EQ(calculations, 2);
    target.cancel();
}

TEST(PrintCommand, WritesThePdfOrRefusesWithTheExitStatus) {
    const QString cli = QStringLiteral(ZELMOR_BINARY_DIR "/bin/zelmor-cli");
    if (!QFile::exists(cli)) GTEST_SKIP() << "zelmor-cli is not built";
    QTemporaryDir dir;
    auto run = [&](const QStringList& args) {
        QProcess p;
        p.start(cli, QStringList{QStringLiteral("print")} + args);
        EXPECT_TRUE(p.waitForFinished(60000));
        return p.exitCode();
    };
    const QString out = dir.filePath(QStringLiteral("out.pdf"));
    const QString example = QStringLiteral(ZELMOR_SOURCE_DIR "/examples/couple.json");
    EXPECT_EQ(run({example}), 2);  // no --pdf
    EXPECT_EQ(run({example, QStringLiteral("--pdf"), out, QStringLiteral("--today"), QStringLiteral("2016-02-30")}), 2);
    EXPECT_FALSE(QFile::exists(out));
    ASSERT_EQ(run({example, QStringLiteral("--pdf"), out, QStringLiteral("--bl"), QStringLiteral("--today"),
                   QStringLiteral("2016-05-01"), QStringLiteral("--data-dir"), dir.path()}),
              0);
    const QStringList pages = pdfPages(out);
    ASSERT_FALSE(pages.isEmpty());
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("חבות משוערת בדמי ביטוח לאומי")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("01/05/2016")));
}
