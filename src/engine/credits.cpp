// Credit points (form lines 54 to 64) and the credits for sums paid.

#include "engine/calculation.h"

namespace zelmor::engine {
// Children by age band, weighted for the mother: newborn 0.5, 1-2 two, 3 two,
// 4-5 two, 6-17 one, 18 half a point.
template <bool On>
auto Calculation<On>::MothersWeights() const -> TD {
    const auto& n = Nekudot;
    return K(YELED_EM_0) * t.num(n.N260_1) + countTimes(n.N260_2, K(YELED_EM_1_2)) +
           countTimes(n.N260_3, K(YELED_EM_3)) + countTimes(n.N260_4, K(YELED_EM_4_5)) +
           K(YELED_EM_6_17) * t.num(n.N260_5) + K(YELED_EM_18) * t.num(n.N260_6);
}

// ...and for the father: newborn one, 1-2 two, 3 one (a 16-bit sum).
template <bool On>
auto Calculation<On>::FathersWeights() const -> TD {
    const auto& n = Nekudot;
    addCount(addCount(n.N260_1, mulCount(n.N260_2, c.YELED_AV_1_2())), n.N260_3);  // raises on overflow
    return t.num(n.N260_1) + countTimes(n.N260_2, K(YELED_AV_1_2)) + t.num(n.N260_3);
}

// A count times a whole number of points, checked as 16-bit counts are.
template <bool On>
auto Calculation<On>::countTimes(const std::int16_t& count, TA points) const -> TD {
    mulCount(count, static_cast<std::int16_t>(val(points).value()));  // raises on overflow
    return t.num(count) * toD(points);
}

// A new immigrant: 42 months from the month of immigration, the first 18 at a
// quarter point a month, the next 12 at a sixth, the last 12 at a twelfth;
// the months that fall in the tax year count.
template <bool On>
auto Calculation<On>::OlePoints(Date date) const -> TD {
    const int second = c.OLE_MONTHS1(), third = second + c.OLE_MONTHS2(), end = third + c.OLE_MONTHS3();
    TD total = t.k("0", 0.0);
    for (int i = 0; i < end; ++i)
        if (date.addMonths(i).year() == c.YEARDOCH())
            total = total + (i < second ? K(OLE_RATE1) : i < third ? K(OLE_RATE2) : K(OLE_RATE3));
    return total;
}

// A discharged soldier: points by the months from discharge to December of
// the tax year; doubled for 24 months of service or more.
template <bool On>
auto Calculation<On>::ChayalPoints(const Date& date, const std::int16_t& months) const -> TD {
    int y, m, d;
    date.ymd(y, m, d);
    const TD twelve = t.k("12", 12.0);
    // The months from the discharge to the end of the tax year.
    const TD n = t.name("חודשים מהשחרור עד סוף השנה",
                        twelve * (toD(K(YEARDOCH)) - t.datePart(date, "שנת השחרור", y)) +
                            (twelve - t.datePart(date, "חודש השחרור", m)));
    const TD none = t.k("0", 0.0);
    TD p = none;
    if (val(n) >= 1 && val(n) <= 12)
        p = n / twelve;
    else if (val(n) >= 13 && val(n) <= 24)
        p = t.k("1", 1.0);
    else if (val(n) >= 25 && val(n) <= 36)
        p = (t.k("36", 36.0) - n) / twelve;
    if (months == 0) p = none;
    if (months >= c.CHAYAL_SHERUT_KAFUL()) p = p * t.k("2", 2.0);
    return p;
}

// The worth of a line's points.
template <bool On>
void Calculation<On>::PointsCredit(double& zikuy, const double& points) {
    t.set(zikuy, "זיכוי בעד נקודות", toD(K(NEKUDA)) * t(points));
}

// Immigrant, discharged soldier and degree: the points of one person and their worth.
template <bool On>
void Calculation<On>::PersonalPoints(const PointCells& cells, Date ole, const Date& discharge,
                                     const std::int16_t& months, std::int32_t degree) {
    const char* points = "נקודות זיכוי";
    t.set(cells.ole, points, OlePoints(ole));
    PointsCredit(cells.oleCredit, cells.ole);
    t.set(cells.soldier, points, ChayalPoints(discharge, months));
    PointsCredit(cells.soldierCredit, cells.soldier);
    t.set(cells.degree, points,
          degree >= 1 && degree <= 4 ? K(NEKUDOT_TOAR) : degree == 5 ? K(NEKUDOT_TOAR_SHENI) : t.k("0", 0.0));
    PointsCredit(cells.degreeCredit, cells.degree);
}

template <bool On>
void Calculation<On>::CalcCreditsM() {
    auto& z = out.Zikuim;
    const auto& k = Nekudot;
    const auto& pr = Pratim;
    const TD one = t.k("1", 1.0), none = t.k("0", 0.0);
    const int mode = filing.FilingMode;
    const char* points = "נקודות זיכוי";
    t.who('M');

    // Line 54: resident; a woman has half a point more, resident or not.
    if (k.N020) {
        t.set(z.NEKUDA_020M, points, K(NEKUDOT_TOSHAV));
        PointsCredit(z.ZIKUY_020M, z.NEKUDA_020M);
    }
    if (pr.isFemale) {
        t.set(z.NEKUDA_020M, points, t(z.NEKUDA_020M) + K(NEKUDOT_ISHA));
        PointsCredit(z.ZIKUY_020M, z.NEKUDA_020M);
    }

    // Spouse lines, only when the couple is computed together.
    if (mode != ModeSeparate && mode != ModeSeparateProperty && !pr.isAlman && !pr.isGarush && !pr.isRavak) {
        const Date man = pr.isFemale ? pr.BirthDateF : pr.BirthDateM;
        const Date woman = pr.isFemale ? pr.BirthDateM : pr.BirthDateF;
        const bool retired = (!man.isNull() && man < c.GIL_PRISHA_GEVER()) ||
                             (!woman.isNull() && woman < c.GIL_PRISHA_ISHA());
        if (retired && k.N020 && (filing.HachnasaTestF > 0 || Klaliim.isBZOzer || k.N025 || k.N021)) {
            t.set(z.NEKUDA_021M, points, one);
            PointsCredit(z.ZIKUY_021M, z.NEKUDA_021M);
        }
        if (k.N020 && Yegia.TTLF > 0) {
            t.set(z.NEKUDA_021AM, points, k.N260 >= 1 ? K(NEKUDOT_021A_YELADIM) : K(NEKUDOT_021A));
            PointsCredit(z.ZIKUY_021AM, z.NEKUDA_021AM);
        }
        if (mode == ModeAlone) {
            t.set(z.NEKUDA_021AM, points, none);
            t.set(z.ZIKUY_021AM, "", none);
        }
        if (Yegia.TTLF < 1 && k.N020 && (k.N025 || Klaliim.isBZOzer)) {
            t.set(z.NEKUDA_025M, points, k.N260 >= 1 ? K(NEKUDOT_025_YELADIM) : K(NEKUDOT_025));
            PointsCredit(z.ZIKUY_025M, z.NEKUDA_025M);
        }
    }

    // Youth: either person aged 16 or 17 in the tax year.
    const int ageM = ageInYear(pr.BirthDateM), ageF = ageInYear(pr.BirthDateF);
    const auto youth = [&](int age) { return age >= c.GIL_NOAR_MIN() && age <= c.GIL_NOAR_MAX(); };
    if (youth(ageM) || youth(ageF)) {
        t.set(z.NEKUDA_020AM, points, one);
        PointsCredit(z.ZIKUY_020AM, z.NEKUDA_020AM);
    }

    // Line 57: alimony, married again.
    if (k.N028) {
        t.set(z.NEKUDA_028M, points, one);
        PointsCredit(z.ZIKUY_028M, z.NEKUDA_028M);
    }

    // Line 58: children.
    t.set(z.NEKUDA_260M, points, none);
    t.set(z.NEKUDA_260F, points, none);
    if ((mode != ModeJoint && pr.isFemale) || (!pr.isNasuy && k.N026) || pr.isRavak || pr.isGarush || pr.isAlman) {
        t.set(z.NEKUDA_260M, points, MothersWeights());
        if (filing.HachnasaTestF > 0 && mode != ModeJoint && pr.isFemale) t.set(z.NEKUDA_260F, points, FathersWeights());
    }
    PointsCredit(z.ZIKUY_260M, z.NEKUDA_260M);
    PointsCredit(z.ZIKUY_260F, z.NEKUDA_260F);

    // Line 60: children who do not live with the person.
    t.set(z.NEKUDA_029M, points, k.N029 ? one : none);
    PointsCredit(z.ZIKUY_029M, z.NEKUDA_029M);

    // Line 59: single-parent family.
    if ((k.N260 >= 1 && k.N026 && !pr.isNasuy && !k.N021) ||
        (k.N260 >= 1 && !k.N021 && (pr.isAlman || pr.isGarush || pr.isRavak))) {
        t.set(z.NEKUDA_026M, points, one);
        PointsCredit(z.ZIKUY_026M, z.NEKUDA_026M);
    }

    // Line 61: supported persons without physical ability, two points each;
    // when the couple is computed together F's count joins M's at one point each.
    t.set(z.NEKUDA_023, points, k.N020 ? countTimes(k.N023, K(NEKUDOT_NECHE)) : none);
    t.set(z.NEKUDA_131, points, k.N020 ? countTimes(k.N131, K(NEKUDOT_NECHE)) : none);
    if (mode == ModeAlone || mode == ModeSingle || mode == ModeJoint) {
        t.set(z.NEKUDA_023, points, t(z.NEKUDA_023) + t.num(k.N131));
        t.set(z.NEKUDA_131, points, none);
    }
    if (z.NEKUDA_023 > 0) PointsCredit(z.ZIKUY_023, z.NEKUDA_023);
    if (z.NEKUDA_131 > 0) PointsCredit(z.ZIKUY_131, z.NEKUDA_131);

    // Lines 62 to 64: immigrant, discharged soldier, degree.
    PersonalPoints({z.NEKUDA_OleM, z.ZIKUY_OleM, z.NEKUDA_224, z.ZIKUY_224, z.NEKUDA_181, z.ZIKUY_181}, k.OleDateM,
                   k.N224, k.N024, k.N181);

    CreditsForPayments(pM);
}

template <bool On>
void Calculation<On>::CalcCreditsF() {
    auto& z = out.Zikuim;
    const auto& k = Nekudot;
    const TD one = t.k("1", 1.0), none = t.k("0", 0.0);
    const char* points = "נקודות זיכוי";
    t.who('F');
    if (k.N020) {
        t.set(z.NEKUDA_020F, points, K(NEKUDOT_TOSHAV));
        PointsCredit(z.ZIKUY_020F, z.NEKUDA_020F);
    }
    if (!Pratim.isFemale) {  // the spouse is the woman
        t.set(z.NEKUDA_020F, points, t(z.NEKUDA_020F) + K(NEKUDOT_ISHA));
        PointsCredit(z.ZIKUY_020F, z.NEKUDA_020F);
        t.set(z.NEKUDA_260F, points, MothersWeights());
        t.set(z.NEKUDA_260M, points, FathersWeights());
    }
    PointsCredit(z.ZIKUY_260F, z.NEKUDA_260F);
    PointsCredit(z.ZIKUY_260M, z.NEKUDA_260M);
    t.set(z.NEKUDA_129, points, k.N129 ? one : none);
    PointsCredit(z.ZIKUY_129, z.NEKUDA_129);
    PersonalPoints({z.NEKUDA_OleF, z.ZIKUY_OleF, z.NEKUDA_324, z.ZIKUY_324, z.NEKUDA_182, z.ZIKUY_182}, k.OleDateF,
                   k.N324, k.N124, k.N182);

    CreditsForPayments(pF);
}

// The allowed bases of the credits for sums paid, for one column.
template <bool On>
void Calculation<On>::CreditsForPayments(Person& p) {
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
        t.set(ZIKUY_023, "הזיכוי בעד הוצאות המוסד גדול יותר", t.k("0", 0.0));

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
    if (val(shift).value() > c.MISHMAROTZIKUYMAX().value() / val(shiftRate)) shift = R(K(MISHMAROTZIKUYMAX) / shiftRate);
    t.set(HUTAR_Mishmarot, allowed, t.floor0(shift));
}

// The second pension limit for the credits: the pair of allowed pension and
// life insurance bases that is worth more stays.
template <bool On>
void Calculation<On>::KizvaLimitZikuy(Person& p) {
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
    if (val(S) == 0) {
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
    if (HUTAR_045 * kizva + HUTAR_036 * bituach < val(P1) * kizva + val(L1) * bituach) {
        t.set(HUTAR_045, "סכום מותר לזיכוי (לפי התקרה השנייה)", P1);
        t.set(HUTAR_036, "סכום מותר לזיכוי (לפי התקרה השנייה)", L1);
    }
}

// Residents of certain settlements: a share of earned taxable income up to the
// settlement's ceiling, for the months of residence.
template <bool On>
void Calculation<On>::Settlement(Person& p) {
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

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
