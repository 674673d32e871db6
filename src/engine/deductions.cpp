// Allowed deductions, in their fixed order: study fund, oil investment,
// research, film investment, work-disability insurance, pension, national
// insurance. Each limit is taken on what the earlier ones left of the income.

#include "engine/calculation.h"

namespace zelmor::engine {
template <bool On>
void Calculation<On>::FirstDeductions(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    // Study fund: the first 2.5% of the base does not count, the rest up to 4.5% does.
    TA base = t.floor0(K(HACHNASAHISHTALMUT) - t(p.N218));
    base = MinLong(base, t(p.N150));
    const TA a = R(t(p.N136) - base * K(RATEMINHISHTALMUT));
    const TA b = R(base * K(RATEMAXHISHTALMUT));
    t.set(s.NikuyHishtalmut, "ניכוי לקרן השתלמות", t.floor0(MinLong(a, b)));

    t.set(s.HachnasaMechkar, "", t(s.HachnasaKolel) - t(s.NikuyHishtalmut));
    t.set(s.NikuyNeft, "ניכוי השקעה בנפט", t(p.N116));
    t.set(s.NikuyHishtalmutNeft, "", t(s.NikuyNeft) + t(s.NikuyHishtalmut));
    t.set(s.HachnasaMechkar, "הכנסה לעניין ניכוי מחקר", t.floor0(t(s.HachnasaMechkar) - t(s.NikuyNeft)));

    // Research takes up to 40% first; research and film share one limit of 45%.
    t.set(s.NikuyMechkar, "ניכוי למחקר", MinLong(R(t(s.HachnasaMechkar) * K(MECHKAR_RATE)), t(p.N005)));
    t.set(s.NikuySratim, "ניכוי השקעה בסרטים",
          MinLong(t.floor0(R(t(s.HachnasaMechkar) * K(MECHKAR_SRATIM_RATE) - t(s.NikuyMechkar))), t(p.N118)));

    t.set(s.NikuimRishon, "ניכויים", t(s.NikuyMechkar) + t(s.NikuyHishtalmutNeft) + t(s.NikuySratim));
    t.set(s.HachnasaAcharei, "הכנסה לאחר ניכויים", t.floor0(t(s.HachnasaKolel) - t(s.NikuimRishon)));
}

// Work-disability insurance: up to 2.5% of salary and business income. A loss
// that makes the base negative counts as a base of 0, so the allowed amount
// stays between 0 and the amount paid.
template <bool On>
void Calculation<On>::WorkDisability(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    const TA base = t.floor0(MinLong(t(p.N158) + t(p.N150), t(s.HachnasaAcharei)));
    t.set(p.cnN112S, "", t(p.N206) + t(p.N112));
    t.set(p.cnN112H, "ניכוי ביטוח אובדן כושר עבודה", MinLong(R(base * K(OVDAN_KOSHER_RATE)), t(p.cnN112S)));
    t.set(s.NikuimRishon, "ניכויים", t(s.NikuimRishon) + t(p.cnN112H));
    t.set(s.HachnasaAcharei, "הכנסה לאחר ניכויים", t(s.HachnasaAcharei) - t(p.cnN112H));
    t.set(s.HachnasaKizva, "הכנסה לעניין ניכוי קצבה", t(s.HachnasaAcharei));
}

template <bool On>
bool Calculation<On>::isOlderForPension(const Person& p) const {
    if (p.BirthDate.isNull()) return false;
    int y, m, d;
    p.BirthDate.ymd(y, m, d);
    return y <= c.YEARGEMEL() || (y == c.YEARGEMEL() + 1 && m == 1 && d == 1);
}

// Pension: the salary and self-employed shares of income, the general limit
// and the limit of the older person.
template <bool On>
void Calculation<On>::Pension(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    const TA salary = t(p.N068) + t(p.N158);
    t.set(s.ChelekSachir, "הכנסה מזכה ממשכורת", MinLong(salary, t(s.HachnasaKizva)));
    t.set(s.ChelekAtzmai, "הכנסה מזכה שאינה ממשכורת", t(s.HachnasaKizva) - t(s.ChelekSachir));
    if (p.chN204 > 0 || Klaliim.isFamily) {  // family company: the salary counts for nothing here
        t.moved(s.ChelekSachir, "חברה משפחתית: המשכורת אינה נחשבת");
        t.set(s.ChelekAtzmai, "הכנסה מזכה שאינה ממשכורת", t(s.HachnasaKizva));
    }
    t.set(s.ChelekSachir, "הכנסה מזכה ממשכורת", MinLong(t(s.ChelekSachir), K(HACHNASAMEZAKA_SACHIR)));
    // W: the salary without a pension of its own.
    TA W = salary - t(p.N244);
    if (val(salary) > c.HACH_MAX_NIKUY()) W = W - (salary - K(HACH_MAX_NIKUY));
    W = MinLong(t.floor0(W), t(s.ChelekSachir));
    t.set(s.ChelekAtzmai, "הכנסה מזכה שאינה ממשכורת",
          MinLong(t(s.ChelekAtzmai), K(HACHNASAMEZAKA) - t(s.ChelekSachir)));

    // The general limit.
    const TA P = MinLong(t.floor0(R(t(s.ChelekAtzmai) * K(NIKUY_KIZVA_ATZMAI) + W * K(NIKUY_KIZVA_SACHIR))),
                         t(p.N135));
    TA e = MinLong(R(t(s.ChelekAtzmai) * K(NIKUY_KIZVA_TIKRA)), t(p.N135));
    e = t.floor0(R(e - t(s.ChelekAtzmai) * K(NIKUY_KIZVA_SAF)));
    TA D = P + e;

    // The limit of the older person.
    const TA O1 = MinLong(R(W * K(MEVUGAR_SACHIR)), R(t(s.ChelekSachir) * K(MEVUGAR_SACHIR_TIKRA)));
    const TA O2 = MinLong(R(t(s.ChelekAtzmai) * K(MEVUGAR_ATZMAI)), R(K(HACHNASAMEZAKA) * K(MEVUGAR_MEZAKA) - O1));
    TA Q = MinLong(t.floor0(O1 + O2), t(p.N135));
    const bool hasBase = s.HachnasaKizva != 0;
    TA q1 = R(t(s.ChelekAtzmai) * K(MEVUGAR_TIKRA));
    const TA c1 = hasBase ? R(t(s.ChelekAtzmai) / toD(t(s.HachnasaKizva)) * K(MEZAKA16)) : t.zero();
    q1 = MinLong(MinLong(q1, c1), t(p.N135));
    TA q2 = R(t(s.ChelekAtzmai) * K(MEVUGAR_SAF));
    const TA c2 = hasBase ? R(t(s.ChelekAtzmai) / toD(t(s.HachnasaKizva)) * K(MEZAKA12)) : t.zero();
    q2 = MinLong(q2, c2);
    const TA q = MinLong(t.floor0(q1 - q2), K(MEZAKA04));
    Q = Q + q;

    if (isOlderForPension(p)) D = Q;
    t.set(s.NikuyKizva, "ניכוי לקצבה", MinLong(D, t(p.N135)));
}

// The second pension limit, for deposits of at least KIZVA_MIN: 11% of the
// insured-free income up to the qualifying income, 7% and 4% above it.
template <bool On>
void Calculation<On>::KizvaLimitNikuy(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    const TA A = t(p.N248) + t(p.N135);
    if (val(A) < c.KIZVA_MIN()) return;
    const TA I = t(s.HachnasaKizva);
    const TA S = t.floor0(t(p.N244));
    const TA qual = p.isF ? K(HACHNASAMEZAKA_SACHIR) : K(HACHNASA_AMIT_AZMAI);
    const TA S1 = t.floor0(MinLong(I, K(HACHNASA_AMIT_AZMAI)) - S);
    const TA T = t.floor0(MinLong(I - S, qual));
    const TA U = t.floor0(MinLong(I, K(HACH_MAX_NIKUY)) - MaxLong(S, qual));
    const TA S2 = MinLong(T, U);
    const TA X1 = MinLong(A, R(S1 * K(KIZVA2_AMIT)));
    const TA X2 = MinLong(A - X1, R(S2 * K(KIZVA2_SACHIR)));
    TA X3 = MinLong(A - X1 - X2, R(S2 * K(KIZVA2_TOSEFET)));
    X3 = MinLong(X3, MaxLong(t.zero(), A - K(KIZVA_MIN)));
    if (val(S2) * c.KIZVA2_MIVCHAN() > (val(A) - val(X1)).value()) X3 = t.zero();
    const TA L = MinLong(t(p.N135), X1 + X2 + X3);
    if (val(L) > s.NikuyKizva) t.set(s.NikuyKizva, "ניכוי לקצבה (לפי התקרה השנייה)", L);
}

// Second pass of the joint mode: F's study fund and pension deductions join M's.
template <bool On>
void Calculation<On>::JoinPersons() {
    t.who('M');
    t.set(st.M.NikuyHishtalmut, "ניכוי לקרן השתלמות של שני בני הזוג", t(st.M.NikuyHishtalmut) + t(st.F.NikuyHishtalmut));
    t.set(st.SavedKizvaM, "ניכוי לקצבה של הנישום", t(st.M.NikuyKizva));
    t.set(st.M.NikuyKizva, "ניכוי לקצבה של שני בני הזוג", t(st.M.NikuyKizva) + t(st.F.NikuyKizva));
    t.who('F');
    t.moved(st.F.NikuyHishtalmut, "הועבר לנישום");
    t.moved(st.F.NikuyKizva, "הועבר לנישום");
}

template <bool On>
void Calculation<On>::TotalDeductions(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    t.set(s.NikuimBeforeBL, "ניכויים לפני ביטוח לאומי", t(s.NikuimRishon) + t(s.NikuyKizva));
    t.set(s.HachnasaBeforeBL, "הכנסה לעניין ניכוי ביטוח לאומי", t.floor0(t(s.HachnasaKolel) - t(s.NikuimBeforeBL)));
    t.set(s.NikuyBL, "ניכוי דמי ביטוח לאומי", MinLong(R(t(p.N030) * K(BLRATE)), t(s.HachnasaBeforeBL)));
    t.set(s.NikuimKolel, "סה\"כ ניכויים", t(s.NikuyBL) + t(s.NikuimBeforeBL));
    t.set(s.HachnasaChayevet, "הכנסה חייבת", t.floor0(t(s.HachnasaKolel) - t(s.NikuimKolel)));
}

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
