// Credit points (form lines 54 to 64) and the credits for sums paid.

#include "engine/calculation.h"

namespace zelmor::engine {
// Children by age band, weighted for the mother: newborn 0.5, 1-2 two, 3 two,
// 4-5 two, 6-17 one, 18 half a point.
double Calculation::MothersWeights() const {
    const auto& n = Nekudot;
    return c.YELED_EM_0() * n.N260_1 + mulCount(n.N260_2, c.YELED_EM_1_2()) + mulCount(n.N260_3, c.YELED_EM_3()) +
           mulCount(n.N260_4, c.YELED_EM_4_5()) + c.YELED_EM_6_17() * n.N260_5 + c.YELED_EM_18() * n.N260_6;
}

// ...and for the father: newborn one, 1-2 two, 3 one (a 16-bit sum).
double Calculation::FathersWeights() const {
    const auto& n = Nekudot;
    return addCount(addCount(n.N260_1, mulCount(n.N260_2, c.YELED_AV_1_2())), n.N260_3);
}

// A new immigrant: 42 months from the month of immigration, the first 18 at a
// quarter point a month, the next 12 at a sixth, the last 12 at a twelfth;
// the months that fall in the tax year count.
double Calculation::OlePoints(Date date) const {
    const int second = c.OLE_MONTHS1(), third = second + c.OLE_MONTHS2(), end = third + c.OLE_MONTHS3();
    double total = 0;
    for (int i = 0; i < end; ++i) {
        const double rate = i < second ? c.OLE_RATE1() : i < third ? c.OLE_RATE2() : c.OLE_RATE3();
        if (date.addMonths(i).year() == c.YEARDOCH()) total += rate;
    }
    return total;
}

// A discharged soldier: points by the months from discharge to December of
// the tax year; doubled for 24 months of service or more.
double Calculation::ChayalPoints(Date date, std::int16_t months) const {
    int y, m, d;
    date.ymd(y, m, d);
    const int n = 12 * (c.YEARDOCH() - y) + (12 - m);
    double p = 0;
    if (n >= 1 && n <= 12)
        p = n / 12.0;
    else if (n >= 13 && n <= 24)
        p = 1;
    else if (n >= 25 && n <= 36)
        p = (36 - n) / 12.0;
    if (months == 0) p = 0;
    if (months >= c.CHAYAL_SHERUT_KAFUL()) p *= 2;
    return p;
}

void Calculation::CalcCreditsM() {
    auto& z = out.Zikuim;
    const auto& k = Nekudot;
    const auto& pr = Pratim;
    const double NEKUDA = c.NEKUDA().value();
    const int mode = filing.FilingMode;

    // Line 54: resident; a woman has half a point more, resident or not.
    if (k.N020) {
        z.NEKUDA_020M = c.NEKUDOT_TOSHAV();
        z.ZIKUY_020M = NEKUDA * c.NEKUDOT_TOSHAV();
    }
    if (pr.isFemale) {
        z.NEKUDA_020M += c.NEKUDOT_ISHA();
        z.ZIKUY_020M = NEKUDA * z.NEKUDA_020M;
    }

    // Spouse lines, only when the couple is computed together.
    if (mode != ModeSeparate && mode != ModeSeparateProperty && !pr.isAlman && !pr.isGarush && !pr.isRavak) {
        const Date man = pr.isFemale ? pr.BirthDateF : pr.BirthDateM;
        const Date woman = pr.isFemale ? pr.BirthDateM : pr.BirthDateF;
        const bool retired = (!man.isNull() && man < c.GIL_PRISHA_GEVER()) ||
                             (!woman.isNull() && woman < c.GIL_PRISHA_ISHA());
        if (retired && k.N020 && (filing.HachnasaTestF > 0 || Klaliim.isBZOzer || k.N025 || k.N021)) {
            z.NEKUDA_021M = 1;
            z.ZIKUY_021M = NEKUDA;
        }
        if (k.N020 && Yegia.TTLF > 0) {
            z.NEKUDA_021AM = k.N260 >= 1 ? c.NEKUDOT_021A_YELADIM() : c.NEKUDOT_021A();
            z.ZIKUY_021AM = NEKUDA * z.NEKUDA_021AM;
        }
        if (mode == ModeAlone) z.NEKUDA_021AM = z.ZIKUY_021AM = 0;
        if (Yegia.TTLF < 1 && k.N020 && (k.N025 || Klaliim.isBZOzer)) {
            z.NEKUDA_025M = k.N260 >= 1 ? c.NEKUDOT_025_YELADIM() : c.NEKUDOT_025();
            z.ZIKUY_025M = NEKUDA * z.NEKUDA_025M;
        }
    }

    // Youth: either person aged 16 or 17 in the tax year.
    const int ageM = ageInYear(pr.BirthDateM), ageF = ageInYear(pr.BirthDateF);
    const auto youth = [&](int age) { return age >= c.GIL_NOAR_MIN() && age <= c.GIL_NOAR_MAX(); };
    if (youth(ageM) || youth(ageF)) {
        z.NEKUDA_020AM = 1;
        z.ZIKUY_020AM = NEKUDA;
    }

    // Line 57: alimony, married again.
    if (k.N028) {
        z.NEKUDA_028M = 1;
        z.ZIKUY_028M = NEKUDA;
    }

    // Line 58: children.
    z.NEKUDA_260M = z.NEKUDA_260F = 0;
    if ((mode != ModeJoint && pr.isFemale) || (!pr.isNasuy && k.N026) || pr.isRavak || pr.isGarush || pr.isAlman) {
        z.NEKUDA_260M = MothersWeights();
        if (filing.HachnasaTestF > 0 && mode != ModeJoint && pr.isFemale) z.NEKUDA_260F = FathersWeights();
    }
    z.ZIKUY_260M = NEKUDA * z.NEKUDA_260M;
    z.ZIKUY_260F = NEKUDA * z.NEKUDA_260F;

    // Line 60: children who do not live with the person.
    z.NEKUDA_029M = k.N029 ? 1 : 0;
    z.ZIKUY_029M = NEKUDA * z.NEKUDA_029M;

    // Line 59: single-parent family.
    if ((k.N260 >= 1 && k.N026 && !pr.isNasuy && !k.N021) ||
        (k.N260 >= 1 && !k.N021 && (pr.isAlman || pr.isGarush || pr.isRavak))) {
        z.NEKUDA_026M = 1;
        z.ZIKUY_026M = NEKUDA;
    }

    // Line 61: supported persons without physical ability, two points each;
    // when the couple is computed together F's count joins M's at one point each.
    z.NEKUDA_023 = k.N020 ? mulCount(k.N023, c.NEKUDOT_NECHE()) : 0;
    z.NEKUDA_131 = k.N020 ? mulCount(k.N131, c.NEKUDOT_NECHE()) : 0;
    if (mode == ModeAlone || mode == ModeSingle || mode == ModeJoint) {
        z.NEKUDA_023 += k.N131;
        z.NEKUDA_131 = 0;
    }
    if (z.NEKUDA_023 > 0) z.ZIKUY_023 = NEKUDA * z.NEKUDA_023;
    if (z.NEKUDA_131 > 0) z.ZIKUY_131 = NEKUDA * z.NEKUDA_131;

    // Lines 62 to 64: immigrant, discharged soldier, degree.
    z.NEKUDA_OleM = OlePoints(k.OleDateM);
    z.ZIKUY_OleM = NEKUDA * z.NEKUDA_OleM;
    z.NEKUDA_224 = ChayalPoints(k.N224, k.N024);
    z.ZIKUY_224 = NEKUDA * z.NEKUDA_224;
    z.NEKUDA_181 = k.N181 >= 1 && k.N181 <= 4 ? c.NEKUDOT_TOAR() : k.N181 == 5 ? c.NEKUDOT_TOAR_SHENI() : 0;
    z.ZIKUY_181 = NEKUDA * z.NEKUDA_181;

    CreditsForPayments(pM);
}

void Calculation::CalcCreditsF() {
    auto& z = out.Zikuim;
    const auto& k = Nekudot;
    const double NEKUDA = c.NEKUDA().value();
    if (k.N020) {
        z.NEKUDA_020F = c.NEKUDOT_TOSHAV();
        z.ZIKUY_020F = NEKUDA * c.NEKUDOT_TOSHAV();
    }
    if (!Pratim.isFemale) {  // the spouse is the woman
        z.NEKUDA_020F += c.NEKUDOT_ISHA();
        z.ZIKUY_020F = NEKUDA * z.NEKUDA_020F;
        z.NEKUDA_260F = MothersWeights();
        z.NEKUDA_260M = FathersWeights();
    }
    z.ZIKUY_260F = NEKUDA * z.NEKUDA_260F;
    z.ZIKUY_260M = NEKUDA * z.NEKUDA_260M;
    z.NEKUDA_129 = k.N129 ? 1 : 0;
    z.ZIKUY_129 = NEKUDA * z.NEKUDA_129;
    z.NEKUDA_OleF = OlePoints(k.OleDateF);
    z.ZIKUY_OleF = NEKUDA * z.NEKUDA_OleF;
    z.NEKUDA_324 = ChayalPoints(k.N324, k.N124);
    z.ZIKUY_324 = NEKUDA * z.NEKUDA_324;
    z.NEKUDA_182 = k.N182 >= 1 && k.N182 <= 4 ? c.NEKUDOT_TOAR() : k.N182 == 5 ? c.NEKUDOT_TOAR_SHENI() : 0;
    z.ZIKUY_182 = NEKUDA * z.NEKUDA_182;

    CreditsForPayments(pF);
}

// The allowed bases of the credits for sums paid, for one column.
void Calculation::CreditsForPayments(Person& p) {
    PersonState& s = p.st;
    auto& z = out.Zikuim;
    Amount& HUTAR_045 = p.isF ? z.HUTAR_086 : z.HUTAR_045;
    Amount& HUTAR_036 = p.isF ? z.HUTAR_081 : z.HUTAR_036;
    Amount& HUTAR_132 = p.isF ? z.HUTAR_232 : z.HUTAR_132;
    double& ZIKUY_023 = p.isF ? z.ZIKUY_131 : z.ZIKUY_023;
    Amount& HUTAR_037 = p.isF ? z.HUTAR_237 : z.HUTAR_037;
    Amount& HUTAR_143 = p.isF ? z.HUTAR_144 : z.HUTAR_143;
    Amount& AcherimCell = p.isF ? z.AcherimF : z.AcherimM;
    Amount& HUTAR_Acherim = p.isF ? z.HUTAR_AcherimF : z.HUTAR_AcherimM;
    Amount& HUTAR_Mishmarot = p.isF ? z.HUTAR_MishmarotF : z.HUTAR_MishmarotM;
    const char* allowed = "סכום מותר לזיכוי";
    t.who(p.isF ? 'F' : 'M');

    // Pension: survivors' insurance up to 1.5% of income, and what of the
    // self-employed pension was not taken as a deduction.
    t.set(s.TikraKizva, "תקרת הזיכוי לקצבה",
          MaxLong(R(t(s.ChelekSachir) * K(ZIKUY_KIZVA_SACHIR) + t(s.ChelekAtzmai) * K(ZIKUY_KIZVA_ATZMAI)),
                  K(HISAHONMIZARI)));
    const TA deducted = (!p.isF && filing.JointStage == 2) ? t(st.SavedKizvaM) : t(s.NikuyKizva);
    const TA A = MinLong(t(p.N140), R((t(s.ChelekAtzmai) + t(s.ChelekSachir)) * K(ZIKUY_BITUACH_SHEERIM))) +
                 t(p.N045) + t(p.N268) + t(p.N135) - deducted;
    t.set(HUTAR_045, allowed, MinLong(t.floor0(A), t(s.TikraKizva)));

    // Life insurance, within what the pension left under its ceiling.
    t.set(s.TikraBituach, "תקרת הזיכוי לביטוח חיים",
          MaxLong(R(t(s.ChelekAtzmai) * K(ZIKUY_BITUACH_TIKRA) + t(s.ChelekSachir) * K(ZIKUY_BITUACH_TIKRA)),
                  K(HISAHONMIZARI)));
    t.set(HUTAR_036, allowed,
          MinLong(t.floor0(MinLong(t(p.N036), t(s.TikraBituach))), t(s.TikraKizva) - t(HUTAR_045)));

    KizvaLimitZikuy(p);
    t.who(p.isF ? 'F' : 'M');

    // Care of a family member in an institution: above 12.5% of taxable
    // income; it and line 61 do not both count, and on a tie line 61 stays.
    t.set(HUTAR_132, allowed, MinLong(t.floor0(R(t(p.N132) - t(s.HachnasaChayevet) * K(MOSAD_SAF))), t(p.N132)));
    if (!Nekudot.N020) t.moved(HUTAR_132, "לא תושב");
    const Amount W = R(HUTAR_132 * Percent(c.ZIKUY_RATE()));
    if (W.value() <= ZIKUY_023)
        t.moved(HUTAR_132, "זיכוי בעד נקודות הנטל גדול יותר");
    else
        ZIKUY_023 = 0;

    Settlement(p);
    t.who(p.isF ? 'F' : 'M');

    // Donations: up to 30% of taxable income, within half the research base.
    TA D = t.floor0(R(t(s.HachnasaMechkar) * K(TRUMOT_MECHKAR) - t(s.NikuyMechkar) - t(s.NikuySratim)));
    D = MinLong(D, R(t(s.HachnasaChayevet) * K(TRUMOT_TIKRA)));
    D = MinLong(D, K(TRUMOTMAX));
    if (p.N037 < c.TRUMOTMIN()) D = t.name("תרומות מתחת לסכום המזערי", t.zero());
    t.set(HUTAR_037, allowed, MinLong(D, t(p.N037)));

    t.set(HUTAR_143, allowed, t(p.N143));  // memorial donations: no cap

    t.set(AcherimCell, "", t(p.Acherim));
    t.set(HUTAR_Acherim, allowed, t(p.Acherim));

    // Shift work: the shift pay within the salary ceiling, and no more than
    // the credit ceiling turned back into income at 15%.
    t.set(s.OdefMishmarot, "שכר מעל תקרת המשמרות", t.floor0(t(p.N068) + t(p.N158) - K(MISHMAROTMAX)));
    TA shift = t(p.N068) - t(s.OdefMishmarot);
    const TD shiftRate = t.percent(K(ZIKUY_RATE_MISHMAROT));
    if (shift.v.value() > c.MISHMAROTZIKUYMAX().value() / shiftRate.v) shift = R(K(MISHMAROTZIKUYMAX) / shiftRate);
    t.set(HUTAR_Mishmarot, allowed, t.floor0(shift));
}

// The second pension limit for the credits: the pair of allowed pension and
// life insurance bases that is worth more stays.
void Calculation::KizvaLimitZikuy(Person& p) {
    PersonState& s = p.st;
    auto& z = out.Zikuim;
    Amount& HUTAR_045 = p.isF ? z.HUTAR_086 : z.HUTAR_045;
    Amount& HUTAR_036 = p.isF ? z.HUTAR_081 : z.HUTAR_036;
    if (p.N248 + p.N135 < c.KIZVA_MIN()) return;
    t.who(p.isF ? 'F' : 'M');
    const TA I = t(s.HachnasaKizva);
    const TA S = t.floor0(t(p.N244));
    const TA P = MinLong(t(p.N140), R((t(s.ChelekAtzmai) + t(s.ChelekSachir)) * K(ZIKUY_BITUACH_SHEERIM))) +
                 t(p.N045) + t(p.N268) + t(p.N135) - t(s.NikuyKizva);
    const TA T = P + t(p.N036);
    TA L;
    if (S.v == 0) {
        L = R(MinLong(I, K(HACH_MAX_ZIKUY)) * K(ZIKUY_KIZVA_ATZMAI));
    } else {
        const TA sachir = MinLong(K(HACHNASAMEZAKA_SACHIR), I);
        const TA rest =
            MinLong(I - S, MinLong(K(HACH_MAX_ZIKUY) - MinLong(K(HACHNASAMEZAKA_SACHIR), S), t(p.N135)));
        L = R(sachir * K(ZIKUY_KIZVA_SACHIR) + rest * K(ZIKUY_KIZVA_ATZMAI));
    }
    L = MinLong(MaxLong(L, K(HISAHONMIZARI)), T);
    const TA P1 = MinLong(P, L);
    const TA L1 = MinLong(MaxLong(MinLong(t(p.N036), L - P1), t.zero()), R(I * K(ZIKUY_BITUACH_TIKRA)));
    const double kizva = Percent(c.ZIKUY_RATE()), bituach = Percent(c.ZIKUY_RATE_BITUACH());
    if (HUTAR_045 * kizva + HUTAR_036 * bituach < P1.v * kizva + L1.v * bituach) {
        t.set(HUTAR_045, "סכום מותר לזיכוי (לפי התקרה השנייה)", P1);
        t.set(HUTAR_036, "סכום מותר לזיכוי (לפי התקרה השנייה)", L1);
    }
}

// Residents of certain settlements: a share of earned taxable income up to the
// settlement's ceiling, for the months of residence.
void Calculation::Settlement(Person& p) {
    PersonState& s = p.st;
    auto& z = out.Zikuim;
    Amount& paid = p.isF ? z.N193 : z.N093;
    Amount& base = p.isF ? z.HUTAR_193 : z.HUTAR_093;
    Amount& rate = p.isF ? z.RATE_193 : z.RATE_093;
    t.who(p.isF ? 'F' : 'M');
    const char* income = "הכנסה מיגיעה אישית של תושב יישוב מוטב";
    const char* allowed = "סכום מותר לזיכוי";
    t.set(paid, "", t.zero());
    t.set(base, "", t.zero());
    if (p.N093 == 1) {
        t.set(paid, income, t(s.YegiaChayav));
        t.set(base, allowed, MinLong(t(s.YegiaChayav), K(SFAR_TZAFON)));
    } else if (p.N093 == 2) {
        t.set(paid, income, t(s.YegiaChayav));
        t.set(base, allowed, MinLong(t(s.YegiaChayav), K(SFAR_NEGEV_GALIL)));
    }
    t.set(base, allowed, R(t(p.N093Month) / t.k("12", 12.0) * toD(t(base))));
    t.set(rate, "", t(p.N093Rate));
}

}  // namespace zelmor::engine
