#pragma once
#include <gtest/gtest.h>

#include "engine/calc.h"
#include "support/fixed_madad.h"

namespace zelmor::testing {

inline Date ymd(int y, int m, int d) { return *Date::fromYmd(y, m, d); }

// A calculation with a flat index and a fixed today.
inline CalcResult calc(NishumInput n, Date today = ymd(2016, 6, 30)) {
    WorkOutDerived(n);
    static const FixedMadad flat;
    return CalcDoch(n, ConstDoch(), flat, today);
}

// A single resident man born in 1970.
inline NishumInput single() {
    NishumInput n;
    n.Pratim.IDM = "1";
    n.Pratim.isMale = true;
    n.Pratim.isRavak = true;
    n.Pratim.BirthDateM = ymd(1970, 5, 1);
    n.Nekudot.N020 = true;
    return n;
}

// A married resident couple, husband registered, both born in the 1970s.
inline NishumInput couple() {
    NishumInput n = single();
    n.Pratim.isRavak = false;
    n.Pratim.isNasuy = true;
    n.Pratim.BirthDateF = ymd(1972, 3, 3);
    n.Klaliim.isTlutNo = true;
    return n;
}

}  // namespace zelmor::testing
