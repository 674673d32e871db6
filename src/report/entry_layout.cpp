#include "report/entry_layout.h"

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelmor {
namespace {

const char* const kM = "\"בן הזוג הרשום\"";
const char* const kF = "בן/בת הזוג";
const char* const kBoth = "שני בני הזוג";
const char* const kTotal = "סה\"כ";

// --- Building a page --------------------------------------------------------
// A page is written as blocks of rows; the screen caption of a grid row is the
// catalogue's caption of its first field, so it is written once. Built once,
// then never changed: the spans of the finished layout point into it.

struct RowSrc {
    Words caption;
    std::vector<EntryCell> cells;
    Medium medium;
};

struct BlockSrc {
    Words heading;
    Words lines;
    std::vector<ColumnHead> columns;
    std::vector<RowSrc> rows;
    Medium medium;
};

class Page {
public:
    explicit Page(SectionId section) : section_(section) {}

    Page& block(Words heading, Words lines = {}, std::vector<ColumnHead> columns = {},
                Medium medium = Medium::Both) {
        src_.push_back({heading, lines, std::move(columns), {}, medium});
        return *this;
    }
    // A row whose screen caption is that of its first field.
    Page& row(const char* paper, std::vector<EntryCell> cells, Medium medium = Medium::Both) {
        const char* screen = onScreen(medium) ? field(cells.front().field).caption : "";
        return row(Words{screen, paper}, std::move(cells), medium);
    }
    Page& row(Words caption, std::vector<EntryCell> cells, Medium medium = Medium::Both) {
        src_.back().rows.push_back({caption, std::move(cells), medium});
        return *this;
    }
    // A plain heading or note inside a block.
    Page& text(Words caption, Medium medium = Medium::Both) { return row(caption, {}, medium); }

    // A cell under a column, its caption the row's.
    EntryCell at(Person column, const char* name, Medium medium = Medium::Both) const {
        field(name);
        return {name, column, {}, medium};
    }
    // A cell with its own caption: on the screen the catalogue's, on paper `paper`.
    EntryCell own(Person column, const char* name, const char* paper, Medium medium = Medium::Both) const {
        return {name, column, {field(name).caption, paper}, medium};
    }

    const EntryPageLayout& finish() {
        for (const BlockSrc& b : src_) {
            auto& rows = rows_.emplace_back();
            for (const RowSrc& r : b.rows) rows.push_back({r.caption, r.cells, r.medium});
        }
        for (std::size_t i = 0; i < src_.size(); ++i) {
            const BlockSrc& b = src_[i];
            blocks_.push_back({b.heading, b.lines, b.columns, rows_[i], b.medium});
        }
        layout_ = {section_, blocks_};
        return layout_;
    }

private:
    const FieldDef& field(const char* name) const {
        const FieldDef* f = findField(sectionDef(section_).name, name);
        if (!f) throw std::logic_error(std::string("layout names no field ") + name);
        return *f;
    }

    SectionId section_;
    std::vector<BlockSrc> src_;
    std::vector<std::vector<EntryRow>> rows_;
    std::vector<EntryBlock> blocks_;
    EntryPageLayout layout_{};
};

ColumnHead head(Person p) { return {p, {columnHead(p), columnHead(p)}}; }
std::vector<ColumnHead> mf() { return {head(Person::M), head(Person::F)}; }
std::vector<ColumnHead> bmf() { return {head(Person::Both), head(Person::M), head(Person::F)}; }

constexpr Person M = Person::M;
constexpr Person F = Person::F;
constexpr Person B = Person::Both;
constexpr Person T = Person::Total;
constexpr Person N = Person::None;
constexpr Medium kScreen = Medium::Screen;
constexpr Medium kPaper = Medium::Paper;

// --- The pages ----------------------------------------------------------------

void pratim(Page& p) {
    p.block({"ב. פרטים אישיים", "ב. פרטים אישיים"}, {}, mf());
    p.row({}, {p.own(M, "IDM", "ת.ז.: "), p.own(M, "LastNameM", "שם משפחה: "), p.own(F, "IDF", "ת.ז.: "),
               p.own(F, "LastNameF", "משפחה: ")});
    p.row({}, {p.own(M, "FirstNameM", "שם פרטי: "), p.own(M, "FatherNameM", "שם האב: "),
               p.own(F, "FirstNameF", "פרטי: "), p.own(F, "FatherNameF", "שם האב: ")});
    p.row({}, {p.own(M, "BirthDateM", "תאריך לידה: "), p.own(F, "BirthDateF", "לידה: ")});
    p.row({}, {p.own(N, "MailAddress", "כתובת לדואר: ")});
    p.row({}, {p.own(N, "Address", "כתובת מגורים: ")});
    p.row({"טלפונים :", "טלפונים:"}, {{"PhoneH", M, {"בית :", "בית: "}}, p.own(M, "PhoneWM", "עבודה: "),
                                      p.own(F, "PhoneWF", "עבודה: "), p.own(F, "Fax", "פקס: ")});
    p.row({"עיסוק עיקרי :", "עיסוק עיקרי: "}, {p.at(M, "ProfessionM"), p.at(F, "ProfessionF")});
    p.row({"שם העסק :", "שם העסק: "}, {p.at(M, "BusinessNameM"), p.at(F, "BusinessNameF")});
    p.row({"כתובת העסק :", "כתובת העסק: "}, {p.at(M, "BusinessAddressM"), p.at(F, "BusinessAddressF")});
    p.row({"מספר תיק :", "מספר תיק:"}, {{"TikNikuimM", M, {"ניכויים :", "ניכויים: "}}, p.own(M, "TikMaamM", "מע\"מ: "),
                                       p.own(F, "TikNikuimF", "ניכויים: "), p.own(F, "TikMaamF", "מע\"מ: ")});
    p.row({"שם המעביד :", "שם המעביד: "}, {p.at(M, "BossNameM"), p.at(F, "BossNameF")});
    // Paper prints the sex and the marital status on one line of words.
    p.row({}, {p.own(N, "isMale", "זכר "), p.own(N, "isFemale", "נקבה ")});
    p.row({"מצב משפחתי :", "מצב משפחתי: "},
          {p.at(N, "isRavak"), p.at(N, "isNasuy"), p.at(N, "isAlman"), p.at(N, "isGarush")});
    p.block({"פרטי הגשה והמסייע", "פרטי הגשה והמסייע"});
    p.row({}, {p.own(N, "DochDate", "תאריך הגשת הדו\"ח: ")});
    p.row({}, {p.own(N, "SupportName", "שם המסייע: "), p.own(N, "SupportDealerNum", "מס' עוסק: "),
               p.own(N, "SupportPhone", "טלפון: ")});
    p.row({}, {p.own(N, "SupportProfession", "מקצוע: "), p.own(N, "SupportAddress", "כתובת: ")});
}

void yegia(Page& p) {
    p.block({"ג. הכנסות מיגיעה אישית", "ג. הכנסות מיגיעה אישית"}, {"סעיפים 1-7", "סעיפים 1-7"}, mf());
    p.row("1. מיגיעה אישית מעסק או ממשלח יד", {p.at(M, "N150"), p.at(F, "N170")});
    p.row("2. תקבולי והחזרי ביטוח לאומי כעצמאי", {p.at(M, "N250"), p.at(F, "N270")});
    p.row("3. משכורת / שכ\"ע (לא כולל משמרות)", {p.at(M, "N158"), p.at(F, "N172")});
    p.row("4. עבודה במשמרות בתעשיה", {p.at(M, "N068"), p.at(F, "N069")});
    p.row("5א. החלק החייב במס של קיצבאות", {p.at(M, "N258"), p.at(F, "N272")});
    p.row("5ב. פריסת מענק פרישה משנים קודמות", {p.at(M, "N358"), p.at(F, "N372")});
    p.row("6. הכנסה מנכס ששימש בעסקך 10 שנים", {p.at(M, "N120"), p.at(F, "N220")});
    p.row("7. הכנסות אחרות מיגיעה אישית", {p.at(M, "YegiaM"), p.at(F, "YegiaF")});
    p.row("סה\"כ הכנסות מיגיעה אישית", {p.at(M, "TTLM"), p.at(F, "TTLF")});
    p.block({"ד. הכנסות חייבות בשיעורי מס רגילים", "ד. הכנסות מרכוש בשיעורי מס רגילים"},
            {"סעיפים 8-11", "סעיפים 8-11"}, bmf());
    p.row("8. מנכס בית", {p.at(B, "N059"), p.at(M, "N201"), p.at(F, "N301")});
    p.row("9. מ\"חברת בית\"", {p.at(B, "N159"), p.at(M, "N202"), p.at(F, "N302")});
    p.row("10. מחברה משפחתית", {p.at(B, "N367"), p.at(M, "N204"), p.at(F, "N304")});
    p.row("11. רכוש אחר / ריבית", {p.at(B, "N167"), p.at(M, "N205"), p.at(F, "N305")});
}

void rechush(Page&) {}
void pturot(Page&) {}
void nikuim(Page&) {}
void nekudot(Page&) {}
void zikuim(Page&) {}
void tashlumim(Page&) {}
void klaliim(Page&) {}

const std::array<const EntryPageLayout*, 9>& layouts() {
    static const std::array<const EntryPageLayout*, 9> all = [] {
        static std::vector<Page> pages;
        pages.reserve(9);
        void (*const fill[9])(Page&) = {pratim, yegia, rechush, pturot, nikuim, nekudot, zikuim, tashlumim, klaliim};
        std::array<const EntryPageLayout*, 9> out{};
        for (int i = 0; i < 9; ++i) {
            Page& page = pages.emplace_back(static_cast<SectionId>(i + 1));
            fill[i](page);
            out[i] = &page.finish();
        }
        return out;
    }();
    return all;
}

// --- Lists ----------------------------------------------------------------------

const char* const kDegree[] = {"", "1 - תואר 1 / הוראה / מקצוע", "2 - תואר 2", "3 - תואר 3 רפואה",
                               "4 - תואר 3 ישיר", "9 - 2 תארים שונים"};
const char* const kSettlement[] = {"לא", "גבול הצפון (תקרה 193,080)", "הנגב והגליל (תקרה 132,840)"};
const char* const kRatesNorth[] = {"13", "25"};
const char* const kRatesSouth[] = {"13", "16", "20", "25"};
const char* const kMonths[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"};
const char* const kAllRates[] = {"13", "16", "20", "25"};

// --- Shown totals ---------------------------------------------------------------

const char* const kTTLM[] = {"N150", "N250", "N158", "N068", "N258", "N358", "N120", "YegiaM"};
const char* const kTTLF[] = {"N170", "N270", "N172", "N069", "N272", "N372", "N220", "YegiaF"};
const char* const kN209[] = {"N109", "N309", "Kizva", "Dira", "Acherot"};
const char* const kN260[] = {"N260_1", "N260_2", "N260_3", "N260_4", "N260_5", "N260_6"};
const char* const kN294[] = {"N294M", "N294F"};
const char* const kN042[] = {"N042M", "N042F"};
const char* const kN040[] = {"N040M", "N040F"};
const char* const kN043[] = {"N043M", "N043F"};
const char* const kN041[] = {"N041M", "N041F"};
const char* const kOdfot[] = {"OdfotM", "OdfotF"};
const char* const kMikdamot[] = {"MikdamotM", "MikdamotF"};
const char* const kTashlumim[] = {"TashlumimM", "TashlumimF"};
// The payments on account: the turnover of line 74 is no payment.
const char* const kPayM[] = {"N042M", "N040M", "N043M", "N041M", "OdfotM", "MikdamotM", "TashlumimM"};
const char* const kPayF[] = {"N042F", "N040F", "N043F", "N041F", "OdfotF", "MikdamotF", "TashlumimF"};
const char* const kPay[] = {"N042M", "N040M", "N043M", "N041M", "OdfotM", "MikdamotM", "TashlumimM",
                            "N042F", "N040F", "N043F", "N041F", "OdfotF", "MikdamotF", "TashlumimF"};

const DerivedTotal kTotals[] = {
    {SectionId::Yegia, "TTLM", kTTLM},
    {SectionId::Yegia, "TTLF", kTTLF},
    {SectionId::Pturot, "N209", kN209},
    {SectionId::Nekudot, "N260", kN260},
    {SectionId::Tashlumim, "N294", kN294},
    {SectionId::Tashlumim, "N042", kN042},
    {SectionId::Tashlumim, "N040", kN040},
    {SectionId::Tashlumim, "N043", kN043},
    {SectionId::Tashlumim, "N041", kN041},
    {SectionId::Tashlumim, "Odfot", kOdfot},
    {SectionId::Tashlumim, "Mikdamot", kMikdamot},
    {SectionId::Tashlumim, "Tashlumim", kTashlumim},
    {SectionId::Tashlumim, "TashTTLM", kPayM},
    {SectionId::Tashlumim, "TashTTLF", kPayF},
    {SectionId::Tashlumim, "TashTTL", kPay},
};

}  // namespace

const EntryPageLayout& entryLayout(SectionId section) {
    const int i = static_cast<int>(section) - 1;
    if (i < 0 || i >= 9) throw std::out_of_range("no such section");
    return *layouts()[static_cast<std::size_t>(i)];
}

const char* columnHead(Person column) {
    switch (column) {
        case Person::Both: return kBoth;
        case Person::M: return kM;
        case Person::F: return kF;
        case Person::Total: return kTotal;
        case Person::None: break;
    }
    return "";
}

FieldPlace findPlace(SectionId section, const char* field) {
    const std::string_view name(field);
    for (const EntryBlock& b : entryLayout(section).blocks)
        for (const EntryRow& r : b.rows)
            for (const EntryCell& c : r.cells)
                if (c.field && name == c.field) return {&b, &r, &c};
    return {};
}

std::span<const char* const> listEntries(ListId list) {
    switch (list) {
        case ListId::Degree: return kDegree;
        case ListId::Settlement: return kSettlement;
        case ListId::Rate: return kAllRates;
        case ListId::Months: return kMonths;
        case ListId::None: break;
    }
    return {};
}

std::span<const char* const> rateEntries(int settlementIndex) {
    switch (settlementIndex) {
        case 1: return kRatesNorth;
        case 2: return kRatesSouth;
        default: return {};
    }
}

const char* listText(ListId list, int index) {
    const auto entries = listEntries(list);
    // The settlement list's first entry ("לא": none) is no name on paper.
    if (index < 0 || static_cast<std::size_t>(index) >= entries.size()) return "";
    if (list == ListId::Settlement && index == 0) return "";
    return entries[static_cast<std::size_t>(index)];
}

std::span<const DerivedTotal> derivedTotals() { return kTotals; }

}  // namespace zelmor
