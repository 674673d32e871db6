#include "core/date.h"

#include <cstdio>

namespace zelmor {
namespace {

// Days from 1970-01-01 to a civil date (proleptic Gregorian).
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void civilFromDays(std::int64_t z, int& y, int& m, int& d) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2));
}

// Day number of 1899-12-30 counted from 1970-01-01.
constexpr std::int64_t kEpochOffset = -25569;

}  // namespace

int daysInMonth(int year, int month) {
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month == 2) {
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        return leap ? 29 : 28;
    }
    return days[month - 1];
}

bool Date::isValidYmd(int year, int month, int day) {
    return year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
           day <= daysInMonth(year, month);
}

std::optional<Date> Date::fromYmd(int year, int month, int day) {
    if (!isValidYmd(year, month, day)) return std::nullopt;
    return fromSerial(static_cast<std::int32_t>(
        daysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) - kEpochOffset));
}

void Date::ymd(int& y, int& m, int& d) const { civilFromDays(serial_ + kEpochOffset, y, m, d); }
int Date::year() const { int y, m, d; ymd(y, m, d); return y; }
int Date::month() const { int y, m, d; ymd(y, m, d); return m; }
int Date::day() const { int y, m, d; ymd(y, m, d); return d; }

Date Date::addMonths(int n) const {
    if (isNull()) return *this;  // no date stays no date
    int y, m, d;
    ymd(y, m, d);
    int total = y * 12 + (m - 1) + n;
    int ny = total / 12, nm = total % 12 + 1;
    if (total < 0) { ny = (total - 11) / 12; nm = total - ny * 12 + 1; }
    const int nd = d > daysInMonth(ny, nm) ? daysInMonth(ny, nm) : d;
    return fromSerial(static_cast<std::int32_t>(
        daysFromCivil(ny, static_cast<unsigned>(nm), static_cast<unsigned>(nd)) - kEpochOffset));
}

std::optional<Date> parseIsoDate(const std::string& t) {
    if (t.size() != 10 || t[4] != '-' || t[7] != '-') return std::nullopt;
    for (int i : {0, 1, 2, 3, 5, 6, 8, 9})
        if (t[i] < '0' || t[i] > '9') return std::nullopt;
    const int y = std::stoi(t.substr(0, 4)), m = std::stoi(t.substr(5, 2)), d = std::stoi(t.substr(8, 2));
    return Date::fromYmd(y, m, d);
}

std::string formatIsoDate(Date date) {
    if (date.isNull()) return {};
    int y, m, d;
    date.ymd(y, m, d);
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", y, m, d);
    return buf;
}

}  // namespace zelmor
