#include "shell/entry_page.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QFontMetrics>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <map>

#include "core/field_checks.h"
#include "core/values.h"
#include "core/tax_year.h"
#include "report/entry_layout.h"
#include "shell/entry_fields.h"
#include "shell/messages.h"

namespace zelmor::shell {

struct EntryPage::Slot {
    const FieldDef* def = nullptr;
    const EntryCell* cell = nullptr;
    const EntryRow* row = nullptr;
    FieldWidget w;
};

namespace {

// Where the insured income of a person finds its limit: the salary and the
// shift work of the same person, as the report holds them.
struct SalaryPair {
    const char* field;
    Amount sections::Yegia::*salary;
    Amount sections::Yegia::*shifts;
};
constexpr SalaryPair kInsuredLimits[] = {
    {"N244", &sections::Yegia::N158, &sections::Yegia::N068},
    {"N245", &sections::Yegia::N172, &sections::Yegia::N069},
};

// The options that choose the wording of the marital options.
constexpr const char* kFemaleOption = "isFemale";
constexpr const char* kMaleOption = "isMale";


}  // namespace

EntryPage::EntryPage(SectionId section, const NishumInput* report, QWidget* parent)
    : QWidget(parent), section_(section), report_(report), ceiling_(ConstDoch{}.PTURANECHE()) {
    setObjectName(QString::fromLatin1(sectionDef(section).name));
    setLayoutDirection(Qt::RightToLeft);
    setFont(screenFont());
    setAutoFillBackground(true);
    build();
    setFixedSize(childSize());
}

EntryPage::~EntryPage() = default;

SectionId EntryPage::section() const { return section_; }

QFont EntryPage::screenFont() {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(8);
    return f;
}

QSize EntryPage::childSize() { return {600, 480}; }

EntryPage::Slot* EntryPage::slotOf(QObject* widget) const {
    for (const auto& s : slots_)
        if (s->w.widget == widget) return s.get();
    return nullptr;
}

EntryPage::Slot* EntryPage::slotNamed(const char* name) const {
    for (const auto& s : slots_)
        if (qstrcmp(s->def->name, name) == 0) return s.get();
    return nullptr;
}

QWidget* EntryPage::fieldWidget(const QString& name) const {
    const QByteArray n = name.toLatin1();
    const Slot* s = slotNamed(n.constData());
    return s ? s->w.widget : nullptr;
}

// --- Building ------------------------------------------------------------------

void EntryPage::build() {
    SlotMap placed;
    std::vector<QWidget*> blocks;
    for (const EntryBlock& block : entryLayout(section_).blocks)
        if (onScreen(block.medium)) blocks.push_back(buildBlock(block, placed));
    placeBlocks(blocks);

    // Catalogue order, for the rules that walk the fields.
    for (const FieldDef& def : sectionFields(section_)) {
        auto it = placed.find(&def);
        if (it != placed.end()) slots_.push_back(std::move(it->second));
    }
    for (auto& s : slots_) addField(*s);

    // Tab order: the catalogue's tab places, ascending.
    std::vector<const Slot*> entries;
    for (const auto& s : slots_)
        if (s->def->tab >= 0 && s->def->control != Control::Total) entries.push_back(s.get());
    std::stable_sort(entries.begin(), entries.end(), [](const Slot* a, const Slot* b) { return a->def->tab < b->def->tab; });
    for (const Slot* s : entries) tabOrder_.push_back(s->w.widget);
    for (std::size_t i = 1; i < tabOrder_.size(); ++i) setTabOrder(tabOrder_[i - 1], tabOrder_[i]);

    // Accessible names: the row's caption (or the cell's own), then, where
    // several fields share it, the column head, the cell's caption, the field.
    auto disambiguate = [this](auto&& extra) {
        std::map<QString, int> uses;
        for (const auto& s : slots_) ++uses[s->w.widget->accessibleName()];
        for (const auto& s : slots_) {
            const QString more = extra(*s);
            if (uses[s->w.widget->accessibleName()] > 1 && !more.isEmpty())
                s->w.widget->setAccessibleName(s->w.widget->accessibleName() + QStringLiteral(" - ") + more);
        }
    };
    disambiguate([](const Slot& s) { return QString::fromUtf8(s.cell ? columnHead(s.cell->column) : ""); });
    disambiguate([](const Slot& s) { return QString::fromUtf8(s.cell ? s.cell->caption.screen : "").trimmed(); });
    disambiguate([](const Slot& s) { return QString::fromLatin1(s.def->name); });
}

// One block: its heading and line range, its column heads, its rows. Grid
// columns: 0 the row captions, then for each column of the block the line
// codes and the fields.
QWidget* EntryPage::buildBlock(const EntryBlock& block, SlotMap& placed) {
    auto* area = new QWidget(this);
    auto* v = new QVBoxLayout(area);
    v->setContentsMargins(0, 0, 0, 0);
    v->setSpacing(1);

    auto* head = new QHBoxLayout;
    head->setSpacing(12);
    QLabel* heading = plainLabel(QString::fromUtf8(block.heading.screen), area);
    QFont bold = font();
    bold.setBold(true);
    heading->setFont(bold);
    head->addWidget(heading);
    if (*block.lines.screen) head->addWidget(plainLabel(QString::fromUtf8(block.lines.screen), area));
    head->addStretch(1);
    v->addLayout(head);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(1);
    v->addLayout(grid);
    v->addStretch(1);
    const int columns = static_cast<int>(block.columns.size());
    int r = 0;
    bool subs = false;
    for (int j = 0; j < columns; ++j) {
        const ColumnHead& h = block.columns[static_cast<std::size_t>(j)];
        QLabel* l = plainLabel(QString::fromUtf8(h.text.screen), area);
        l->setAlignment(Qt::AlignCenter);
        grid->addWidget(l, r, 1 + 2 * j, 1, 2);
        if (*h.sub) {
            QLabel* sub = plainLabel(QString::fromUtf8(h.sub), area);
            sub->setAlignment(Qt::AlignCenter);
            grid->addWidget(sub, r + 1, 1 + 2 * j, 1, 2);
            subs = true;
        }
    }
    if (columns > 0) r += subs ? 2 : 1;
    for (const EntryRow& row : block.rows)
        if (onScreen(row.medium)) addRow(grid, r++, block, row, placed);

    const int lastColumn = std::max(2 * columns, 1);
    for (int c = 1; c <= lastColumn; ++c) grid->setColumnStretch(c, c % 2 == 0 ? 1 : 0);
    grid->setColumnStretch(0, 8);  // room goes to the captions first, so that they need not wrap
    return area;
}

void EntryPage::addRow(QGridLayout* grid, int r, const EntryBlock& block, const EntryRow& row, SlotMap& placed) {
    QWidget* area = grid->parentWidget();
    const int columns = static_cast<int>(block.columns.size());
    const int lastColumn = std::max(2 * columns, 1);
    const QString caption = QString::fromUtf8(row.caption.screen);
    if (row.cells.empty()) {
        grid->addWidget(plainLabel(caption, area), r, 0, 1, lastColumn + 1);
        return;
    }
    // A row captioned like one of its cells shows the caption once, beside the cell.
    bool repeated = false, ownCaptions = true, outsideColumns = true, someOutside = false;
    for (const EntryCell& cell : row.cells) {
        if (!onScreen(cell.medium) || !cell.field) continue;
        const FieldDef& def = *findField(sectionDef(section_).name, cell.field);
        if (caption == QString::fromUtf8(cell.caption.screen) || caption == buttonText(def)) repeated = true;
        if (!*cell.caption.screen) ownCaptions = false;
        if (cell.column != Person::None)
            outsideColumns = false;
        else
            someOutside = true;
    }
    const bool showCaption = !caption.isEmpty() && !repeated;
    // A row of captioned cells, or of cells outside the block's columns, runs
    // across the block, its caption first.
    const bool across = (columns == 0 && ownCaptions && showCaption) || (columns > 0 && outsideColumns);
    std::map<int, QHBoxLayout*> boxes;  // by column of the block; -1 the caption's place
    std::map<int, bool> trailing;       // the last cell of the box ends in a text
    // A captioned cell may use the code column of its column as well, and the
    // first column the caption's place when the row shows none.
    auto boxAt = [&](int j, bool captioned) -> QHBoxLayout* {
        QHBoxLayout*& box = boxes[j];
        if (box) return box;
        box = new QHBoxLayout;
        box->setSpacing(3);
        if (j == 0 && !showCaption)
            grid->addLayout(box, r, 0, 1, 3);
        else if (j >= 0 && captioned)
            grid->addLayout(box, r, 1 + 2 * j, 1, 2);
        else if (j >= 0)
            grid->addLayout(box, r, 2 + 2 * j);
        else if (columns > 0 || across)
            grid->addLayout(box, r, 0, 1, across ? lastColumn + 1 : 1);
        else
            grid->addLayout(box, r, 1, 1, lastColumn);
        return box;
    };
    if (showCaption) {
        // Long captions wrap rather than push the fields off the page; a run
        // of blanks in a caption is where the form breaks its line.
        static const QRegularExpression kBreak(QStringLiteral(" {3,}"));
        const QString text = QString(caption).replace(kBreak, QStringLiteral("\n"));
        QLabel* l = plainLabel(text, area);
        l->setWordWrap(true);
        const QFontMetrics fm(font());
        int oneLine = 0;
        for (const QString& part : text.split(QLatin1Char('\n')))
            oneLine = std::max(oneLine, fm.horizontalAdvance(part) + 2);
        l->setMinimumWidth(across ? oneLine : std::min(oneLine, fm.averageCharWidth() * 22));
        if (across || (columns > 0 && someOutside))
            boxAt(-1, false)->addWidget(l, 1);
        else
            grid->addWidget(l, r, 0);
    }
    for (const EntryCell& cell : row.cells) {
        if (!onScreen(cell.medium) || !cell.field) continue;
        int j = -1;
        for (int k = 0; k < columns; ++k)
            if (block.columns[static_cast<std::size_t>(k)].column == cell.column) j = k;
        const FieldDef* def = findField(sectionDef(section_).name, cell.field);
        auto& slot = placed[def];
        if (!slot) slot = std::make_unique<Slot>();
        Slot& s = *slot;
        s.def = def;
        s.cell = &cell;
        s.row = &row;
        s.w = makeFieldWidget(*def, cell, area);
        const bool first = !boxes.count(j) || (j < 0 && boxes[j]->count() == 1 && showCaption);
        const bool captioned = *cell.caption.screen;
        QHBoxLayout* box = boxAt(j, captioned);
        // Cells of one box stand apart; further after a text that trails its field.
        if (!first) box->addSpacing(box->count() > 0 && trailing[j] ? 12 : 6);
        if (s.w.code && j >= 0 && first && (j > 0 || showCaption) && !captioned)
            grid->addWidget(s.w.code, r, 1 + 2 * j);  // codes line up in their own column
        else if (s.w.code)
            box->addWidget(s.w.code);
        for (QWidget* piece : s.w.before) box->addWidget(piece);
        // Text fields take the room the row leaves, up to their own length.
        box->addWidget(s.w.widget, s.w.widget->sizePolicy().horizontalPolicy() == QSizePolicy::Expanding ? 10 : 0);
        for (QWidget* piece : s.w.after) box->addWidget(piece);
        trailing[j] = !s.w.after.empty();
    }
    for (auto& entry : boxes) entry.second->addStretch(1);
}

// The blocks top to bottom; a page too tall for its area keeps its wide
// blocks across the top and flows the others into two columns, right then left.
void EntryPage::placeBlocks(const std::vector<QWidget*>& blocks) {
    auto* outer = new QGridLayout(this);
    constexpr int kMargin = 6, kGap = 3, kColumnGap = 12;
    outer->setContentsMargins(kMargin, kGap, kMargin, kGap);
    outer->setHorizontalSpacing(kColumnGap);
    outer->setVerticalSpacing(kGap);
    const QSize area = childSize() - QSize(2 * kMargin, 2 * kGap);
    std::vector<int> heights;
    int total = 0;
    for (QWidget* b : blocks) {
        heights.push_back(b->minimumSizeHint().height());
        total += heights.back() + kGap;
    }
    const int n = static_cast<int>(blocks.size());
    if (total - kGap <= area.height()) {
        for (int i = 0; i < n; ++i) outer->addWidget(blocks[static_cast<std::size_t>(i)], i, 0, 1, 2);
        outer->setRowStretch(n, 1);
        return;
    }
    const int half = (area.width() - kColumnGap) / 2;
    int wide = 0;
    while (wide < n && blocks[static_cast<std::size_t>(wide)]->minimumSizeHint().width() > half) ++wide;
    // The split that makes the taller of the two columns lowest.
    int split = wide, best = std::numeric_limits<int>::max();
    for (int k = wide; k <= n; ++k) {
        int right = 0, left = 0;
        for (int i = wide; i < n; ++i) (i < k ? right : left) += heights[static_cast<std::size_t>(i)] + kGap;
        if (std::max(right, left) < best) {
            best = std::max(right, left);
            split = k;
        }
    }
    for (int i = 0; i < wide; ++i) outer->addWidget(blocks[static_cast<std::size_t>(i)], i, 0, 1, 2);
    auto* right = new QVBoxLayout;
    auto* left = new QVBoxLayout;
    for (auto* column : {right, left}) column->setSpacing(kGap);
    for (int i = wide; i < n; ++i) (i < split ? right : left)->addWidget(blocks[static_cast<std::size_t>(i)]);
    right->addStretch(1);
    left->addStretch(1);
    outer->addLayout(right, wide, 0);
    outer->addLayout(left, wide, 1);
    outer->setColumnStretch(0, 1);
    outer->setColumnStretch(1, 1);
    outer->setRowStretch(wide, 1);
}

void EntryPage::addField(Slot& s) {
    QWidget* w = s.w.widget;
    QString accessible = QString::fromUtf8(s.row ? s.row->caption.screen : "");
    if (accessible.isEmpty() && s.cell) accessible = QString::fromUtf8(s.cell->caption.screen);
    if (accessible.isEmpty()) accessible = QString::fromUtf8(s.def->caption);
    w->setAccessibleName(accessible.trimmed());
    if (s.def->control == Control::Total) return;
    w->installEventFilter(this);
    if (s.w.edit) connect(s.w.edit, &QLineEdit::textEdited, this, &EntryPage::edited);
    if (s.w.button) {
        connect(s.w.button, &QAbstractButton::clicked, this, &EntryPage::edited);
        if (qstrcmp(s.def->name, kFemaleOption) == 0)
            connect(s.w.button, &QAbstractButton::toggled, this, [this](bool on) { if (on) applyWording(true); });
        if (qstrcmp(s.def->name, kMaleOption) == 0)
            connect(s.w.button, &QAbstractButton::toggled, this, [this](bool on) { if (on) applyWording(false); });
    }
    if (s.w.combo) {
        connect(s.w.combo, &QComboBox::activated, this, &EntryPage::edited);
        if (s.def->list == ListId::Settlement) {
            QComboBox* c = s.w.combo;
            connect(c, &QComboBox::currentIndexChanged, this, [this, c] { fillRates(c); });
        }
    }
    // Options of one group exclude each other.
    if (s.w.button && *s.def->group) {
        QButtonGroup* group = nullptr;
        for (const auto& other : slots_)
            if (other.get() != &s && other->w.group && qstrcmp(other->def->group, s.def->group) == 0) group = other->w.group;
        if (!group) {
            group = new QButtonGroup(this);
            group->setExclusive(true);
        }
        group->addButton(s.w.button);
        s.w.group = group;
    }
}

// --- Keys, focus and the rules on leaving a field ------------------------------------------

bool EntryPage::eventFilter(QObject* watched, QEvent* event) {
    Slot* s = slotOf(watched);
    if (!s) return QWidget::eventFilter(watched, event);
    switch (event->type()) {
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                moveNext(s->w.widget);
                return true;
            }
            if (key == Qt::Key_PageDown || key == Qt::Key_PageUp) {
                emit pageKey(key);
                return true;
            }
            break;
        }
        case QEvent::FocusIn:
            current_ = s->w.widget;
            if (s->def->list == ListId::Degree) setListWide(s->w.combo, true);
            break;
        case QEvent::FocusOut: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // A popup (the list's own, a menu) or another window taking the
            // focus is no leaving of the field.
            if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason) break;
            if (s->def->list == ListId::Degree) setListWide(s->w.combo, false);
            if (!inRule_) runLeaveRule(*s);
            break;
        }
        default: break;
    }
    return false;
}

void EntryPage::moveNext(QWidget* from) {
    if (tabOrder_.empty()) return;
    const auto it = std::find(tabOrder_.begin(), tabOrder_.end(), from);
    const std::size_t i = it == tabOrder_.end() ? 0 : static_cast<std::size_t>(it - tabOrder_.begin()) + 1;
    QWidget* next = tabOrder_[i % tabOrder_.size()];
    next->setFocus(Qt::TabFocusReason);
    if (auto* e = qobject_cast<QLineEdit*>(next); e && next->hasFocus()) e->selectAll();
}

void EntryPage::focusFirst() {
    if (tabOrder_.empty()) return;
    tabOrder_.front()->setFocus(Qt::TabFocusReason);
    if (auto* e = qobject_cast<QLineEdit*>(tabOrder_.front())) e->selectAll();
    current_ = tabOrder_.front();
}

bool EntryPage::leaveCurrent() {
    Slot* s = slotOf(current_);
    return !s || runLeaveRule(*s);
}

bool EntryPage::runLeaveRule(Slot& s) {
    const FieldDef& d = *s.def;
    if (!s.w.edit || d.control != Control::Edit) return true;
    const QString typed = fieldText(s.w);
    const std::string text = typed.toStdString();
    FieldOutcome out;
    switch (d.check) {
        case LeaveCheck::Amount:
            out = CheckAmountField(text);
            if (out.accepted && d.display == Display::Plain) out.text = trimmed(text);
            break;
        case LeaveCheck::Whole: out = CheckWholeField(text); break;
        case LeaveCheck::Date: out = CheckDateField(text); break;
        case LeaveCheck::Ceiling: out = CheckCeilingField(text, ceiling_); break;
        case LeaveCheck::InsuredIncome: {
            std::int64_t limit = 0;
            for (const SalaryPair& p : kInsuredLimits)
                if (report_ && qstrcmp(p.field, d.name) == 0)
                    limit = std::int64_t{(report_->Yegia.*p.salary).value()} + (report_->Yegia.*p.shifts).value();
            out = CheckInsuredIncomeField(text, limit);
            break;
        }
        default: return true;
    }
    const QString shown = QString::fromStdString(out.text);
    if (shown != typed) s.w.edit->setText(shown);
    if (!out.accepted) {
        inRule_ = true;
        showMessage(this, MsgIcon::Exclamation, QString::fromStdString(out.title), QString::fromStdString(out.message));
        refocus(s);
        inRule_ = false;
        return false;
    }
    if (d.check == LeaveCheck::Amount || d.check == LeaveCheck::Ceiling) refreshTotals();
    return true;
}

void EntryPage::refocus(Slot& s) {
    s.w.widget->setFocus(Qt::OtherFocusReason);
    current_ = s.w.widget;
    if (s.w.edit) s.w.edit->selectAll();
}

// The totals of the page, worked out again from the texts of their parts. When
// a text is no amount or a sum leaves the range, the refresh stops there and
// the first total of the page goes blank.
void EntryPage::refreshTotals() {
    QLineEdit* first = nullptr;
    for (const DerivedTotal& t : derivedTotals()) {
        if (t.section != section_) continue;
        const Slot* total = slotNamed(t.total);
        if (!total || !total->w.edit) continue;
        if (!first) first = total->w.edit;
        std::int64_t sum = 0;
        bool ok = true;
        for (const char* part : t.parts) {
            const Slot* p = slotNamed(part);
            if (!p) continue;
            const std::optional<Amount> v = amountOfText(fieldText(p->w).toStdString());
            if (!v) {
                ok = false;
                break;
            }
            sum += v->value();
        }
        if (!ok || sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max()) {
            first->clear();
            return;
        }
        total->w.edit->setText(QString::fromStdString(FormatAmount(static_cast<double>(sum), 0)));
    }
}

// --- Options and lists ---------------------------------------------------------------

void EntryPage::applyWording(bool female) {
    for (const auto& s : slots_)
        if (s->w.button && *s->def->femaleCaption)
            s->w.button->setText(QString::fromUtf8(female ? s->def->femaleCaption : s->def->caption));
}

// The rate list of line 73 follows the settlement chosen in the first list of
// the same person. It remembers the settlement it was filled for and is
// rebuilt, its first entry selected, only when that changes.
void EntryPage::fillRates(QComboBox* settlement) {
    const Slot* first = slotOf(settlement);
    if (!first) return;
    for (const auto& s : slots_) {
        if (s->def->list != ListId::Rate || s->def->person != first->def->person) continue;
        QComboBox* rates = s->w.combo;
        const int index = settlement->currentIndex();
        if (rates->property("filledFor").toInt() == index) return;
        rates->setProperty("filledFor", index);
        rates->clear();
        for (const char* e : rateEntries(index)) rates->addItem(QString::fromUtf8(e));
        rates->setCurrentIndex(rates->count() > 0 ? 0 : -1);
        return;
    }
}

// --- Fields and screen -----------------------------------------------------------------

void EntryPage::var2Map(const NishumInput& n) {
    // Lists last and in their order: the months, then the settlement (which
    // fills the rates), then the rate.
    for (const auto& s : slots_)
        if (s->def->control != Control::List) showValue(*s->def, s->w, n);
    for (ListId list : {ListId::Degree, ListId::Months, ListId::Settlement, ListId::Rate})
        for (const auto& s : slots_) {
            if (s->def->list != list) continue;
            showValue(*s->def, s->w, n);
            if (list == ListId::Settlement) fillRates(s->w.combo);
        }
}

bool EntryPage::map2Var(NishumInput& n) const {
    NishumInput copy = n;
    for (const auto& s : slots_)
        if (s->def->control != Control::Total && !readValue(*s->def, s->w, copy)) return false;
    for (const DerivedTotal& t : derivedTotals())
        if (t.section == section_ && !storeTotal(t, copy)) return false;
    n = std::move(copy);
    return true;
}

QMap<QString, QString> EntryPage::rawTexts() const {
    QMap<QString, QString> texts;
    for (const auto& s : slots_) texts.insert(QString::fromLatin1(s->def->name), rawText(s->w));
    return texts;
}

void EntryPage::setRawTexts(const QMap<QString, QString>& texts) {
    // Tab order first, so that a settlement is set before its rate.
    for (QWidget* w : tabOrder_) {
        Slot* s = slotOf(w);
        const auto it = texts.find(QString::fromLatin1(s->def->name));
        if (it != texts.end()) setRawText(s->w, *it);
    }
    for (const auto& s : slots_) {
        const auto it = texts.find(QString::fromLatin1(s->def->name));
        if (s->def->control == Control::Total && it != texts.end()) setRawText(s->w, *it);
    }
}

}  // namespace zelmor::shell
