// The page printer: head, page turns and numbers, failure of the device.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <cmath>

#include "pdf_text.h"
#include "print/print_nishum.h"

using namespace zelmor;
using namespace zelmor::test;

namespace {

PageHead head(QStringList letter = {}) {
    return {QStringLiteral("משרד לוי"), std::move(letter), QStringLiteral("ישראל כהן"), *Date::fromYmd(2016, 3, 7),
            2015};
}

}  // namespace

TEST(ClsPrint, HeadOfTheFirstPage) {
    const QString path = tempPdfPath(QStringLiteral("head.pdf"));
    PdfFileTarget target(path);
    ClsPrint p(target, head({QStringLiteral("לכבוד מר כהן,"), QStringLiteral("מצורף החישוב 2025")}));
    // Name and date at 1, the program line at 2.5, the letter from 4, the rule
    // at 4 + n, the name at 5 + n, the result 7 + n.
    EXPECT_FLOAT_EQ(p.PrintHeader(), 9);
    p.NextLine(1);
    p.PrintEndPage(true);
    QString error;
    ASSERT_TRUE(target.finish(&error)) << error.toStdString();

    const QStringList pages = pdfPages(path);
    ASSERT_EQ(pages.size(), 1);
    for (const char* phrase : {"משרד לוי", "תאריך הדפסה 07/03/2016", "הופק באמצעות Zelmor", "לכבוד מר כהן", "ישראל כהן"})
        EXPECT_TRUE(hasPhrase(pages[0], QString::fromUtf8(phrase))) << phrase;
    expectPageNumbers(pages);

    const auto words = pdfWords(path);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("07/03/2016"))), 1);
    // The program line; the Latin run keeps its order on paper.
    const PdfWord program = findWord(words, QStringLiteral("Orvanta")), version = findWord(words, QStringLiteral("(V16.1)"));
    EXPECT_DOUBLE_EQ(lineOf(program), 2.5);
    EXPECT_DOUBLE_EQ(lineOf(version), 2.5);
    EXPECT_LT(program.xMax, version.xMin);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("2025"))), 5);
    // The taxpayer's name stands alone and centred on line 7 of the A4 page.
    double left = 1000, right = 0;
    for (const PdfWord& w : words)
        if (lineOf(w) == 7) left = std::min(left, w.xMin), right = std::max(right, w.xMax);
    EXPECT_GT(right - left, 20);
    EXPECT_NEAR((left + right) / 2, 595.28 / 2, 3);
}

TEST(ClsPrint, PagesTurnOnlyBetweenLinesAndAllAreNumbered) {
    const QString path = tempPdfPath(QStringLiteral("long.pdf"));
    PdfFileTarget target(path);
    ClsPrint p(target, head());
    ASSERT_GT(p.PrintHeader(), 0);
    const float limit = static_cast<float>(p.ScaleHeight() - 5);
    p.NextLine(1);
    for (int row = 1; row <= 150; ++row) {
        p.PrintString(7, QStringLiteral("שורה"), false);
        p.PrintString(40, QString::number(1000 + row), false);
        p.NextLine(1);
    }
    // The last whole line of a page is five above its bottom: NextLine onto it
    // stays, the next turns the page to line 2.
    const int before = p.Page();
    p.LinePos = std::floor(limit) - 1;
    p.NextLine(1);
    EXPECT_EQ(p.Page(), before);
    EXPECT_FLOAT_EQ(p.LinePos, std::floor(limit));
    p.NextLine(1);
    EXPECT_EQ(p.Page(), before + 1);
    EXPECT_FLOAT_EQ(p.LinePos, 2);
    // An empty sheet's NextLine(-3) at the top of a page goes to -1; the next
    // gap brings it back.
    p.NextLine(-3);
    EXPECT_FLOAT_EQ(p.LinePos, -1);
    p.NextLine(3);
    EXPECT_FLOAT_EQ(p.LinePos, 2);
    const int pages = p.Page();
    p.PrintEndPage(true);
    ASSERT_TRUE(target.finish(nullptr));
    ASSERT_GE(pages, 4);

    const QStringList text = pdfPages(path);
    ASSERT_EQ(text.size(), pages);
    expectPageNumbers(text);
    // Every row whole on a page, none below its last line; a new page has no
    // head and starts at line 2.
    int seen = 0;
    for (const PdfWord& w : pdfWords(path)) {
        bool isRow = false;
        const int n = w.text.toInt(&isRow);
        if (!isRow || n <= 1000 || n > 1150) continue;
        ++seen;
        EXPECT_LE(lineOf(w), limit) << n;
        EXPECT_TRUE(w.page == 1 || lineOf(w) >= 2) << n;
    }
    EXPECT_EQ(seen, 150);
}

TEST(ClsPrint, FailureOfTheDeviceAtTheHeadStopsTheJobWithTheMessage) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("missing/folder/out.pdf"));
    PdfFileTarget target(path);
    QString title, text;
    const PrintSetup setup{dir.path(), *Date::fromYmd(2016, 1, 1),
                           [&](const QString& t, const QString& m) { title = t; text = m; }};
    EXPECT_FALSE(PrintNishum(target, setup, NishumInput{}, false));
    EXPECT_EQ(title, QStringLiteral("שגיאת הדפסה"));
    EXPECT_TRUE(text.startsWith(QStringLiteral("לא נמצאה מדפסת,\nוודא שהמדפסת מחוברת ויש נייר להדפסה\nהודעת שגיאה: ")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("out.pdf")));
    EXPECT_FALSE(target.finish(nullptr));
    EXPECT_FALSE(QFile::exists(path));
}

TEST(ClsPrint, ALetterTooLongForThePageIsCutAboveTheRuleNameAndPageNumber) {
    const QString path = tempPdfPath(QStringLiteral("long-letter.pdf"));
    PdfFileTarget target(path);
    QStringList letter;
    for (int i = 1; i <= 120; ++i) letter << QStringLiteral("שורה %1").arg(100 + i);
    PageHead h = head(letter);
    h.taxpayerName = QStringLiteral("98765");  // a word of its own in the PDF's text
    ClsPrint p(target, h);
    ASSERT_GT(p.PrintHeader(), 0);
    EXPECT_LE(p.LinePos, p.ScaleHeight() - 2);
    p.NextLine(1);
    p.PrintString(7, QStringLiteral("55555"), false);
    p.PrintEndPage(true);
    ASSERT_TRUE(target.finish(nullptr));

    const auto words = pdfWords(path);
    std::vector<PdfWord> first;
    for (const PdfWord& w : words)
        if (w.page == 1) first.push_back(w);
    const PdfWord name = findWord(first, QStringLiteral("98765"));
    ASSERT_EQ(name.page, 1) << "the taxpayer's name is on the first page";
    double lastLetter = 0;
    for (const PdfWord& w : first)
        if (const int n = w.text.toInt(); n > 100 && n <= 220) lastLetter = std::max(lastLetter, w.yMax);
    EXPECT_GT(lastLetter, 0);
    EXPECT_LT(lastLetter, name.yMin);
    // The page number stands free below everything else of the page.
    PdfWord number;
    for (const PdfWord& w : first)
        if (w.yMin > number.yMin) number = w;
    EXPECT_TRUE(number.text.contains(QLatin1Char('1')) && number.text.size() <= 3) << number.text.toStdString();
    ASSERT_GT(number.yMin, name.yMax);
    for (const PdfWord& w : first)
        EXPECT_TRUE(w.yMin >= number.yMin - 1 || w.yMax < number.yMin) << w.text.toStdString();
    EXPECT_EQ(findWord(words, QStringLiteral("55555")).page, 2);
}
