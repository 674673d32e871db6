// The page printer: head, page turns and numbers, failure of the device.
#include <gtest/gtest.h>

#include <cmath>

#include "pdf_text.h"
#include "print/print_nishum.h"

using namespace zelmor;
using namespace zelmor::test;

namespace {

PageHead head(QStringList letter = {}) { return {"משרד לוי", std::move(letter), "ישראל כהן", *Date::fromYmd(2016, 3, 7), 2015}; }

// One job: `body` prints the head and what follows, then the job ends; the
// words of the file, and its pages as text when asked for.
template <class Body>
std::vector<PdfWord> printJob(const QString& name, const PageHead& h, Body body, QStringList* pages = nullptr) {
    const QString path = printedPdf(name, [&](PrintTarget& t) {
        ClsPrint p(t, h);
        body(p);
        p.PrintEndPage(true);
        return true;
    });
    if (pages) *pages = pdfPages(path);
    return pdfWords(path);
}

}  // namespace

TEST(ClsPrint, HeadOfTheFirstPage) {
    QStringList pages;
    const auto words = printJob("head.pdf", head({"לכבוד מר כהן,", "מצורף החישוב 2025"}), [](ClsPrint& p) {
        // Name and date at 1, the program line at 2.5, the letter from 4, the
        // rule at 4 + n, the name at 5 + n, the result 7 + n.
        EXPECT_FLOAT_EQ(p.PrintHeader(), 9);
        p.NextLine(1);
    }, &pages);
    ASSERT_EQ(pages.size(), 1);
    for (const char* phrase : {"משרד לוי", "תאריך הדפסה 07/03/2016", "הופק באמצעות Zelmor", "לכבוד מר כהן", "ישראל כהן"})
        EXPECT_TRUE(anyPageHas(pages, QString::fromUtf8(phrase))) << phrase;

    EXPECT_DOUBLE_EQ(lineOf(findWord(words, "07/03/2016")), 1);
    // The program line; the Latin run keeps its order on paper.
    const PdfWord program = findWord(words, "Orvanta"), version = findWord(words, "(V16.1)");
    EXPECT_DOUBLE_EQ(lineOf(program), 2.5);
    EXPECT_DOUBLE_EQ(lineOf(version), 2.5);
    EXPECT_LT(program.xMax, version.xMin);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, "2025")), 5);
    // The taxpayer's name stands alone and centred on line 7 of the A4 page.
    double left = 1000, right = 0;
    for (const PdfWord& w : words)
        if (lineOf(w) == 7) left = std::min(left, w.xMin), right = std::max(right, w.xMax);
    EXPECT_GT(right - left, 20);
    EXPECT_NEAR((left + right) / 2, 595.28 / 2, 3);
}

TEST(ClsPrint, PagesTurnOnlyBetweenLines) {
    float limit = 0;
    int pages = 0;
    const auto words = printJob("long.pdf", head(), [&](ClsPrint& p) {
        ASSERT_GT(p.PrintHeader(), 0);
        limit = static_cast<float>(p.ScaleHeight() - 5);
        p.NextLine(1);
        for (int row = 1; row <= 150; ++row) {
            p.PrintString(7, "שורה", false);
            p.PrintString(40, QString::number(1000 + row), false);
            p.NextLine(1);
        }
        // The last whole line of a page is five above its bottom: NextLine onto
        // it stays, the next turns the page to line 2.
        const int before = p.Page();
        p.LinePos = std::floor(limit) - 1;
        p.NextLine(1);
        EXPECT_EQ(p.Page(), before);
        EXPECT_FLOAT_EQ(p.LinePos, std::floor(limit));
        p.NextLine(1);
        EXPECT_EQ(p.Page(), before + 1);
        EXPECT_FLOAT_EQ(p.LinePos, 2);
        // An empty sheet's NextLine(-3) at the top of a page goes to -1; the next gap brings it back.
        p.NextLine(-3);
        EXPECT_FLOAT_EQ(p.LinePos, -1);
        p.NextLine(3);
        EXPECT_FLOAT_EQ(p.LinePos, 2);
        pages = p.Page();
    });
    ASSERT_GE(pages, 4);
    // Every row whole on a page, none below its last line; a new page has no head and starts at line 2.
    int seen = 0;
    for (const PdfWord& w : words) {
        if (const int n = w.text.toInt(); n > 1000 && n <= 1150) {
            ++seen;
            EXPECT_LE(lineOf(w), limit) << n;
            EXPECT_TRUE(w.page == 1 || lineOf(w) >= 2) << n;
        }
    }
    EXPECT_EQ(seen, 150);
}

TEST(ClsPrint, ALetterTooLongForThePageIsCutAboveTheRuleNameAndPageNumber) {
    QStringList letter;
    for (int i = 1; i <= 120; ++i) letter << QString("שורה %1").arg(100 + i);
    PageHead h = head(letter);
    h.taxpayerName = "98765";  // a word of its own in the PDF's text
    const auto words = printJob("long-letter.pdf", h, [](ClsPrint& p) {
        ASSERT_GT(p.PrintHeader(), 0);
        EXPECT_LE(p.LinePos, p.ScaleHeight() - 2);
        p.NextLine(1);
        p.PrintString(7, "55555", false);
    });
    EXPECT_EQ(findWord(words, "55555").page, 2);
    std::vector<PdfWord> first;
    std::ranges::copy_if(words, std::back_inserter(first), [](const PdfWord& w) { return w.page == 1; });
    const PdfWord name = findWord(first, "98765");
    ASSERT_EQ(name.page, 1) << "the taxpayer's name is on the first page";
    double lastLetter = 0;
    for (const PdfWord& w : first)
        if (const int n = w.text.toInt(); n > 100 && n <= 220) lastLetter = std::max(lastLetter, w.yMax);
    EXPECT_GT(lastLetter, 0);
    EXPECT_LT(lastLetter, name.yMin);
    // The page number stands free below everything else of the page.
    const PdfWord number = *std::ranges::max_element(first, {}, &PdfWord::yMin);
    EXPECT_TRUE(number.text.contains('1') && number.text.size() <= 3) << number.text.toStdString();
    ASSERT_GT(number.yMin, name.yMax);
    for (const PdfWord& w : first) EXPECT_TRUE(w.yMin >= number.yMin - 1 || w.yMax < number.yMin) << w.text.toStdString();
}
