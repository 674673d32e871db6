#pragma once
// The figures of the tax year. A new tax year is a new edition of this class:
// only the stated values change, the derived ones follow from their formula,
// which is worked out at each read. Long constants are whole shekels (Amount)
// or years (int); rates and the national insurance figures are doubles.

#include "core/amount.h"
#include "core/date.h"

namespace zelmor {

class ConstDoch {
public:
    // --- Regular scale: rates and inclusive upper bounds of the brackets ---
    double RATE1() const { return 0.1; }
    double RATE2() const { return 0.14; }
    double RATE3() const { return 0.21; }
    double RATE4() const { return 0.31; }
    double RATE5() const { return 0.34; }
    double RATE6() const { return 0.48; }
    double RATE7() const { return 0.5; }  // above SUM6
    Amount SUM1() const { return 63240; }
    Amount SUM2() const { return 108000; }
    Amount SUM3() const { return 167880; }
    Amount SUM4() const { return 239760; }
    Amount SUM5() const { return 501480; }
    Amount SUM6() const { return 810720; }
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
    double RATE1A() const { return 0.31; }
    double RATE2A() const { return 0.34; }
    double RATE3A() const { return 0.48; }
    double RATE4A() const { return 0.5; }  // above SUM3A
    Amount SUM1A() const { return 239760; }
    Amount SUM2A() const { return 501480; }
    Amount SUM3A() const { return 810720; }
    Amount SUM2ASUB() const { return SUM2A() - SUM1A(); }
    Amount SUM3ASUB() const { return SUM3A() - SUM2A(); }
    Amount MAS1A() const { return R(RATE1A() * SUM1A()); }
    Amount MAS2A() const { return R((SUM2A() - SUM1A()) * RATE2A() + MAS1A()); }
    Amount MAS3A() const { return R((SUM3A() - SUM2A()) * RATE3A() + MAS2A()); }
    Amount MAS2ASUB() const { return MAS2A() - MAS1A(); }
    Amount MAS3ASUB() const { return MAS3A() - MAS2A(); }

    // Ceiling of the exempt income of a fully disabled person (N109, N309).
    Amount PTURANECHE() const { return 614400; }
    // Yearly value of one credit point.
    Amount NEKUDA() const { return 2616; }
    // Income limit under which the joint run is tried.
    Amount TESTMEUCHAD() const { return NEKUDA() * 25; }

    // --- Deductions ---
    Amount HACHNASAHISHTALMUT() const { return 263000; }  // study fund: ceiling of the base
    double RATEMINHISHTALMUT() const { return 0.025; }    // part of the base a payment does not count for
    double RATEMAXHISHTALMUT() const { return 0.045; }    // ceiling rate of the deduction

    // --- Exempt interest ---
    Amount NIKUY_RIBIT() const { return 13440; }         // one person 65 or older
    Amount NIKUY_RIBIT_MUGDAL() const { return 16560; }  // both 65 or older
    Amount KIZVA_MEZAKA() const { return 101520; }       // qualifying pension ceiling
    Amount HACHNASA_NEMUCHA() const { return 62640; }    // whole low-income exemption up to here
    Amount PTOR_RIBIT_NEMUCHA() const { return 9840; }   // the low-income exemption

    // --- Pensions ---
    // Smallest pension contribution that opens the second pension limit.
    Amount KIZVA_MIN() const { return R(BLMEMUZA() * 12 * 0.95 * 0.16); }
    Amount HACHNASAMEZAKA() const { return 147600; }         // qualifying income
    Amount HACHNASAMEZAKA_SACHIR() const { return 104400; }  // qualifying salary
    Amount HACHNASA_AMIT_AZMAI() const { return 104400; }    // qualifying income, self-employed member
    Amount HACH_MAX_NIKUY() const { return HACHNASA_AMIT_AZMAI() * 4; }  // income ceiling, deduction
    Amount HACH_MAX_ZIKUY() const { return HACHNASA_AMIT_AZMAI() * 2; }  // income ceiling, credit
    Amount MEZAKA04() const { return R(HACHNASAMEZAKA() * 0.04); }
    Amount MEZAKA05() const { return R(HACHNASAMEZAKA() * 0.05); }
    Amount MEZAKA07() const { return R(HACHNASAMEZAKA() * 0.07); }
    Amount MEZAKA12() const { return R(HACHNASAMEZAKA() * 0.12); }
    Amount MEZAKA16() const { return R(HACHNASAMEZAKA() * 0.16); }

    // --- Credits ---
    Amount HISAHONMIZARI() const { return 2028; }     // smallest ceiling of insurance and pension credits
    Amount TRUMOTMAX() const { return 9295000; }      // largest donation that counts
    Amount TRUMOTMIN() const { return 190; }          // smallest donation that counts
    Amount MISHMAROTMAX() const { return 128400; }    // salary ceiling of the shift work credit
    Amount MISHMAROTZIKUYMAX() const { return 11280; }  // largest shift work credit

    // --- The year ---
    int YEARDOCH() const { return 2015; }
    int YEARGEMEL() const { return YEARDOCH() - 51; }  // last birth year of the older person (pension)
    int YEARYEGIA() const { return YEARDOCH() - 60; }  // last birth year taxed on the earned scale alone

    // --- Settlements ---
    Amount SFAR_TZAFON() const { return 241080; }       // northern border
    Amount SFAR_NEGEV_GALIL() const { return 160560; }  // Negev and Galilee
    Amount NEGEV() const { return 160560; }             // Negev (no reader)

    // --- National insurance ---
    double BLRATE() const { return 0.52; }  // deductible share of the payment
    double BLMEMUZA() const { return 9260.0; }  // monthly average wage
    double BLHACHNASAMUFHAT() const { return BLMEMUZA() * 12 * 0.6; }  // reduced rate up to here
    double BLGILUMAZMAI() const { return 45365.4; }
    double BLGILUMHEINOOVED() const { return 44879.74; }
    double BLGILUMZAKEN() const { return 43916.82; }
    double BLMINIMUM() const { return 27780.0; }
    double BLMINIMUMHEINOOVED() const { return 16668.0; }
    double BLMAXIMUM() const { return 518880.0; }
    double BLRATEMUFHATAZMAI() const { return 0.0982; }
    double BLRATEMUFHATHEINOOVED() const { return 0.0961; }
    double BLRATEMUFHATZAKEN() const { return 0.0039; }
    double BLRATERAGILAZMAI() const { return 0.1623; }
    double BLRATERAGILHEINOOVED() const { return 0.12; }
    double BLRATERAGILZAKEN() const { return 0.0064; }
    double BLRATE45() const { return 0.0955; }
    double BLMEKADEMGILUMAZMAIMUFHAT() const { return 1.034944; }
    double BLMEKADEMGILUMAZMAIRAGIL() const { return 1.055224; }
    double BLMEKADEMHIBURAZMAIRAGIL() const { return 847.37952; }
    double BLMEKADEMGILUMHEINOMUFHAT() const { return 1.023972; }
    double BLMEKADEMGILUMHEINORAGIL() const { return 1.05408; }
    double BLMEKADEMHIBURHEINORAGIL() const { return 1258.0326; }
    double BLMEKADEMGILUMZAKENMUFHAT() const { return 1.002028; }
    double BLMEKADEMGILUMZAKENRAGIL() const { return 1.003328; }
    double BLMEKADEMHIBURZAKENRAGIL() const { return 54.3192; }
    int BLYEARM() const { return YEARDOCH() - 65; }  // birth year bound of an older man
    int BLYEARF() const { return YEARDOCH() - 60; }  // birth year bound of an older woman

    // --- Dates ---
    Date RIBITBASICDATE() const { return *Date::fromYmd(2015, 12, 31); }    // start of interest and linkage
    Date GIL_PRISHA_GEVER() const { return *Date::fromYmd(1948, 12, 31); }  // man at retirement age
    Date GIL_PRISHA_ISHA() const { return *Date::fromYmd(1953, 12, 31); }   // woman at retirement age
};

}  // namespace zelmor
