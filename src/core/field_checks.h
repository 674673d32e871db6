#pragma once
// What happens to an entry field's text when the focus leaves it. These are the
// whole rules, free of any screen: a screen passes the typed text in, shows the
// message of a refusal (and keeps the focus in the field), and otherwise puts
// the returned display form into the field. The stored value is always parsed
// from the display form, so what the user sees is what is kept.

#include <cstdint>
#include <string>
#include <string_view>

#include "core/amount.h"

namespace zelmor {

// Title of every warning box of the entry screens.
inline constexpr const char* kWarningTitle = "Orvanta";

inline constexpr const char* kBadAmountText = "סכום לא חוקי";
inline constexpr const char* kBadWholeText = "מספר לא חוקי";
inline constexpr const char* kBadDateText = "תאריך לא חוקי";

struct FieldOutcome {
    bool accepted = false;
    // What the field shows afterwards: the display form when the text passed
    // its format check (also when a rule after the format check refused the
    // value), otherwise the text exactly as typed.
    std::string text;
    // Set when refused: the warning box's title and text.
    std::string title;
    std::string message;
};

// The display form of an amount text that passes IsValidAmount: "#,##0" with
// halves rounded away from zero ("2.5" shows "3"), blank for zero, the sign
// behind the digits. Empty when the text is no amount.
std::string AmountDisplayForm(std::string_view text);

// An amount field: refused with "סכום לא חוקי" unless the text is blank or an
// amount whose display form is again an amount (a value just inside the range
// can round out of it when shown).
FieldOutcome CheckAmountField(std::string_view text);
// A whole-number field: refused with "מספר לא חוקי" unless blank or a whole
// number within -32,768..32,767. The text stays as typed.
FieldOutcome CheckWholeField(std::string_view text);
// A date field: refused with "תאריך לא חוקי" unless blank or a real day; shown
// as "dd/mm/yyyy", or "  /  /    " when blank.
FieldOutcome CheckDateField(std::string_view text);

// The income of a 100% disabled person is exempt up to `ceiling`. After the
// amount check, a value above the ceiling is refused with a message naming it;
// the ceiling itself passes, and so does a blank field.
FieldOutcome CheckCeilingField(std::string_view text, Amount ceiling);

// The insured income may not exceed the person's salaries (`limit`, the stored
// salary plus shift work). After the amount check, a value above the limit is
// refused with a message naming it; the limit itself and a blank field pass.
// The limit is a sum of two amounts, hence 64 bits.
FieldOutcome CheckInsuredIncomeField(std::string_view text, std::int64_t limit);

// A number under "###,0": thousands grouped, "0" for zero, a leading "-".
std::string FormatGrouped(std::int64_t value);

}  // namespace zelmor
