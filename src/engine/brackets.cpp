// Bracket tax: earned income climbs the seven brackets of the regular scale
// from below; non-earned income has its own scale, starting at the rate of
// bracket 4, stacked on top of the earned income.

#include "engine/calculation.h"

namespace zelmor::engine {

std::array<Amount*, 7> BracketSums(sheets::CHishuv& h, bool isF) {
    if (isF) return {&h.FSUM_1, &h.FSUM_2, &h.FSUM_3, &h.FSUM_4, &h.FSUM_5, &h.FSUM_6, &h.FSUM_7};
    return {&h.MSUM_1, &h.MSUM_2, &h.MSUM_3, &h.MSUM_4, &h.MSUM_5, &h.MSUM_6, &h.MSUM_7};
}

template <bool On>
void Calculation<On>::BracketStep(Person& p) {
    t.who(p.isF ? 'F' : 'M');
    for (auto& b : st.BracketSum) t.set(b, "", t.zero());
    for (auto& b : st.BracketSumA) t.set(b, "", t.zero());
    t.set(st.BracketYegia, "", t(p.st.YegiaChayav));
    t.set(st.BracketLoYegia, "", t(p.st.LoYegiaChayav));
    BracketYegiaScale();
    BracketLoYegiaScale();
    // Bracket n of the non-earned scale is shown with bracket n + 3 of the earned scale.
    const auto cells = BracketSums(out.Hishuv, p.isF);
    for (int i = 1; i <= 7; ++i)
        t.set(*cells[i - 1], "הכנסה במדרגה",
              i <= 3 ? t(st.BracketSum[i]) : t(st.BracketSumA[i - 3]) + t(st.BracketSum[i]));
}

template <bool On>
void Calculation<On>::BracketYegiaScale() {
    const TA Y = t(st.BracketYegia);
    Amount* s = st.BracketSum;
    const TA bounds[] = {t.zero(), K(SUM1), K(SUM2), K(SUM3), K(SUM4), K(SUM5), K(SUM6)};
    // Full brackets below the one Y ends in; bounds belong to the lower bracket.
    int i = 1;
    while (i <= 6 && val(Y) > val(bounds[i])) {
        t.set(s[i], "מדרגה מלאה (יגיעה אישית)", bounds[i] - bounds[i - 1]);
        ++i;
    }
    t.set(s[i], "הכנסה מיגיעה אישית במדרגה", Y - bounds[i - 1]);
}

template <bool On>
void Calculation<On>::BracketLoYegiaScale() {
    const TA Y = t(st.BracketYegia);
    const TA L = t(st.BracketLoYegia);
    const Amount T = val(Y) + val(L);
    Amount* a = st.BracketSumA;
    const TA part1 = val(Y) <= c.SUM1A() ? K(SUM1A) - Y : t.zero();
    const TA part2 = val(Y) <= c.SUM1A() ? K(SUM2ASUB) : val(Y) <= c.SUM2A() ? K(SUM2A) - Y : t.zero();
    const TA part3 = val(Y) <= c.SUM2A() ? K(SUM3ASUB) : val(Y) <= c.SUM3A() ? K(SUM3A) - Y : t.zero();
    const char* full = "מדרגה (הכנסה שלא מיגיעה אישית)";
    const char* last = "הכנסה שלא מיגיעה אישית במדרגה";
    if (T <= c.SUM1A()) {
        t.set(a[1], last, L);
    } else if (T <= c.SUM2A()) {
        t.set(a[1], full, part1);
        t.set(a[2], last, L - t(a[1]));
    } else if (T <= c.SUM3A()) {
        t.set(a[1], full, part1);
        t.set(a[2], full, part2);
        t.set(a[3], last, L - (t(a[1]) + t(a[2])));
    } else {
        t.set(a[1], full, part1);
        t.set(a[2], full, part2);
        t.set(a[3], full, part3);
        t.set(a[4], last, L - (t(a[1]) + t(a[2]) + t(a[3])));
    }
}

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
