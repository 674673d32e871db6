#pragma once
// Reading printed PDF files back for the tests, through poppler's pdftotext.

#include <QString>
#include <QStringList>
#include <vector>

namespace zelmor::test {

// A fresh path for a PDF file in a temporary folder of the test run.
QString tempPdfPath(const QString& name);

// The pages of a PDF file as text (pdftotext -layout), with the direction
// marks that pdftotext puts around runs taken out. Runs of digits come out in
// the order they stand on paper, left to right.
QStringList pdfPages(const QString& path);

// The letters and digits of a text, in order, without blanks and punctuation:
// Hebrew phrases compare by this, since punctuation beside them comes out of
// pdftotext in the order it stands on paper.
QString skeleton(const QString& text);
// Whether a page holds the phrase (compared by skeleton, line by line).
bool hasPhrase(const QString& page, const QString& phrase);

// One word of a page with its box, in points from the top left of the page.
struct PdfWord {
    int page = 0;  // from 1
    double xMin = 0, yMin = 0, xMax = 0, yMax = 0;
    QString text;
};
std::vector<PdfWord> pdfWords(const QString& path);
// The first word with this exact text; page 0 when there is none.
PdfWord findWord(const std::vector<PdfWord>& words, const QString& text);

// The printed line (in lines of 240 twips from the top of the printable area,
// to the half line) on which a word stands.
double lineOf(const PdfWord& w);

}  // namespace zelmor::test
