// Publication of a run into the eight sheets, in their fixed order, down to
// the balance, interest and the national insurance estimate.

#include "core/values.h"
#include "engine/calculation.h"

namespace zelmor::engine {

template <bool On>
void Calculation<On>::PublishResults() {
    PublishHachnasot();
    PublishNikuim();
    PublishHishuv();
    PublishMeyuchad();
    PublishZikuim();
    PublishTashlumim();
    PublishMain();
    Ribit(t, out.Main, interestDate, c, madad, today);
    CalcBLM();
    CalcBLF();
}

template <bool On>
void Calculation<On>::PublishHachnasot() {
    auto& h = out.Hachnasot;
    auto& y = Yegia;
    t.who('M');
    for (auto [cell, line] : {std::pair{&h.N150, &y.N150}, {&h.N250, &y.N250}, {&h.N158, &y.N158}, {&h.N068, &y.N068},
                              {&h.N258, &y.N258}, {&h.N358, &y.N358}, {&h.N120, &y.N120}, {&h.YegiaM, &y.YegiaM}})
        t.set(*cell, "", t(*line));
    t.who('F');
    for (auto [cell, line] : {std::pair{&h.N170, &y.N170}, {&h.N270, &y.N270}, {&h.N172, &y.N172}, {&h.N069, &y.N069},
                              {&h.N272, &y.N272}, {&h.N372, &y.N372}, {&h.N220, &y.N220}, {&h.YegiaF, &y.YegiaF}})
        t.set(*cell, "", t(*line));
    const char* total = "סה\"כ הכנסות בשיעור מס רגיל";
    t.who('M');
    t.set(h.TTLM, total,
          t(h.N150) + t(h.N250) + t(h.N158) + t(h.N068) + t(h.N258) + t(h.N358) + t(h.N120) + t(h.YegiaM) +
              t(h.N201) + t(h.N202) + t(h.N204) + t(h.N205) + t(h.N214A) + t(h.N213A) + t(h.AcheretMB1) +
              t(h.RealiM));
    t.who('F');
    t.set(h.TTLF, total,
          t(h.N170) + t(h.N270) + t(h.N172) + t(h.N069) + t(h.N272) + t(h.N372) + t(h.N220) + t(h.YegiaF) +
              t(h.N301) + t(h.N302) + t(h.N304) + t(h.N305) + t(h.N314A) + t(h.N313A) + t(h.AcheretFB1) +
              t(h.RealiF));
    switch (filing.FilingMode) {
        case ModeJoint:
            t.who('M');
            t.set(h.TTLM, "סה\"כ הכנסות בחישוב מאוחד", t(h.TTLM) + t(h.TTLF));
            t.who('F');
            t.moved(h.TTLF, "הועבר להכנסות הנישום");
            break;
        case ModeSeparateProperty:  // F's earned income was taxed with M
            t.who('M');
            t.set(h.TTLM, "בצירוף הכנסת בן הזוג מיגיעה אישית", t(h.TTLM) + t(Yegia.TTLF));
            t.who('F');
            t.set(h.TTLF, "בניכוי הכנסתו מיגיעה אישית", t(h.TTLF) - t(Yegia.TTLF));
            break;
        case ModeAlone:
            t.who('F');
            t.moved(h.TTLF, "הכנסת בן הזוג אינה מחויבת");
            break;
        default: break;
    }
}

template <bool On>
void Calculation<On>::PublishNikuim() {
    auto& n = out.Nikuim;
    const auto& f = Nikuim;
    const PersonState& M = st.M;
    const PersonState& F = st.F;
    t.who('M');
    t.set(n.N136S, "", t(f.N136));
    t.set(n.N136H, "ניכוי לקרן השתלמות", t(M.NikuyHishtalmut));
    t.set(n.N112S, "", t(f.N112) + t(f.N206));
    t.set(n.N135S, "", t(f.N135));
    t.set(n.N135H, "ניכוי לקצבה", t(M.NikuyKizva));
    t.set(n.N030S, "", t(f.N030));
    t.set(n.N030H, "ניכוי דמי ביטוח לאומי", t(M.NikuyBL));
    t.set(n.N005S, "", t(f.N005));
    t.set(n.N005H, "ניכוי למחקר", t(M.NikuyMechkar));
    t.set(n.N116S, "", t(f.N116));
    t.set(n.N116H, "ניכוי השקעה בנפט", t(M.NikuyNeft));
    t.set(n.N118S, "", t(f.N118));
    t.set(n.N118H, "ניכוי השקעה בסרטים", t(M.NikuySratim));
    t.who('F');
    t.set(n.N137S, "", t(f.N137));
    t.set(n.N137H, "ניכוי לקרן השתלמות", t(F.NikuyHishtalmut));
    t.set(n.N113S, "", t(f.N113) + t(f.N207));
    t.set(n.N180S, "", t(f.N180));
    t.set(n.N180H, "ניכוי לקצבה", t(F.NikuyKizva));
    t.set(n.N089S, "", t(f.N089));
    t.set(n.N089H, "ניכוי דמי ביטוח לאומי", t(F.NikuyBL));
    t.set(n.N006S, "", t(f.N006));
    t.set(n.N006H, "ניכוי למחקר", t(F.NikuyMechkar));
    t.set(n.N117S, "", t(f.N117));
    t.set(n.N117H, "ניכוי השקעה בנפט", t(F.NikuyNeft));
    t.set(n.N119S, "", t(f.N119));
    t.set(n.N119H, "ניכוי השקעה בסרטים", t(F.NikuySratim));
    const char* allowed = "סה\"כ ניכויים מותרים";
    const char* offset = "ניכויים שקוזזו מההכנסה בשיעור רגיל";
    const char* left = "ניכויים שקוזזו מהכנסות בשיעור מיוחד";
    t.who('M');
    t.set(n.TTLM1, allowed, t(n.N136H) + t(n.N112H) + t(n.N135H) + t(n.N030H) + t(n.N005H) + t(n.N116H) + t(n.N118H));
    t.set(n.TTLM3, offset, t(M.KizuzLoYegia) + t(M.KizuzYegia));
    t.set(n.TTLM0, "ניכויים שלא נוצלו", t(M.NikuimYitra));
    t.set(n.TTLM2, left, t(n.TTLM1) - t(n.TTLM3) - t(n.TTLM0));
    t.who('F');
    t.set(n.TTLF1, allowed, t(n.N137H) + t(n.N113H) + t(n.N180H) + t(n.N089H) + t(n.N006H) + t(n.N117H) + t(n.N119H));
    t.set(n.TTLF3, offset, t(F.KizuzLoYegia) + t(F.KizuzYegia));
    t.set(n.TTLF0, "ניכויים שלא נוצלו", t(F.NikuimYitra));
    t.set(n.TTLF2, left, t(n.TTLF1) - t(n.TTLF3) - t(n.TTLF0));
}

template <bool On>
void Calculation<On>::PublishHishuv() {
    auto& h = out.Hishuv;
    const auto msum = BracketSums(h, false), fsum = BracketSums(h, true);
    Amount* mmas[] = {&h.MMAS_1, &h.MMAS_2, &h.MMAS_3, &h.MMAS_4, &h.MMAS_5, &h.MMAS_6, &h.MMAS_7};
    Amount* fmas[] = {&h.FMAS_1, &h.FMAS_2, &h.FMAS_3, &h.FMAS_4, &h.FMAS_5, &h.FMAS_6, &h.FMAS_7};
    const TD rates[] = {K(RATE1), K(RATE2), K(RATE3), K(RATE4), K(RATE5), K(RATE6), K(RATE7)};
    const char* bracketTax = "מס לפי מדרגה";
    for (int i = 0; i < 7; ++i) {
        t.who('M');
        t.set(*mmas[i], bracketTax, R(t(*msum[i]) * rates[i]));  // each bracket rounded by itself
        t.who('F');
        t.set(*fmas[i], bracketTax, R(t(*fsum[i]) * rates[i]));
    }
    const auto total = [&](const auto& cells) {
        TA s = t(*cells[0]);
        for (int i = 1; i < 7; ++i) s = s + t(*cells[i]);
        return s;
    };
    t.who('M');
    t.set(h.MSUM_TTL, "סה\"כ הכנסה חייבת בשיעור רגיל", total(msum));
    t.set(h.MMAS_TTL, "סה\"כ מס בשיעור רגיל", total(mmas));
    t.who('F');
    t.set(h.FSUM_TTL, "סה\"כ הכנסה חייבת בשיעור רגיל", total(fsum));
    t.set(h.FMAS_TTL, "סה\"כ מס בשיעור רגיל", total(fmas));
}

// The pool of exempt interest, once for both persons: low total income, age
// 65, and a small qualifying pension open it.
template <bool On>
void Calculation<On>::ExemptInterestPool() {
    const char* pool = "יתרת פטור על ריבית";
    t.who(0);
    const TA T = t(filing.HachnasaTestM) + t(filing.HachnasaTestF);
    if (val(T) <= c.HACHNASA_NEMUCHA())
        t.set(st.PtorRibitYitra, pool, K(PTOR_RIBIT_NEMUCHA));
    else if (val(T) <= c.HACHNASA_NEMUCHA() + c.PTOR_RIBIT_NEMUCHA())
        t.set(st.PtorRibitYitra, pool, K(PTOR_RIBIT_NEMUCHA) - (T - K(HACHNASA_NEMUCHA)));
    else
        t.set(st.PtorRibitYitra, pool, t.zero());

    const int ageM = ageInYear(Pratim.BirthDateM), ageF = ageInYear(Pratim.BirthDateF);
    const bool oldM = ageM >= c.GIL_NIKUY_RIBIT(), oldF = ageF >= c.GIL_NIKUY_RIBIT();
    if (oldM && oldF)
        t.set(st.PtorRibitYitra, pool, t(st.PtorRibitYitra) + K(NIKUY_RIBIT_MUGDAL));
    else if (oldM || oldF)
        t.set(st.PtorRibitYitra, pool, t(st.PtorRibitYitra) + K(NIKUY_RIBIT));

    const PersonState& M = st.M;
    const PersonState& F = st.F;
    TA Q = t(M.LineN217) + t(M.LineN226) + t(M.LineN242) + t(F.LineN217) + t(F.LineN226) + t(F.LineN242);
    const TA V1 = t(filing.HachnasaTestM) - t(M.LineN217) - t(M.LineN226) - t(M.LineN242);
    const TA V2 = t(filing.HachnasaTestF) - t(F.LineN217) - t(F.LineN226) - t(F.LineN242);
    const TA V = val(V2) > val(V1) ? V2 : V1;
    const int man = c.GIL_PTOR_RIBIT_GEVER(), woman = c.GIL_PTOR_RIBIT_ISHA();
    const bool ageTest = Pratim.isFemale ? (ageF >= man || ageM >= woman) : (ageM >= man || ageF >= woman);
    if (val(V) <= c.KIZVA_MEZAKA() && ageTest) {
        Q = MinLong(Q, K(KIZVA_MEZAKA) - V);
        t.set(st.PtorRibitYitra, pool, R(Q * K(PTOR_RIBIT_KIZVA) + t(st.PtorRibitYitra)));
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

template <bool On>
void Calculation<On>::PublishMeyuchad() {
    auto& m = out.Meyuchad;
    ExemptInterestPool();
    Amount& masSum = st.MeyuchadMasSum;  // running totals of the column
    Amount& netSum = st.MeyuchadNetSum;
    t.who('M');
    t.set(masSum, "", t.zero());
    t.set(netSum, "", t.zero());

    const char* netName = "הכנסה חייבת בשיעור מיוחד";
    auto row = [&](const MeyuchadRow& r, const Amount& grossFigure, const Amount& netFigure, TA rate, bool exempt) {
        if (grossFigure == 0) return;  // an empty line leaves its whole row empty
        TA net = t(netFigure);
        if (exempt) {  // savings lines give up exempt interest first
            const TA used = MinLong(net, t(st.PtorRibitYitra));
            t.set(st.PtorRibitYitra, "יתרת פטור על ריבית", t(st.PtorRibitYitra) - used);
            net = net - used;
        }
        if (r.gross) t.set(*r.gross, "", t(grossFigure));
        t.set(*r.net, netName, net);
        if (r.nikuy) t.set(*r.nikuy, "קיזוז", t(grossFigure) - t(*r.net));
        t.set(*r.rate, "שיעור המס", rate);
        t.set(*r.mas, "מס בשיעור מיוחד", R(t.percent(t(*r.rate)) * t(*r.net)));
        t.set(masSum, "סה\"כ מס בשיעור מיוחד", t(masSum) + t(*r.mas));
        t.set(netSum, "סה\"כ הכנסה בשיעור מיוחד", t(netSum) + t(*r.net));
    };
    const TA acheretRate = t(Rechush.AcheretRate);

    // Column M.
    const PersonState& M = st.M;
    row({&m.N214B, &m.NIKUY_214B, &m.NET_214B, &m.RATE_214B, &m.MAS_214B}, M.Yitra40, M.NetN214, K(RATE_N214), false);
    row({&m.N211, &m.NIKUY_211, &m.NET_211, &m.RATE_211, &m.MAS_211}, M.LineN211, M.NetN211, K(RATE_N211), false);
    row({&m.N228, &m.NIKUY_228, &m.NET_228, &m.RATE_228, &m.MAS_228}, M.LineN228, M.NetN228, K(RATE_N228), false);
    row({&m.N257, &m.NIKUY_257, &m.NET_257, &m.RATE_257, &m.MAS_257}, M.LineN257, M.NetN257, K(RATE_N257), false);
    row({&m.N241, &m.NIKUY_241, &m.NET_241, &m.RATE_241, &m.MAS_241}, M.LineN241, M.NetN241, K(RATE_N241), false);
    row({&m.N212, &m.NIKUY_212, &m.NET_212, &m.RATE_212, &m.MAS_212}, M.LineN212, M.NetN212, K(RATE_N212), false);
    row({&m.N213B, &m.NIKUY_213B, &m.NET_213B, &m.RATE_213B, &m.MAS_213B}, M.Yitra35, M.NetN213, K(RATE_N213), false);
    row({&m.N217, &m.NIKUY_217, &m.NET_217, &m.RATE_217, &m.MAS_217}, M.LineN217, M.NetN217, K(RATE_N217), true);
    row({&m.N226, &m.NIKUY_226, &m.NET_226, &m.RATE_226, &m.MAS_226}, M.LineN226, M.NetN226, K(RATE_N226), true);
    row({&m.N242, &m.NIKUY_242, &m.NET_242, &m.RATE_242, &m.MAS_242}, M.LineN242, M.NetN242, K(RATE_N242), true);
    row({nullptr, nullptr, &m.NET_222, &m.RATE_222, &m.MAS_222}, st.LineN222, st.LineN222, K(RATE_N222), false);
    row({nullptr, nullptr, &m.NET_225, &m.RATE_225, &m.MAS_225}, st.LineN225, st.LineN225, K(RATE_N225), false);
    row({nullptr, nullptr, &m.NET_227, &m.RATE_227, &m.MAS_227}, st.LineN227, st.LineN227, K(RATE_N227), false);
    const MeyuchadRow acheretM{&m.AcheretM, &m.NIKUY_AcheretM, &m.NET_AcheretM, &m.RATE_AcheretM, &m.MAS_AcheretM};
    row(acheretM, M.AcheretNamuch, M.NetAcheretNamuch, acheretRate, false);
    row(acheretM, M.YitraAcheret, M.NetAcheretGavoha, acheretRate, false);
    row({&m.InflaM, &m.NIKUY_InflaM, &m.NET_InflaM, &m.RATE_InflaM, &m.MAS_InflaM}, M.LineInfla, M.NetInfla, K(RATE_INFLA), false);
    t.set(m.MMAS_TTL, "", t(masSum));
    t.set(m.MSUM_TTL, "", t(netSum));

    // Column F; what is left of the exempt interest serves F's savings lines.
    t.who('F');
    t.set(masSum, "", t.zero());
    t.set(netSum, "", t.zero());
    const PersonState& F = st.F;
    row({&m.N314B, &m.NIKUY_314B, &m.NET_314B, &m.RATE_314B, &m.MAS_314B}, F.Yitra40, F.NetN214, K(RATE_N214), false);
    row({&m.N311, &m.NIKUY_311, &m.NET_311, &m.RATE_311, &m.MAS_311}, F.LineN211, F.NetN211, K(RATE_N211), false);
    row({&m.N328, &m.NIKUY_328, &m.NET_328, &m.RATE_328, &m.MAS_328}, F.LineN228, F.NetN228, K(RATE_N228), false);
    row({&m.N357, &m.NIKUY_357, &m.NET_357, &m.RATE_357, &m.MAS_357}, F.LineN257, F.NetN257, K(RATE_N257), false);
    row({&m.N341, &m.NIKUY_341, &m.NET_341, &m.RATE_341, &m.MAS_341}, F.LineN241, F.NetN241, K(RATE_N241), false);
    row({&m.N312, &m.NIKUY_312, &m.NET_312, &m.RATE_312, &m.MAS_312}, F.LineN212, F.NetN212, K(RATE_N212), false);
    row({&m.N313B, &m.NIKUY_313B, &m.NET_313B, &m.RATE_313B, &m.MAS_313B}, F.Yitra35, F.NetN213, K(RATE_N213), false);
    row({&m.N317, &m.NIKUY_317, &m.NET_317, &m.RATE_317, &m.MAS_317}, F.LineN217, F.NetN217, K(RATE_N217), true);
    row({&m.N326, &m.NIKUY_326, &m.NET_326, &m.RATE_326, &m.MAS_326}, F.LineN226, F.NetN226, K(RATE_N226), true);
    row({&m.N342, &m.NIKUY_342, &m.NET_342, &m.RATE_342, &m.MAS_342}, F.LineN242, F.NetN242, K(RATE_N242), true);
    const MeyuchadRow acheretF{&m.AcheretF, &m.NIKUY_AcheretF, &m.NET_AcheretF, &m.RATE_AcheretF, &m.MAS_AcheretF};
    row(acheretF, F.AcheretNamuch, F.NetAcheretNamuch, acheretRate, false);
    row(acheretF, F.YitraAcheret, F.NetAcheretGavoha, acheretRate, false);
    row({&m.InflaF, &m.NIKUY_InflaF, &m.NET_InflaF, &m.RATE_InflaF, &m.MAS_InflaF}, F.LineInfla, F.NetInfla, K(RATE_INFLA), false);
    t.set(m.FMAS_TTL, "", t(masSum));
    t.set(m.FSUM_TTL, "", t(netSum));
}

// The sums of the credit points and the credit lines, each line's credit
// rounded by itself.
template <bool On>
void Calculation<On>::PublishZikuim() {
    auto& z = out.Zikuim;
    const auto& k = Zikuim;
    const char* points = "זיכוי בעד נקודות זיכוי";
    t.who('M');
    t.set(st.M.ZikuimSum, points,
          R(t(z.ZIKUY_020M) + t(z.ZIKUY_021M) + t(z.ZIKUY_021AM) + t(z.ZIKUY_025M) + t(z.ZIKUY_020AM) +
            t(z.ZIKUY_028M) + t(z.ZIKUY_260M) + t(z.ZIKUY_029M) + t(z.ZIKUY_026M) + t(z.ZIKUY_023) +
            t(z.ZIKUY_OleM) + t(z.ZIKUY_224) + t(z.ZIKUY_181)));
    t.who('F');
    t.set(st.F.ZikuimSum, points,
          R(t(z.ZIKUY_020F) + t(z.ZIKUY_260F) + t(z.ZIKUY_129) + t(z.ZIKUY_131) + t(z.ZIKUY_OleF) + t(z.ZIKUY_324) +
            t(z.ZIKUY_182)));
    Amount& sumM = st.M.ZikuimSum;
    Amount& sumF = st.F.ZikuimSum;

    const char* sumName = "סה\"כ זיכויים לפני זיכויים שלא נוצלו";
    auto line = [&](char who, Amount& sum, Amount& paidCell, TA paid, Amount& rateCell, TA rate, Amount& base,
                    Amount& credit) {
        t.who(who);
        t.set(paidCell, "סכום ששולם", paid);
        t.set(rateCell, "שיעור הזיכוי", rate);
        t.set(credit, "זיכוי", R(t.percent(t(rateCell)) * t(base)));
        t.set(sum, sumName, t(sum) + t(credit));
    };
    // Line 65: life insurance.
    line('M', sumM, z.N036, t(k.N036), z.RATE_036, K(ZIKUY_RATE_BITUACH), z.HUTAR_036, z.ZIKUY_036);
    line('F', sumF, z.N081, t(k.N081), z.RATE_081, K(ZIKUY_RATE_BITUACH), z.HUTAR_081, z.ZIKUY_081);
    // Lines 66 to 68: survivors' insurance and pension.
    line('M', sumM, z.N045, t(k.N045) + t(k.N268) + t(k.N140), z.RATE_045, K(ZIKUY_RATE), z.HUTAR_045, z.ZIKUY_045);
    line('F', sumF, z.N086, t(k.N086) + t(k.N269) + t(k.N240), z.RATE_086, K(ZIKUY_RATE), z.HUTAR_086, z.ZIKUY_086);
    // Line 69: care in an institution.
    line('M', sumM, z.N132, t(k.N132), z.RATE_132, K(ZIKUY_RATE), z.HUTAR_132, z.ZIKUY_132);
    line('F', sumF, z.N232, t(k.N232), z.RATE_232, K(ZIKUY_RATE), z.HUTAR_232, z.ZIKUY_232);
    // Line 70: donations.
    line('M', sumM, z.N037, t(k.N037), z.RATE_037, K(ZIKUY_RATE), z.HUTAR_037, z.ZIKUY_037);
    line('F', sumF, z.N237, t(k.N237), z.RATE_237, K(ZIKUY_RATE), z.HUTAR_237, z.ZIKUY_237);
    // Line 71: memorial donations.
    line('M', sumM, z.N143, t(k.N143), z.RATE_143, K(ZIKUY_RATE_HANTZACHA), z.HUTAR_143, z.ZIKUY_143);
    line('F', sumF, z.N144, t(k.N144), z.RATE_144, K(ZIKUY_RATE_HANTZACHA), z.HUTAR_144, z.ZIKUY_144);
    // Line 73: settlements; the paid cell is the income the settlement rule found.
    line('M', sumM, z.N093, t(z.N093), z.RATE_093, t(k.N093Rate), z.HUTAR_093, z.ZIKUY_093);
    line('F', sumF, z.N193, t(z.N193), z.RATE_193, t(k.N193Rate), z.HUTAR_193, z.ZIKUY_193);
    // Other credits count shekel for shekel.
    t.who('M');
    t.set(z.AcherimM, "", t(k.AcherimM));
    t.set(z.ZIKUY_AcherimM, "זיכוי", t(z.HUTAR_AcherimM));
    t.set(sumM, sumName, t(sumM) + t(z.ZIKUY_AcherimM));
    t.who('F');
    t.set(z.AcherimF, "", t(k.AcherimF));
    t.set(z.ZIKUY_AcherimF, "זיכוי", t(z.HUTAR_AcherimF));
    t.set(sumF, sumName, t(sumF) + t(z.ZIKUY_AcherimF));
    // Shift work.
    line('M', sumM, z.MishmarotM, t(Yegia.N068), z.RATE_MishmarotM, K(ZIKUY_RATE_MISHMAROT), z.HUTAR_MishmarotM,
         z.ZIKUY_MishmarotM);
    line('F', sumF, z.MishmarotF, t(Yegia.N069), z.RATE_MishmarotF, K(ZIKUY_RATE_MISHMAROT), z.HUTAR_MishmarotF,
         z.ZIKUY_MishmarotF);
}

template <bool On>
void Calculation<On>::PublishTashlumim() {
    auto& t2 = out.Tashlumim;
    const auto& s = Tashlumim;
    const std::pair<Amount*, const Amount*> copies[] = {
        {&t2.N042M, &s.N042M}, {&t2.N042F, &s.N042F}, {&t2.N042, &s.N042}, {&t2.N040M, &s.N040M},
        {&t2.N040F, &s.N040F}, {&t2.N040, &s.N040}, {&t2.N043M, &s.N043M}, {&t2.N043F, &s.N043F},
        {&t2.N043, &s.N043}, {&t2.N041M, &s.N041M}, {&t2.N041F, &s.N041F}, {&t2.N041, &s.N041},
        {&t2.OdfotM, &s.OdfotM}, {&t2.OdfotF, &s.OdfotF}, {&t2.Odfot, &s.Odfot}, {&t2.MikdamotM, &s.MikdamotM},
        {&t2.MikdamotF, &s.MikdamotF}, {&t2.Mikdamot, &s.Mikdamot}, {&t2.TashlumimM, &s.TashlumimM},
        {&t2.TashlumimF, &s.TashlumimF}, {&t2.Tashlumim, &s.Tashlumim}, {&t2.TTLM, &s.TashTTLM},
        {&t2.TTLF, &s.TashTTLF}, {&t2.TTL, &s.TashTTL}};
    t.who(0);
    for (const auto& [cell, line] : copies) t.set(*cell, "", t(*line));
}

// The summary: income to tax due and the balance after payments.
template <bool On>
void Calculation<On>::PublishMain() {
    auto& m = out.Main;
    auto& z = out.Zikuim;
    const auto& me = out.Meyuchad;
    // One column of the summary: the person's cells and the figures they are made of.
    struct Column {
        char who;
        Amount &Hachnasot, &Nikuim, &HachnasaNet, &MasRagil, &MasMeyuchad, &Hetel, &MasBruto, &Zikuim, &MasMagia,
            &Tashlumim, &MasLetashlum, &ZikuyOdef, &ZikuyTTL;
        const Amount &income, &offset, &regularTax, &specialTax, &payments, &credits;
    };
    const char* taxDueName = "מס מגיע";
    const auto column = [&](const Column& k, auto floorOfTax) {
        t.who(k.who);
        t.set(k.Hachnasot, "", t(k.income));
        t.set(k.Nikuim, "", t(k.offset));
        t.set(k.HachnasaNet, "", t(k.Hachnasot) - t(k.Nikuim));
        t.set(k.MasRagil, "", t(k.regularTax));
        t.set(k.MasMeyuchad, "", t(k.specialTax));
        // No levy on high incomes applies in this tax year: both bases are 0.
        t.set(k.Hetel, "היטל", t.k("HETEL", PhasedLevy(0, 0)));
        t.set(k.MasBruto, "", t(k.MasRagil) + t(k.MasMeyuchad) + t(k.Hetel));
        t.set(k.Zikuim, "זיכויים ממס", t(k.credits));
        t.set(k.MasMagia, taxDueName, t(k.MasBruto) - t(k.Zikuim));
        const TA floor = floorOfTax();
        if (k.MasMagia < val(floor)) t.set(k.MasMagia, taxDueName, MaxLong(t(k.MasMagia), floor));
        // Credits that find no tax are lost.
        t.set(k.ZikuyOdef, "זיכויים שלא נוצלו", t(k.MasBruto) - t(k.Zikuim) - t(k.MasMagia));
        t.set(k.ZikuyTTL, "סה\"כ זיכויים", t(k.credits) + t(k.ZikuyOdef));
        t.set(k.Zikuim, "", t(k.ZikuyTTL));
        t.set(k.Tashlumim, "", t(k.payments));
        t.set(k.MasLetashlum, "", t(k.MasMagia) - t(k.Tashlumim));
    };
    // The registered spouse's tax does not fall below the tax on rent, foreign
    // rent and gambling, which credits do not reach; the spouse's not below 0.
    column({'M', m.HachnasotM, m.NikuimM, m.HachnasaNetM, m.MasRagilM, m.MasMeyuchadM, m.HetelM, m.MasBrutoM,
            m.ZikuimM, m.MasMagiaM, m.TashlumimM, m.MasLetashlumM, z.ZIKUY_ODEF_M, z.ZIKUY_TTL_M,
            out.Hachnasot.TTLM, out.Nikuim.TTLM3, out.Hishuv.MMAS_TTL, me.MMAS_TTL, out.Tashlumim.TTLM,
            st.M.ZikuimSum},
           [&] {
               return t.name("מס על שכר דירה, שכר דירה מחו\"ל והימורים",
                             t(me.MAS_222) + t(me.MAS_225) + t(me.MAS_227));
           });
    column({'F', m.HachnasotF, m.NikuimF, m.HachnasaNetF, m.MasRagilF, m.MasMeyuchadF, m.HetelF, m.MasBrutoF,
            m.ZikuimF, m.MasMagiaF, m.TashlumimF, m.MasLetashlumF, z.ZIKUY_ODEF_F, z.ZIKUY_TTL_F,
            out.Hachnasot.TTLF, out.Nikuim.TTLF3, out.Hishuv.FMAS_TTL, me.FMAS_TTL, out.Tashlumim.TTLF,
            st.F.ZikuimSum},
           [&] { return t.zero(); });
    t.who(0);
    t.set(m.MasLetashlumTTL, "", t(m.MasLetashlumM) + t(m.MasLetashlumF));
}

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
