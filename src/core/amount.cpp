#include "core/amount.h"

#include <cfenv>
#include <limits>
#include <ostream>

namespace zelmor {

void throwOverflow(const char* what) {
    throw OverflowError(std::string("overflow: a ") + what + " left the 32-bit range");
}

std::ostream& operator<<(std::ostream& os, Amount a) { return os << a.value(); }

Amount R(double x) {
    // nearbyint rounds in the current mode, which is round-to-nearest-even
    // unless someone changed it; we never do.
    const double r = std::nearbyint(x);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throwOverflow("rounded amount");
    return Amount(static_cast<std::int32_t>(r));
}

std::int16_t addCount(std::int16_t a, std::int16_t b) {
    std::int16_t r;
    if (__builtin_add_overflow(a, b, &r)) throw OverflowError("overflow: a count left the 16-bit range");
    return r;
}

std::int16_t mulCount(std::int16_t a, std::int16_t b) {
    std::int16_t r;
    if (__builtin_mul_overflow(a, b, &r)) throw OverflowError("overflow: a count left the 16-bit range");
    return r;
}

}  // namespace zelmor
