#pragma once
// Whole-shekel amounts of the calculation: signed 32 bits, every sum, difference
// and whole-number product checked. A result outside the 32-bit range raises
// OverflowError; nothing ever wraps.

#include <cmath>
#include <compare>
#include <cstdint>
#include <iosfwd>
#include <stdexcept>
#include <string>

namespace zelmor {

class OverflowError : public std::overflow_error {
public:
    using std::overflow_error::overflow_error;
};

[[noreturn]] void throwOverflow(const char* what);

class Amount {
public:
    constexpr Amount() = default;
    constexpr Amount(std::int32_t v) : v_(v) {}  // NOLINT: whole numbers are amounts
    Amount(double) = delete;                      // a double becomes an amount only through R()
    Amount(std::int64_t) = delete;

    constexpr std::int32_t value() const { return v_; }

    friend Amount operator+(Amount a, Amount b) {
        std::int32_t r;
        if (__builtin_add_overflow(a.v_, b.v_, &r)) throwOverflow("sum");
        return Amount(r);
    }
    friend Amount operator-(Amount a, Amount b) {
        std::int32_t r;
        if (__builtin_sub_overflow(a.v_, b.v_, &r)) throwOverflow("difference");
        return Amount(r);
    }
    friend Amount operator*(Amount a, std::int32_t k) {
        std::int32_t r;
        if (__builtin_mul_overflow(a.v_, k, &r)) throwOverflow("product");
        return Amount(r);
    }
    friend Amount operator*(std::int32_t k, Amount a) { return a * k; }
    // Whole numbers mixed with amounts stay amounts (and stay checked).
    friend Amount operator+(Amount a, std::int32_t k) { return a + Amount(k); }
    friend Amount operator+(std::int32_t k, Amount a) { return Amount(k) + a; }
    friend Amount operator-(Amount a, std::int32_t k) { return a - Amount(k); }
    friend Amount operator-(std::int32_t k, Amount a) { return Amount(k) - a; }
    friend Amount operator*(Amount a, Amount b) { return a * b.v_; }
    // A product or quotient with a rate is a double; it comes back through R().
    friend constexpr double operator*(Amount a, double r) { return a.v_ * r; }
    friend constexpr double operator*(double r, Amount a) { return r * a.v_; }
    friend constexpr double operator/(Amount a, double r) { return a.v_ / r; }
    friend constexpr double operator+(Amount a, double r) { return a.v_ + r; }
    friend constexpr double operator+(double r, Amount a) { return r + a.v_; }
    friend constexpr double operator-(Amount a, double r) { return a.v_ - r; }
    friend constexpr double operator-(double r, Amount a) { return r - a.v_; }
    Amount operator-() const { return Amount(0) - *this; }

    Amount& operator+=(Amount b) { return *this = *this + b; }
    Amount& operator-=(Amount b) { return *this = *this - b; }

    friend constexpr bool operator==(Amount, Amount) = default;
    friend constexpr auto operator<=>(Amount, Amount) = default;

private:
    std::int32_t v_ = 0;
};

// R(x): the double x rounded to the nearest whole shekel, ties to the even shekel.
Amount R(double x);

// The smaller and the larger of two amounts; on a tie either.
inline Amount MinLong(Amount a, Amount b) { return a < b ? a : b; }
inline Amount MaxLong(Amount a, Amount b) { return a > b ? a : b; }

std::ostream& operator<<(std::ostream& os, Amount a);

// Checked 16-bit arithmetic for counts.
std::int16_t addCount(std::int16_t a, std::int16_t b);
std::int16_t mulCount(std::int16_t a, std::int16_t b);

}  // namespace zelmor
