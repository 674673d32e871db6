#pragma once
// Reading printed PDF files back for the tests, through poppler's pdftotext.

#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <vector>

#include "print/print_target.h"

namespace zelmor::test {

// A fresh path for a PDF file in a temporary folder of the test run.
inline QString tempPdfPath(const QString& name) {
    static QTemporaryDir dir;
    return dir.filePath(name);
}

// Runs one print job into a fresh PDF file and gives the file's path.
template <class Job>
QString printedPdf(const QString& name, Job job) {
    const QString path = tempPdfPath(name);
    PdfFileTarget target(path);
    EXPECT_TRUE(job(static_cast<PrintTarget&>(target)));
    QString error;
    EXPECT_TRUE(target.finish(&error)) << error.toStdString();
    return path;
}

inline QString pdftotext(QStringList args, const QString& path) {
    QProcess p;
    p.start(QStringLiteral("pdftotext"), args << QStringLiteral("-enc") << QStringLiteral("UTF-8") << path << QStringLiteral("-"));
    if (!p.waitForFinished(30000) || p.exitCode() != 0) ADD_FAILURE() << "pdftotext failed on " << path.toStdString();
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The pages of a PDF file as text (pdftotext -layout), with the direction
// marks that pdftotext puts around runs taken out. Runs of digits come out in
// the order they stand on paper, left to right.
inline QStringList pdfPages(const QString& path) {
    QString text = pdftotext({QStringLiteral("-layout")}, path);
    text.remove(QRegularExpression(QStringLiteral("[\u200e\u200f\u202a-\u202e]")));
    QStringList pages = text.split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty()) pages.removeLast();
    return pages;
}

// The letters and digits of a text, in order, without blanks and punctuation:
// Hebrew phrases compare by this, since punctuation beside them comes out of
// pdftotext in the order it stands on paper.
inline QString skeleton(const QString& text) {
    QString s;
    for (QChar c : text)
        if (c.isLetterOrNumber()) s += c;
    return s;
}

// Whether a line of any of the pages holds the phrase, compared by skeleton.
inline bool anyPageHas(const QStringList& pages, const QString& phrase) {
    const QStringList lines = pages.join(QLatin1Char('\n')).split(QLatin1Char('\n'));
    return std::ranges::any_of(lines, [&](const QString& l) { return skeleton(l).contains(skeleton(phrase)); });
}

// Fails the test unless every page carries its number as "- n -".
inline void expectPageNumbers(const QStringList& pages) {
    for (int i = 0; i < pages.size(); ++i)
        EXPECT_TRUE(pages[i].contains(QRegularExpression(QStringLiteral("-\\s*%1\\s*-").arg(i + 1)))) << "page " << i + 1;
}

// One word of a page with its box, in points from the top left of the page.
struct PdfWord {
    int page = 0;  // from 1; 0 for a word not found
    double xMin = 0, yMin = 0, xMax = 0, yMax = 0;
    QString text;
};

inline std::vector<PdfWord> pdfWords(const QString& path) {
    static const QRegularExpression re(QStringLiteral(
        R"re(<page |<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re"));
    std::vector<PdfWord> words;
    int page = 0;
    for (const auto& m : re.globalMatch(pdftotext({QStringLiteral("-bbox")}, path))) {
        if (m.captured(0).startsWith(QLatin1String("<page")))
            ++page;
        else
            words.push_back({page, m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                             m.captured(4).toDouble(), m.captured(5)});
    }
    return words;
}

// The first word with this exact text.
inline PdfWord findWord(const std::vector<PdfWord>& words, const QString& text) {
    const auto it = std::ranges::find(words, text, &PdfWord::text);
    return it == words.end() ? PdfWord{} : *it;
}

// The printed line (in lines of 240 twips from the top of the printable area,
// to the half line) on which a word stands. A4 with 6.35 mm (18 pt) margins;
// a line is 12 pt. The box of a word starts a little below the top of its
// line, so the nearest line is taken.
inline double lineOf(const PdfWord& w) {
    constexpr double kTop = 18.0, kLine = 12.0;
    return std::floor((w.yMin - kTop) / kLine * 2 + 0.5) / 2;
}

}  // namespace zelmor::test
