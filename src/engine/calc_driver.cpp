// The calculation driver: which way a couple files, and the runs of one mode.

#include <utility>

#include "engine/calculation.h"

namespace zelmor {

const char* ModeTitle(int filingMode) {
    switch (filingMode) {
        case ModeSeparate: return "חישוב נפרד";
        case ModeSeparateProperty: return "חישוב נפרד רכוש";
        case ModeJoint: return "חישוב מאוחד";
        default: return "חישוב יחיד";
    }
}

CalcResult CalcDoch(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today) {
    return engine::Calculation(report, c, madad, today).run();
}

namespace engine {

Calculation::Calculation(const NishumInput& r, const ConstDoch& k, const MadadLookup& m, Date t)
    : report(r), c(k), madad(m), today(t),
      Yegia(r.Yegia), Rechush(r.Rechush), Nikuim(r.Nikuim), Zikuim(r.Zikuim),
      Pratim(r.Pratim), Pturot(r.Pturot), Nekudot(r.Nekudot), Tashlumim(r.Tashlumim), Klaliim(r.Klaliim),
      pM{false, st.M,
         Yegia.N150, Yegia.N250, Yegia.N158, Yegia.N068, Yegia.N258, Yegia.N358, Yegia.N120, Yegia.YegiaM,
         Yegia.N201, Yegia.N202, Yegia.N204, Yegia.N205,
         out.Hachnasot.N201, out.Hachnasot.N202, out.Hachnasot.N204, out.Hachnasot.N205, out.Hachnasot.RealiM,
         out.Hachnasot.N213A, out.Hachnasot.N214A, out.Hachnasot.AcheretMB1,
         Rechush.N214, Rechush.N211, Rechush.N228, Rechush.N257, Rechush.N241, Rechush.N212, Rechush.N213,
         Rechush.N217, Rechush.N226, Rechush.N242, Rechush.AcheretM,
         Nikuim.N136, Nikuim.N218, Nikuim.N116, Nikuim.N005, Nikuim.N118, Nikuim.N112, Nikuim.N206, Nikuim.N135,
         Nikuim.N244, Nikuim.N248, Nikuim.N030,
         out.Nikuim.N112S, out.Nikuim.N112H,
         Zikuim.N036, Zikuim.N140, Zikuim.N045, Zikuim.N268, Zikuim.N132, Zikuim.N037, Zikuim.N143, Zikuim.AcherimM,
         Zikuim.N093, Zikuim.N093Rate, Zikuim.N093Month,
         r.Pratim.BirthDateM},
      pF{true, st.F,
         Yegia.N170, Yegia.N270, Yegia.N172, Yegia.N069, Yegia.N272, Yegia.N372, Yegia.N220, Yegia.YegiaF,
         Yegia.N301, Yegia.N302, Yegia.N304, Yegia.N305,
         out.Hachnasot.N301, out.Hachnasot.N302, out.Hachnasot.N304, out.Hachnasot.N305, out.Hachnasot.RealiF,
         out.Hachnasot.N313A, out.Hachnasot.N314A, out.Hachnasot.AcheretFB1,
         Rechush.N314, Rechush.N311, Rechush.N328, Rechush.N357, Rechush.N341, Rechush.N312, Rechush.N313,
         Rechush.N317, Rechush.N326, Rechush.N342, Rechush.AcheretF,
         Nikuim.N137, Nikuim.N219, Nikuim.N117, Nikuim.N006, Nikuim.N119, Nikuim.N113, Nikuim.N207, Nikuim.N180,
         Nikuim.N245, Nikuim.N249, Nikuim.N089,
         out.Nikuim.N113S, out.Nikuim.N113H,
         Zikuim.N081, Zikuim.N240, Zikuim.N086, Zikuim.N269, Zikuim.N232, Zikuim.N237, Zikuim.N144, Zikuim.AcherimF,
         Zikuim.N193, Zikuim.N193Rate, Zikuim.N193Month,
         r.Pratim.BirthDateF} {}

CalcResult Calculation::run() {
    CalcDoch();
    CalcResult result;
    result.out = std::move(out);
    result.FilingMode = filing.FilingMode;
    result.compared = compared;
    result.MasMeuchad = filing.MasMeuchad;
    result.MasNifrad = filing.MasNifrad;
    return result;
}

int Calculation::ageInYear(Date birth) const { return birth.isNull() ? -1 : c.YEARDOCH() - birth.year(); }

// The filing tests decide the mode; a couple that may choose is computed both
// ways and the cheaper way stands.
void Calculation::CalcDoch() {
    const auto& y = Yegia;
    const auto& r = Rechush;
    const Amount S = y.N059 + y.N159 + y.N367 + y.N167 + Pturot.Reali;
    const Amount J = r.N060 + r.N061 + r.N067 + r.N157 + r.N141 + r.N055 + r.N053 + r.N078 + r.N126 + r.N142 +
                     r.Acheret + Pturot.Infla + Pturot.Reali25 + Pturot.N256Revach + Pturot.N256Revach20 +
                     Pturot.N256Revach25;
    const Amount TTLM = y.TTLM, TTLF = y.TTLF;

    filing.RegilRechushTestM = y.N201 + y.N202 + y.N204 + y.N205;
    if (TTLM >= TTLF) filing.RegilRechushTestM += S;
    filing.RegilTestM = filing.RegilRechushTestM + TTLM;
    filing.MeyuchadTestM = r.N214 + r.N211 + r.N228 + r.N257 + r.N241 + r.N212 + r.N213 + r.N217 + r.N226 + r.N242 +
                       r.N222 + r.N225 + r.N227 + r.AcheretM;
    if (TTLM >= TTLF) filing.MeyuchadTestM += J;
    filing.HachnasaTestM = filing.MeyuchadTestM + filing.RegilTestM;

    filing.RegilRechushTestF = y.N301 + y.N302 + y.N304 + y.N305;
    if (TTLF > TTLM) filing.RegilRechushTestF += S;
    filing.RegilTestF = filing.RegilRechushTestF + TTLF;
    filing.MeyuchadTestF = r.N314 + r.N311 + r.N328 + r.N357 + r.N341 + r.N312 + r.N313 + r.N317 + r.N326 + r.N342 +
                       r.AcheretF;
    if (TTLF > TTLM) filing.MeyuchadTestF += J;
    filing.HachnasaTestF = filing.MeyuchadTestF + filing.RegilTestF;

    filing.isIshaNesua = (filing.HachnasaTestF > 0 || Pratim.isNasuy) && Pratim.isFemale;

    if (Pratim.isAlman || Pratim.isRavak || Pratim.isGarush || filing.HachnasaTestF == 0) {
        filing.FilingMode = ModeSingle;
        CalcOneMode();
        return;
    }
    filing.SafBenZug = c.SAF_BEN_ZUG();
    if (Nekudot.N260 > 0) filing.SafBenZug = c.SAF_BEN_ZUG_YELADIM();
    if (filing.HachnasaTestF <= filing.SafBenZug) {
        filing.FilingMode = ModeAlone;
        CalcOneMode();
        return;
    }
    if (Klaliim.isTlutYes)
        CalcTlut();
    else
        CalcNoTlut();
}

// Incomes without a dependence in their source: separate, or joint when cheaper.
void Calculation::CalcNoTlut() {
    if (filing.RegilTestF > c.TESTMEUCHAD() && filing.RegilTestM > c.TESTMEUCHAD()) {
        filing.FilingMode = ModeSeparate;
        CalcOneMode();
        return;
    }
    compared = true;
    filing.FilingMode = ModeJoint;
    CalcOneMode();
    filing.MasMeuchad = taxDue();
    filing.FilingMode = ModeSeparate;
    CalcOneMode();
    filing.MasNifrad = taxDue();
    if (filing.MasMeuchad < filing.MasNifrad) {  // a tie leaves the separate run
        filing.FilingMode = ModeJoint;
        CalcOneMode();
    }
}

// Incomes with a dependence in their source: separate on property, or joint when cheaper.
void Calculation::CalcTlut() {
    filing.RegilPlusYegiaFTestM = filing.RegilTestM + Yegia.TTLF;
    if (filing.RegilRechushTestF > c.TESTMEUCHAD() && filing.RegilPlusYegiaFTestM > c.TESTMEUCHAD()) {
        filing.FilingMode = ModeSeparateProperty;
        CalcOneMode();
        return;
    }
    filing.FilingMode = ModeJoint;
    CalcOneMode();
    filing.MasMeuchad = taxDue();
    if (filing.RegilRechushTestF <= 0) return;
    compared = true;
    filing.FilingMode = ModeSeparateProperty;
    CalcOneMode();
    filing.MasNifrad = taxDue();
    if (filing.MasMeuchad < filing.MasNifrad) {  // a tie leaves mode 3
        filing.FilingMode = ModeJoint;
        CalcOneMode();
    }
}

// Every figure of a run starts at 0; only the filing state outlives it.
void Calculation::ClearCalcState() { st = CalcState{}; }

void Calculation::CalcOneMode() {
    const int mode = filing.FilingMode;
    ClearCalcState();
    out.ClearCalc();
    filing.JointStage = mode == ModeJoint ? 1 : 0;
    Person& M = pM;
    for (;;) {
        if (mode == ModeSeparateProperty) MergeYegia();
        if (mode == ModeJoint && filing.JointStage == 2) {
            MergeYegia();
            MergeRechush();
        }
        EarnedIncome();
        GatherLines(M);
        if (!st.isYegiaFGreater) GatherShared(M);
        TotalIncome(M);
        FirstDeductions(M);
        if (filing.JointStage == 2) break;
        WorkDisability(M);
        Pension(M);
        KizvaLimitNikuy(M);
        if (filing.JointStage != 1) break;
        // First pass of the joint mode: F up to the same point, then all of
        // F's lines move to M for the second pass.
        CalcPersonF();
        out.Hachnasot.N301 = out.Hachnasot.N302 = out.Hachnasot.N304 = out.Hachnasot.N305 = 0;
        out.Hachnasot.RealiF = 0;
        PersonState& f = st.F;
        f.LineN214 = f.LineN217 = f.LineN226 = f.LineN242 = f.LineN211 = f.LineN228 = f.LineN257 = f.LineN241 = 0;
        f.LineN212 = f.LineN213 = f.LineAcheret = f.LineInfla = 0;
        f.NikuyBL = f.NikuyMechkar = f.NikuyNeft = f.NikuySratim = 0;
        filing.JointStage = 2;
    }
    if (filing.JointStage == 2) JoinPersons();
    TotalDeductions(M);
    ShiftToRegular(M);
    Offset(M);
    BracketStep(M);
    if (mode == ModeSeparate || mode == ModeSeparateProperty) CalcPersonF();
    CalcCreditsM();
    if (mode == ModeSeparate || mode == ModeSeparateProperty) CalcCreditsF();
    if (mode == ModeSeparateProperty || mode == ModeJoint) RestoreYegia();
    if (mode == ModeJoint) RestoreRechush();
    PublishResults();
}

// F's own computation: in the first pass of the joint mode up to the
// deductions, in the separate modes from end to end.
void Calculation::CalcPersonF() {
    Person& F = pF;
    GatherLines(F);
    if (st.isYegiaFGreater) GatherShared(F);
    TotalIncome(F);
    FirstDeductions(F);
    WorkDisability(F);
    Pension(F);
    KizvaLimitNikuy(F);
    if (filing.JointStage == 1) return;
    TotalDeductions(F);
    ShiftToRegular(F);
    Offset(F);
    BracketStep(F);
}

}  // namespace engine
}  // namespace zelmor
