#pragma once
// The result set: eight sheets, each a plain record of the figures that one run
// of the calculation publishes, and a catalogue of their fields.

#include <span>
#include <string_view>

#include "core/amount.h"
#include "core/date.h"
#include "results/sheets.inc"

namespace zelmor {

enum class SheetId { CMain = 1, CHachnasot, CNikuim, CHishuv, CMeyuchad, CZikuim, CTashlumim, CBL };
enum class SheetFieldType { Amount, Double, Date };

namespace sheet_types {
using Amount = zelmor::Amount;
using Double = double;
using Date = zelmor::Date;
}  // namespace sheet_types

namespace sheets {
#define ZELMOR_DECLARE_SHEET_MEMBER(sheet, name, type) sheet_types::type name{};
struct CMain { ZELMOR_SHEET_CMain(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CHachnasot { ZELMOR_SHEET_CHachnasot(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CNikuim { ZELMOR_SHEET_CNikuim(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CHishuv { ZELMOR_SHEET_CHishuv(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CMeyuchad { ZELMOR_SHEET_CMeyuchad(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CZikuim { ZELMOR_SHEET_CZikuim(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CTashlumim { ZELMOR_SHEET_CTashlumim(ZELMOR_DECLARE_SHEET_MEMBER) };
struct CBL { ZELMOR_SHEET_CBL(ZELMOR_DECLARE_SHEET_MEMBER) };
#undef ZELMOR_DECLARE_SHEET_MEMBER
}  // namespace sheets

struct NishumOutput {
    sheets::CMain Main;
    sheets::CHachnasot Hachnasot;
    sheets::CNikuim Nikuim;
    sheets::CHishuv Hishuv;
    sheets::CMeyuchad Meyuchad;
    sheets::CZikuim Zikuim;
    sheets::CTashlumim Tashlumim;
    sheets::CBL BL;

    // Empties the sheets before a run, page by page: every field, except the
    // four column totals of the special-rate sheet and the payments sheet,
    // which the publication overwrites on every run.
    void ClearCalc();
};

struct SheetDef {
    SheetId id;
    const char* name;  // "CMain"
};

struct SheetFieldDef {
    SheetId sheet;
    const char* sheetName;
    const char* name;
    SheetFieldType type;
    void* (*address)(NishumOutput&);

    template <class T>
    const T& ref(const NishumOutput& o) const { return *static_cast<const T*>(address(const_cast<NishumOutput&>(o))); }
    template <class T>
    T& ref(NishumOutput& o) const { return *static_cast<T*>(address(o)); }
};

std::span<const SheetDef> allSheets();
std::span<const SheetFieldDef> allSheetFields();
std::span<const SheetFieldDef> sheetFields(SheetId id);
const SheetFieldDef* findSheetField(std::string_view sheet, std::string_view name);

}  // namespace zelmor
