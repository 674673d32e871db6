// Allowed deductions, in their fixed order: study fund, oil investment,
// research, film investment, work-disability insurance, pension, national
// insurance. Each limit is taken on what the earlier ones left of the income.

#include "engine/calculation.h"

namespace zelmor::engine {
namespace {
Amount floor0(Amount v) { return MaxLong(v, 0); }
}  // namespace

void Calculation::FirstDeductions(Person& p) {
    PersonState& s = p.st;
    // Study fund: the first 2.5% of the base does not count, the rest up to 4.5% does.
    Amount base = floor0(c.HACHNASAHISHTALMUT() - p.N218);
    base = MinLong(base, p.N150);
    const Amount a = R(p.N136 - base * c.RATEMINHISHTALMUT());
    const Amount b = R(base * c.RATEMAXHISHTALMUT());
    s.NikuyHishtalmut = floor0(MinLong(a, b));

    s.HachnasaMechkar = s.HachnasaKolel - s.NikuyHishtalmut;
    s.NikuyNeft = p.N116;
    s.NikuyHishtalmutNeft = s.NikuyNeft + s.NikuyHishtalmut;
    s.HachnasaMechkar = floor0(s.HachnasaMechkar - s.NikuyNeft);

    // Research takes up to 40% first; research and film share one limit of 45%.
    s.NikuyMechkar = MinLong(R(s.HachnasaMechkar * c.MECHKAR_RATE()), p.N005);
    s.NikuySratim = MinLong(floor0(R(s.HachnasaMechkar * c.MECHKAR_SRATIM_RATE() - s.NikuyMechkar)), p.N118);

    s.NikuimRishon = s.NikuyMechkar + s.NikuyHishtalmutNeft + s.NikuySratim;
    s.HachnasaAcharei = floor0(s.HachnasaKolel - s.NikuimRishon);
}

// Work-disability insurance: up to 2.5% of salary and business income. A loss
// that makes the base negative counts as a base of 0, so the allowed amount
// stays between 0 and the amount paid.
void Calculation::WorkDisability(Person& p) {
    PersonState& s = p.st;
    const Amount base = floor0(MinLong(p.N158 + p.N150, s.HachnasaAcharei));
    p.cnN112S = p.N206 + p.N112;
    p.cnN112H = MinLong(R(base * c.OVDAN_KOSHER_RATE()), p.cnN112S);
    s.NikuimRishon += p.cnN112H;
    s.HachnasaAcharei -= p.cnN112H;
    s.HachnasaKizva = s.HachnasaAcharei;
}

bool Calculation::isOlderForPension(const Person& p) const {
    if (p.BirthDate.isNull()) return false;
    int y, m, d;
    p.BirthDate.ymd(y, m, d);
    return y <= c.YEARGEMEL() || (y == c.YEARGEMEL() + 1 && m == 1 && d == 1);
}

// Pension: the salary and self-employed shares of income, the general limit
// and the limit of the older person.
void Calculation::Pension(Person& p) {
    PersonState& s = p.st;
    const Amount salary = p.N068 + p.N158;
    s.ChelekSachir = MinLong(salary, s.HachnasaKizva);
    s.ChelekAtzmai = s.HachnasaKizva - s.ChelekSachir;
    if (p.chN204 > 0 || Klaliim.isFamily) {  // family company: the salary counts for nothing here
        s.ChelekSachir = 0;
        s.ChelekAtzmai = s.HachnasaKizva;
    }
    s.ChelekSachir = MinLong(s.ChelekSachir, c.HACHNASAMEZAKA_SACHIR());
    // W: the salary without a pension of its own.
    Amount W = salary - p.N244;
    if (salary > c.HACH_MAX_NIKUY()) W -= salary - c.HACH_MAX_NIKUY();
    W = MinLong(floor0(W), s.ChelekSachir);
    s.ChelekAtzmai = MinLong(s.ChelekAtzmai, c.HACHNASAMEZAKA() - s.ChelekSachir);

    // The general limit.
    const Amount P = MinLong(floor0(R(s.ChelekAtzmai * c.NIKUY_KIZVA_ATZMAI() + W * c.NIKUY_KIZVA_SACHIR())), p.N135);
    Amount e = MinLong(R(s.ChelekAtzmai * c.NIKUY_KIZVA_TIKRA()), p.N135);
    e = floor0(R(e - s.ChelekAtzmai * c.NIKUY_KIZVA_SAF()));
    Amount D = P + e;

    // The limit of the older person.
    const Amount O1 = MinLong(R(W * c.MEVUGAR_SACHIR()), R(s.ChelekSachir * c.MEVUGAR_SACHIR_TIKRA()));
    const Amount O2 = MinLong(R(s.ChelekAtzmai * c.MEVUGAR_ATZMAI()), R(c.HACHNASAMEZAKA() * c.MEVUGAR_MEZAKA() - O1));
    Amount Q = MinLong(floor0(O1 + O2), p.N135);
    const bool hasBase = s.HachnasaKizva != 0;
    Amount q1 = R(s.ChelekAtzmai * c.MEVUGAR_TIKRA());
    const Amount c1 = hasBase ? R(s.ChelekAtzmai.value() / static_cast<double>(s.HachnasaKizva.value()) *
                                  c.MEZAKA16().value())
                              : Amount(0);
    q1 = MinLong(MinLong(q1, c1), p.N135);
    Amount q2 = R(s.ChelekAtzmai * c.MEVUGAR_SAF());
    const Amount c2 = hasBase ? R(s.ChelekAtzmai.value() / static_cast<double>(s.HachnasaKizva.value()) *
                                  c.MEZAKA12().value())
                              : Amount(0);
    q2 = MinLong(q2, c2);
    const Amount q = MinLong(floor0(q1 - q2), c.MEZAKA04());
    Q += q;

    if (isOlderForPension(p)) D = Q;
    s.NikuyKizva = MinLong(D, p.N135);
}

// The second pension limit, for deposits of at least KIZVA_MIN: 11% of the
// insured-free income up to the qualifying income, 7% and 4% above it.
void Calculation::KizvaLimitNikuy(Person& p) {
    PersonState& s = p.st;
    const Amount A = p.N248 + p.N135;
    if (A < c.KIZVA_MIN()) return;
    const Amount I = s.HachnasaKizva;
    const Amount S = floor0(p.N244);
    const Amount qual = p.isF ? c.HACHNASAMEZAKA_SACHIR() : c.HACHNASA_AMIT_AZMAI();
    const Amount S1 = floor0(MinLong(I, c.HACHNASA_AMIT_AZMAI()) - S);
    const Amount T = floor0(MinLong(I - S, qual));
    const Amount U = floor0(MinLong(I, c.HACH_MAX_NIKUY()) - MaxLong(S, qual));
    const Amount S2 = MinLong(T, U);
    const Amount X1 = MinLong(A, R(S1 * c.KIZVA2_AMIT()));
    const Amount X2 = MinLong(A - X1, R(S2 * c.KIZVA2_SACHIR()));
    Amount X3 = MinLong(A - X1 - X2, R(S2 * c.KIZVA2_TOSEFET()));
    X3 = MinLong(X3, MaxLong(0, A - c.KIZVA_MIN()));
    if (S2 * c.KIZVA2_MIVCHAN() > (A - X1).value()) X3 = 0;
    const Amount L = MinLong(p.N135, X1 + X2 + X3);
    if (L > s.NikuyKizva) s.NikuyKizva = L;
}

// Second pass of the joint mode: F's study fund and pension deductions join M's.
void Calculation::JoinPersons() {
    st.M.NikuyHishtalmut += st.F.NikuyHishtalmut;
    st.SavedKizvaM = st.M.NikuyKizva;
    st.M.NikuyKizva += st.F.NikuyKizva;
    st.F.NikuyHishtalmut = 0;
    st.F.NikuyKizva = 0;
}

void Calculation::TotalDeductions(Person& p) {
    PersonState& s = p.st;
    s.NikuimBeforeBL = s.NikuimRishon + s.NikuyKizva;
    s.HachnasaBeforeBL = floor0(s.HachnasaKolel - s.NikuimBeforeBL);
    s.NikuyBL = MinLong(R(p.N030 * c.BLRATE()), s.HachnasaBeforeBL);
    s.NikuimKolel = s.NikuyBL + s.NikuimBeforeBL;
    s.HachnasaChayevet = floor0(s.HachnasaKolel - s.NikuimKolel);
}

}  // namespace zelmor::engine
