// The national insurance estimate of each person: self-employed income and
// other income, each in a reduced and an ordinary band, under one ceiling that
// the salary fills first. It feeds nothing back into the tax.

#include "engine/calculation.h"

namespace zelmor::engine {

template <bool On>
void Calculation<On>::CalcBLM() { CalcBL(false); }
template <bool On>
void Calculation<On>::CalcBLF() { CalcBL(true); }

template <bool On>
void Calculation<On>::CalcBL(bool forF) {
    auto& b = out.BL;
    const auto& y = Yegia;
    const auto& r = Rechush;
    // The sex the age test assumes: a registered woman with a husband is "F".
    st.BLSex = (filing.isIshaNesua != forF) ? 'F' : 'M';
    // Lines of both spouses go with the one who earned more; M on a tie.
    const bool takesShared = forF ? y.TTLF > y.TTLM : y.TTLF <= y.TTLM;
    t.who(forF ? 'F' : 'M');
    TA azmai, heino, salary;
    if (!forF) {
        azmai = t(y.N150) + t(y.N250);
        salary = t(y.N158) + t(y.N068) + t(y.N258) + t(y.N358);
        heino = t(y.N201) + t(y.N202) + t(y.N204) + t(y.N205) + t(r.N214) + t(r.N217) + t(r.N226) + t(r.N242) +
                t(r.N222) + t(r.N211) + t(r.N228) + t(r.N257) + t(r.N241) + t(r.N212) + t(r.N213);
    } else {
        azmai = t(y.N170) + t(y.N270);
        salary = t(y.N172) + t(y.N069) + t(y.N272) + t(y.N372);
        heino = t(y.N301) + t(y.N302) + t(y.N304) + t(y.N305) + t(r.N314) + t(r.N317) + t(r.N326) + t(r.N342) +
                t(r.N311) + t(r.N328) + t(r.N357) + t(r.N341) + t(r.N312) + t(r.N313);
    }
    if (takesShared)
        heino = heino + t(y.N059) + t(y.N159) + t(y.N367) + t(y.N167) + t(r.N061) + t(r.N078) + t(r.N126) +
                t(r.N142) + t(r.N060) + t(r.N067) + t(r.N157) + t(r.N141) + t(r.N055) + t(r.N053);
    t.set(forF ? b.BLF_AZMAI : b.BLM_AZMAI, "", azmai);
    t.set(forF ? b.BLF_HEINO : b.BLM_HEINO, "", heino);
    t.set(st.BLNikuy, "ניכוי לקצבה", toD(t((forF ? st.F : st.M).NikuyKizva)));

    t.set(st.BLAzmai, "הכנסה כעצמאי", toD(azmai));
    t.set(st.BLSachir, "הכנסה כשכיר", toD(salary));
    t.set(st.BLHeino, "הכנסה שאינה מעבודה", toD(heino));
    const TD zero = t.k("0", 0.0);
    for (double* band : {&st.BLAzmaiRagil, &st.BLAzmaiMufhat, &st.BLAzmaiTTL, &st.BLHeinoRagil, &st.BLHeinoMufhat,
                         &st.BLHeinoTTL})
        t.set(*band, "", zero);
    SplitBL();

    const Date birth = forF ? Pratim.BirthDateF : Pratim.BirthDateM;
    const bool older = !birth.isNull() && ((st.BLSex == 'M' && birth.year() < c.BLYEARM()) ||
                                           (st.BLSex == 'F' && birth.year() < c.BLYEARF()));
    const TD azmaiMuf = older ? K(BLRATEMUFHATZAKEN) : K(BLRATEMUFHATAZMAI);
    const TD azmaiRag = older ? K(BLRATERAGILZAKEN) : K(BLRATERAGILAZMAI);
    const TD heinoMuf = older ? K(BLRATEMUFHATZAKEN) : K(BLRATEMUFHATHEINOOVED);
    const TD heinoRag = older ? K(BLRATERAGILZAKEN) : K(BLRATERAGILHEINOOVED);

    Amount &AZMAI_MUF = forF ? b.BLF_AZMAI_MUF : b.BLM_AZMAI_MUF, &AZMAI_RAG = forF ? b.BLF_AZMAI_RAG : b.BLM_AZMAI_RAG,
           &AZMAI_TTL = forF ? b.BLF_AZMAI_TTL : b.BLM_AZMAI_TTL, &HEINO_MUF = forF ? b.BLF_HEINO_MUF : b.BLM_HEINO_MUF,
           &HEINO_RAG = forF ? b.BLF_HEINO_RAG : b.BLM_HEINO_RAG, &HEINO_TTL = forF ? b.BLF_HEINO_TTL : b.BLM_HEINO_TTL,
           &AZMAI_0613 = forF ? b.BLF_AZMAI_0613 : b.BLM_AZMAI_0613,
           &AZMAI_1236 = forF ? b.BLF_AZMAI_1236 : b.BLM_AZMAI_1236,
           &HEINO_0700 = forF ? b.BLF_HEINO_0700 : b.BLM_HEINO_0700,
           &HEINO_1550 = forF ? b.BLF_HEINO_1550 : b.BLM_HEINO_1550,
           &AZMAI_TASH = forF ? b.BLF_AZMAI_TASH : b.BLM_AZMAI_TASH,
           &HEINO_TASH = forF ? b.BLF_HEINO_TASH : b.BLM_HEINO_TASH,
           &TOTAL_TTL = forF ? b.BLF_TOTAL_TTL : b.BLM_TOTAL_TTL, &TOTAL_TASH = forF ? b.BLF_TOTAL_TASH : b.BLM_TOTAL_TASH;
    t.set(AZMAI_MUF, "", R(t(st.BLAzmaiMufhat)));
    t.set(AZMAI_RAG, "", R(t(st.BLAzmaiRagil)));
    t.set(AZMAI_TTL, "", R(t(st.BLAzmaiTTL)));
    t.set(HEINO_MUF, "", R(t(st.BLHeinoMufhat)));
    t.set(HEINO_RAG, "", R(t(st.BLHeinoRagil)));
    t.set(HEINO_TTL, "", R(t(st.BLHeinoTTL)));
    const char* due = "דמי ביטוח";
    t.set(AZMAI_0613, due, R(t(st.BLAzmaiMufhat) * azmaiMuf));
    t.set(AZMAI_1236, due, R(t(st.BLAzmaiRagil) * azmaiRag));
    t.set(HEINO_0700, due, R(t(st.BLHeinoMufhat) * heinoMuf));
    t.set(HEINO_1550, due, R(t(st.BLHeinoRagil) * heinoRag));
    t.set(AZMAI_TASH, "", t(AZMAI_0613) + t(AZMAI_1236));
    t.set(HEINO_TASH, "", t(HEINO_0700) + t(HEINO_1550));
    t.set(TOTAL_TTL, "", t(HEINO_TTL) + t(AZMAI_TTL));
    t.set(TOTAL_TASH, "", t(HEINO_TASH) + t(AZMAI_TASH));
}

// Which classes are charged. The pension deduction goes against the larger of
// the classes that are charged.
template <bool On>
void Calculation<On>::SplitBL() {
    if (st.BLSachir > c.BLMAXIMUM()) t.set(st.BLSachir, "שכר עד התקרה", K(BLMAXIMUM));
    if (st.BLAzmai <= c.BLMINIMUMHEINOOVED()) {  // too little to charge as self-employed
        t.set(st.BLHeino, "בצירוף הכנסה כעצמאי שאינה מחויבת", t(st.BLHeino) + t(st.BLAzmai));
        t.set(st.BLAzmai, "הועבר להכנסה שאינה מעבודה", t.k("0", 0.0));
    }
    const char* afterPension = "בניכוי הניכוי לקצבה";
    if (st.BLAzmai > 0) {
        if (st.BLSachir > 0 || st.BLHeino <= st.BLAzmai) {
            t.set(st.BLAzmai, afterPension, t(st.BLAzmai) - t(st.BLNikuy));
            BandAzmai();  // other income goes uncharged
        } else {
            BandAzmai();
            t.set(st.BLHeino, afterPension, t(st.BLHeino) - t(st.BLNikuy));
            BandHeino();
        }
        return;
    }
    if (st.BLSachir >= st.BLHeino) return;
    if (st.BLHeino > 0) {
        t.set(st.BLHeino, afterPension, t(st.BLHeino) - t(st.BLNikuy));
        BandHeino();
    }
}

// A class of income in its bands: a reduced band up to a part of the average
// wage, the ordinary band above it, under the room `U` left under the ceiling.
template <bool On>
void Calculation<On>::Bands(TD U, const BLBands& b) {
    const auto k = [&](const BLBands::Constant& x) { return t.k(x.name, x.value); };
    if (val(U) > c.BLHACHNASAMUFHAT() && b.income > b.threshold.value) {
        t.set(b.total, b.totalName, (t(b.income) + k(b.add)) / k(b.divide));
        if (b.total > val(U)) t.set(b.total, b.totalName, U);
        t.set(b.reduced, b.reducedName, K(BLHACHNASAMUFHAT));
        t.set(b.ordinary, b.ordinaryName, t(b.total) - K(BLHACHNASAMUFHAT));
    } else {
        t.set(b.total, b.totalName, t(b.income) / k(b.divideReduced));
        if (b.total < b.minimum.value) t.set(b.total, b.totalName, k(b.minimum));
        if (b.total > val(U)) t.set(b.total, b.totalName, U);
        t.set(b.reduced, b.reducedName, t(b.total));
        t.set(b.ordinary, b.ordinaryName, t.k("0", 0.0));
    }
}

#define BLK(name) {#name, c.name()}

template <bool On>
void Calculation<On>::BandAzmai() {
    const TD U = t.name("יתרה עד התקרה", toD(MaxLong(R(K(BLMAXIMUM) - t(st.BLSachir)), t.zero())));
    Bands(U, {st.BLAzmai, st.BLAzmaiTTL, st.BLAzmaiMufhat, st.BLAzmaiRagil, "הכנסה כעצמאי החייבת בדמי ביטוח",
              "הכנסה כעצמאי בשיעור מופחת", "הכנסה כעצמאי בשיעור רגיל", BLK(BLGILUMAZMAI),
              BLK(BLMEKADEMHIBURAZMAIRAGIL), BLK(BLMEKADEMGILUMAZMAIRAGIL), BLK(BLMEKADEMGILUMAZMAIMUFHAT),
              BLK(BLMINIMUM)});
}

template <bool On>
void Calculation<On>::BandHeino() {
    const TD U = t.name("יתרה עד התקרה",
                        toD(MaxLong(R(K(BLMAXIMUM) - t(st.BLSachir) - t(st.BLAzmaiTTL)), t.zero())));
    Bands(U, {st.BLHeino, st.BLHeinoTTL, st.BLHeinoMufhat, st.BLHeinoRagil, "הכנסה שאינה מעבודה החייבת בדמי ביטוח",
              "הכנסה שאינה מעבודה בשיעור מופחת", "הכנסה שאינה מעבודה בשיעור רגיל", BLK(BLGILUMHEINOOVED),
              BLK(BLMEKADEMHIBURHEINORAGIL), BLK(BLMEKADEMGILUMHEINORAGIL), BLK(BLMEKADEMGILUMHEINOMUFHAT),
              BLK(BLMINIMUMHEINOOVED)});
}

#undef BLK

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
