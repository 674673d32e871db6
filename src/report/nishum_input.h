#pragma once
// The open report: nine sections in page order, each a plain record of the
// form's fields, and the catalogue that describes every field once.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/amount.h"
#include "core/date.h"
#include "report/fields.inc"

namespace zelmor {

enum class FieldType { Text, Date, Boolean, Amount, Number, Count };
enum class StoredTable { Details, Details1, NoTable };  // tblDetails, tblDetails1, not stored
enum class LeaveCheck { None, Amount, Whole, Date, Ceiling, InsuredIncome, Derived };
enum class Control { Edit, Option, CheckBox, List, Total };
enum class Person { None, M, F, Both, Total };
// How an entry field shows its value: None (texts, options, check boxes, lists),
// Amount "#,##0" (counts too), Date "dd/mm/yyyy" under the mask "##/##/####",
// Plain (a number without format).
enum class Display { None, Amount, Date, Plain };
// The list a drop-down field draws from (texts in entry_layout.h).
enum class ListId { None, Degree, Settlement, Rate, Months };


// Page order of the sections.
enum class SectionId { Pratim = 1, Yegia, Rechush, Pturot, Nikuim, Nekudot, Zikuim, Tashlumim, Klaliim };

namespace field_types {
using Text = std::string;
using Date = zelmor::Date;
using Boolean = bool;
using Amount = zelmor::Amount;
using Number = std::int32_t;  // a list position, a percentage or a count of months
using Count = std::int16_t;
}  // namespace field_types

namespace sections {
#define ZELMOR_DECLARE_MEMBER(sec, name, type, ...) field_types::type name{};
struct Pratim { ZELMOR_FIELDS_Pratim(ZELMOR_DECLARE_MEMBER) };
struct Yegia { ZELMOR_FIELDS_Yegia(ZELMOR_DECLARE_MEMBER) };
struct Rechush { ZELMOR_FIELDS_Rechush(ZELMOR_DECLARE_MEMBER) };
struct Pturot { ZELMOR_FIELDS_Pturot(ZELMOR_DECLARE_MEMBER) };
struct Nikuim { ZELMOR_FIELDS_Nikuim(ZELMOR_DECLARE_MEMBER) };
struct Nekudot { ZELMOR_FIELDS_Nekudot(ZELMOR_DECLARE_MEMBER) };
struct Zikuim { ZELMOR_FIELDS_Zikuim(ZELMOR_DECLARE_MEMBER) };
struct Tashlumim { ZELMOR_FIELDS_Tashlumim(ZELMOR_DECLARE_MEMBER) };
struct Klaliim { ZELMOR_FIELDS_Klaliim(ZELMOR_DECLARE_MEMBER) };
#undef ZELMOR_DECLARE_MEMBER
}  // namespace sections

// One report. A default-constructed report is a new report: zero amounts,
// empty texts, no dates, every flag False.
struct NishumInput {
    sections::Pratim Pratim;
    sections::Yegia Yegia;
    sections::Rechush Rechush;
    sections::Pturot Pturot;
    sections::Nikuim Nikuim;
    sections::Nekudot Nekudot;
    sections::Zikuim Zikuim;
    sections::Tashlumim Tashlumim;
    sections::Klaliim Klaliim;

    // The key of the report: the registered spouse's id.
    const std::string& NishumID() const { return Pratim.IDM; }
};

struct SectionDef {
    SectionId id;
    const char* name;         // "Pratim"
    const char* menuCaption;  // entry of the sections menu
};

struct FieldDef {
    SectionId section;
    const char* sectionName;
    const char* name;
    FieldType type;
    int maxLength;  // texts: characters the entry field takes; 0 otherwise
    StoredTable table;
    bool nullable;  // the stored column may hold Null, which reads as 0
    int tab;        // place in the screen's tab order; -1 for a shown total
    LeaveCheck check;
    Control control;
    const char* code;  // the form's line code ("150"), or ""
    Person person;
    const char* group;     // id of the option group ("frameFamily"), or "" (not an option)
    const char* caption;   // caption on the screen
    const char* caption2;  // a second caption beside the field, or ""
    Display display;
    ListId list;
    const char* prefix;         // fixed text shown in front of the field ("9"), or ""
    const char* femaleCaption;  // the caption when M is a woman, or "" (no other wording)
    void* (*address)(NishumInput&);
    void* (*inSection)(void* section);  // the member within its own section record

    template <class T>
    T& ref(NishumInput& n) const { return *static_cast<T*>(address(n)); }
    template <class T>
    const T& ref(const NishumInput& n) const { return *static_cast<const T*>(address(const_cast<NishumInput&>(n))); }
    bool derived() const { return check == LeaveCheck::Derived; }
};

std::span<const SectionDef> allSections();
const SectionDef& sectionDef(SectionId id);
// Every field of the report, in page order and declaration order.
std::span<const FieldDef> allFields();
std::span<const FieldDef> sectionFields(SectionId id);
const FieldDef* findField(std::string_view section, std::string_view name);
const SectionDef* findSection(std::string_view name);

// --- Derived members: sums that the screens show and the fields hold. ---
Amount SumTTLM(const sections::Yegia& y);
Amount SumTTLF(const sections::Yegia& y);
Amount SumN209(const sections::Pturot& p);
std::int16_t SumN260(const sections::Nekudot& n);

// Works out every derived member from its parts, as derivedTotals()
// (entry_layout.h) lists them (raises OverflowError when a sum leaves its
// range; the report is then left as it was).
void WorkOutDerived(NishumInput& n);

}  // namespace zelmor
