// The page printer: head, page turns and numbers, failure of the device.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cmath>
#include <QTemporaryDir>

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
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("משרד לוי")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("07/03/2016")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("תאריך הדפסה")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("הופק באמצעות Zelmor")));
    EXPECT_TRUE(hasPhrase(pages[0], QStringLiteral("לכבוד מר כהן")));
    EXPECT_TRUE(pages[0].contains(QRegularExpression(QStringLiteral("-\\s*1\\s*-"))));

    const auto words = pdfWords(path);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("07/03/2016"))), 1);
    // The program line; the Latin run keeps its order on paper.
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("(V16.1)"))), 2.5);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("Orvanta"))), 2.5);
    EXPECT_LT(findWord(words, QStringLiteral("Orvanta")).xMax, findWord(words, QStringLiteral("(V16.1)")).xMin);
    EXPECT_DOUBLE_EQ(lineOf(findWord(words, QStringLiteral("2025"))), 5);
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
        EXPECT_LE(p.LinePos, limit);
    }
    const int pages = p.Page();
    p.PrintEndPage(true);
    ASSERT_TRUE(target.finish(nullptr));
    ASSERT_GE(pages, 3);

    const QStringList text = pdfPages(path);
    ASSERT_EQ(text.size(), pages);
    for (int i = 0; i < pages; ++i)
        EXPECT_TRUE(text[i].contains(QRegularExpression(QStringLiteral("-\\s*%1\\s*-").arg(i + 1)))) << "page " << i + 1;
    const auto words = pdfWords(path);
    int seen = 0;
    for (const PdfWord& w : words) {
        bool isRow = false;
        const int n = w.text.toInt(&isRow);
        if (!isRow || n <= 1000 || n > 1150) continue;
        ++seen;
        EXPECT_LE(lineOf(w), limit) << n;  // no row below the last line of its page
        if (w.page > 1 && lineOf(w) < 2) ADD_FAILURE() << "row " << n << " above line 2 of a new page";
    }
    EXPECT_EQ(seen, 150);
    // A new page has no head: it starts at line 2 with what came next.
    for (const PdfWord& w : words)
        if (w.page == 2) {
            EXPECT_DOUBLE_EQ(lineOf(w), 2) << w.text.toStdString();
            break;
        }
}

TEST(ClsPrint, TheLastLineOfAPageIsFiveAboveItsBottom) {
    PdfFileTarget target(tempPdfPath(QStringLiteral("edge.pdf")));
    ClsPrint p(target, head());
    ASSERT_GT(p.PrintHeader(), 0);
    const float last = std::floor(static_cast<float>(p.ScaleHeight() - 5));  // the last whole line of a page
    p.LinePos = last - 1;
    p.NextLine(1);  // onto the last line: stays
    EXPECT_EQ(p.Page(), 1);
    EXPECT_FLOAT_EQ(p.LinePos, last);
    p.NextLine(1);
    EXPECT_EQ(p.Page(), 2);
    EXPECT_FLOAT_EQ(p.LinePos, 2);
    // An empty sheet's NextLine(-3) at the top of a page goes to -1; the next
    // gap brings it back.
    p.NextLine(-3);
    EXPECT_FLOAT_EQ(p.LinePos, -1);
    p.NextLine(3);
    EXPECT_FLOAT_EQ(p.LinePos, 2);
    p.PrintEndPage(true);
    target.cancel();
}

TEST(ClsPrint, FailureOfTheDeviceAtTheHeadStopsTheJobWithTheMessage) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("missing/folder/out.pdf"));
    PdfFileTarget target(path);
    QString title, text;
    PrintSetup setup{dir.path(), *Date::fromYmd(2016, 1, 1), [&](const QString& t, const QString& m) {
                         title = t;
                         text = m;
                     }};
    EXPECT_FALSE(PrintNishum(target, setup, NishumInput{}, false));
    EXPECT_EQ(title, QStringLiteral("שגיאת הדפסה"));
    EXPECT_TRUE(text.startsWith(QStringLiteral("לא נמצאה מדפסת,\nוודא שהמדפסת מחוברת ויש נייר להדפסה\nהודעת שגיאה: ")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("out.pdf")));
    EXPECT_FALSE(target.finish(nullptr));
    EXPECT_FALSE(QFile::exists(path));
}

TEST(ClsPrint, PageHeadFilesAreReadFromTheDataFolder) {
    QTemporaryDir dir;
    NishumInput r;
    r.Pratim.LastNameM = "כהן";  // no first name: no stray blank
    PrintSetup setup{dir.path(), *Date::fromYmd(2016, 1, 1), {}};
    PageHead none = readPageHead(setup, r, 2015);
    EXPECT_TRUE(none.userName.isEmpty());
    EXPECT_TRUE(none.letterLines.isEmpty());
    EXPECT_EQ(none.taxpayerName, QStringLiteral("כהן"));

    QFile name(QDir(dir.path()).filePath(QStringLiteral("USERZELW.NAM")));
    ASSERT_TRUE(name.open(QIODevice::WriteOnly));
    name.write("  משרד לוי  \n");
    name.close();
    QFile letter(QDir(dir.path()).filePath(QStringLiteral("PNIA.TXT")));
    ASSERT_TRUE(letter.open(QIODevice::WriteOnly));
    letter.write("שורה א\r\nשורה ב\r\n");
    letter.close();
    PageHead both = readPageHead(setup, r, 2015);
    EXPECT_EQ(both.userName, QStringLiteral("משרד לוי"));
    EXPECT_EQ(both.letterLines, QStringList({QStringLiteral("שורה א"), QStringLiteral("שורה ב")}));
}
