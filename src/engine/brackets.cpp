// Bracket tax: earned income climbs the seven brackets of the regular scale
// from below; non-earned income has its own scale, starting at the rate of
// bracket 4, stacked on top of the earned income.

#include "engine/calculation.h"

namespace zelmor::engine {

std::array<Amount*, 7> BracketSums(sheets::CHishuv& h, bool isF) {
    if (isF) return {&h.FSUM_1, &h.FSUM_2, &h.FSUM_3, &h.FSUM_4, &h.FSUM_5, &h.FSUM_6, &h.FSUM_7};
    return {&h.MSUM_1, &h.MSUM_2, &h.MSUM_3, &h.MSUM_4, &h.MSUM_5, &h.MSUM_6, &h.MSUM_7};
}

void Calculation::BracketStep(Person& p) {
    for (auto& b : st.BracketSum) b = 0;
    for (auto& b : st.BracketSumA) b = 0;
    st.BracketYegia = p.st.YegiaChayav;
    st.BracketLoYegia = p.st.LoYegiaChayav;
    BracketYegiaScale();
    BracketLoYegiaScale();
    // Bracket n of the non-earned scale is shown with bracket n + 3 of the earned scale.
    const auto cells = BracketSums(out.Hishuv, p.isF);
    for (int i = 1; i <= 7; ++i) *cells[i - 1] = i <= 3 ? st.BracketSum[i] : st.BracketSumA[i - 3] + st.BracketSum[i];
}

void Calculation::BracketYegiaScale() {
    const Amount Y = st.BracketYegia;
    Amount* s = st.BracketSum;
    const Amount bounds[] = {0, c.SUM1(), c.SUM2(), c.SUM3(), c.SUM4(), c.SUM5(), c.SUM6()};
    // Full brackets below the one Y ends in; bounds belong to the lower bracket.
    int i = 1;
    while (i <= 6 && Y > bounds[i]) {
        s[i] = bounds[i] - bounds[i - 1];
        ++i;
    }
    s[i] = Y - bounds[i - 1];
}

void Calculation::BracketLoYegiaScale() {
    const Amount Y = st.BracketYegia;
    const Amount L = st.BracketLoYegia;
    const Amount T = Y + L;
    Amount* a = st.BracketSumA;
    const Amount part1 = Y <= c.SUM1A() ? c.SUM1A() - Y : Amount(0);
    const Amount part2 = Y <= c.SUM1A() ? c.SUM2ASUB() : Y <= c.SUM2A() ? c.SUM2A() - Y : Amount(0);
    const Amount part3 = Y <= c.SUM2A() ? c.SUM3ASUB() : Y <= c.SUM3A() ? c.SUM3A() - Y : Amount(0);
    if (T <= c.SUM1A()) {
        a[1] = L;
    } else if (T <= c.SUM2A()) {
        a[1] = part1;
        a[2] = L - a[1];
    } else if (T <= c.SUM3A()) {
        a[1] = part1;
        a[2] = part2;
        a[3] = L - (a[1] + a[2]);
    } else {
        a[1] = part1;
        a[2] = part2;
        a[3] = part3;
        a[4] = L - (a[1] + a[2] + a[3]);
    }
}

}  // namespace zelmor::engine
