#include "storage/report_pattern.h"

#include "core/values.h"

namespace zelmor::storage::testing {

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
    if (t.size() < 2 || t[0] != 'v') return -1;
    try {
        return std::stoi(t.substr(1));
    } catch (...) {
        return -1;
    }
}

void copyField(const FieldDef& f, const NishumInput& from, NishumInput& to) {
    switch (f.type) {
        case FieldType::Text: f.ref<std::string>(to) = f.ref<std::string>(from); break;
        case FieldType::Date: f.ref<Date>(to) = f.ref<Date>(from); break;
        case FieldType::Boolean: f.ref<bool>(to) = f.ref<bool>(from); break;
        case FieldType::Amount: f.ref<Amount>(to) = f.ref<Amount>(from); break;
        case FieldType::Number: f.ref<std::int32_t>(to) = f.ref<std::int32_t>(from); break;
        case FieldType::Count: f.ref<std::int16_t>(to) = f.ref<std::int16_t>(from); break;
    }
}

void zeroField(const FieldDef& f, NishumInput& r) { copyField(f, NishumInput(), r); }

std::string firstDifference(const NishumInput& a, const NishumInput& b) {
    for (const FieldDef& f : allFields()) {
        bool same = true;
        switch (f.type) {
            case FieldType::Text: same = f.ref<std::string>(a) == f.ref<std::string>(b); break;
            case FieldType::Date: same = f.ref<Date>(a) == f.ref<Date>(b); break;
            case FieldType::Boolean: same = f.ref<bool>(a) == f.ref<bool>(b); break;
            case FieldType::Amount: same = f.ref<Amount>(a) == f.ref<Amount>(b); break;
            case FieldType::Number: same = f.ref<std::int32_t>(a) == f.ref<std::int32_t>(b); break;
            case FieldType::Count: same = f.ref<std::int16_t>(a) == f.ref<std::int16_t>(b); break;
        }
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
