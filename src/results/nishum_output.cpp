#include "results/nishum_output.h"

#include <array>

namespace zelmor {
namespace {

const SheetDef kSheets[] = {
    {SheetId::CMain, "CMain"},         {SheetId::CHachnasot, "CHachnasot"}, {SheetId::CNikuim, "CNikuim"},
    {SheetId::CHishuv, "CHishuv"},     {SheetId::CMeyuchad, "CMeyuchad"},   {SheetId::CZikuim, "CZikuim"},
    {SheetId::CTashlumim, "CTashlumim"}, {SheetId::CBL, "CBL"},
};

// The member of NishumOutput that holds each sheet.
#define ZELMOR_SHEET_MEMBER_CMain Main
#define ZELMOR_SHEET_MEMBER_CHachnasot Hachnasot
#define ZELMOR_SHEET_MEMBER_CNikuim Nikuim
#define ZELMOR_SHEET_MEMBER_CHishuv Hishuv
#define ZELMOR_SHEET_MEMBER_CMeyuchad Meyuchad
#define ZELMOR_SHEET_MEMBER_CZikuim Zikuim
#define ZELMOR_SHEET_MEMBER_CTashlumim Tashlumim
#define ZELMOR_SHEET_MEMBER_CBL BL
#define ZELMOR_CAT(a, b) a##b
#define ZELMOR_SHEET_FIELD_DEF(sheet, nm, type)                 \
    SheetFieldDef{SheetId::sheet, #sheet, #nm, SheetFieldType::type, \
                  [](NishumOutput& o) -> void* { return &o.ZELMOR_CAT(ZELMOR_SHEET_MEMBER_, sheet).nm; }},

const SheetFieldDef kFields[] = {
    ZELMOR_SHEET_CMain(ZELMOR_SHEET_FIELD_DEF) ZELMOR_SHEET_CHachnasot(ZELMOR_SHEET_FIELD_DEF)
        ZELMOR_SHEET_CNikuim(ZELMOR_SHEET_FIELD_DEF) ZELMOR_SHEET_CHishuv(ZELMOR_SHEET_FIELD_DEF)
            ZELMOR_SHEET_CMeyuchad(ZELMOR_SHEET_FIELD_DEF) ZELMOR_SHEET_CZikuim(ZELMOR_SHEET_FIELD_DEF)
                ZELMOR_SHEET_CTashlumim(ZELMOR_SHEET_FIELD_DEF) ZELMOR_SHEET_CBL(ZELMOR_SHEET_FIELD_DEF)};

}  // namespace

std::span<const SheetDef> allSheets() { return kSheets; }
std::span<const SheetFieldDef> allSheetFields() { return kFields; }

std::span<const SheetFieldDef> sheetFields(SheetId id) {
    static const auto ranges = [] {
        std::array<std::pair<std::size_t, std::size_t>, 9> r{};
        for (std::size_t i = 0; i < std::size(kFields); ++i) {
            auto& range = r[static_cast<int>(kFields[i].sheet)];
            if (range.second == 0) range.first = i;
            range.second = i + 1;
        }
        return r;
    }();
    const auto& r = ranges[static_cast<int>(id)];
    return std::span<const SheetFieldDef>(kFields + r.first, kFields + r.second);
}

const SheetFieldDef* findSheetField(std::string_view sheet, std::string_view name) {
    for (const auto& f : kFields)
        if (sheet == f.sheetName && name == f.name) return &f;
    return nullptr;
}

void NishumOutput::ClearCalc() {
    Main = {};
    Hachnasot = {};
    Nikuim = {};
    Hishuv = {};
    const Amount mmas = Meyuchad.MMAS_TTL, msum = Meyuchad.MSUM_TTL, fmas = Meyuchad.FMAS_TTL,
                 fsum = Meyuchad.FSUM_TTL;
    Meyuchad = {};
    Meyuchad.MMAS_TTL = mmas;
    Meyuchad.MSUM_TTL = msum;
    Meyuchad.FMAS_TTL = fmas;
    Meyuchad.FSUM_TTL = fsum;
    Zikuim = {};
    BL = {};
}

}  // namespace zelmor
