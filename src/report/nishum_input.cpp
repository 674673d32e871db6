#include "report/nishum_input.h"

#include <array>
#include <stdexcept>
#include <vector>

#include "report/entry_layout.h"

namespace zelmor {
namespace {

const SectionDef kSections[] = {
    {SectionId::Pratim, "Pratim", "חלק ב' - פרטים אישיים"},
    {SectionId::Yegia, "Yegia", "חלק ג'-ד' - הכנסות מיגיעה אישית ומרכוש בשיעורי מס רגילים"},
    {SectionId::Rechush, "Rechush", "חלק ה'-ו' - הכנסות מרכוש בשיעורי מס מיוחדים, מוסד כספי"},
    {SectionId::Pturot, "Pturot", "חלק ז'-י' - רווח הון, חו\"ל, פטורים ופרטים נוספים"},
    {SectionId::Nikuim, "Nikuim", "חלק י\"א - ניכויים"},
    {SectionId::Nekudot, "Nekudot", "חלק י\"ב- נקודות זיכוי"},
    {SectionId::Zikuim, "Zikuim", "חלק י\"ג - זיכויים"},
    {SectionId::Tashlumim, "Tashlumim", "חלק י\"ד - ניכוי במקור ותשלומים"},
    {SectionId::Klaliim, "Klaliim", "פרטים כלליים"},
};

#define ZELMOR_FIELD_DEF(sec, nm, type, maxlen, table, nullable, tab, check, control, code, person, group, caption, \
                         caption2, display, list, prefix, female)                                                  \
    FieldDef{SectionId::sec, #sec, #nm, FieldType::type, maxlen, StoredTable::table, nullable, tab,                \
             LeaveCheck::check, Control::control, code, Person::person, group, caption, caption2,                  \
             Display::display, ListId::list, prefix, female,                                                       \
             [](NishumInput& n) -> void* { return &n.sec.nm; },                                                    \
             [](void* s) -> void* { return &static_cast<sections::sec*>(s)->nm; }},

const FieldDef kFields[] = {
    ZELMOR_FIELDS_Pratim(ZELMOR_FIELD_DEF) ZELMOR_FIELDS_Yegia(ZELMOR_FIELD_DEF)
        ZELMOR_FIELDS_Rechush(ZELMOR_FIELD_DEF) ZELMOR_FIELDS_Pturot(ZELMOR_FIELD_DEF)
            ZELMOR_FIELDS_Nikuim(ZELMOR_FIELD_DEF) ZELMOR_FIELDS_Nekudot(ZELMOR_FIELD_DEF)
                ZELMOR_FIELDS_Zikuim(ZELMOR_FIELD_DEF) ZELMOR_FIELDS_Tashlumim(ZELMOR_FIELD_DEF)
                    ZELMOR_FIELDS_Klaliim(ZELMOR_FIELD_DEF)};
#undef ZELMOR_FIELD_DEF

struct SectionRange {
    std::size_t begin = 0, end = 0;
};

const std::array<SectionRange, 10>& ranges() {
    static const std::array<SectionRange, 10> r = [] {
        std::array<SectionRange, 10> out{};
        const std::size_t n = std::size(kFields);
        for (std::size_t i = 0; i < n; ++i) {
            auto& range = out[static_cast<int>(kFields[i].section)];
            if (range.end == 0) range.begin = i;
            range.end = i + 1;
        }
        return out;
    }();
    return r;
}

// A shown total and its parts, resolved in the catalogue once.
struct ResolvedTotal {
    const FieldDef* total = nullptr;
    std::vector<const FieldDef*> parts;
};

const std::vector<ResolvedTotal>& resolvedTotals() {
    static const std::vector<ResolvedTotal> r = [] {
        std::vector<ResolvedTotal> out;
        for (const DerivedTotal& t : derivedTotals()) {
            const char* sec = sectionDef(t.section).name;
            ResolvedTotal rt{findField(sec, t.total), {}};
            for (const char* part : t.parts) rt.parts.push_back(findField(sec, part));
            out.push_back(std::move(rt));
        }
        return out;
    }();
    return r;
}

const ResolvedTotal& resolvedTotal(SectionId section, std::string_view name) {
    for (const ResolvedTotal& t : resolvedTotals())
        if (t.total->section == section && name == t.total->name) return t;
    throw std::logic_error("no such total");
}

// The sum of a total's parts in the section record `sec` (checked: raises
// OverflowError when it leaves the range of the total's type).
std::int32_t sumParts(const ResolvedTotal& t, const void* sec) {
    void* s = const_cast<void*>(sec);
    if (t.total->type == FieldType::Count) {
        std::int16_t sum = 0;
        for (const FieldDef* f : t.parts) sum = addCount(sum, *static_cast<const std::int16_t*>(f->inSection(s)));
        return sum;
    }
    Amount sum = 0;
    for (const FieldDef* f : t.parts) sum += *static_cast<const Amount*>(f->inSection(s));
    return sum.value();
}

void* sectionRecord(NishumInput& n, SectionId id) {
    switch (id) {
        case SectionId::Pratim: return &n.Pratim;
        case SectionId::Yegia: return &n.Yegia;
        case SectionId::Rechush: return &n.Rechush;
        case SectionId::Pturot: return &n.Pturot;
        case SectionId::Nikuim: return &n.Nikuim;
        case SectionId::Nekudot: return &n.Nekudot;
        case SectionId::Zikuim: return &n.Zikuim;
        case SectionId::Tashlumim: return &n.Tashlumim;
        case SectionId::Klaliim: return &n.Klaliim;
    }
    throw std::out_of_range("no such section");
}

}  // namespace

std::span<const SectionDef> allSections() { return kSections; }
const SectionDef& sectionDef(SectionId id) { return kSections[static_cast<int>(id) - 1]; }
std::span<const FieldDef> allFields() { return kFields; }

std::span<const FieldDef> sectionFields(SectionId id) {
    const auto& r = ranges()[static_cast<int>(id)];
    return std::span<const FieldDef>(kFields + r.begin, kFields + r.end);
}

const SectionDef* findSection(std::string_view name) {
    for (const auto& s : kSections)
        if (name == s.name) return &s;
    return nullptr;
}

const FieldDef* findField(std::string_view section, std::string_view name) {
    const SectionDef* s = findSection(section);
    if (!s) return nullptr;
    for (const auto& f : sectionFields(s->id))
        if (name == f.name) return &f;
    return nullptr;
}

Amount SumTTLM(const sections::Yegia& y) {
    static const ResolvedTotal& t = resolvedTotal(SectionId::Yegia, "TTLM");
    return sumParts(t, &y);
}
Amount SumTTLF(const sections::Yegia& y) {
    static const ResolvedTotal& t = resolvedTotal(SectionId::Yegia, "TTLF");
    return sumParts(t, &y);
}
Amount SumN209(const sections::Pturot& p) {
    static const ResolvedTotal& t = resolvedTotal(SectionId::Pturot, "N209");
    return sumParts(t, &p);
}
std::int16_t SumN260(const sections::Nekudot& k) {
    static const ResolvedTotal& t = resolvedTotal(SectionId::Nekudot, "N260");
    return static_cast<std::int16_t>(sumParts(t, &k));
}

std::int32_t sumOfParts(const DerivedTotal& total, const NishumInput& report) {
    const auto all = derivedTotals();
    const auto k = static_cast<std::size_t>(&total - all.data());
    if (k >= all.size()) throw std::logic_error("not a shown total");
    const ResolvedTotal& t = resolvedTotals()[k];
    return sumParts(t, sectionRecord(const_cast<NishumInput&>(report), t.total->section));
}

void WorkOutDerived(NishumInput& n) {
    // Work everything out first, so that an overflow leaves the report untouched.
    const auto& totals = resolvedTotals();
    std::vector<std::int32_t> values;
    values.reserve(totals.size());
    for (const ResolvedTotal& t : totals) values.push_back(sumParts(t, sectionRecord(n, t.total->section)));
    for (std::size_t i = 0; i < totals.size(); ++i) {
        const FieldDef* f = totals[i].total;
        if (f->type == FieldType::Count)
            f->ref<std::int16_t>(n) = static_cast<std::int16_t>(values[i]);
        else
            f->ref<Amount>(n) = Amount(values[i]);
    }
}

}  // namespace zelmor
