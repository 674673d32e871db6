#include "shell/entry_fields.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QAbstractItemView>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <algorithm>
#include <limits>

#include "core/values.h"

namespace zelmor::shell {
namespace {

QString utf8(const char* s) { return QString::fromUtf8(s); }


int textWidth(const QFontMetrics& fm, const QString& sample) { return fm.horizontalAdvance(sample) + 10; }

// A number read left to right inside the right-to-left page, aligned right.
void numberLook(QLineEdit* e) {
    e->setLayoutDirection(Qt::LeftToRight);
    e->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void setChecked(FieldWidget& w, bool on) {
    // An exclusive group would refuse to leave all of its options unchecked.
    const bool exclusive = w.group && w.group->exclusive();
    if (exclusive) w.group->setExclusive(false);
    w.button->setChecked(on);
    if (exclusive) w.group->setExclusive(true);
}

void selectNumber(QComboBox* c, std::int32_t value) {
    const int i = c->findText(QString::number(value));
    c->setCurrentIndex(i >= 0 ? i : (c->count() > 0 ? 0 : -1));
}

std::int64_t memberValue(const FieldDef& f, const NishumInput& n) {
    return f.type == FieldType::Count ? std::int64_t{f.ref<std::int16_t>(n)} : std::int64_t{f.ref<Amount>(n).value()};
}

}  // namespace

QLabel* plainLabel(const QString& text, QWidget* parent) {
    auto* l = new QLabel(text, parent);
    l->setTextFormat(Qt::PlainText);
    return l;
}

QString buttonText(const FieldDef& def) {
    if (def.control != Control::Option && def.control != Control::CheckBox) return {};
    return *def.code && def.control == Control::CheckBox ? utf8(def.code) + QLatin1Char(':') : utf8(def.caption);
}

int fieldHeight(const QFont& font) { return QFontMetrics(font).height() + 5; }

FieldWidget makeFieldWidget(const FieldDef& def, const EntryCell& cell, QWidget* parent) {
    FieldWidget w;
    const QFontMetrics fm(parent->font());
    const int height = fieldHeight(parent->font());
    const QString cellCaption = utf8(cell.caption.screen);
    const bool isButton = def.control == Control::Option || def.control == Control::CheckBox;

    if (!cellCaption.isEmpty() && !isButton) w.before.push_back(plainLabel(cellCaption, parent));
    if (*def.code && !isButton && cellCaption.isEmpty())
        w.code = plainLabel(utf8(def.code) + QLatin1Char(':'), parent);

    switch (def.control) {
        case Control::Edit:
        case Control::Total: {
            auto* e = new QLineEdit(parent);
            w.edit = e;
            if (def.control == Control::Total) {
                e->setReadOnly(true);
                e->setFocusPolicy(Qt::NoFocus);
                QPalette p = e->palette();
                p.setColor(QPalette::Base, p.color(QPalette::Window));
                e->setPalette(p);
            }
            if (def.display == Display::Date) {
                numberLook(e);
                e->setAlignment(Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter);
                e->setInputMask(QStringLiteral("99/99/9999; "));
                e->setFixedWidth(textWidth(fm, QStringLiteral("00/00/00000")));
            } else if (def.type == FieldType::Text) {
                // Room for a few characters at least, for all of them at most;
                // the page shares what is left between the text fields.
                if (def.maxLength > 0) e->setMaxLength(def.maxLength);
                const int chars = def.maxLength > 0 ? def.maxLength : 30;
                e->setMinimumWidth(fm.averageCharWidth() * std::min(chars, 6) + 10);
                e->setMaximumWidth(fm.averageCharWidth() * chars * 11 / 10 + 12);
                e->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            } else {
                numberLook(e);
                const bool narrow = def.type == FieldType::Count || def.display == Display::Plain;
                e->setFixedWidth(textWidth(fm, narrow ? QStringLiteral("0000") : QStringLiteral("99,999,999-")));
            }
            e->setFixedHeight(height);
            break;
        }
        case Control::Option:
        case Control::CheckBox: {
            const QString text = buttonText(def);
            if (def.control == Control::Option)
                w.button = new QRadioButton(text, parent);
            else
                w.button = new QCheckBox(text, parent);
            // A button needs less height than a framed field: rows of declarations stay compact.
            w.button->setFixedHeight(QFontMetrics(parent->font()).height() + 3);
            break;
        }
        case Control::List: {
            auto* c = new QComboBox(parent);
            w.combo = c;
            int widest = 0;
            if (def.list == ListId::Rate) {
                c->setProperty("filledFor", -1);  // filled by the settlement chosen
                for (const char* e : rateEntries(2)) widest = std::max(widest, fm.horizontalAdvance(utf8(e)));
            } else {
                for (const char* e : listEntries(def.list)) {
                    c->addItem(utf8(e));
                    widest = std::max(widest, fm.horizontalAdvance(utf8(e)));
                }
            }
            const int arrow = fm.height() + 12;
            const int full = widest + arrow;
            if (def.list == ListId::Degree) {
                // Narrow, showing the degree's digit, until it gets the focus.
                const int narrow = fm.horizontalAdvance(QStringLiteral("9 - תואר")) + arrow;
                c->setProperty("narrowWidth", narrow);
                c->setProperty("wideWidth", full);
                c->setFixedWidth(narrow);
            } else if (def.list == ListId::Settlement) {
                // The ceilings in the entries are long; the open list shows them whole.
                c->setFixedWidth(fm.horizontalAdvance(QStringLiteral("גבול הצפון (תק")) + arrow);
                c->view()->setMinimumWidth(full);
            } else {
                c->setFixedWidth(full);
            }
            c->setFixedHeight(height);
            break;
        }
    }
    w.widget = w.edit ? static_cast<QWidget*>(w.edit) : w.button ? static_cast<QWidget*>(w.button) : w.combo;
    w.widget->setObjectName(QString::fromLatin1(def.name));

    if (*def.prefix) w.after.push_back(plainLabel(utf8(def.prefix), parent));
    if (*def.caption2 && cellCaption != utf8(def.caption2)) w.after.push_back(plainLabel(utf8(def.caption2), parent));
    return w;
}

QString fieldText(const FieldWidget& w) {
    if (!w.edit) return {};
    return w.edit->inputMask().isEmpty() ? w.edit->text() : w.edit->displayText();
}

void setListWide(QComboBox* combo, bool wide) {
    combo->setFixedWidth(combo->property(wide ? "wideWidth" : "narrowWidth").toInt());
}

std::optional<Amount> amountOfText(std::string_view text) {
    if (!IsValidAmount(text)) return std::nullopt;
    try {
        return ParseAmount(text);
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

void showValue(const FieldDef& def, FieldWidget& w, const NishumInput& n) {
    switch (def.type) {
        case FieldType::Text: w.edit->setText(QString::fromStdString(def.ref<std::string>(n))); return;
        case FieldType::Date: w.edit->setText(QString::fromStdString(FormatDate(def.ref<Date>(n)))); return;
        case FieldType::Boolean: setChecked(w, def.ref<bool>(n)); return;
        case FieldType::Amount: {
            const std::int32_t v = def.ref<Amount>(n).value();
            w.edit->setText(def.display == Display::Plain ? (v == 0 ? QString() : QString::number(v))
                                                          : QString::fromStdString(FormatAmount(v, 0)));
            return;
        }
        case FieldType::Count:
        case FieldType::Number: {
            const std::int32_t v = def.type == FieldType::Count ? def.ref<std::int16_t>(n) : def.ref<std::int32_t>(n);
            if (w.edit) {
                w.edit->setText(QString::fromStdString(FormatAmount(v, 0)));
            } else if (def.list == ListId::Rate) {
                selectNumber(w.combo, v);
            } else if (def.list == ListId::Months) {
                // No months means the whole year.
                w.combo->setCurrentIndex(v >= 1 && v <= w.combo->count() ? v - 1 : w.combo->count() - 1);
            } else {
                w.combo->setCurrentIndex(v >= 0 && v < w.combo->count() ? v : -1);
            }
            return;
        }
    }
}

bool readValue(const FieldDef& def, const FieldWidget& w, NishumInput& n) {
    const std::string text = fieldText(w).toStdString();
    switch (def.type) {
        case FieldType::Text: def.ref<std::string>(n) = w.edit->text().toStdString(); return true;
        case FieldType::Date:
            if (!IsValidDateText(text)) return false;
            def.ref<Date>(n) = ParseDate(text);
            return true;
        case FieldType::Boolean: def.ref<bool>(n) = w.button->isChecked(); return true;
        case FieldType::Amount: {
            const auto v = amountOfText(text);
            if (!v) return false;
            def.ref<Amount>(n) = *v;
            return true;
        }
        case FieldType::Count:
        case FieldType::Number: {
            std::int32_t v = 0;
            if (w.combo) {
                // Rates and months hold the number shown, the other lists the entry's index.
                const bool shown = def.list == ListId::Rate || def.list == ListId::Months;
                v = shown ? w.combo->currentText().toInt() : std::max(0, w.combo->currentIndex());
            } else {
                if (!IsValidWhole(text)) return false;
                v = ParseWhole(text);
            }
            if (def.type == FieldType::Count)
                def.ref<std::int16_t>(n) = static_cast<std::int16_t>(v);
            else
                def.ref<std::int32_t>(n) = v;
            return true;
        }
    }
    return false;
}

bool storeTotal(const DerivedTotal& total, NishumInput& n) {
    const char* section = sectionDef(total.section).name;
    const FieldDef* t = findField(section, total.total);
    std::int64_t sum = 0;
    for (const char* part : total.parts) sum += memberValue(*findField(section, part), n);
    if (t->type == FieldType::Count) {
        if (sum < std::numeric_limits<std::int16_t>::min() || sum > std::numeric_limits<std::int16_t>::max())
            return false;
        t->ref<std::int16_t>(n) = static_cast<std::int16_t>(sum);
    } else {
        if (sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max())
            return false;
        t->ref<Amount>(n) = Amount(static_cast<std::int32_t>(sum));
    }
    return true;
}

QString rawText(const FieldWidget& w) {
    if (w.button) return w.button->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
    if (w.combo) return QString::number(w.combo->currentIndex());
    return fieldText(w);
}

void setRawText(FieldWidget& w, const QString& text) {
    if (w.button)
        setChecked(w, text == QLatin1String("1"));
    else if (w.combo)
        w.combo->setCurrentIndex(std::clamp(text.toInt(), -1, w.combo->count() - 1));
    else
        w.edit->setText(text);
}

}  // namespace zelmor::shell
