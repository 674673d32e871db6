// The report's sections on paper: the form with its blanks. Each section is a
// list of printed lines. The words (titles, column heads, captions) come from
// the entry layout, as paper words them; what is kept here is where they stand:
// columns, steps and rules. A line's cells name the section's fields, which are
// read, formatted and given their form code through the field catalogue.

#include <QString>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/values.h"
#include "print/paper.h"
#include "report/entry_layout.h"

namespace zelmor {
namespace {

enum class Fmt {
    Value,    // by the field's type: amount, count, date, text
    Mark,     // "x" for True, a blank for False
    List,     // the entry of the list the field draws from
    Marital,  // the marital line of the personal details (no field of its own)
};

struct Cell {
    double col = 0;
    const char* adjust = nullptr;  // the column moves by the width of this text...
    int sign = 1;                  // ...to the left (+1) or to the right (-1)
    std::string text = "";         // printed before the field's value
    const char* field = nullptr;   // a field of the section, or none
    bool code = false;             // the field's form code and ": " come before its value
    Fmt fmt = Fmt::Value;
    const char* after = "";        // printed after the value
    bool bold = false;
    bool underline = false;
    bool title = false;  // a block's title: two points larger
};

struct Rule {
    double x1;
    double x2;
    int width;
    const char* adjust1 = nullptr;  // x1 moves left by the width of this text
};

enum class Mark { None, Remember, Vertical };

struct Line {
    std::vector<Cell> cells;
    double step = 0;  // the NextLine after the line; 0: the next line shares LinePos
    std::vector<Rule> rules = {};
    Mark mark = Mark::None;
    int minYear = 0;  // printed only from this tax year on
};

// The words of a section's layout, as paper has them.
class PaperWords {
public:
    explicit PaperWords(SectionId section) : section_(section), layout_(entryLayout(section)) {}

    const char* title(std::size_t block) const { return layout_.blocks[block].heading.paper; }
    const char* lines(std::size_t block) const { return layout_.blocks[block].lines.paper; }
    const char* head(std::size_t block, Person column) const { return columnOf(block, column).text.paper; }
    const char* sub(std::size_t block, Person column) const { return columnOf(block, column).sub; }
    // The caption of the row that holds the field, and the field's own caption.
    const char* row(const char* field) const { return place(field).row->caption.paper; }
    const char* cell(const char* field) const { return place(field).cell->caption.paper; }
    // A heading or note of the layout that stands `offset` rows from the row of the field.
    const char* note(const char* field, int offset) const {
        const FieldPlace at = place(field);
        const auto rows = at.block->rows;
        const auto k = (at.row - rows.data()) + offset;
        if (k < 0 || static_cast<std::size_t>(k) >= rows.size() || !rows[static_cast<std::size_t>(k)].cells.empty())
            throw std::logic_error(std::string("no note beside ") + field);
        return rows[static_cast<std::size_t>(k)].caption.paper;
    }

private:
    FieldPlace place(const char* field) const {
        const FieldPlace at = findPlace(section_, field);
        if (!at.row) throw std::logic_error(std::string("the layout does not place ") + field);
        return at;
    }
    const ColumnHead& columnOf(std::size_t block, Person column) const {
        for (const ColumnHead& h : layout_.blocks[block].columns)
            if (h.column == column) return h;
        throw std::logic_error("no such column head");
    }

    SectionId section_;
    const EntryPageLayout& layout_;
};

// A caption that paper breaks over two lines ("first\nsecond").
std::string firstLine(const char* s) {
    const std::string t(s);
    return t.substr(0, t.find('\n'));
}
std::string secondLine(const char* s) {
    const std::string t(s);
    const auto nl = t.find('\n');
    return nl == std::string::npos ? std::string() : t.substr(nl + 1);
}

// Cell builders.
Cell L(double col, std::string text) { return {.col = col, .text = std::move(text)}; }
Cell LA(double col, const char* adjust, std::string text) {
    return {.col = col, .adjust = adjust, .text = std::move(text)};
}
Cell Bold(double col, std::string text) { return {.col = col, .text = std::move(text), .bold = true}; }
Cell Head(double col, std::string text) {
    return {.col = col, .text = std::move(text), .bold = true, .underline = true};
}
Cell Title(double col, std::string text) { return {.col = col, .text = std::move(text), .bold = true, .title = true}; }
// A text that ends at a column.
Cell EndsAt(double col, const char* text, bool bold = false) {
    return {.col = col, .adjust = text, .sign = -1, .text = text, .bold = bold};
}
Cell C(double col, const char* field, std::string text = "") {
    return {.col = col, .text = std::move(text), .field = field, .code = true};
}
Cell V(double col, const char* field, const char* adjust = nullptr) {
    return {.col = col, .adjust = adjust, .field = field};
}
Cell B(double col, const char* field, std::string text = "") {  // "code: " and a mark
    return {.col = col, .text = std::move(text), .field = field, .code = true, .fmt = Fmt::Mark};
}
// The title row of a block: its name, and the form's line numbers ending at column 90.
Line TitleRow(const char* title, const char* lines) { return {{Title(5, title), EndsAt(90, lines, true)}, 1}; }
Line TitleRow(const PaperWords& w, std::size_t block) { return TitleRow(w.title(block), w.lines(block)); }
Line HeavyRule(double from = 5, double to = 90) { return {{}, 0.5, {{from, to, 3}}}; }

constexpr Person kBoth = Person::Both;
constexpr Person kM = Person::M;
constexpr Person kF = Person::F;
constexpr Person kTotal = Person::Total;

const std::vector<Line>& yegiaLines() {
    const PaperWords w(SectionId::Yegia);
    auto mf = [&w](const char* m, const char* f) { return Line{{L(7, w.row(m)), C(35, m), C(60, f)}, 1}; };
    auto bmf = [&w](const char* both, const char* m, const char* f, double step = 1) {
        return Line{{L(7, w.row(both)), C(30, both), C(50, m), C(70, f)}, step};
    };
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        {{Head(35, w.head(0, kM)), Head(60, w.head(0, kF))}, 1},
        mf("N150", "N170"),
        mf("N250", "N270"),
        mf("N158", "N172"),
        mf("N068", "N069"),
        mf("N258", "N272"),
        mf("N358", "N372"),
        mf("N120", "N220"),
        {{L(7, w.row("YegiaM")), V(35, "YegiaM", "120: "), V(60, "YegiaF", "120: ")}, 1},
        {{}, 0.5, {{35, 50, 1, "120: "}, {60, 75, 1, "120: "}}},
        {{L(7, w.row("TTLM")), V(35, "TTLM", "120: "), V(60, "TTLF", "120: ")}, 3},
        TitleRow(w, 1),
        HeavyRule(),
        {{Head(30, w.head(1, kBoth)), Head(50, w.head(1, kM)), Head(70, w.head(1, kF))}, 1},
        bmf("N059", "N201", "N301"),
        bmf("N159", "N202", "N302"),
        bmf("N367", "N204", "N304"),
        bmf("N167", "N205", "N305", 0),
    };
    return lines;
}

const std::vector<Line>& rechushLines() {
    const PaperWords w(SectionId::Rechush);
    auto row = [&w](const char* both, const char* m, const char* f) {
        return Line{{L(7, w.row(both)), C(30, both), C(50, m), C(70, f)}, 1};
    };
    auto jointOnly = [&w](const char* both) { return Line{{L(7, w.row(both)), C(30, both)}, 1}; };
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        row("N061", "N214", "N314"),
        row("N060", "N211", "N311"),
        row("N067", "N228", "N328"),
        row("N157", "N257", "N357"),
        row("N141", "N241", "N341"),
        row("N055", "N212", "N312"),
        row("N053", "N213", "N313"),
        row("N078", "N217", "N317"),
        row("N126", "N226", "N326"),
        row("N142", "N242", "N342"),
        jointOnly("N222"),
        jointOnly("N225"),
        jointOnly("N227"),
        {{{.col = 7, .text = w.row("AcheretRate"), .field = "AcheretRate", .after = "%"}, V(30, "Acheret", "065: "),
          V(50, "AcheretM", "065: "), V(70, "AcheretF", "065: ")},
         3},
        TitleRow(w, 1),
        HeavyRule(),
        {{L(7, w.row("N032")), C(50, "N032"), C(70, "N163")}, 1},
    };
    return lines;
}

const std::vector<Line>& pturotLines() {
    const PaperWords w(SectionId::Pturot);
    // Blocks: 0 "ז", 1 "ח", 2 "ט", 3 "י", 4 "יא".
    auto item = [&w](const char* field) { return std::vector<Cell>{L(50, w.row(field)), C(70, field)}; };
    auto line = [](std::vector<std::vector<Cell>> parts, double step = 1) {
        Line l{{}, step};
        for (auto& p : parts) l.cells.insert(l.cells.end(), p.begin(), p.end());
        return l;
    };
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        {{L(7, w.row("N184")), C(50, "N184"), C(70, "N185")}, 1},
        {{L(7, w.row("N186")), C(50, "N186"), C(70, "N187")}, 1},
        {{}, 2},
        TitleRow(w, 1),
        HeavyRule(),
        {{L(7, w.row("N054")), C(30, "N054")}, 1},
        {{L(7, w.row("N056")), C(30, "N056"), L(50, w.row("N256")), C(70, "N256")}, 1},
        {{LA(7, "32. ", w.row("Reali")), V(30, "Reali", "054: "), LA(50, "33. ", w.row("N256Revach")),
          V(70, "N256Revach", "256: ")},
         1},
        {{LA(7, "32. ", w.row("Reali25")), V(30, "Reali25", "054: "), LA(50, "33. ", w.row("N256Revach20")),
          V(70, "N256Revach20", "256: ")},
         1},
        {{LA(7, "32. ", w.row("Infla")), V(30, "Infla", "054: "), LA(50, "33. ", w.row("N256Revach25")),
          V(70, "N256Revach25", "256: ")},
         1},
        {{}, 2},
        // Two blocks side by side: "ט" and "י" on the right, "יא" on the left,
        // with a vertical rule between them at column 46.
        {{Title(5, w.title(2)), EndsAt(46, w.lines(2), true), Title(48, w.title(4)), EndsAt(90, w.lines(4), true)}, 1},
        {{}, 0.5, {{5, 90, 3}}, Mark::Remember},
        {{L(7, w.row("N290")), EndsAt(35, "290: "), V(35, "N290"), L(49, w.note("N097", -1))}, 1},
        line({{Title(5, w.title(3)), EndsAt(46, w.lines(3), true)}, item("N097")}),
        HeavyRule(5, 46),
        line({{L(7, w.row("N109")), EndsAt(35, "109: "), V(35, "N109")}, item("N195")}),
        line({{LA(7, "35. לפי סעיף 9(5) - ", w.row("N309")), EndsAt(35, "309: "), V(35, "N309")}, item("N279")}),
        {{L(7, w.row("Kizva")), V(35, "Kizva"), L(49, w.note("N079", -1))}, 1},
        line({{L(7, w.row("Dira")), V(35, "Dira")}, item("N079")}),
        line({{L(7, w.row("Acherot"))}, item("N179")}),
        line({{V(9, "AcherotText"), V(35, "Acherot")}, item("N166")}),
        line({{L(7, w.row("N209")), EndsAt(35, "209: "), V(35, "N209")}, item("N160")}),
        line({item("N299")}, 0),
        {{}, 0, {{1, 1, 3}}, Mark::Vertical},
    };
    return lines;
}

const std::vector<Line>& nikuimLines() {
    const PaperWords w(SectionId::Nikuim);
    auto row = [&w](const char* m, const char* f, double step = 1) {
        return Line{{L(7, w.row(m)), C(50, m), C(70, f)}, step};
    };
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        {{Bold(50, w.head(0, kM)), Bold(70, w.head(0, kF))}, 1},
        {{Head(50, w.sub(0, kM)), Head(70, w.sub(0, kF))}, 1},
        row("N112", "N113"),
        row("N206", "N207"),
        row("N136", "N137"),
        row("N218", "N219"),
        {{}, 0.5, {{7, 90, 1}}},
        row("N135", "N180"),
        row("N030", "N089"),
        {{Bold(9, w.note("N005", -1))}, 1},
        row("N005", "N006"),
        row("N116", "N117"),
        row("N118", "N119"),
        {{}, 0.5, {{7, 90, 1}}},
        row("N244", "N245"),
        row("N248", "N249", 0),
    };
    return lines;
}

const std::vector<Line>& nekudotLines() {
    const PaperWords w(SectionId::Nekudot);
    auto mark = [&w](const char* field) { return Line{{L(7, w.row(field)), B(50, field)}, 1}; };
    const char* children[] = {"N260_1", "N260_2", "N260_3", "N260_4", "N260_5", "N260_6"};
    Line ages{{L(7, w.row("N260_1"))}, 1};
    Line counts{{}, 1};
    for (int i = 0; i < 6; ++i) {
        ages.cells.push_back(L(55 + 5 * i, w.cell(children[i])));
        counts.cells.push_back(V(55 + 5 * i, children[i]));
    }
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        mark("N020"),
        mark("N021"),
        mark("N025"),
        mark("N028"),
        ages,
        counts,
        mark("N026"),
        {{L(7, w.row("N029")), B(50, "N029"), B(70, "N129", w.cell("N129"))}, 1},
        {{L(7, w.row("N023")), C(50, "N023"), C(70, "N131", w.cell("N131"))}, 1},
        {{L(7, w.row("OleDateM")), V(50, "OleDateM", "023: "),
          {.col = 70, .text = w.cell("OleDateF"), .field = "OleDateF"}},
         1},
        {{L(7, w.row("N224")), C(50, "N224"), C(70, "N324", w.cell("N324"))}, 1},
        {{LA(7, "60. ", w.row("N024")), C(50, "N024"), C(70, "N124", w.cell("N124"))}, 1},
        // The degree texts are wider than the columns of the lines above:
        // both move right, clear of the caption and of each other.
        {{L(7, w.row("N181")), {.col = 40, .field = "N181", .code = true, .fmt = Fmt::List},
          {.col = 63, .text = w.cell("N182"), .field = "N182", .code = true, .fmt = Fmt::List}},
         0},
    };
    return lines;
}

const std::vector<Line>& zikuimLines() {
    const PaperWords w(SectionId::Zikuim);
    auto row = [&w](const char* m, const char* f) { return Line{{L(7, w.row(m)), C(40, m), C(65, f)}, 1}; };
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        {{Head(40, w.head(0, kM)), Head(65, w.head(0, kF))}, 1},
        row("N036", "N081"),
        row("N140", "N240"),
        row("N045", "N086"),
        row("N268", "N269"),
        row("N132", "N232"),
        row("N037", "N237"),
        row("N143", "N144"),
        {{L(7, w.row("N093")), {.col = 30, .field = "N093", .fmt = Fmt::List},
          {.col = 60, .field = "N193", .fmt = Fmt::List}},
         1},
        {{LA(7, "69. ", w.row("N093Rate")), {.col = 30, .text = w.cell("N093Rate"), .field = "N093Rate", .after = "%"},
          {.col = 40, .text = w.cell("N093Month"), .field = "N093Month"},
          {.col = 60, .text = w.cell("N193Rate"), .field = "N193Rate", .after = "%"},
          {.col = 70, .text = w.cell("N193Month"), .field = "N193Month"}},
         1},
        {{LA(7, "69. ", w.row("AcherimText"))}, 1},
        {{{.col = 7, .adjust = "69. ", .text = w.cell("AcherimText"), .field = "AcherimText"},
          V(40, "AcherimM", "143: "), V(65, "AcherimF", "143: ")},
         0},
    };
    return lines;
}

const std::vector<Line>& tashlumimLines() {
    const PaperWords w(SectionId::Tashlumim);
    auto row = [&w](const char* m, const char* f, const char* total, const char* code) {
        return Line{{L(7, w.row(m)), V(35, m), V(55, f), EndsAt(75, code), V(75, total)}, 1};
    };
    auto plain = [&w](const char* adjust, const char* m, const char* f, const char* total, double step = 1) {
        return Line{{LA(7, adjust, w.row(m)), V(35, m), V(55, f), V(75, total)}, step};
    };
    Line interest = row("N043M", "N043F", "N043", "043: ");
    interest.minYear = 2003;  // the line came into the form in 2003
    static const std::vector<Line> lines = {
        TitleRow(w, 0),
        HeavyRule(),
        {{Head(75, w.head(0, kTotal))}, 1},
        row("N294M", "N294F", "N294", "294: "),
        {{LA(7, "74. ", w.note("N294M", 1))}, 1},
        {{Head(35, w.head(0, kM)), Head(55, w.head(0, kF))}, 1},
        row("N042M", "N042F", "N042", "042: "),
        row("N040M", "N040F", "N040", "040: "),
        interest,
        row("N041M", "N041F", "N041", "041: "),
        plain(nullptr, "OdfotM", "OdfotF", "Odfot"),
        {{LA(7, "79. ", w.note("MikdamotM", -1))}, 1},
        plain("79. שו", "MikdamotM", "MikdamotF", "Mikdamot"),
        // The rules stand under the amounts of this line, not through them.
        plain("79. שו", "TashlumimM", "TashlumimF", "Tashlumim"),
        {{}, 0.5, {{35, 45, 1}, {55, 65, 1}, {75, 85, 1}}},
        {{Bold(7, w.row("TashTTLM")), {.col = 35, .field = "TashTTLM", .bold = true},
          {.col = 55, .field = "TashTTLF", .bold = true}, {.col = 75, .field = "TashTTL", .bold = true}},
         0},
    };
    return lines;
}

// Labels that end where their values start; the label is the field's own caption.
Line pairs(const PaperWords& w, std::initializer_list<std::pair<double, const char*>> items, double step = 1) {
    Line line{{}, step};
    for (const auto& [col, field] : items) {
        line.cells.push_back(EndsAt(col, w.cell(field)));
        line.cells.push_back(V(col, field));
    }
    return line;
}
// A row whose caption ends where the M value starts, with the F value at 60.
Line rowPair(const PaperWords& w, const char* m, const char* f) {
    return {{EndsAt(20, w.row(m)), V(20, m), EndsAt(60, ""), V(60, f)}, 1};
}

const std::vector<Line>& pratimLines() {
    const PaperWords w(SectionId::Pratim);
    static const std::vector<Line> lines = {
        {{Title(5, w.title(0))}, 1},
        HeavyRule(),
        {{Head(17, w.head(0, kM)), Head(60, w.head(0, kF))}, 1},
        pairs(w, {{20, "IDM"}, {38, "LastNameM"}, {60, "IDF"}, {78, "LastNameF"}}),
        pairs(w, {{20, "FirstNameM"}, {38, "FatherNameM"}, {60, "FirstNameF"}, {78, "FatherNameF"}}),
        pairs(w, {{20, "BirthDateM"}, {60, "BirthDateF"}}),
        {{}, 0.5, {{5, 90, 1}}},
        {{{.col = 7, .text = w.cell("MailAddress"), .field = "MailAddress"}}, 1},
        {{{.col = 7, .text = w.cell("Address"), .field = "Address"}}, 1},
        [&w] {
            Line l = pairs(w, {{20, "PhoneH"}, {38, "PhoneWM"}, {60, "PhoneWF"}, {78, "Fax"}});
            l.cells.insert(l.cells.begin(), L(7, w.row("PhoneH")));
            return l;
        }(),
        rowPair(w, "ProfessionM", "ProfessionF"),
        rowPair(w, "BusinessNameM", "BusinessNameF"),
        rowPair(w, "BusinessAddressM", "BusinessAddressF"),
        [&w] {
            Line l = pairs(w, {{20, "TikNikuimM"}, {38, "TikMaamM"}, {60, "TikNikuimF"}, {78, "TikMaamF"}});
            l.cells.insert(l.cells.begin(), L(7, w.row("TikNikuimM")));
            return l;
        }(),
        rowPair(w, "BossNameM", "BossNameF"),
        {{{.col = 7, .fmt = Fmt::Marital}}, 2},
        {{Title(5, w.title(1))}, 1},
        HeavyRule(),
        pairs(w, {{20, "DochDate"}}),
        pairs(w, {{20, "SupportName"}, {50, "SupportDealerNum"}, {72, "SupportPhone"}}),
        pairs(w, {{20, "SupportProfession"}, {50, "SupportAddress"}}, 0),
    };
    return lines;
}

const std::vector<Line>& klaliimLines() {
    const PaperWords w(SectionId::Klaliim);
    // A declaration: its mark, and its caption a little to the left. A caption
    // that paper breaks over two lines gives its first line here and its
    // second to `rest`, which stands under it.
    auto decl = [&w](double col, const char* field) {
        return std::vector<Cell>{{.col = col, .field = field, .fmt = Fmt::Mark}, L(col + 1.5, firstLine(w.cell(field)))};
    };
    auto rest = [&w](double col, const char* field) { return std::vector<Cell>{L(col, secondLine(w.cell(field)))}; };
    auto label = [](double col, const char* text) { return std::vector<Cell>{L(col, text)}; };
    auto line = [](std::vector<std::vector<Cell>> parts, double step = 1) {
        Line l{{}, step};
        for (auto& p : parts) l.cells.insert(l.cells.end(), p.begin(), p.end());
        return l;
    };
    static const std::vector<Line> lines = {
        {{Title(5, w.title(0))}, 1},
        HeavyRule(),
        {{{.col = 7, .text = w.cell("Shuma"), .field = "Shuma"}}, 1.5},
        line({label(7, w.row("isMeAndBZ")), decl(50, "isHechzerMas")}),
        line({decl(9, "isMeAndBZ"), decl(50, "isBakashaNifrad")}),
        line({decl(9, "isMe"), decl(50, "isKerenHishtalmut")}),
        line({decl(9, "isBZDochNifrad"), rest(51.5, "isKerenHishtalmut")}),
        line({decl(9, "isBZNoIncome"), decl(50, "isYozerBenemanut")}),
        line({label(7, w.row("isTlutYes")), rest(51.5, "isYozerBenemanut")}),
        line({decl(9, "isTlutYes"), decl(20, "isTlutNo"), decl(50, "isNeheneBenemanut")}),
        line({decl(7, "isBZOzer"), rest(51.5, "isNeheneBenemanut")}),
        line({decl(7, "isShotfut"), decl(50, "isIverOrNeche")}),
        line({decl(7, "isHul"), decl(50, "isShlitaNischar")}),
        line({label(7, w.note("isMevusas", -1)), decl(50, "isZchuyotLoNischar")}),
        line({decl(9, "isMevusas"), decl(50, "isPeulaTichnunHayav")}),
        line({{{.col = 9, .text = w.cell("Tosefet"), .field = "Tosefet"},
               {.col = 20, .text = w.cell("Saif"), .field = "Saif", .after = " להוראות"}},
              decl(50, "isIskaotZdadimHul")}),
        line({label(9, w.row("isKfula")), decl(20, "isKfula"), decl(30, "isHadZidi")}),
        line({label(9, w.row("isKupaYes")), decl(20, "isKupaYes"), decl(30, "isKupaNo")}),
        line({label(9, w.row("isMemuhshav")), decl(20, "isMemuhshav"), decl(30, "isYadani")}),
        line({decl(7, "isHaklai")}),
        line({rest(8.5, "isHaklai")}),
        line({label(7, w.note("isPerekBet", -1))}),
        line({label(9, w.row("isPerekBet")), decl(20, "isPerekBet"), decl(30, "isPerekGimel"), decl(40, "isNoTeum")}),
        line({decl(7, "isFamily")}, 0),
    };
    return lines;
}

const std::vector<Line>& sectionLines(SectionId id) {
    switch (id) {
        case SectionId::Pratim: return pratimLines();
        case SectionId::Yegia: return yegiaLines();
        case SectionId::Rechush: return rechushLines();
        case SectionId::Pturot: return pturotLines();
        case SectionId::Nikuim: return nikuimLines();
        case SectionId::Nekudot: return nekudotLines();
        case SectionId::Zikuim: return zikuimLines();
        case SectionId::Tashlumim: return tashlumimLines();
        case SectionId::Klaliim: return klaliimLines();
    }
    throw std::out_of_range("no such section");
}

// The row caption, the sex when one is chosen, and the status that is True,
// in the female form when M is a woman.
QString maritalText(const sections::Pratim& p) {
    const PaperWords w(SectionId::Pratim);
    QString t = QString::fromUtf8(w.row("isRavak"));
    if (p.isMale) t += QString::fromUtf8(w.cell("isMale"));
    else if (p.isFemale) t += QString::fromUtf8(w.cell("isFemale"));
    for (const EntryCell& status : findPlace(SectionId::Pratim, "isRavak").row->cells) {
        const FieldDef* f = findField("Pratim", status.field);
        if (!*static_cast<const bool*>(f->inSection(const_cast<sections::Pratim*>(&p)))) continue;
        t += QString::fromUtf8(p.isFemale && *f->femaleCaption ? f->femaleCaption : status.caption.paper);
        break;
    }
    return t;
}

std::int32_t whole(const FieldDef& f, const NishumInput& r) {
    switch (f.type) {
        case FieldType::Amount: return f.ref<Amount>(r).value();
        case FieldType::Number: return f.ref<std::int32_t>(r);
        case FieldType::Count: return f.ref<std::int16_t>(r);
        case FieldType::Boolean: return f.ref<bool>(r) ? 1 : 0;
        default: return 0;
    }
}

QString valueText(const FieldDef& f, const NishumInput& r, Fmt fmt) {
    switch (fmt) {
        case Fmt::Mark: return f.ref<bool>(r) ? QStringLiteral("x") : QStringLiteral(" ");
        case Fmt::List: return QString::fromUtf8(listText(f.list, whole(f, r)));
        case Fmt::Value:
        case Fmt::Marital: break;
    }
    switch (f.type) {
        case FieldType::Text: return QString::fromStdString(f.ref<std::string>(r));
        case FieldType::Date: return QString::fromStdString(FormatDate(f.ref<Date>(r)));
        default: return QString::fromStdString(FormatAmount(whole(f, r)));
    }
}

}  // namespace

void PrintSection(ClsPrint& p, SectionId section, const NishumInput& report, const ConstDoch& c) {
    const char* sectionName = sectionDef(section).name;
    float remembered = 0;
    for (const Line& line : sectionLines(section)) {
        if (line.minYear && c.YEARDOCH() < line.minYear) continue;
        for (const Cell& cell : line.cells) {
            QString text = QString::fromStdString(cell.text);
            if (cell.fmt == Fmt::Marital) {
                text = maritalText(report.Pratim);
            } else if (cell.field) {
                const FieldDef* f = findField(sectionName, cell.field);
                if (!f) throw std::logic_error(std::string("no field ") + sectionName + "." + cell.field);
                if (cell.code) text += QString::fromUtf8(f->code) + QStringLiteral(": ");
                text += valueText(*f, report, cell.fmt);
            }
            text += QString::fromUtf8(cell.after);
            if (cell.title) p.SetFontSize(p.FontSize() + 2);
            if (cell.underline) p.SetFontUnderline(true);
            double col = cell.col;
            if (cell.adjust) col += cell.sign * p.TextWidth(QString::fromUtf8(cell.adjust));
            p.PrintString(col, text, cell.bold);
            if (cell.underline) p.SetFontUnderline(false);
            if (cell.title) p.SetFontSize(p.FontSize() - 2);
        }
        for (const Rule& r : line.rules) {
            const double x1 = r.x1 + (r.adjust1 ? p.TextWidth(QString::fromUtf8(r.adjust1)) : 0);
            p.PrintLine(static_cast<float>(x1), p.LinePos, static_cast<float>(r.x2), p.LinePos, r.width);
        }
        if (line.mark == Mark::Remember) remembered = p.LinePos;
        // The rule between the side-by-side blocks, unless a page turned between.
        if (line.mark == Mark::Vertical && p.LinePos > remembered)
            p.PrintLine(46, remembered, 46, p.LinePos, 3);
        if (line.step != 0) p.NextLine(static_cast<float>(line.step));
    }
}

}  // namespace zelmor
