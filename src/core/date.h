#pragma once
// Calendar dates as day numbers. 0 is "no date" (the empty date field); a real
// date is the count of days since 30 December 1899, so day numbers keep the
// order of dates and differences of day numbers are days.

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace zelmor {

class Date {
public:
    constexpr Date() = default;
    static constexpr Date fromSerial(std::int32_t s) { Date d; d.serial_ = s; return d; }
    // The date of a day, month and year; nullopt when no such day exists.
    static std::optional<Date> fromYmd(int year, int month, int day);
    static bool isValidYmd(int year, int month, int day);

    constexpr bool isNull() const { return serial_ == 0; }
    constexpr std::int32_t serial() const { return serial_; }

    int year() const;
    int month() const;
    int day() const;
    void ymd(int& y, int& m, int& d) const;

    // Calendar-month arithmetic: the day is cut back to the last day of a shorter month.
    // No date plus any number of months is still no date.
    Date addMonths(int n) const;

    friend constexpr bool operator==(Date, Date) = default;
    friend constexpr auto operator<=>(Date, Date) = default;

private:
    std::int32_t serial_ = 0;
};

// Whole days from a to b (negative when b is earlier).
inline std::int32_t daysBetween(Date a, Date b) { return b.serial() - a.serial(); }

int daysInMonth(int year, int month);

// "YYYY-MM-DD" of the interchange documents; nullopt for malformed text or a day that does not exist.
std::optional<Date> parseIsoDate(const std::string& text);
std::string formatIsoDate(Date d);  // "" for no date

}  // namespace zelmor
