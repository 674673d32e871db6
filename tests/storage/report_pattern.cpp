#include "storage/report_pattern.h"

#include <cctype>
#include <cstdlib>

#include "core/values.h"

namespace zelmor::storage::testing {
namespace {

// Calls fn with a value of the C++ type of the field.
template <class Fn>
void withType(const FieldDef& f, Fn&& fn) {
    switch (f.type) {
        case FieldType::Text: fn(std::string()); break;
        case FieldType::Date: fn(Date()); break;
        case FieldType::Boolean: fn(false); break;
        case FieldType::Amount: fn(Amount()); break;
        case FieldType::Number: fn(std::int32_t()); break;
        case FieldType::Count: fn(std::int16_t()); break;
    }
}

}  // namespace

NishumInput patternReport(const std::string& id, int version) {
    NishumInput r;
    int i = 0;
    for (const FieldDef& f : allFields()) {
        const int k = version * 31 + i++;
        switch (f.type) {
            case FieldType::Text: {
                std::string t = std::to_string(k) + "ש";  // a Hebrew letter is two bytes, one character
                if (static_cast<int>(utf8Length(t)) > f.maxLength) t = std::to_string(k % 10);
                f.ref<std::string>(r) = t;
                break;
            }
            case FieldType::Date: f.ref<Date>(r) = Date::fromSerial(40000 + k % 5000); break;
            case FieldType::Boolean: f.ref<bool>(r) = k % 2 == 1; break;
            case FieldType::Amount: f.ref<Amount>(r) = Amount(k % 2 ? -(k % 1000000) : (k % 1000000) * 100); break;
            case FieldType::Number: f.ref<std::int32_t>(r) = k % 1000; break;
            case FieldType::Count: f.ref<std::int16_t>(r) = static_cast<std::int16_t>(k % 7); break;
        }
    }
    r.Pratim.IDM = id;
    r.Pratim.LastNameM = "v" + std::to_string(version);
    r.Nekudot.N260 = SumN260(r.Nekudot);  // never stored: the sum of its parts
    return r;
}

int patternVersion(const NishumInput& r) {
    const std::string& t = r.Pratim.LastNameM;
    return t.size() > 1 && t[0] == 'v' && std::isdigit(static_cast<unsigned char>(t[1])) ? std::atoi(t.c_str() + 1) : -1;
}

void copyField(const FieldDef& f, const NishumInput& from, NishumInput& to) {
    withType(f, [&]<class T>(T) { f.ref<T>(to) = f.ref<T>(from); });
}

std::string firstDifference(const NishumInput& a, const NishumInput& b) {
    for (const FieldDef& f : allFields()) {
        bool same = true;
        withType(f, [&]<class T>(T) { same = f.ref<T>(a) == f.ref<T>(b); });
        if (!same) return std::string(f.sectionName) + "." + f.name;
    }
    return {};
}

std::string patternProblem(const NishumInput& r, const std::string& id) {
    const int version = patternVersion(r);
    if (version < 0) return "no version in LastNameM ('" + r.Pratim.LastNameM + "')";
    const std::string diff = firstDifference(r, patternReport(id, version));
    return diff.empty() ? std::string() : "version " + std::to_string(version) + " is torn at " + diff;
}

}  // namespace zelmor::storage::testing
