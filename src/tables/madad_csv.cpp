#include "tables/madad_csv.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace zelmor {
namespace {

// Splits one line into fields; a field in double quotes may hold commas and "" for a quote.
QStringList splitCsvLine(const QString& line, bool* ok) {
    QStringList fields;
    QString field;
    bool quoted = false;
    *ok = true;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar ch = line[i];
        if (quoted) {
            if (ch == QLatin1Char('"')) {
                if (i + 1 < line.size() && line[i + 1] == QLatin1Char('"')) {
                    field += ch;
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                field += ch;
            }
        } else if (ch == QLatin1Char('"')) {
            quoted = true;
        } else if (ch == QLatin1Char(',')) {
            fields << field;
            field.clear();
        } else {
            field += ch;
        }
    }
    if (quoted) *ok = false;
    fields << field;
    return fields;
}

bool isMonthText(const QString& m) {
    if (m.size() != 6) return false;
    for (QChar ch : m)
        if (ch < QLatin1Char('0') || ch > QLatin1Char('9')) return false;
    const int month = m.mid(4, 2).toInt();
    return month >= 1 && month <= 12;
}

}  // namespace

bool parseMadadCsv(const QByteArray& text, std::vector<MadadRow>* rows, QString* lastMonth,
                   QString* error) {
    QString all = QString::fromUtf8(text);
    if (all.startsWith(QChar(0xFEFF))) all.remove(0, 1);
    const QStringList lines = all.split(QLatin1Char('\n'));

    rows->clear();
    int colMonth = -1, colBasis = -1, colMadad = -1, colMekadem = -1, colBasis51 = -1, colShow = -1;
    bool haveHeader = false;
    for (qsizetype n = 0; n < lines.size(); ++n) {
        QString line = lines[n];
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        if (line.trimmed().isEmpty()) continue;
        const int lineNo = static_cast<int>(n + 1);
        bool ok = false;
        const QStringList f = splitCsvLine(line, &ok);
        if (!ok) {
            *error = QStringLiteral("טבלת המדדים, שורה %1: מירכאות לא סגורות").arg(lineNo);
            return false;
        }
        if (!haveHeader) {
            for (int i = 0; i < f.size(); ++i) {
                const QString h = f[i].trimmed();
                if (h == QLatin1String("Month")) colMonth = i;
                else if (h == QLatin1String("Basis")) colBasis = i;
                else if (h == QLatin1String("Madad")) colMadad = i;
                else if (h == QLatin1String("MEKADEM")) colMekadem = i;
                else if (h == QLatin1String("Basis51")) colBasis51 = i;
                else if (h == QLatin1String("Show_month")) colShow = i;
            }
            if (std::min({colMonth, colBasis, colMadad, colMekadem, colBasis51, colShow}) < 0) {
                *error = QStringLiteral(
                    "טבלת המדדים, שורה %1: חסרה אחת העמודות Month, Basis, Madad, MEKADEM, Basis51, "
                    "Show_month").arg(lineNo);
                return false;
            }
            haveHeader = true;
            continue;
        }
        const int need = std::max({colMonth, colBasis, colMadad, colMekadem, colBasis51, colShow});
        if (f.size() <= need) {
            *error = QStringLiteral("טבלת המדדים, שורה %1: יש בה %2 שדות בלבד").arg(lineNo).arg(f.size());
            return false;
        }
        MadadRow r;
        r.month = f[colMonth].trimmed();
        if (!isMonthText(r.month)) {
            *error = QStringLiteral("טבלת המדדים, שורה %1: חודש לא חוקי \"%2\"").arg(lineNo).arg(r.month);
            return false;
        }
        auto number = [&](int col, const char* name, double* out) {
            bool good = false;
            *out = f[col].trimmed().toDouble(&good);
            if (!good || !std::isfinite(*out) || *out < 0) {
                *error = QStringLiteral("טבלת המדדים, שורה %1: ערך לא חוקי בעמודה %2: \"%3\"")
                             .arg(lineNo)
                             .arg(QLatin1String(name), f[col]);
                return false;
            }
            return true;
        };
        if (!number(colBasis51, "Basis51", &r.basis51) || !number(colMadad, "Madad", &r.madad) ||
            !number(colMekadem, "MEKADEM", &r.mekadem))
            return false;
        r.basis = f[colBasis].trimmed();
        r.showMonth = f[colShow].trimmed();
        rows->push_back(std::move(r));
    }
    if (!haveHeader) {
        *error = QStringLiteral("טבלת המדדים ריקה");
        return false;
    }
    std::sort(rows->begin(), rows->end(),
              [](const MadadRow& a, const MadadRow& b) { return a.month < b.month; });
    for (size_t i = 1; i < rows->size(); ++i) {
        if ((*rows)[i].month == (*rows)[i - 1].month) {
            *error = QStringLiteral("טבלת המדדים: החודש %1 מופיע פעמיים").arg((*rows)[i].month);
            return false;
        }
    }
    *lastMonth = rows->empty() ? QString() : rows->back().month;
    return true;
}

// The shipped table lies beside the program in an installed tree
// (<prefix>/bin/zelmor, <prefix>/share/zelmor/madad.csv), wherever that tree
// was unpacked; a build tree uses the copy built into the program.
QString shippedMadadPath() {
    if (QCoreApplication::instance()) {
        const QString installed =
            QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../share/zelmor/madad.csv"));
        if (QFileInfo(installed).isFile()) return QDir::cleanPath(installed);
    }
    return QStringLiteral(":/zelmor/madad.csv");
}

bool readShippedMadad(std::vector<MadadRow>* rows, QString* lastMonth, QString* error) {
    QFile f(shippedMadadPath());
    if (!f.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("טבלת המדדים המצורפת לתוכנה אינה זמינה (%1)").arg(f.errorString());
        return false;
    }
    return parseMadadCsv(f.readAll(), rows, lastMonth, error);
}

}  // namespace zelmor
