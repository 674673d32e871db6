#include "report/nishum_input.h"

#include <array>

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
                         caption2)                                                                                 \
    FieldDef{SectionId::sec, #sec, #nm, FieldType::type, maxlen, StoredTable::table, nullable, tab,                \
             LeaveCheck::check, Control::control, code, Person::person, group, caption, caption2,                  \
             [](NishumInput& n) -> void* { return &n.sec.nm; }},

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

Amount sum(std::initializer_list<Amount> parts) {
    Amount s = 0;
    for (Amount a : parts) s += a;
    return s;
}

using T = sections::Tashlumim;
Amount payM(const T& t) {
    return sum({t.N042M, t.N040M, t.N043M, t.N041M, t.OdfotM, t.MikdamotM, t.TashlumimM});
}
Amount payF(const T& t) {
    return sum({t.N042F, t.N040F, t.N043F, t.N041F, t.OdfotF, t.MikdamotF, t.TashlumimF});
}

#define ZELMOR_PAIR_RULE(total, m, f) \
    {SectionId::Tashlumim, #total, [](const NishumInput& n) -> std::int64_t { return (n.Tashlumim.m + n.Tashlumim.f).value(); }}

const DerivedRule kDerived[] = {
    {SectionId::Yegia, "TTLM", [](const NishumInput& n) -> std::int64_t { return SumTTLM(n.Yegia).value(); }},
    {SectionId::Yegia, "TTLF", [](const NishumInput& n) -> std::int64_t { return SumTTLF(n.Yegia).value(); }},
    {SectionId::Pturot, "N209", [](const NishumInput& n) -> std::int64_t { return SumN209(n.Pturot).value(); }},
    {SectionId::Nekudot, "N260", [](const NishumInput& n) -> std::int64_t { return SumN260(n.Nekudot); }},
    ZELMOR_PAIR_RULE(N294, N294M, N294F),
    ZELMOR_PAIR_RULE(N042, N042M, N042F),
    ZELMOR_PAIR_RULE(N040, N040M, N040F),
    ZELMOR_PAIR_RULE(N043, N043M, N043F),
    ZELMOR_PAIR_RULE(N041, N041M, N041F),
    ZELMOR_PAIR_RULE(Odfot, OdfotM, OdfotF),
    ZELMOR_PAIR_RULE(Mikdamot, MikdamotM, MikdamotF),
    ZELMOR_PAIR_RULE(Tashlumim, TashlumimM, TashlumimF),
    {SectionId::Tashlumim, "TashTTLM", [](const NishumInput& n) -> std::int64_t { return payM(n.Tashlumim).value(); }},
    {SectionId::Tashlumim, "TashTTLF", [](const NishumInput& n) -> std::int64_t { return payF(n.Tashlumim).value(); }},
    {SectionId::Tashlumim, "TashTTL",
     [](const NishumInput& n) -> std::int64_t {  // the fourteen fields in order, M's row then F's
         const T& t = n.Tashlumim;
         return sum({t.N042M, t.N040M, t.N043M, t.N041M, t.OdfotM, t.MikdamotM, t.TashlumimM, t.N042F, t.N040F,
                     t.N043F, t.N041F, t.OdfotF, t.MikdamotF, t.TashlumimF})
             .value();
     }},
};
#undef ZELMOR_PAIR_RULE

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
    return sum({y.N150, y.N250, y.N158, y.N068, y.N258, y.N358, y.N120, y.YegiaM});
}
Amount SumTTLF(const sections::Yegia& y) {
    return sum({y.N170, y.N270, y.N172, y.N069, y.N272, y.N372, y.N220, y.YegiaF});
}
Amount SumN209(const sections::Pturot& p) { return sum({p.N109, p.N309, p.Kizva, p.Dira, p.Acherot}); }
std::int16_t SumN260(const sections::Nekudot& k) {
    std::int16_t s = 0;
    for (std::int16_t c : {k.N260_1, k.N260_2, k.N260_3, k.N260_4, k.N260_5, k.N260_6}) s = addCount(s, c);
    return s;
}

std::span<const DerivedRule> derivedRules() { return kDerived; }

void WorkOutDerived(NishumInput& n) {
    // Work everything out first, so that an overflow leaves the report untouched.
    std::int64_t values[std::size(kDerived)];
    for (std::size_t i = 0; i < std::size(kDerived); ++i) values[i] = kDerived[i].compute(n);
    for (std::size_t i = 0; i < std::size(kDerived); ++i) {
        const FieldDef* f = findField(sectionDef(kDerived[i].section).name, kDerived[i].name);
        if (f->type == FieldType::Count)
            f->ref<std::int16_t>(n) = static_cast<std::int16_t>(values[i]);
        else
            f->ref<Amount>(n) = Amount(static_cast<std::int32_t>(values[i]));
    }
}

}  // namespace zelmor
