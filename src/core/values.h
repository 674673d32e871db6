#pragma once
// How entry text becomes an amount, a whole number or a date, and how values
// become text on a screen or a page. Every amount goes through these routines on
// its way in and out, so their exact behaviour is part of the program.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/amount.h"
#include "core/date.h"

namespace zelmor {

// True for exactly: "", "  /  /    " (the empty date mask), "0:00:00", "00:00:00", "0".
// A text of blanks only is not blank.
bool IsBlankValue(std::string_view text);

// Blank, or converts (thousands commas, a decimal point, a sign in front or behind,
// outer blanks) to a value that rounds into the signed 32-bit range.
bool IsValidAmount(std::string_view text);
// Blank, or a whole number (no fraction) within -32,768..32,767.
bool IsValidWhole(std::string_view text);
// Blank, or a real day written day/month/year ("31/02/2015" is refused).
// Day and month take one or two digits, the year four; '/', '.' or '-' separate them.
bool IsValidDateText(std::string_view text);

// "" for 0 whatever the decimals; else "#,##0" (0 decimals), "#,##0.0" (1) or
// "#,##0.00" (any other), rounding halves away from zero; a negative value gets
// its "-" behind the digits ("1,234-", and "0-" for -0.2 with no decimals).
// NaN and infinity give "" as well.
std::string FormatAmount(double value, int decimals = 0);
// "  /  /    " for no date, else "dd/mm/yyyy".
std::string FormatDate(Date date);

// No date when blank, else the date of the text. Text that is no date gives no date.
Date ParseDate(std::string_view text);
// 0 when blank, else the value rounded to the nearest shekel, ties to even.
// Unparseable text gives 0; out-of-range text raises OverflowError.
Amount ParseAmount(std::string_view text);
// 0 when blank, else the value rounded to a 16-bit whole number, ties to even.
// Unparseable text gives 0; out-of-range text raises OverflowError.
std::int16_t ParseWhole(std::string_view text);

// The conversion under IsValidAmount/ParseAmount: the number a text stands for,
// or nullopt when it stands for none.
std::optional<double> parseNumber(std::string_view text);

// The phased levy on high incomes (only a year with such a levy calls it with
// non-zero bases): see the rule in values.cpp.
Amount PhasedLevy(Amount income, Amount other);

// Default when the stored value is missing (a Null column).
template <class T>
T NullDefault(const std::optional<T>& value, T fallback) { return value ? *value : fallback; }

// True if the file exists; any failure gives false.
bool FileExists(const std::string& path);

// The number of characters (not bytes) of a UTF-8 text.
std::size_t utf8Length(std::string_view text);
// Text with leading and trailing blanks (spaces and tabs) removed.
std::string trimmed(std::string_view text);

}  // namespace zelmor
