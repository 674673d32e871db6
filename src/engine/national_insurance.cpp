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
    Amount azmai, heino, salary;
    if (!forF) {
        azmai = y.N150 + y.N250;
        salary = y.N158 + y.N068 + y.N258 + y.N358;
        heino = y.N201 + y.N202 + y.N204 + y.N205 + r.N214 + r.N217 + r.N226 + r.N242 + r.N222 + r.N211 + r.N228 +
                r.N257 + r.N241 + r.N212 + r.N213;
    } else {
        azmai = y.N170 + y.N270;
        salary = y.N172 + y.N069 + y.N272 + y.N372;
        heino = y.N301 + y.N302 + y.N304 + y.N305 + r.N314 + r.N317 + r.N326 + r.N342 + r.N311 + r.N328 + r.N357 +
                r.N341 + r.N312 + r.N313;
    }
    if (takesShared)
        heino = heino + y.N059 + y.N159 + y.N367 + y.N167 + r.N061 + r.N078 + r.N126 + r.N142 + r.N060 + r.N067 +
                r.N157 + r.N141 + r.N055 + r.N053;
    (forF ? b.BLF_AZMAI : b.BLM_AZMAI) = azmai;
    (forF ? b.BLF_HEINO : b.BLM_HEINO) = heino;
    st.BLNikuy = (forF ? st.F : st.M).NikuyKizva.value();

    st.BLAzmai = azmai.value();
    st.BLSachir = salary.value();
    st.BLHeino = heino.value();
    st.BLAzmaiRagil = st.BLAzmaiMufhat = st.BLAzmaiTTL = 0;
    st.BLHeinoRagil = st.BLHeinoMufhat = st.BLHeinoTTL = 0;
    SplitBL();

    const Date birth = forF ? Pratim.BirthDateF : Pratim.BirthDateM;
    const bool older = !birth.isNull() && ((st.BLSex == 'M' && birth.year() < c.BLYEARM()) ||
                                           (st.BLSex == 'F' && birth.year() < c.BLYEARF()));
    const double azmaiMuf = older ? c.BLRATEMUFHATZAKEN() : c.BLRATEMUFHATAZMAI();
    const double azmaiRag = older ? c.BLRATERAGILZAKEN() : c.BLRATERAGILAZMAI();
    const double heinoMuf = older ? c.BLRATEMUFHATZAKEN() : c.BLRATEMUFHATHEINOOVED();
    const double heinoRag = older ? c.BLRATERAGILZAKEN() : c.BLRATERAGILHEINOOVED();

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
    AZMAI_MUF = R(st.BLAzmaiMufhat);
    AZMAI_RAG = R(st.BLAzmaiRagil);
    AZMAI_TTL = R(st.BLAzmaiTTL);
    HEINO_MUF = R(st.BLHeinoMufhat);
    HEINO_RAG = R(st.BLHeinoRagil);
    HEINO_TTL = R(st.BLHeinoTTL);
    AZMAI_0613 = R(st.BLAzmaiMufhat * azmaiMuf);
    AZMAI_1236 = R(st.BLAzmaiRagil * azmaiRag);
    HEINO_0700 = R(st.BLHeinoMufhat * heinoMuf);
    HEINO_1550 = R(st.BLHeinoRagil * heinoRag);
    AZMAI_TASH = AZMAI_0613 + AZMAI_1236;
    HEINO_TASH = HEINO_0700 + HEINO_1550;
    TOTAL_TTL = HEINO_TTL + AZMAI_TTL;
    TOTAL_TASH = HEINO_TASH + AZMAI_TASH;
}

// Which classes are charged. The pension deduction goes against the larger of
// the classes that are charged.
template <bool On>
void Calculation<On>::SplitBL() {
    if (st.BLSachir > c.BLMAXIMUM()) st.BLSachir = c.BLMAXIMUM();
    if (st.BLAzmai <= c.BLMINIMUMHEINOOVED()) {  // too little to charge as self-employed
        st.BLHeino += st.BLAzmai;
        st.BLAzmai = 0;
    }
    if (st.BLAzmai > 0) {
        if (st.BLSachir > 0 || st.BLHeino <= st.BLAzmai) {
            st.BLAzmai -= st.BLNikuy;
            BandAzmai();  // other income goes uncharged
        } else {
            BandAzmai();
            st.BLHeino -= st.BLNikuy;
            BandHeino();
        }
        return;
    }
    if (st.BLSachir >= st.BLHeino) return;
    if (st.BLHeino > 0) {
        st.BLHeino -= st.BLNikuy;
        BandHeino();
    }
}

template <bool On>
void Calculation<On>::BandAzmai() {
    const double U = MaxLong(R(c.BLMAXIMUM() - st.BLSachir), 0).value();  // room under the ceiling
    if (U > c.BLHACHNASAMUFHAT() && st.BLAzmai > c.BLGILUMAZMAI()) {
        st.BLAzmaiTTL = (st.BLAzmai + c.BLMEKADEMHIBURAZMAIRAGIL()) / c.BLMEKADEMGILUMAZMAIRAGIL();
        if (st.BLAzmaiTTL > U) st.BLAzmaiTTL = U;
        st.BLAzmaiMufhat = c.BLHACHNASAMUFHAT();
        st.BLAzmaiRagil = st.BLAzmaiTTL - c.BLHACHNASAMUFHAT();
    } else {
        st.BLAzmaiTTL = st.BLAzmai / c.BLMEKADEMGILUMAZMAIMUFHAT();
        if (st.BLAzmaiTTL < c.BLMINIMUM()) st.BLAzmaiTTL = c.BLMINIMUM();
        if (st.BLAzmaiTTL > U) st.BLAzmaiTTL = U;
        st.BLAzmaiMufhat = st.BLAzmaiTTL;
        st.BLAzmaiRagil = 0;
    }
}

template <bool On>
void Calculation<On>::BandHeino() {
    const double U = MaxLong(R(c.BLMAXIMUM() - st.BLSachir - st.BLAzmaiTTL), 0).value();
    if (U > c.BLHACHNASAMUFHAT() && st.BLHeino > c.BLGILUMHEINOOVED()) {
        st.BLHeinoTTL = (st.BLHeino + c.BLMEKADEMHIBURHEINORAGIL()) / c.BLMEKADEMGILUMHEINORAGIL();
        if (st.BLHeinoTTL > U) st.BLHeinoTTL = U;
        st.BLHeinoMufhat = c.BLHACHNASAMUFHAT();
        st.BLHeinoRagil = st.BLHeinoTTL - c.BLHACHNASAMUFHAT();
    } else {
        st.BLHeinoTTL = st.BLHeino / c.BLMEKADEMGILUMHEINOMUFHAT();
        if (st.BLHeinoTTL < c.BLMINIMUMHEINOOVED()) st.BLHeinoTTL = c.BLMINIMUMHEINOOVED();
        if (st.BLHeinoTTL > U) st.BLHeinoTTL = U;
        st.BLHeinoMufhat = st.BLHeinoTTL;
        st.BLHeinoRagil = 0;
    }
}

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
