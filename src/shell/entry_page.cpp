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
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <map>

#include "core/field_checks.h"
#include "core/values.h"
#include "engine/const_doch.h"
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

QLabel* label(const QString& text, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setTextFormat(Qt::PlainText);
    return l;
}

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

EntryPage::~EntryPage() {
    for (Slot* s : slots_) delete s;
}

SectionId EntryPage::section() const { return section_; }

QFont EntryPage::screenFont() {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(8);
    return f;
}

QSize EntryPage::childSize() { return {600, 400}; }

EntryPage::Slot* EntryPage::slotOf(QObject* widget) const {
    for (Slot* s : slots_)
        if (s->w.widget == widget) return s;
    return nullptr;
}

EntryPage::Slot* EntryPage::slotNamed(const char* name) const {
    for (Slot* s : slots_)
        if (qstrcmp(s->def->name, name) == 0) return s;
    return nullptr;
}

QWidget* EntryPage::fieldWidget(const QString& name) const {
    const QByteArray n = name.toLatin1();
    const Slot* s = slotNamed(n.constData());
    return s ? s->w.widget : nullptr;
}

// --- Building ------------------------------------------------------------------

void EntryPage::build() {
    const EntryPageLayout& layout = entryLayout(section_);
    const int rowHeight = fieldHeight(font());

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 3, 6, 3);
    outer->setSpacing(2);

    std::map<const FieldDef*, Slot*> byDef;
    auto slotFor = [&](const FieldDef* def) -> Slot& {
        auto& s = byDef[def];
        if (!s) {
            s = new Slot;
            s->def = def;
        }
        return *s;
    };

    for (const EntryBlock& block : layout.blocks) {
        if (!onScreen(block.medium)) continue;
        auto* head = new QHBoxLayout;
        head->setSpacing(12);
        QLabel* heading = label(QString::fromUtf8(block.heading.screen), this);
        QFont bold = font();
        bold.setBold(true);
        heading->setFont(bold);
        head->addWidget(heading);
        if (*block.lines.screen) head->addWidget(label(QString::fromUtf8(block.lines.screen), this));
        head->addStretch(1);
        outer->addLayout(head);

        // Grid columns: 0 the row captions, then for each column of the block
        // the line codes and the fields.
        auto* grid = new QGridLayout;
        grid->setHorizontalSpacing(4);
        grid->setVerticalSpacing(1);
        const int columns = static_cast<int>(block.columns.size());
        const int lastColumn = std::max(2 * columns, 1);
        int r = 0;
        if (columns > 0) {
            bool subs = false;
            for (int j = 0; j < columns; ++j) {
                const ColumnHead& h = block.columns[static_cast<std::size_t>(j)];
                QLabel* l = label(QString::fromUtf8(h.text.screen), this);
                l->setAlignment(Qt::AlignCenter);
                grid->addWidget(l, r, 1 + 2 * j, 1, 2);
                if (*h.sub) {
                    QLabel* sub = label(QString::fromUtf8(h.sub), this);
                    sub->setAlignment(Qt::AlignCenter);
                    grid->addWidget(sub, r + 1, 1 + 2 * j, 1, 2);
                    subs = true;
                }
            }
            r += subs ? 2 : 1;
        }
        for (const EntryRow& row : block.rows) {
            if (!onScreen(row.medium)) continue;
            const QString caption = QString::fromUtf8(row.caption.screen);
            if (row.cells.empty()) {
                grid->addWidget(label(caption, this), r, 0, 1, lastColumn + 1);
                ++r;
                continue;
            }
            if (!caption.isEmpty()) grid->addWidget(label(caption, this), r, 0);
            std::map<int, QHBoxLayout*> boxes;  // by column of the block, -1 spanning them all
            for (const EntryCell& cell : row.cells) {
                if (!onScreen(cell.medium) || !cell.field) continue;
                int j = -1;
                for (int k = 0; k < columns; ++k)
                    if (block.columns[static_cast<std::size_t>(k)].column == cell.column) j = k;
                const FieldDef* def = findField(sectionDef(section_).name, cell.field);
                Slot& s = slotFor(def);
                s.cell = &cell;
                s.row = &row;
                s.w = makeFieldWidget(*def, cell, this);
                QHBoxLayout*& box = boxes[j];
                if (!box) {
                    box = new QHBoxLayout;
                    box->setSpacing(3);
                    if (j >= 0) {
                        grid->addLayout(box, r, 2 + 2 * j);
                        if (s.w.code) grid->addWidget(s.w.code, r, 1 + 2 * j);
                        s.w.code = nullptr;
                    } else {
                        grid->addLayout(box, r, 1, 1, lastColumn);
                    }
                } else {
                    box->addSpacing(10);
                }
                if (s.w.code) box->addWidget(s.w.code);
                for (QWidget* piece : s.w.before) box->addWidget(piece);
                // Text fields take the room the row leaves, up to their own length.
                box->addWidget(s.w.widget, s.w.widget->sizePolicy().horizontalPolicy() == QSizePolicy::Expanding ? 10 : 0);
                for (QWidget* piece : s.w.after) box->addWidget(piece);
            }
            for (auto& entry : boxes) entry.second->addStretch(1);
            grid->setRowMinimumHeight(r, rowHeight);
            ++r;
        }
        for (int c = 1; c <= lastColumn; ++c) grid->setColumnStretch(c, c % 2 == 0 ? 1 : 0);
        outer->addLayout(grid);
    }
    outer->addStretch(1);

    // Catalogue order, for the rules that walk the fields.
    for (const FieldDef& def : sectionFields(section_)) {
        auto it = byDef.find(&def);
        if (it != byDef.end()) slots_.push_back(it->second);
    }
    for (Slot* s : slots_) addField(*s);

    // Tab order: the catalogue's tab places, ascending.
    std::vector<Slot*> entries;
    for (Slot* s : slots_)
        if (s->def->tab >= 0 && s->def->control != Control::Total) entries.push_back(s);
    std::stable_sort(entries.begin(), entries.end(), [](const Slot* a, const Slot* b) { return a->def->tab < b->def->tab; });
    for (Slot* s : entries) tabOrder_.push_back(s->w.widget);
    for (std::size_t i = 1; i < tabOrder_.size(); ++i) setTabOrder(tabOrder_[i - 1], tabOrder_[i]);

    // Accessible names: the caption, and the column head where the same caption stands in several columns.
    std::map<QString, int> uses;
    for (Slot* s : slots_) ++uses[s->w.widget->accessibleName()];
    for (Slot* s : slots_) {
        const QString name = s->w.widget->accessibleName();
        const char* head = s->cell ? columnHead(s->cell->column) : "";
        if (uses[name] > 1 && *head) s->w.widget->setAccessibleName(name + QStringLiteral(" - ") + QString::fromUtf8(head));
    }
}

void EntryPage::addField(Slot& s) {
    QWidget* w = s.w.widget;
    QString accessible = QString::fromUtf8(s.cell && *s.cell->caption.screen ? s.cell->caption.screen : s.def->caption);
    if (accessible.isEmpty() && s.row) accessible = QString::fromUtf8(s.row->caption.screen);
    w->setAccessibleName(accessible);
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
        for (Slot* other : slots_)
            if (other != &s && other->w.group && qstrcmp(other->def->group, s.def->group) == 0) group = other->w.group;
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
    for (Slot* s : slots_)
        if (s->w.button && *s->def->femaleCaption)
            s->w.button->setText(QString::fromUtf8(female ? s->def->femaleCaption : s->def->caption));
}

// The rate list of line 73 follows the settlement chosen in the first list of
// the same person. It remembers the settlement it was filled for and is
// rebuilt, its first entry selected, only when that changes.
void EntryPage::fillRates(QComboBox* settlement) {
    const Slot* first = slotOf(settlement);
    if (!first) return;
    for (Slot* s : slots_) {
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
    for (Slot* s : slots_)
        if (s->def->control != Control::List) showValue(*s->def, s->w, n);
    for (ListId list : {ListId::Degree, ListId::Months, ListId::Settlement, ListId::Rate})
        for (Slot* s : slots_) {
            if (s->def->list != list) continue;
            showValue(*s->def, s->w, n);
            if (list == ListId::Settlement) fillRates(s->w.combo);
        }
}

bool EntryPage::map2Var(NishumInput& n) const {
    NishumInput copy = n;
    for (const Slot* s : slots_)
        if (s->def->control != Control::Total && !readValue(*s->def, s->w, copy)) return false;
    for (const DerivedTotal& t : derivedTotals())
        if (t.section == section_ && !storeTotal(t, copy)) return false;
    n = std::move(copy);
    return true;
}

QMap<QString, QString> EntryPage::rawTexts() const {
    QMap<QString, QString> texts;
    for (const Slot* s : slots_) texts.insert(QString::fromLatin1(s->def->name), rawText(s->w));
    return texts;
}

void EntryPage::setRawTexts(const QMap<QString, QString>& texts) {
    // Tab order first, so that a settlement is set before its rate.
    for (QWidget* w : tabOrder_) {
        Slot* s = slotOf(w);
        const auto it = texts.find(QString::fromLatin1(s->def->name));
        if (it != texts.end()) setRawText(s->w, *it);
    }
    for (Slot* s : slots_) {
        const auto it = texts.find(QString::fromLatin1(s->def->name));
        if (s->def->control == Control::Total && it != texts.end()) setRawText(s->w, *it);
    }
}

}  // namespace zelmor::shell
