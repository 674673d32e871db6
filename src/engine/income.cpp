// Income assembly: merging the spouses, gathering each person's lines, the
// shift of special-rate lines into regular income, and the offset of
// deductions and losses.

#include "engine/calculation.h"

namespace zelmor::engine {
namespace {

// Adds the second field into the first and empties the second.
void moveInto(Amount& to, Amount& from) {
    to += from;
    from = 0;
}

Amount clamp(Amount v, Amount hi) { return MinLong(MaxLong(v, 0), hi); }  // below 0 it is 0; above hi it is hi

}  // namespace

// Modes 3 and 4: F's earned lines (and the insured salary) join M's.
void Calculation::MergeYegia() {
    auto& y = Yegia;
    moveInto(y.N150, y.N170);
    moveInto(y.N250, y.N270);
    moveInto(y.N158, y.N172);
    moveInto(y.N068, y.N069);
    moveInto(y.N258, y.N272);
    moveInto(y.N358, y.N372);
    moveInto(y.N120, y.N220);
    moveInto(y.YegiaM, y.YegiaF);
    moveInto(Nikuim.N244, Nikuim.N245);
}

// Mode 4, second pass: F's other lines, deductions and credits are added to
// M's; F's fields keep their values.
void Calculation::MergeRechush() {
    auto& y = Yegia;
    auto& r = Rechush;
    auto& n = Nikuim;
    auto& z = Zikuim;
    y.N201 += y.N301;
    y.N202 += y.N302;
    y.N204 += y.N304;
    y.N205 += y.N305;
    r.N217 += r.N317;
    r.N226 += r.N326;
    r.N242 += r.N342;
    r.N214 += r.N314;
    r.N211 += r.N311;
    r.N228 += r.N328;
    r.N257 += r.N357;
    r.N241 += r.N341;
    r.N212 += r.N312;
    r.N213 += r.N313;
    r.AcheretM += r.AcheretF;
    n.N112 += n.N113;
    n.N206 += n.N207;
    n.N030 += n.N089;
    n.N005 += n.N006;
    n.N116 += n.N117;
    n.N118 += n.N119;
    z.N036 += z.N081;
    z.N045 += z.N086;
    z.N268 += z.N269;
    z.N132 += z.N232;
    z.N037 += z.N237;
    z.N143 += z.N144;
    z.AcherimM += z.AcherimF;
}

// The merged fields get the user's figures back.
void Calculation::RestoreYegia() {
    Yegia = report.Yegia;
    Nikuim.N244 = report.Nikuim.N244;
    Nikuim.N245 = report.Nikuim.N245;
}

void Calculation::RestoreRechush() {
    Yegia = report.Yegia;
    Rechush = report.Rechush;
    Nikuim = report.Nikuim;
    Zikuim = report.Zikuim;
}

// Earned income of both persons, and who carries the lines of both spouses:
// F only when F earned more.
void Calculation::EarnedIncome() {
    st.M.HachnasaYegia = SumTTLM(Yegia);
    st.F.HachnasaYegia = SumTTLF(Yegia);
    st.isYegiaFGreater = st.F.HachnasaYegia > st.M.HachnasaYegia;
}

// The person's own lines.
void Calculation::GatherLines(Person& p) {
    PersonState& s = p.st;
    p.chN201 = p.N201;
    p.chN202 = p.N202;
    p.chN204 = p.N204;
    p.chN205 = p.N205;
    s.LineN214 = p.N214;
    s.LineN211 = p.N211;
    s.LineN228 = p.N228;
    s.LineN257 = p.N257;
    s.LineN241 = p.N241;
    s.LineN212 = p.N212;
    s.LineN213 = p.N213;
    s.LineN217 = p.N217;
    s.LineN226 = p.N226;
    s.LineN242 = p.N242;
    s.LineAcheret = p.Acheret;
    if (!p.isF) {
        st.LineN222 = Rechush.N222;
        st.LineN225 = Rechush.N225;
        st.LineN227 = Rechush.N227;
    }
}

// The lines of both spouses, on top of the person's own.
void Calculation::GatherShared(Person& p) {
    PersonState& s = p.st;
    const auto& r = Rechush;
    p.chN201 += Yegia.N059;
    p.chN202 += Yegia.N159;
    p.chN204 += Yegia.N367;
    p.chN205 += Yegia.N167;
    s.LineN214 += r.N061;
    s.LineN211 = s.LineN211 + r.N060 + Pturot.N256Revach;
    s.LineN228 = s.LineN228 + r.N067 + Pturot.N256Revach20;
    s.LineN257 = s.LineN257 + r.N157 + Pturot.N256Revach25;
    s.LineN241 += r.N141;
    s.LineN212 = s.LineN212 + r.N055 + Pturot.Reali25;
    s.LineN213 += r.N053;
    s.LineN217 += r.N078;
    s.LineN226 += r.N126;
    s.LineN242 += r.N142;
    s.LineAcheret += r.Acheret;
    p.chReali = Pturot.Reali;
    s.LineInfla = Pturot.Infla;
}

// Total income of the person: regular-rate property, earned, and the
// special-rate lines that count in the total.
void Calculation::TotalIncome(Person& p) {
    PersonState& s = p.st;
    s.RechushRagil = p.chN201 + p.chN202 + p.chN204 + p.chN205 + p.chReali;
    if (Rechush.AcheretRate <= c.ACHERET_NAMUCH_MAX())
        s.AcheretNamuch = s.LineAcheret;
    else
        s.AcheretGavoha = s.LineAcheret;
    s.MeyuchadNamuch =
        s.LineN211 + s.LineN228 + s.LineN257 + s.LineN241 + s.LineN212 + s.AcheretNamuch + s.LineInfla;
    s.MeyuchadGavoha = s.LineN214 + s.LineN213 + s.AcheretGavoha;
    s.HachnasaKolel = s.RechushRagil + s.HachnasaYegia + s.MeyuchadNamuch + s.MeyuchadGavoha;
}

// While regular income stays under the top of bracket 3, part of the 35%, the
// 40% and the high limited-rate lines is taxed on the regular scales; then the
// two scales, the age rule and the netting of losses.
void Calculation::ShiftToRegular(Person& p) {
    PersonState& s = p.st;
    const Amount B = s.RechushRagil + s.HachnasaYegia;
    p.chN213A = clamp(c.SUM3() - B, s.LineN213);
    s.Yitra35 = s.LineN213 - p.chN213A;
    p.chN214A = clamp(c.SUM3() - (B + p.chN213A), s.LineN214);
    s.Yitra40 = s.LineN214 - p.chN214A;
    st.SafAcheret = Rechush.AcheretRate <= c.ACHERET_SUM3_MAX() ? c.SUM3() : c.SUM4();
    p.chAcheretB1 = clamp(st.SafAcheret - (B + p.chN213A + p.chN214A), s.AcheretGavoha);
    s.YitraAcheret = s.AcheretGavoha - p.chAcheretB1;
    s.BasisYegia = s.HachnasaYegia + p.chN214A;
    s.BasisLoYegia = s.RechushRagil + p.chN213A + p.chAcheretB1;

    // A person born in or before YEARYEGIA has only the earned scale.
    if (!p.BirthDate.isNull() && p.BirthDate.year() <= c.YEARYEGIA()) {
        s.BasisYegia += s.BasisLoYegia;
        s.BasisLoYegia = 0;
    }
    // A loss of the earned scale eats the non-earned scale first; what is left
    // goes on down the special-rate lines.
    if (s.BasisYegia < 0) {
        s.BasisLoYegia += s.BasisYegia;
        s.BasisYegia = 0;
    }
    if (s.BasisLoYegia < 0) {
        s.HefsedYitra = -s.BasisLoYegia;
        s.BasisLoYegia = 0;
    }
}

// Deductions go against the non-earned scale, then the earned scale, then the
// special-rate lines from the highest rate down.
void Calculation::Offset(Person& p) {
    PersonState& s = p.st;
    s.KizuzLoYegia = MinLong(s.NikuimKolel, s.BasisLoYegia);
    s.LoYegiaChayav = s.BasisLoYegia - s.KizuzLoYegia;
    s.KizuzYegia = MinLong(s.NikuimKolel - s.KizuzLoYegia, s.BasisYegia);
    s.YegiaChayav = s.BasisYegia - s.KizuzYegia;
    st.ChainNikuim = s.NikuimKolel - s.KizuzLoYegia - s.KizuzYegia;
    st.ChainHefsed = s.HefsedYitra;
    OffsetChain(p);
    s.NikuimYitra = st.ChainNikuim;
    s.HefsedSof = st.ChainHefsed;
}

// One line of the chain: offset first by deductions, then by the loss.
Amount Calculation::OffsetChainStep(Amount x) {
    const Amount a = MinLong(st.ChainNikuim, x);
    st.ChainNikuim -= a;
    x -= a;
    const Amount b = MinLong(st.ChainHefsed, x);
    x -= b;
    st.ChainHefsed -= b;
    return x;
}

void Calculation::OffsetChain(Person& p) {
    PersonState& s = p.st;
    const Amount rate = Rechush.AcheretRate;
    if (rate >= c.RATE_N214()) s.NetAcheretGavoha = OffsetChainStep(s.YitraAcheret);
    s.NetN214 = OffsetChainStep(s.Yitra40);
    if (rate < c.RATE_N214()) s.NetAcheretGavoha = OffsetChainStep(s.YitraAcheret);
    s.NetN213 = OffsetChainStep(s.Yitra35);
    s.NetN212 = OffsetChainStep(s.LineN212);
    if (rate > c.RATE_N257() && rate <= c.RATE_N212()) s.NetAcheretNamuch = OffsetChainStep(s.AcheretNamuch);
    s.NetN257 = OffsetChainStep(s.LineN257);
    s.NetN241 = OffsetChainStep(s.LineN241);
    s.NetN242 = OffsetChainStep(s.LineN242);
    if (rate > c.RATE_N228() && rate <= c.RATE_N242()) s.NetAcheretNamuch = OffsetChainStep(s.AcheretNamuch);
    s.NetN228 = OffsetChainStep(s.LineN228);
    s.NetN226 = OffsetChainStep(s.LineN226);
    if (rate > c.RATE_N211() && rate <= c.RATE_N226()) s.NetAcheretNamuch = OffsetChainStep(s.AcheretNamuch);
    s.NetN211 = OffsetChainStep(s.LineN211);
    s.NetN217 = OffsetChainStep(s.LineN217);
    if (rate > c.RATE_INFLA() && rate <= c.RATE_N217()) s.NetAcheretNamuch = OffsetChainStep(s.AcheretNamuch);
    s.NetInfla = OffsetChainStep(s.LineInfla);
    if (rate <= c.RATE_INFLA()) s.NetAcheretNamuch = OffsetChainStep(s.AcheretNamuch);
}

}  // namespace zelmor::engine
