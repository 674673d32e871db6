#pragma once
// The price index table that ships with the program (data/madad.csv, built into
// the library), from which a missing table file is made.

#include <QByteArray>
#include <QString>
#include <vector>

#include "tables/madad_table.h"

namespace zelmor {

// Parses the table's CSV text: a header line naming at least the columns Month,
// Basis, Madad, MEKADEM, Basis51 and Show_month (in any order, others ignored),
// then one row a month; fields may be quoted. The rows come back in the order of
// Month, and *lastMonth is the latest of them. On failure *error names the line
// and the field that is wrong.
bool parseMadadCsv(const QByteArray& text, std::vector<MadadRow>* rows, QString* lastMonth,
                   QString* error);

// The same for the table built into the program.
bool readShippedMadad(std::vector<MadadRow>* rows, QString* lastMonth, QString* error);

}  // namespace zelmor
