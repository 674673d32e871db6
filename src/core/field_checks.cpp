#include "core/field_checks.h"

#include "core/values.h"

namespace zelmor {
namespace {

FieldOutcome accepted(std::string text) { return {true, std::move(text), {}, {}}; }

FieldOutcome refused(std::string text, std::string message) {
    return {false, std::move(text), kWarningTitle, std::move(message)};
}

}  // namespace

std::string AmountDisplayForm(std::string_view text) {
    if (IsBlankValue(text)) return {};
    const auto v = parseNumber(text);
    return v ? FormatAmount(*v, 0) : std::string{};
}

FieldOutcome CheckAmountField(std::string_view text) {
    if (!IsValidAmount(text)) return refused(std::string(text), kBadAmountText);
    std::string shown = AmountDisplayForm(text);
    // The value is rounded half to even when checked but half away from zero
    // when shown; at the very ends of the range only the first stays inside.
    if (!IsValidAmount(shown)) return refused(std::string(text), kBadAmountText);
    return accepted(std::move(shown));
}

FieldOutcome CheckWholeField(std::string_view text) {
    if (!IsValidWhole(text)) return refused(std::string(text), kBadWholeText);
    return accepted(std::string(text));
}

FieldOutcome CheckDateField(std::string_view text) {
    if (!IsValidDateText(text)) return refused(std::string(text), kBadDateText);
    return accepted(FormatDate(ParseDate(text)));
}

FieldOutcome CheckCeilingField(std::string_view text, Amount ceiling) {
    FieldOutcome out = CheckAmountField(text);
    if (!out.accepted || IsBlankValue(out.text)) return out;
    if (ParseAmount(out.text) > ceiling)
        return refused(std::move(out.text),
                       "הכנסת נכה 100% גבוהה מהתקרה בסך " + FormatAmount(ceiling.value(), 0) + " ש\"ח");
    return out;
}

FieldOutcome CheckInsuredIncomeField(std::string_view text, std::int64_t limit) {
    FieldOutcome out = CheckAmountField(text);
    if (!out.accepted || IsBlankValue(out.text)) return out;
    if (ParseAmount(out.text).value() > limit)
        return refused(std::move(out.text),
                       "הכנסה מבוטחת גבוהה מהמשכורת, נא להזין סכום נמוך מ " + FormatGrouped(limit));
    return out;
}

std::string FormatGrouped(std::int64_t value) {
    if (value == 0) return "0";
    const std::string digits = FormatAmount(static_cast<double>(value < 0 ? -value : value), 0);
    return value < 0 ? "-" + digits : digits;
}

}  // namespace zelmor
