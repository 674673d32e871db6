// Publication of a run into the eight sheets, in their fixed order, down to
// the balance, interest and the national insurance estimate.

#include "core/values.h"
#include "engine/calculation.h"

namespace zelmor::engine {

void Calculation::PublishResults() {
    PublishHachnasot();
    PublishNikuim();
    PublishHishuv();
    PublishMeyuchad();
    PublishZikuim();
    PublishTashlumim();
    PublishMain();
    zelmor::CalcRibit(out.Main, Date(), c, madad, today);
    CalcBLM();
    CalcBLF();
}

void Calculation::PublishHachnasot() {
    auto& h = out.Hachnasot;
    const auto& y = Yegia;
    h.N150 = y.N150;
    h.N250 = y.N250;
    h.N158 = y.N158;
    h.N068 = y.N068;
    h.N258 = y.N258;
    h.N358 = y.N358;
    h.N120 = y.N120;
    h.YegiaM = y.YegiaM;
    h.N170 = y.N170;
    h.N270 = y.N270;
    h.N172 = y.N172;
    h.N069 = y.N069;
    h.N272 = y.N272;
    h.N372 = y.N372;
    h.N220 = y.N220;
    h.YegiaF = y.YegiaF;
    h.TTLM = h.N150 + h.N250 + h.N158 + h.N068 + h.N258 + h.N358 + h.N120 + h.YegiaM + h.N201 + h.N202 + h.N204 +
             h.N205 + h.N214A + h.N213A + h.AcheretMB1 + h.RealiM;
    h.TTLF = h.N170 + h.N270 + h.N172 + h.N069 + h.N272 + h.N372 + h.N220 + h.YegiaF + h.N301 + h.N302 + h.N304 +
             h.N305 + h.N314A + h.N313A + h.AcheretFB1 + h.RealiF;
    switch (filing.FilingMode) {
        case ModeJoint:
            h.TTLM += h.TTLF;
            h.TTLF = 0;
            break;
        case ModeSeparateProperty:  // F's earned income was taxed with M
            h.TTLM += Yegia.TTLF;
            h.TTLF -= Yegia.TTLF;
            break;
        case ModeAlone:
            h.TTLF = 0;
            break;
        default: break;
    }
}

void Calculation::PublishNikuim() {
    auto& n = out.Nikuim;
    const auto& f = Nikuim;
    const PersonState& M = st.M;
    const PersonState& F = st.F;
    n.N136S = f.N136;
    n.N136H = M.NikuyHishtalmut;
    n.N112S = f.N112 + f.N206;
    n.N135S = f.N135;
    n.N135H = M.NikuyKizva;
    n.N030S = f.N030;
    n.N030H = M.NikuyBL;
    n.N005S = f.N005;
    n.N005H = M.NikuyMechkar;
    n.N116S = f.N116;
    n.N116H = M.NikuyNeft;
    n.N118S = f.N118;
    n.N118H = M.NikuySratim;
    n.N137S = f.N137;
    n.N137H = F.NikuyHishtalmut;
    n.N113S = f.N113 + f.N207;
    n.N180S = f.N180;
    n.N180H = F.NikuyKizva;
    n.N089S = f.N089;
    n.N089H = F.NikuyBL;
    n.N006S = f.N006;
    n.N006H = F.NikuyMechkar;
    n.N117S = f.N117;
    n.N117H = F.NikuyNeft;
    n.N119S = f.N119;
    n.N119H = F.NikuySratim;
    n.TTLM1 = n.N136H + n.N112H + n.N135H + n.N030H + n.N005H + n.N116H + n.N118H;
    n.TTLF1 = n.N137H + n.N113H + n.N180H + n.N089H + n.N006H + n.N117H + n.N119H;
    n.TTLM3 = M.KizuzLoYegia + M.KizuzYegia;
    n.TTLF3 = F.KizuzLoYegia + F.KizuzYegia;
    n.TTLM0 = M.NikuimYitra;
    n.TTLF0 = F.NikuimYitra;
    n.TTLM2 = n.TTLM1 - n.TTLM3 - n.TTLM0;
    n.TTLF2 = n.TTLF1 - n.TTLF3 - n.TTLF0;
}

void Calculation::PublishHishuv() {
    auto& h = out.Hishuv;
    const auto msum = BracketSums(h, false), fsum = BracketSums(h, true);
    Amount* mmas[] = {&h.MMAS_1, &h.MMAS_2, &h.MMAS_3, &h.MMAS_4, &h.MMAS_5, &h.MMAS_6, &h.MMAS_7};
    Amount* fmas[] = {&h.FMAS_1, &h.FMAS_2, &h.FMAS_3, &h.FMAS_4, &h.FMAS_5, &h.FMAS_6, &h.FMAS_7};
    const double rates[] = {c.RATE1(), c.RATE2(), c.RATE3(), c.RATE4(), c.RATE5(), c.RATE6(), c.RATE7()};
    h.MSUM_TTL = h.MMAS_TTL = h.FSUM_TTL = h.FMAS_TTL = 0;
    for (int i = 0; i < 7; ++i) {
        *mmas[i] = R(*msum[i] * rates[i]);  // each bracket rounded by itself
        *fmas[i] = R(*fsum[i] * rates[i]);
        h.MSUM_TTL += *msum[i];
        h.FSUM_TTL += *fsum[i];
    }
    for (int i = 0; i < 7; ++i) {
        h.MMAS_TTL += *mmas[i];
        h.FMAS_TTL += *fmas[i];
    }
}

// The pool of exempt interest, once for both persons: low total income, age
// 65, and a small qualifying pension open it.
void Calculation::ExemptInterestPool() {
    const Amount T = filing.HachnasaTestM + filing.HachnasaTestF;
    if (T <= c.HACHNASA_NEMUCHA())
        st.PtorRibitYitra = c.PTOR_RIBIT_NEMUCHA();
    else if (T <= c.HACHNASA_NEMUCHA() + c.PTOR_RIBIT_NEMUCHA())
        st.PtorRibitYitra = c.PTOR_RIBIT_NEMUCHA() - (T - c.HACHNASA_NEMUCHA());
    else
        st.PtorRibitYitra = 0;

    const int ageM = ageInYear(Pratim.BirthDateM), ageF = ageInYear(Pratim.BirthDateF);
    const bool oldM = ageM >= c.GIL_NIKUY_RIBIT(), oldF = ageF >= c.GIL_NIKUY_RIBIT();
    if (oldM && oldF)
        st.PtorRibitYitra += c.NIKUY_RIBIT_MUGDAL();
    else if (oldM || oldF)
        st.PtorRibitYitra += c.NIKUY_RIBIT();

    const PersonState& M = st.M;
    const PersonState& F = st.F;
    Amount Q = M.LineN217 + M.LineN226 + M.LineN242 + F.LineN217 + F.LineN226 + F.LineN242;
    Amount V = filing.HachnasaTestM - M.LineN217 - M.LineN226 - M.LineN242;
    const Amount V2 = filing.HachnasaTestF - F.LineN217 - F.LineN226 - F.LineN242;
    if (V2 > V) V = V2;
    const int man = c.GIL_PTOR_RIBIT_GEVER(), woman = c.GIL_PTOR_RIBIT_ISHA();
    const bool ageTest = Pratim.isFemale ? (ageF >= man || ageM >= woman) : (ageM >= man || ageF >= woman);
    if (V <= c.KIZVA_MEZAKA() && ageTest) {
        Q = MinLong(Q, c.KIZVA_MEZAKA() - V);
        st.PtorRibitYitra = R(Q * c.PTOR_RIBIT_KIZVA() + st.PtorRibitYitra);
    }
}

namespace {

// One row of the special-rate sheet: gross, offset, net, rate and tax cells.
struct MeyuchadRow {
    Amount* gross;  // null for the lines with a net cell only
    Amount* nikuy;
    Amount* net;
    Amount* rate;
    Amount* mas;
};

}  // namespace

void Calculation::PublishMeyuchad() {
    auto& m = out.Meyuchad;
    ExemptInterestPool();
    Amount& masSum = st.MeyuchadMasSum;  // running totals of the column
    Amount& netSum = st.MeyuchadNetSum;
    masSum = netSum = 0;

    auto row = [&](const MeyuchadRow& r, Amount gross, Amount net, Amount rate, bool exempt) {
        if (gross == 0) return;  // an empty line leaves its whole row empty
        if (exempt) {            // savings lines give up exempt interest first
            if (net <= st.PtorRibitYitra) {
                st.PtorRibitYitra -= net;
                net = 0;
            } else {
                net -= st.PtorRibitYitra;
                st.PtorRibitYitra = 0;
            }
        }
        if (r.gross) *r.gross = gross;
        *r.net = net;
        if (r.nikuy) *r.nikuy = gross - net;
        *r.rate = rate;
        *r.mas = R(Percent(rate.value()) * net.value());
        masSum += *r.mas;
        netSum += *r.net;
    };
    const Amount acheretRate = Rechush.AcheretRate;

    // Column M.
    const PersonState& M = st.M;
    row({&m.N214B, &m.NIKUY_214B, &m.NET_214B, &m.RATE_214B, &m.MAS_214B}, M.Yitra40, M.NetN214, c.RATE_N214(), false);
    row({&m.N211, &m.NIKUY_211, &m.NET_211, &m.RATE_211, &m.MAS_211}, M.LineN211, M.NetN211, c.RATE_N211(), false);
    row({&m.N228, &m.NIKUY_228, &m.NET_228, &m.RATE_228, &m.MAS_228}, M.LineN228, M.NetN228, c.RATE_N228(), false);
    row({&m.N257, &m.NIKUY_257, &m.NET_257, &m.RATE_257, &m.MAS_257}, M.LineN257, M.NetN257, c.RATE_N257(), false);
    row({&m.N241, &m.NIKUY_241, &m.NET_241, &m.RATE_241, &m.MAS_241}, M.LineN241, M.NetN241, c.RATE_N241(), false);
    row({&m.N212, &m.NIKUY_212, &m.NET_212, &m.RATE_212, &m.MAS_212}, M.LineN212, M.NetN212, c.RATE_N212(), false);
    row({&m.N213B, &m.NIKUY_213B, &m.NET_213B, &m.RATE_213B, &m.MAS_213B}, M.Yitra35, M.NetN213, c.RATE_N213(), false);
    row({&m.N217, &m.NIKUY_217, &m.NET_217, &m.RATE_217, &m.MAS_217}, M.LineN217, M.NetN217, c.RATE_N217(), true);
    row({&m.N226, &m.NIKUY_226, &m.NET_226, &m.RATE_226, &m.MAS_226}, M.LineN226, M.NetN226, c.RATE_N226(), true);
    row({&m.N242, &m.NIKUY_242, &m.NET_242, &m.RATE_242, &m.MAS_242}, M.LineN242, M.NetN242, c.RATE_N242(), true);
    row({nullptr, nullptr, &m.NET_222, &m.RATE_222, &m.MAS_222}, st.LineN222, st.LineN222, c.RATE_N222(), false);
    row({nullptr, nullptr, &m.NET_225, &m.RATE_225, &m.MAS_225}, st.LineN225, st.LineN225, c.RATE_N225(), false);
    row({nullptr, nullptr, &m.NET_227, &m.RATE_227, &m.MAS_227}, st.LineN227, st.LineN227, c.RATE_N227(), false);
    const MeyuchadRow acheretM{&m.AcheretM, &m.NIKUY_AcheretM, &m.NET_AcheretM, &m.RATE_AcheretM, &m.MAS_AcheretM};
    row(acheretM, M.AcheretNamuch, M.NetAcheretNamuch, acheretRate, false);
    row(acheretM, M.YitraAcheret, M.NetAcheretGavoha, acheretRate, false);
    row({&m.InflaM, &m.NIKUY_InflaM, &m.NET_InflaM, &m.RATE_InflaM, &m.MAS_InflaM}, M.LineInfla, M.NetInfla, c.RATE_INFLA(), false);
    m.MMAS_TTL = masSum;
    m.MSUM_TTL = netSum;

    // Column F; what is left of the exempt interest serves F's savings lines.
    masSum = netSum = 0;
    const PersonState& F = st.F;
    row({&m.N314B, &m.NIKUY_314B, &m.NET_314B, &m.RATE_314B, &m.MAS_314B}, F.Yitra40, F.NetN214, c.RATE_N214(), false);
    row({&m.N311, &m.NIKUY_311, &m.NET_311, &m.RATE_311, &m.MAS_311}, F.LineN211, F.NetN211, c.RATE_N211(), false);
    row({&m.N328, &m.NIKUY_328, &m.NET_328, &m.RATE_328, &m.MAS_328}, F.LineN228, F.NetN228, c.RATE_N228(), false);
    row({&m.N357, &m.NIKUY_357, &m.NET_357, &m.RATE_357, &m.MAS_357}, F.LineN257, F.NetN257, c.RATE_N257(), false);
    row({&m.N341, &m.NIKUY_341, &m.NET_341, &m.RATE_341, &m.MAS_341}, F.LineN241, F.NetN241, c.RATE_N241(), false);
    row({&m.N312, &m.NIKUY_312, &m.NET_312, &m.RATE_312, &m.MAS_312}, F.LineN212, F.NetN212, c.RATE_N212(), false);
    row({&m.N313B, &m.NIKUY_313B, &m.NET_313B, &m.RATE_313B, &m.MAS_313B}, F.Yitra35, F.NetN213, c.RATE_N213(), false);
    row({&m.N317, &m.NIKUY_317, &m.NET_317, &m.RATE_317, &m.MAS_317}, F.LineN217, F.NetN217, c.RATE_N217(), true);
    row({&m.N326, &m.NIKUY_326, &m.NET_326, &m.RATE_326, &m.MAS_326}, F.LineN226, F.NetN226, c.RATE_N226(), true);
    row({&m.N342, &m.NIKUY_342, &m.NET_342, &m.RATE_342, &m.MAS_342}, F.LineN242, F.NetN242, c.RATE_N242(), true);
    const MeyuchadRow acheretF{&m.AcheretF, &m.NIKUY_AcheretF, &m.NET_AcheretF, &m.RATE_AcheretF, &m.MAS_AcheretF};
    row(acheretF, F.AcheretNamuch, F.NetAcheretNamuch, acheretRate, false);
    row(acheretF, F.YitraAcheret, F.NetAcheretGavoha, acheretRate, false);
    row({&m.InflaF, &m.NIKUY_InflaF, &m.NET_InflaF, &m.RATE_InflaF, &m.MAS_InflaF}, F.LineInfla, F.NetInfla, c.RATE_INFLA(), false);
    m.FMAS_TTL = masSum;
    m.FSUM_TTL = netSum;
}

// The sums of the credit points and the credit lines, each line's credit
// rounded by itself.
void Calculation::PublishZikuim() {
    auto& z = out.Zikuim;
    const auto& k = Zikuim;
    st.M.ZikuimSum = R(z.ZIKUY_020M + z.ZIKUY_021M + z.ZIKUY_021AM + z.ZIKUY_025M + z.ZIKUY_020AM + z.ZIKUY_028M +
                       z.ZIKUY_260M + z.ZIKUY_029M + z.ZIKUY_026M + z.ZIKUY_023 + z.ZIKUY_OleM + z.ZIKUY_224 +
                       z.ZIKUY_181);
    st.F.ZikuimSum =
        R(z.ZIKUY_020F + z.ZIKUY_260F + z.ZIKUY_129 + z.ZIKUY_131 + z.ZIKUY_OleF + z.ZIKUY_324 + z.ZIKUY_182);
    Amount& sumM = st.M.ZikuimSum;
    Amount& sumF = st.F.ZikuimSum;

    auto line = [](Amount& sum, Amount& paidCell, Amount paid, Amount& rateCell, Amount rate, Amount base,
                   Amount& credit) {
        paidCell = paid;
        rateCell = rate;
        credit = R(Percent(rate.value()) * base.value());
        sum += credit;
    };
    // Line 65: life insurance.
    line(sumM, z.N036, k.N036, z.RATE_036, c.ZIKUY_RATE_BITUACH(), z.HUTAR_036, z.ZIKUY_036);
    line(sumF, z.N081, k.N081, z.RATE_081, c.ZIKUY_RATE_BITUACH(), z.HUTAR_081, z.ZIKUY_081);
    // Lines 66 to 68: survivors' insurance and pension.
    line(sumM, z.N045, k.N045 + k.N268 + k.N140, z.RATE_045, c.ZIKUY_RATE(), z.HUTAR_045, z.ZIKUY_045);
    line(sumF, z.N086, k.N086 + k.N269 + k.N240, z.RATE_086, c.ZIKUY_RATE(), z.HUTAR_086, z.ZIKUY_086);
    // Line 69: care in an institution.
    line(sumM, z.N132, k.N132, z.RATE_132, c.ZIKUY_RATE(), z.HUTAR_132, z.ZIKUY_132);
    line(sumF, z.N232, k.N232, z.RATE_232, c.ZIKUY_RATE(), z.HUTAR_232, z.ZIKUY_232);
    // Line 70: donations.
    line(sumM, z.N037, k.N037, z.RATE_037, c.ZIKUY_RATE(), z.HUTAR_037, z.ZIKUY_037);
    line(sumF, z.N237, k.N237, z.RATE_237, c.ZIKUY_RATE(), z.HUTAR_237, z.ZIKUY_237);
    // Line 71: memorial donations.
    line(sumM, z.N143, k.N143, z.RATE_143, c.ZIKUY_RATE_HANTZACHA(), z.HUTAR_143, z.ZIKUY_143);
    line(sumF, z.N144, k.N144, z.RATE_144, c.ZIKUY_RATE_HANTZACHA(), z.HUTAR_144, z.ZIKUY_144);
    // Line 73: settlements; the paid cell is the income the settlement rule found.
    line(sumM, z.N093, z.N093, z.RATE_093, k.N093Rate, z.HUTAR_093, z.ZIKUY_093);
    line(sumF, z.N193, z.N193, z.RATE_193, k.N193Rate, z.HUTAR_193, z.ZIKUY_193);
    // Other credits count shekel for shekel.
    z.AcherimM = k.AcherimM;
    z.ZIKUY_AcherimM = z.HUTAR_AcherimM;
    sumM += z.ZIKUY_AcherimM;
    z.AcherimF = k.AcherimF;
    z.ZIKUY_AcherimF = z.HUTAR_AcherimF;
    sumF += z.ZIKUY_AcherimF;
    // Shift work.
    line(sumM, z.MishmarotM, Yegia.N068, z.RATE_MishmarotM, c.ZIKUY_RATE_MISHMAROT(), z.HUTAR_MishmarotM, z.ZIKUY_MishmarotM);
    line(sumF, z.MishmarotF, Yegia.N069, z.RATE_MishmarotF, c.ZIKUY_RATE_MISHMAROT(), z.HUTAR_MishmarotF, z.ZIKUY_MishmarotF);
}

void Calculation::PublishTashlumim() {
    auto& t = out.Tashlumim;
    const auto& s = Tashlumim;
    t.N042M = s.N042M;
    t.N042F = s.N042F;
    t.N042 = s.N042;
    t.N040M = s.N040M;
    t.N040F = s.N040F;
    t.N040 = s.N040;
    t.N043M = s.N043M;
    t.N043F = s.N043F;
    t.N043 = s.N043;
    t.N041M = s.N041M;
    t.N041F = s.N041F;
    t.N041 = s.N041;
    t.OdfotM = s.OdfotM;
    t.OdfotF = s.OdfotF;
    t.Odfot = s.Odfot;
    t.MikdamotM = s.MikdamotM;
    t.MikdamotF = s.MikdamotF;
    t.Mikdamot = s.Mikdamot;
    t.TashlumimM = s.TashlumimM;
    t.TashlumimF = s.TashlumimF;
    t.Tashlumim = s.Tashlumim;
    t.TTLM = s.TashTTLM;
    t.TTLF = s.TashTTLF;
    t.TTL = s.TashTTL;
}

// The summary: income to tax due and the balance after payments. Credits that
// find no tax are lost; the tax of the registered spouse does not fall below
// the tax on rent, foreign rent and gambling, which credits do not reach.
void Calculation::PublishMain() {
    auto& m = out.Main;
    auto& z = out.Zikuim;
    m.HachnasotM = out.Hachnasot.TTLM;
    m.HachnasotF = out.Hachnasot.TTLF;
    m.NikuimM = out.Nikuim.TTLM3;
    m.NikuimF = out.Nikuim.TTLF3;
    m.HachnasaNetM = m.HachnasotM - m.NikuimM;
    m.HachnasaNetF = m.HachnasotF - m.NikuimF;
    m.MasRagilM = out.Hishuv.MMAS_TTL;
    m.MasRagilF = out.Hishuv.FMAS_TTL;
    m.MasMeyuchadM = out.Meyuchad.MMAS_TTL;
    m.MasMeyuchadF = out.Meyuchad.FMAS_TTL;
    // No levy on high incomes applies in this tax year: both bases are 0.
    m.HetelM = PhasedLevy(0, 0);
    m.HetelF = PhasedLevy(0, 0);
    m.MasBrutoM = m.MasRagilM + m.MasMeyuchadM + m.HetelM;
    m.MasBrutoF = m.MasRagilF + m.MasMeyuchadF + m.HetelF;
    m.ZikuimM = st.M.ZikuimSum;
    m.ZikuimF = st.F.ZikuimSum;
    m.MasMagiaM = m.MasBrutoM - m.ZikuimM;
    m.MasMagiaF = m.MasBrutoF - m.ZikuimF;
    const Amount untouched = out.Meyuchad.MAS_222 + out.Meyuchad.MAS_225 + out.Meyuchad.MAS_227;
    if (m.MasMagiaM < untouched) m.MasMagiaM = untouched;
    if (m.MasMagiaF < 0) m.MasMagiaF = 0;
    z.ZIKUY_ODEF_M = m.MasBrutoM - m.ZikuimM - m.MasMagiaM;
    z.ZIKUY_ODEF_F = m.MasBrutoF - m.ZikuimF - m.MasMagiaF;
    z.ZIKUY_TTL_M = st.M.ZikuimSum + z.ZIKUY_ODEF_M;
    z.ZIKUY_TTL_F = st.F.ZikuimSum + z.ZIKUY_ODEF_F;
    m.ZikuimM = z.ZIKUY_TTL_M;
    m.ZikuimF = z.ZIKUY_TTL_F;
    m.TashlumimM = out.Tashlumim.TTLM;
    m.TashlumimF = out.Tashlumim.TTLF;
    m.MasLetashlumM = m.MasMagiaM - m.TashlumimM;
    m.MasLetashlumF = m.MasMagiaF - m.TashlumimF;
    m.MasLetashlumTTL = m.MasLetashlumM + m.MasLetashlumF;
}

}  // namespace zelmor::engine
