#include "pdf_text.h"

#include <QDir>
#include <cmath>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace zelmor::test {

QString tempPdfPath(const QString& name) {
    static QTemporaryDir dir;
    return dir.filePath(name);
}

namespace {
QString run(const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral("pdftotext"), args);
    if (!p.waitForFinished(30000) || p.exitCode() != 0) {
        ADD_FAILURE() << "pdftotext failed: " << p.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}
}  // namespace

QStringList pdfPages(const QString& path) {
    QString text = run({QStringLiteral("-layout"), QStringLiteral("-enc"), QStringLiteral("UTF-8"), path,
                        QStringLiteral("-")});
    static const QRegularExpression marks(QStringLiteral("[\u200e\u200f\u202a-\u202e]"));
    text.remove(marks);
    QStringList pages = text.split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty()) pages.removeLast();
    return pages;
}

std::vector<PdfWord> pdfWords(const QString& path) {
    const QString html = run({QStringLiteral("-bbox"), QStringLiteral("-enc"), QStringLiteral("UTF-8"), path,
                              QStringLiteral("-")});
    std::vector<PdfWord> words;
    static const char* const pattern =
        R"re(<page |<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re";
    static const QRegularExpression re(QString::fromLatin1(pattern));
    int page = 0;
    for (auto it = re.globalMatch(html); it.hasNext();) {
        const auto m = it.next();
        if (m.captured(0).startsWith(QLatin1String("<page"))) {
            ++page;
            continue;
        }
        words.push_back({page, m.captured(1).toDouble(), m.captured(2).toDouble(), m.captured(3).toDouble(),
                         m.captured(4).toDouble(), m.captured(5).replace(QStringLiteral("&quot;"), QStringLiteral("\""))
                                                      .replace(QStringLiteral("&amp;"), QStringLiteral("&"))});
    }
    return words;
}

QString skeleton(const QString& text) {
    QString s;
    for (QChar c : text)
        if (c.isLetterOrNumber()) s += c;
    return s;
}

bool hasPhrase(const QString& page, const QString& phrase) {
    const QString want = skeleton(phrase);
    for (const QString& line : page.split(QLatin1Char('\n')))
        if (skeleton(line).contains(want)) return true;
    return false;
}

PdfWord findWord(const std::vector<PdfWord>& words, const QString& text) {
    for (const PdfWord& w : words)
        if (w.text == text) return w;
    return {};
}

double lineOf(const PdfWord& w) {
    // A4 with 6.35 mm (18 pt) margins; a line is 12 pt. The box of a word
    // starts a little below the top of its line, so the nearest line is taken.
    constexpr double kTop = 18.0, kLine = 12.0;
    return std::floor((w.yMin - kTop) / kLine * 2 + 0.5) / 2;
}

}  // namespace zelmor::test
