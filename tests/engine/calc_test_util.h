#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "engine/calc.h"
#include "support/fixed_madad.h"

namespace zelmor::testing {

inline Date ymd(int y, int m, int d) { return *Date::fromYmd(y, m, d); }

// A calculation with a flat index and a fixed today.
inline CalcResult calc(NishumInput n, Date today = ymd(2016, 6, 30)) {
    WorkOutDerived(n);
    static const FixedMadad flat;
    return CalcDoch(n, ConstDoch(), flat, today);
}

// The report with fields set by their names, which are unique across the
// sections: "N150=1000 BirthDateM=1955-12-31 isMale=0"; a date left empty is no date.
inline NishumInput with(NishumInput n, const std::string& fields) {
    std::istringstream in(fields);
    for (std::string item; in >> item;) {
        const auto eq = item.find('=');
        const auto all = allFields();
        const auto f = std::ranges::find_if(all, [&](const FieldDef& d) { return item.substr(0, eq) == d.name; });
        if (eq == std::string::npos || f == all.end()) throw std::invalid_argument("no field " + item);
        const std::string v = item.substr(eq + 1);
        switch (f->type) {
            case FieldType::Amount: f->ref<Amount>(n) = std::stoi(v); break;
            case FieldType::Number: f->ref<std::int32_t>(n) = std::stoi(v); break;
            case FieldType::Count: f->ref<std::int16_t>(n) = static_cast<std::int16_t>(std::stoi(v)); break;
            case FieldType::Boolean: f->ref<bool>(n) = v == "1"; break;
            case FieldType::Date: f->ref<Date>(n) = v.empty() ? Date() : parseIsoDate(v).value(); break;
            case FieldType::Text: f->ref<std::string>(n) = v; break;
        }
    }
    return n;
}

// A single resident man born in 1970.
inline NishumInput single() {
    return with({}, "IDM=1 isMale=1 isRavak=1 BirthDateM=1970-05-01 N020=1");
}

// A married resident couple, husband registered, both born in the 1970s.
inline NishumInput couple() {
    return with(single(), "isRavak=0 isNasuy=1 BirthDateF=1972-03-03 isTlutNo=1");
}

// A figure of a result: "Sheet.Field", or the filing mode and the compared sums.
inline double figure(const CalcResult& r, const std::string& name) {
    if (name == "FilingMode") return r.FilingMode;
    if (name == "compared") return r.compared;
    if (name == "MasMeuchad") return r.MasMeuchad.value();
    if (name == "MasNifrad") return r.MasNifrad.value();
    const auto dot = name.find('.');
    const SheetFieldDef* f = findSheetField(name.substr(0, dot), name.substr(dot + 1));
    if (!f) throw std::invalid_argument("no figure " + name);
    return f->type == SheetFieldType::Double ? f->ref<double>(r.out) : f->ref<Amount>(r.out).value();
}

// One row of a table of rules: a report built on one of three bases, and the
// figures it must give.
enum Base { Single, Couple, Dependent /* a couple, dependent on each other's income */ };
struct RuleCase {
    const char* rule;
    Base base;
    const char* fields;
    std::vector<std::pair<const char*, double>> figures;
};

inline void PrintTo(const RuleCase& c, std::ostream* os) { *os << c.rule; }

class Rules : public ::testing::TestWithParam<RuleCase> {};

inline std::string ruleName(const ::testing::TestParamInfo<RuleCase>& info) {
    std::string s = info.param.rule;
    for (char& ch : s)
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    return s;
}

}  // namespace zelmor::testing
