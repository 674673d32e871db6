#include "core/values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

namespace zelmor {
namespace {

bool isBlankChar(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimView(std::string_view t) {
    while (!t.empty() && isBlankChar(t.front())) t.remove_prefix(1);
    while (!t.empty() && isBlankChar(t.back())) t.remove_suffix(1);
    return t;
}

// The digits of an integer part written with or without thousands commas:
// "1234" or "1,234" (first group of one to three digits, then groups of three).
// Returns false when the commas are misplaced or a character is no digit.
bool takeIntegerPart(std::string_view t, std::string& digits) {
    const auto comma = t.find(',');
    if (comma == std::string_view::npos) {
        for (char c : t)
            if (!isDigit(c)) return false;
        digits.append(t);
        return true;
    }
    if (comma == 0 || comma > 3) return false;
    std::size_t group = 0;  // digits since the last comma
    bool afterComma = false;
    for (char c : t) {
        if (c == ',') {
            if (afterComma && group != 3) return false;
            afterComma = true;
            group = 0;
        } else if (isDigit(c)) {
            digits.push_back(c);
            ++group;
        } else {
            return false;
        }
    }
    return group == 3;
}

// The nearest whole number, ties to even (the machine's default rounding mode,
// which nothing in the program changes).
double roundHalfEven(double v) { return std::nearbyint(v); }

bool roundsIntoInt32(double v) {
    const double r = roundHalfEven(v);
    return r >= -2147483648.0 && r <= 2147483647.0;
}

// A non-negative integer of one to four digits, blanks allowed around it (a
// masked date field pads its parts with blanks).
bool takeDatePart(std::string_view t, std::size_t minDigits, std::size_t maxDigits, int& out) {
    t = trimView(t);
    if (t.size() < minDigits || t.size() > maxDigits) return false;
    for (char c : t)
        if (!isDigit(c)) return false;
    out = 0;
    for (char c : t) out = out * 10 + (c - '0');
    return true;
}

// The date of a text written day, month, year with '/', '.' or '-' between them
// (the same separator both times); nullopt when it is no date.
std::optional<Date> dateFromText(std::string_view text) {
    const std::string_view t = trimView(text);
    const auto first = t.find_first_of("/.-");
    if (first == std::string_view::npos) return std::nullopt;
    const char sep = t[first];
    const auto second = t.find(sep, first + 1);
    if (second == std::string_view::npos) return std::nullopt;
    if (t.find_first_of("/.-", second + 1) != std::string_view::npos) return std::nullopt;
    if (t.substr(first + 1, second - first - 1).find_first_of("/.-") != std::string_view::npos)
        return std::nullopt;
    int day = 0, month = 0, year = 0;
    if (!takeDatePart(t.substr(0, first), 1, 2, day)) return std::nullopt;
    if (!takeDatePart(t.substr(first + 1, second - first - 1), 1, 2, month)) return std::nullopt;
    if (!takeDatePart(t.substr(second + 1), 4, 4, year)) return std::nullopt;
    return Date::fromYmd(year, month, day);
}

// Appends the digits of a whole number with a comma between each group of three.
void appendGrouped(std::string& out, std::string_view digits) {
    const std::size_t n = digits.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0) out.push_back(',');
        out.push_back(digits[i]);
    }
}

}  // namespace

bool IsBlankValue(std::string_view text) {
    return text.empty() || text == "  /  /    " || text == "0:00:00" || text == "00:00:00" ||
           text == "0";
}

std::optional<double> parseNumber(std::string_view text) {
    std::string_view t = trimView(text);
    if (t.empty()) return std::nullopt;

    // One sign, either in front of the digits or behind them ("1,234-" is how
    // negative amounts are shown).
    bool negative = false;
    if (t.front() == '-' || t.front() == '+') {
        negative = t.front() == '-';
        t.remove_prefix(1);
    } else if (t.back() == '-') {
        negative = true;
        t.remove_suffix(1);
    }
    if (t.empty()) return std::nullopt;

    std::string clean;
    const auto point = t.find('.');
    const std::string_view intPart = point == std::string_view::npos ? t : t.substr(0, point);
    const std::string_view fracPart =
        point == std::string_view::npos ? std::string_view{} : t.substr(point + 1);
    if (!takeIntegerPart(intPart, clean)) return std::nullopt;
    for (char c : fracPart)
        if (!isDigit(c)) return std::nullopt;
    if (clean.empty() && fracPart.empty()) return std::nullopt;  // "." alone
    if (clean.empty()) clean.push_back('0');
    if (!fracPart.empty()) {
        clean.push_back('.');
        clean.append(fracPart);
    }

    // from_chars ignores the process locale, so a comma locale can't change the
    // meaning of the decimal point.
    double value = 0;
    const auto [end, ec] = std::from_chars(clean.data(), clean.data() + clean.size(), value);
    if (ec == std::errc::result_out_of_range)
        value = std::numeric_limits<double>::infinity();  // a digit string beyond any double
    else if (ec != std::errc{} || end != clean.data() + clean.size())
        return std::nullopt;
    return negative ? -value : value;
}

bool IsValidAmount(std::string_view text) {
    if (IsBlankValue(text)) return true;
    const auto v = parseNumber(text);
    return v && roundsIntoInt32(*v);
}

bool IsValidWhole(std::string_view text) {
    if (IsBlankValue(text)) return true;
    const auto v = parseNumber(text);
    return v && std::trunc(*v) == *v && *v >= -32768.0 && *v <= 32767.0;
}

bool IsValidDateText(std::string_view text) {
    return IsBlankValue(text) || dateFromText(text).has_value();
}

std::string FormatAmount(double value, int decimals) {
    // Zero is shown as nothing. A value that is no number has nothing to show either.
    if (value == 0 || !std::isfinite(value)) return {};
    const int places = decimals == 0 ? 0 : decimals == 1 ? 1 : 2;
    const bool negative = value < 0;

    // Take the value as fifteen significant decimal digits, the precision a
    // double holds for sure, and round that decimal text, halves away from zero.
    // Rounding the binary value itself would turn 1.005 (really 1.00499999...)
    // into 1.00 where the user typed and sees 1.005.
    std::array<char, 64> buf{};
    const auto res = std::to_chars(buf.data(), buf.data() + buf.size(), std::fabs(value),
                                   std::chars_format::scientific, 14);
    const std::string_view sci(buf.data(), static_cast<std::size_t>(res.ptr - buf.data()));
    // sci is "d.ddddddddddddddde[+-]xx".
    std::string mantissa;
    for (char c : sci.substr(0, sci.find('e')))
        if (isDigit(c)) mantissa.push_back(c);
    int exponent = 0;
    {
        std::string_view e = sci.substr(sci.find('e') + 1);
        if (!e.empty() && e.front() == '+') e.remove_prefix(1);
        std::from_chars(e.data(), e.data() + e.size(), exponent);
    }
    // The value is 0.<mantissa> x 10^(exponent + 1); keep the digits down to the
    // last place shown.
    const long keep = static_cast<long>(exponent) + 1 + places;
    std::string kept;  // the rounded value in units of the last place shown
    if (keep >= 0) {
        for (long i = 0; i < keep; ++i)
            kept.push_back(i < static_cast<long>(mantissa.size()) ? mantissa[static_cast<std::size_t>(i)] : '0');
        const bool roundUp = keep < static_cast<long>(mantissa.size()) &&
                             mantissa[static_cast<std::size_t>(keep)] >= '5';
        if (roundUp) {
            std::size_t i = kept.size();
            for (; i > 0; --i) {
                if (kept[i - 1] == '9') {
                    kept[i - 1] = '0';
                } else {
                    ++kept[i - 1];
                    break;
                }
            }
            if (i == 0) kept.insert(kept.begin(), '1');
        }
    }
    // At least one integer digit in front of the decimals.
    while (kept.size() < static_cast<std::size_t>(places) + 1) kept.insert(kept.begin(), '0');
    const std::size_t intDigits = kept.size() - static_cast<std::size_t>(places);
    std::size_t lead = 0;
    while (lead + 1 < intDigits && kept[lead] == '0') ++lead;

    std::string out;
    appendGrouped(out, std::string_view(kept).substr(lead, intDigits - lead));
    if (places > 0) {
        out.push_back('.');
        out.append(kept, intDigits, std::string::npos);
    }
    if (negative) out.push_back('-');
    return out;
}

std::string FormatDate(Date date) {
    if (date.isNull()) return "  /  /    ";
    int y, m, d;
    date.ymd(y, m, d);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d/%02d/%04d", d, m, y);
    return buf;
}

Date ParseDate(std::string_view text) {
    if (IsBlankValue(text)) return Date{};
    return dateFromText(text).value_or(Date{});
}

Amount ParseAmount(std::string_view text) {
    if (IsBlankValue(text)) return 0;
    const auto v = parseNumber(text);
    if (!v) return 0;
    return R(*v);  // raises OverflowError outside the 32-bit range
}

std::int16_t ParseWhole(std::string_view text) {
    if (IsBlankValue(text)) return 0;
    const auto v = parseNumber(text);
    if (!v) return 0;
    const double r = roundHalfEven(*v);
    if (!(r >= -32768.0 && r <= 32767.0))
        throw OverflowError("overflow: a whole number left the 16-bit range");
    return static_cast<std::int16_t>(r);
}

// The phased levy on high incomes: half a percent of the income, phased in.
// An income above 525,000 pays the full 0.5% of it. Between 500,000 and
// 525,000 the levy is 0.5% of the income less 10% of what the income falls
// short of 525,000 (so it climbs from nothing at 500,000 to the full levy at
// 525,000). The other base works the same way between 360,000 and 378,001,
// with the shortfall counted from 378,000; the other base counts only when the
// income is not above 525,000, and then the larger of the two levies is taken
// (the other base's one when it is greater before rounding). Every product is
// taken in double and rounded to the shekel, ties to even.
Amount PhasedLevy(Amount income, Amount other) {
    const double inc = income.value();
    if (income > Amount(525000)) return R(0.005 * inc);

    Amount a = 0;
    if (income > Amount(500000)) a = R(0.005 * inc - 0.1 * (525000.0 - inc));

    const double oth = other.value();
    std::optional<double> b;
    if (other >= Amount(378001))
        b = 0.005 * oth;
    else if (other > Amount(360000))
        b = 0.005 * oth - 0.1 * (378000.0 - oth);

    if (b && *b > a.value()) return R(*b);
    return a;
}

bool FileExists(const std::string& path) {
    std::error_code ec;
    const auto st = std::filesystem::status(path, ec);
    if (ec) return false;
    return std::filesystem::exists(st) && !std::filesystem::is_directory(st);
}

std::size_t utf8Length(std::string_view text) {
    std::size_t n = 0;
    for (unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++n;  // every byte but a continuation byte starts a character
    return n;
}

std::string trimmed(std::string_view text) { return std::string(trimView(text)); }

}  // namespace zelmor
