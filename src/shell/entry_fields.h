#pragma once
// The widget of one entry field and the moves of its value between the screen
// and the report, as the field catalogue describes the field (type, control,
// display form, list). The page (entry_page.h) places these widgets and runs
// the rules; everything here is per field.

#include <QString>
#include <optional>
#include <string_view>
#include <vector>

#include "core/amount.h"
#include "report/entry_layout.h"

class QAbstractButton;
class QButtonGroup;
class QComboBox;
class QFont;
class QLabel;
class QLineEdit;
class QWidget;

namespace zelmor::shell {

struct FieldWidget {
    QWidget* widget = nullptr;  // the field itself: objectName is the field's name
    QLineEdit* edit = nullptr;  // texts, amounts, counts, dates and shown totals
    QAbstractButton* button = nullptr;
    QComboBox* combo = nullptr;
    QButtonGroup* group = nullptr;  // the option group, set by the page
    // Texts beside the field, in reading order: before it (its caption) and
    // after it (a fixed prefix of the number, a second caption); its line code
    // ("150:"), which the page aligns in a column of its own.
    std::vector<QWidget*> before, after;
    QWidget* code = nullptr;
};

// A label showing `text` as it stands (no rich text).
QLabel* plainLabel(const QString& text, QWidget* parent);

// The height of one row of fields in `font`.
int fieldHeight(const QFont& font);

// The text of an option or check box: a check box of a form line shows its code ("020:").
QString buttonText(const FieldDef& def);

FieldWidget makeFieldWidget(const FieldDef& def, const EntryCell& cell, QWidget* parent);

// The text as the screen shows it (a masked date with its blanks).
QString fieldText(const FieldWidget& w);
// The lists of line 64 are shown wider while they have the focus.
void setListWide(QComboBox* combo, bool wide);

// The amount a checked text stands for; nullopt for no amount (or one out of range).
std::optional<Amount> amountOfText(std::string_view text);

// Report -> screen, one field, formatted as its display form asks.
void showValue(const FieldDef& def, FieldWidget& w, const NishumInput& n);
// Screen -> report, one field; false when the text is no value of the field's type.
bool readValue(const FieldDef& def, const FieldWidget& w, NishumInput& n);
// A shown total as the sum of its parts' members; false when the sum leaves the total's range.
bool storeTotal(const DerivedTotal& total, NishumInput& n);

// The state of a field as text, and back, for drafts of typed but unchecked input.
QString rawText(const FieldWidget& w);
void setRawText(FieldWidget& w, const QString& text);

}  // namespace zelmor::shell
