#pragma once
// The figures of the tax year. A new tax year is a new edition of this class:
// only the stated values change, the derived ones follow from their formula,
// which is worked out at each read. Long constants are whole shekels (Amount)
// or years (int); rates and the national insurance figures are doubles, except
// the rates that the sheets show, which are whole percents (int). Every rate,
// share and point count the calculation uses is named here; the calculation
// holds none of its own.

#include <cstdint>

#include "core/amount.h"
#include "core/date.h"

namespace zelmor {

// A rate given in whole percents as a share (35 -> 0.35).
constexpr double Percent(int wholePercent) { return wholePercent / 100.0; }

class ConstDoch {
public:
    // --- Regular scale: rates and inclusive upper bounds of the brackets ---
    constexpr double RATE1() const { return 0.1; }
    constexpr double RATE2() const { return 0.14; }
    constexpr double RATE3() const { return 0.21; }
    constexpr double RATE4() const { return 0.31; }
    constexpr double RATE5() const { return 0.34; }
    constexpr double RATE6() const { return 0.48; }
    constexpr double RATE7() const { return 0.5; }  // above SUM6
    constexpr Amount SUM1() const { return 63240; }
    constexpr Amount SUM2() const { return 108000; }
    constexpr Amount SUM3() const { return 167880; }
    constexpr Amount SUM4() const { return 239760; }
    constexpr Amount SUM5() const { return 501480; }
    constexpr Amount SUM6() const { return 810720; }
    // Widths of the brackets.
    Amount SUM2SUB() const { return SUM2() - SUM1(); }
    Amount SUM3SUB() const { return SUM3() - SUM2(); }
    Amount SUM4SUB() const { return SUM4() - SUM3(); }
    Amount SUM5SUB() const { return SUM5() - SUM4(); }
    Amount SUM6SUB() const { return SUM6() - SUM5(); }
    // Tax of a full bracket.
    Amount MAS2SUB() const { return MAS2() - MAS1(); }
    Amount MAS3SUB() const { return MAS3() - MAS2(); }
    Amount MAS4SUB() const { return MAS4() - MAS3(); }
    Amount MAS5SUB() const { return MAS5() - MAS4(); }
    Amount MAS6SUB() const { return MAS6() - MAS5(); }
    // Tax at the top of each bracket, each built on the rounded one below it.
    Amount MAS1() const { return R(RATE1() * SUM1()); }
    Amount MAS2() const { return R((SUM2() - SUM1()) * RATE2() + MAS1()); }
    Amount MAS3() const { return R((SUM3() - SUM2()) * RATE3() + MAS2()); }
    Amount MAS4() const { return R((SUM4() - SUM3()) * RATE4() + MAS3()); }
    Amount MAS5() const { return R((SUM5() - SUM4()) * RATE5() + MAS4()); }
    Amount MAS6() const { return R((SUM6() - SUM5()) * RATE6() + MAS5()); }

    // --- Non-earned scale, stacked on top of earned income ---
    constexpr double RATE1A() const { return 0.31; }
    constexpr double RATE2A() const { return 0.34; }
    constexpr double RATE3A() const { return 0.48; }
    constexpr double RATE4A() const { return 0.5; }  // above SUM3A
    constexpr Amount SUM1A() const { return 239760; }
    constexpr Amount SUM2A() const { return 501480; }
    constexpr Amount SUM3A() const { return 810720; }
    Amount SUM2ASUB() const { return SUM2A() - SUM1A(); }
    Amount SUM3ASUB() const { return SUM3A() - SUM2A(); }
    Amount MAS1A() const { return R(RATE1A() * SUM1A()); }
    Amount MAS2A() const { return R((SUM2A() - SUM1A()) * RATE2A() + MAS1A()); }
    Amount MAS3A() const { return R((SUM3A() - SUM2A()) * RATE3A() + MAS2A()); }
    Amount MAS2ASUB() const { return MAS2A() - MAS1A(); }
    Amount MAS3ASUB() const { return MAS3A() - MAS2A(); }

    // Ceiling of the exempt income of a fully disabled person (N109, N309).
    constexpr Amount PTURANECHE() const { return 614400; }
    // Yearly value of one credit point.
    constexpr Amount NEKUDA() const { return 2616; }
    // Income limit under which the joint run is tried.
    Amount TESTMEUCHAD() const { return NEKUDA() * 25; }

    // --- Deductions ---
    constexpr Amount HACHNASAHISHTALMUT() const { return 263000; }  // study fund: ceiling of the base
    constexpr double RATEMINHISHTALMUT() const { return 0.025; }    // part of the base a payment does not count for
    constexpr double RATEMAXHISHTALMUT() const { return 0.045; }    // ceiling rate of the deduction

    // --- Exempt interest ---
    constexpr Amount NIKUY_RIBIT() const { return 13440; }         // one person 65 or older
    constexpr Amount NIKUY_RIBIT_MUGDAL() const { return 16560; }  // both 65 or older
    constexpr Amount KIZVA_MEZAKA() const { return 101520; }       // qualifying pension ceiling
    constexpr Amount HACHNASA_NEMUCHA() const { return 62640; }    // whole low-income exemption up to here
    constexpr Amount PTOR_RIBIT_NEMUCHA() const { return 9840; }   // the low-income exemption

    // --- Pensions ---
    // Smallest pension contribution that opens the second pension limit.
    Amount KIZVA_MIN() const { return R(BLMEMUZA() * 12 * 0.95 * 0.16); }
    constexpr Amount HACHNASAMEZAKA() const { return 147600; }         // qualifying income
    constexpr Amount HACHNASAMEZAKA_SACHIR() const { return 104400; }  // qualifying salary
    constexpr Amount HACHNASA_AMIT_AZMAI() const { return 104400; }    // qualifying income, self-employed member
    Amount HACH_MAX_NIKUY() const { return HACHNASA_AMIT_AZMAI() * 4; }  // income ceiling, deduction
    Amount HACH_MAX_ZIKUY() const { return HACHNASA_AMIT_AZMAI() * 2; }  // income ceiling, credit
    Amount MEZAKA04() const { return R(HACHNASAMEZAKA() * 0.04); }
    Amount MEZAKA05() const { return R(HACHNASAMEZAKA() * 0.05); }
    Amount MEZAKA07() const { return R(HACHNASAMEZAKA() * 0.07); }
    Amount MEZAKA12() const { return R(HACHNASAMEZAKA() * 0.12); }
    Amount MEZAKA16() const { return R(HACHNASAMEZAKA() * 0.16); }

    // --- Credits ---
    constexpr Amount HISAHONMIZARI() const { return 2028; }     // smallest ceiling of insurance and pension credits
    constexpr Amount TRUMOTMAX() const { return 9295000; }      // largest donation that counts
    constexpr Amount TRUMOTMIN() const { return 190; }          // smallest donation that counts
    constexpr Amount MISHMAROTMAX() const { return 128400; }    // salary ceiling of the shift work credit
    constexpr Amount MISHMAROTZIKUYMAX() const { return 11280; }  // largest shift work credit

    // --- The year ---
    constexpr int YEARDOCH() const { return 2015; }
    constexpr int YEARGEMEL() const { return YEARDOCH() - 51; }  // last birth year of the older person (pension)
    constexpr int YEARYEGIA() const { return YEARDOCH() - 60; }  // last birth year taxed on the earned scale alone

    // --- Settlements ---
    constexpr Amount SFAR_TZAFON() const { return 241080; }       // northern border
    constexpr Amount SFAR_NEGEV_GALIL() const { return 160560; }  // Negev and Galilee
    constexpr Amount NEGEV() const { return 160560; }             // Negev (no reader)

    // --- National insurance ---
    constexpr double BLRATE() const { return 0.52; }  // deductible share of the payment
    constexpr double BLMEMUZA() const { return 9260.0; }  // monthly average wage
    constexpr double BLHACHNASAMUFHAT() const { return BLMEMUZA() * 12 * 0.6; }  // reduced rate up to here
    constexpr double BLGILUMAZMAI() const { return 45365.4; }
    constexpr double BLGILUMHEINOOVED() const { return 44879.74; }
    constexpr double BLGILUMZAKEN() const { return 43916.82; }
    constexpr double BLMINIMUM() const { return 27780.0; }
    constexpr double BLMINIMUMHEINOOVED() const { return 16668.0; }
    constexpr double BLMAXIMUM() const { return 518880.0; }
    constexpr double BLRATEMUFHATAZMAI() const { return 0.0982; }
    constexpr double BLRATEMUFHATHEINOOVED() const { return 0.0961; }
    constexpr double BLRATEMUFHATZAKEN() const { return 0.0039; }
    constexpr double BLRATERAGILAZMAI() const { return 0.1623; }
    constexpr double BLRATERAGILHEINOOVED() const { return 0.12; }
    constexpr double BLRATERAGILZAKEN() const { return 0.0064; }
    constexpr double BLRATE45() const { return 0.0955; }
    constexpr double BLMEKADEMGILUMAZMAIMUFHAT() const { return 1.034944; }
    constexpr double BLMEKADEMGILUMAZMAIRAGIL() const { return 1.055224; }
    constexpr double BLMEKADEMHIBURAZMAIRAGIL() const { return 847.37952; }
    constexpr double BLMEKADEMGILUMHEINOMUFHAT() const { return 1.023972; }
    constexpr double BLMEKADEMGILUMHEINORAGIL() const { return 1.05408; }
    constexpr double BLMEKADEMHIBURHEINORAGIL() const { return 1258.0326; }
    constexpr double BLMEKADEMGILUMZAKENMUFHAT() const { return 1.002028; }
    constexpr double BLMEKADEMGILUMZAKENRAGIL() const { return 1.003328; }
    constexpr double BLMEKADEMHIBURZAKENRAGIL() const { return 54.3192; }
    constexpr int BLYEARM() const { return YEARDOCH() - 65; }  // birth year bound of an older man
    constexpr int BLYEARF() const { return YEARDOCH() - 60; }  // birth year bound of an older woman

    // --- Filing ---
    // The spouse's income up to which the registered spouse files alone.
    Amount SAF_BEN_ZUG() const { return R(NEKUDA() * 8.75); }
    Amount SAF_BEN_ZUG_YELADIM() const { return NEKUDA() * 10; }  // ... when the couple has children

    // --- Special-rate lines: their rates in whole percents ---
    constexpr int RATE_N214() const { return 40; }  // earned income taxed at 40%
    constexpr int RATE_N213() const { return 35; }
    constexpr int RATE_N212() const { return 30; }
    constexpr int RATE_N257() const { return 25; }
    constexpr int RATE_N241() const { return 25; }
    constexpr int RATE_N242() const { return 25; }
    constexpr int RATE_N227() const { return 25; }  // gambling
    constexpr int RATE_N228() const { return 20; }
    constexpr int RATE_N226() const { return 20; }
    constexpr int RATE_N211() const { return 15; }
    constexpr int RATE_N217() const { return 15; }
    constexpr int RATE_N225() const { return 15; }  // foreign rent
    constexpr int RATE_N222() const { return 10; }  // rent
    constexpr int RATE_INFLA() const { return 10; }  // inflationary amount
    // Other special-rate income at a rate up to this counts as limited-rate income.
    constexpr int ACHERET_NAMUCH_MAX() const { return 30; }
    // ... and up to this one it moves to the regular scale under SUM3, above it under SUM4.
    constexpr int ACHERET_SUM3_MAX() const { return 45; }

    // --- Deductions: shares of income ---
    constexpr double MECHKAR_RATE() const { return 0.4; }          // research, alone
    constexpr double MECHKAR_SRATIM_RATE() const { return 0.45; }  // research and films together
    constexpr double OVDAN_KOSHER_RATE() const { return 0.025; }  // work-disability insurance
    // Pension, general limit: of the self-employed share, of the salary without a pension of its own.
    constexpr double NIKUY_KIZVA_ATZMAI() const { return 0.07; }
    constexpr double NIKUY_KIZVA_SACHIR() const { return 0.05; }
    constexpr double NIKUY_KIZVA_TIKRA() const { return 0.16; }  // ceiling of the self-employed deposit ...
    constexpr double NIKUY_KIZVA_SAF() const { return 0.12; }    // ... of which the part above this counts
    // Pension, limit of the older person.
    constexpr double MEVUGAR_SACHIR() const { return 0.075; }
    constexpr double MEVUGAR_SACHIR_TIKRA() const { return 0.05; }
    constexpr double MEVUGAR_ATZMAI() const { return 0.105; }
    constexpr double MEVUGAR_MEZAKA() const { return 0.07; }
    constexpr double MEVUGAR_TIKRA() const { return 0.215; }
    constexpr double MEVUGAR_SAF() const { return 0.155; }
    // Pension, second limit (deposits of at least KIZVA_MIN).
    constexpr double KIZVA2_AMIT() const { return 0.11; }
    constexpr double KIZVA2_SACHIR() const { return 0.07; }
    constexpr double KIZVA2_TOSEFET() const { return 0.04; }
    constexpr double KIZVA2_MIVCHAN() const { return 0.12; }

    // --- Credits for sums paid ---
    // The credit rates of the lines, whole percents.
    constexpr int ZIKUY_RATE() const { return 35; }            // pension, institution, donations
    constexpr int ZIKUY_RATE_BITUACH() const { return 25; }    // life insurance
    constexpr int ZIKUY_RATE_HANTZACHA() const { return 30; }  // memorial donations
    constexpr int ZIKUY_RATE_MISHMAROT() const { return 15; }  // shift work
    // Ceilings of the pension and life insurance bases, as shares of income.
    constexpr double ZIKUY_KIZVA_SACHIR() const { return 0.07; }
    constexpr double ZIKUY_KIZVA_ATZMAI() const { return 0.05; }
    constexpr double ZIKUY_BITUACH_SHEERIM() const { return 0.015; }  // survivors' insurance
    constexpr double ZIKUY_BITUACH_TIKRA() const { return 0.05; }     // life insurance
    constexpr double MOSAD_SAF() const { return 0.125; }   // care in an institution counts above this share
    constexpr double TRUMOT_MECHKAR() const { return 0.5; }  // donations: share of the research base
    constexpr double TRUMOT_TIKRA() const { return 0.3; }    // donations: share of taxable income

    // --- Credit points ---
    constexpr double NEKUDOT_TOSHAV() const { return 2.25; }  // resident
    constexpr double NEKUDOT_ISHA() const { return 0.5; }     // a woman, resident or not
    constexpr double NEKUDOT_021A() const { return 1.75; }    // spouse with an income
    constexpr double NEKUDOT_021A_YELADIM() const { return 2; }
    constexpr double NEKUDOT_025() const { return 1.5; }      // spouse who supports the household
    constexpr double NEKUDOT_025_YELADIM() const { return 1.75; }
    constexpr std::int16_t NEKUDOT_NECHE() const { return 2; }  // each supported person without physical ability
    constexpr double NEKUDOT_TOAR() const { return 0.5; }       // first degree (codes 1 to 4)
    constexpr double NEKUDOT_TOAR_SHENI() const { return 1; }   // second degree (code 5)
    // Children by age band: the mother's weights ...
    constexpr double YELED_EM_0() const { return 0.5; }
    constexpr std::int16_t YELED_EM_1_2() const { return 2; }
    constexpr std::int16_t YELED_EM_3() const { return 2; }
    constexpr std::int16_t YELED_EM_4_5() const { return 2; }
    constexpr double YELED_EM_6_17() const { return 1.0; }
    constexpr double YELED_EM_18() const { return 0.5; }
    // ... and the father's (newborn and age 3 one point each).
    constexpr std::int16_t YELED_AV_1_2() const { return 2; }
    // A new immigrant: points a month in three periods from immigration.
    constexpr int OLE_MONTHS1() const { return 18; }
    constexpr int OLE_MONTHS2() const { return 12; }
    constexpr int OLE_MONTHS3() const { return 12; }
    constexpr double OLE_RATE1() const { return 1.0 / 4; }
    constexpr double OLE_RATE2() const { return 1.0 / 6; }
    constexpr double OLE_RATE3() const { return 1.0 / 12; }
    // A discharged soldier's points are doubled for this many months of service.
    constexpr int CHAYAL_SHERUT_KAFUL() const { return 24; }
    constexpr int GIL_NOAR_MIN() const { return 16; }  // youth: aged 16 ...
    constexpr int GIL_NOAR_MAX() const { return 17; }  // ... or 17 in the tax year

    // --- Interest ---
    constexpr double RIBIT_RATE() const { return 0.04; }      // yearly interest on the balance
    constexpr int RIBIT_DAYS() const { return 365; }          // days of the interest year
    constexpr double PTOR_RIBIT_FEB() const { return 0.5; }   // exempt share of the interest in February ...
    constexpr double PTOR_RIBIT_MAR() const { return 0.25; }  // ... and in March of the next year
    constexpr double PTOR_RIBIT_KIZVA() const { return 0.35; }  // exempt share of a pensioner's savings income
    constexpr int GIL_NIKUY_RIBIT() const { return 65; }        // age that opens the exempt interest
    constexpr int GIL_PTOR_RIBIT_GEVER() const { return 65; }   // pensioner's exemption: a man ...
    constexpr int GIL_PTOR_RIBIT_ISHA() const { return 60; }    // ... or a woman

    // --- Dates ---
    Date RIBITBASICDATE() const { return *Date::fromYmd(2015, 12, 31); }    // start of interest and linkage
    Date GIL_PRISHA_GEVER() const { return *Date::fromYmd(1948, 12, 31); }  // man at retirement age
    Date GIL_PRISHA_ISHA() const { return *Date::fromYmd(1953, 12, 31); }   // woman at retirement age
};

}  // namespace zelmor
