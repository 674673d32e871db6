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
    return engine::Calculation<false>(report, c, madad, today).run();
}

CalcResult CalcDoch(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today,
                    trace::Trace* sink, Date interestDate) {
    if (!sink) {
        engine::Calculation<false> calc(report, c, madad, today);
        calc.interestDate = interestDate;
        return calc.run();
    }
    engine::Calculation<true> calc(report, c, madad, today);
    calc.interestDate = interestDate;
    return calc.run(sink);
}

namespace engine {

template <bool On>
Calculation<On>::Calculation(const NishumInput& r, const ConstDoch& k, const MadadLookup& m, Date t)
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

template <bool On>
CalcResult Calculation<On>::run(trace::Trace* sink) {
    if constexpr (On) {
        Recorder rec(*sink, this, sizeof *this);
        rec.mapReport(report, Yegia, Rechush, Nikuim, Zikuim);
        rec.mapSheets(out);
        rec.keep(&filing, &filing + 1);
        struct Scope {  // the recorder is this thread's only while the calculation runs
            explicit Scope(Recorder* r) { tlRecorder = r; }
            ~Scope() { tlRecorder = nullptr; }
        } scope(&rec);
        t.rec = &rec;
        CalcDoch();
        if (!jointAgain) rec.finish();
        t.rec = nullptr;
    } else {
        (void)sink;
        CalcDoch();
    }
    CalcResult result;
    result.out = std::move(out);
    result.FilingMode = filing.FilingMode;
    result.compared = compared;
    result.MasMeuchad = filing.MasMeuchad;
    result.MasNifrad = filing.MasNifrad;
    return result;
}

template <bool On>
int Calculation<On>::ageInYear(Date birth) const { return birth.isNull() ? -1 : c.YEARDOCH() - birth.year(); }

// The filing tests decide the mode; a couple that may choose is computed both
// ways and the cheaper way stands.
template <bool On>
void Calculation<On>::CalcDoch() {
    const auto& y = Yegia;
    const auto& r = Rechush;
    const auto& p = Pturot;
    t.who(0);
    const TA S = t(y.N059) + t(y.N159) + t(y.N367) + t(y.N167) + t(p.Reali);
    const TA J = t(r.N060) + t(r.N061) + t(r.N067) + t(r.N157) + t(r.N141) + t(r.N055) + t(r.N053) + t(r.N078) +
                 t(r.N126) + t(r.N142) + t(r.Acheret) + t(p.Infla) + t(p.Reali25) + t(p.N256Revach) +
                 t(p.N256Revach20) + t(p.N256Revach25);
    const Amount TTLM = y.TTLM, TTLF = y.TTLF;

    t.who('M');
    t.set(filing.RegilRechushTestM, "הכנסה מרכוש בשיעור רגיל", t(y.N201) + t(y.N202) + t(y.N204) + t(y.N205));
    if (TTLM >= TTLF) t.set(filing.RegilRechushTestM, "הכנסה מרכוש בשיעור רגיל", t(filing.RegilRechushTestM) + S);
    t.set(filing.RegilTestM, "הכנסה בשיעור רגיל", t(filing.RegilRechushTestM) + t(y.TTLM));
    t.set(filing.MeyuchadTestM, "הכנסה בשיעור מיוחד",
          t(r.N214) + t(r.N211) + t(r.N228) + t(r.N257) + t(r.N241) + t(r.N212) + t(r.N213) + t(r.N217) +
              t(r.N226) + t(r.N242) + t(r.N222) + t(r.N225) + t(r.N227) + t(r.AcheretM));
    if (TTLM >= TTLF) t.set(filing.MeyuchadTestM, "הכנסה בשיעור מיוחד", t(filing.MeyuchadTestM) + J);
    t.set(filing.HachnasaTestM, "סך ההכנסה", t(filing.MeyuchadTestM) + t(filing.RegilTestM));

    t.who('F');
    t.set(filing.RegilRechushTestF, "הכנסה מרכוש בשיעור רגיל", t(y.N301) + t(y.N302) + t(y.N304) + t(y.N305));
    if (TTLF > TTLM) t.set(filing.RegilRechushTestF, "הכנסה מרכוש בשיעור רגיל", t(filing.RegilRechushTestF) + S);
    t.set(filing.RegilTestF, "הכנסה בשיעור רגיל", t(filing.RegilRechushTestF) + t(y.TTLF));
    t.set(filing.MeyuchadTestF, "הכנסה בשיעור מיוחד",
          t(r.N314) + t(r.N311) + t(r.N328) + t(r.N357) + t(r.N341) + t(r.N312) + t(r.N313) + t(r.N317) +
              t(r.N326) + t(r.N342) + t(r.AcheretF));
    if (TTLF > TTLM) t.set(filing.MeyuchadTestF, "הכנסה בשיעור מיוחד", t(filing.MeyuchadTestF) + J);
    t.set(filing.HachnasaTestF, "סך ההכנסה", t(filing.MeyuchadTestF) + t(filing.RegilTestF));
    t.who(0);

    filing.isIshaNesua = (filing.HachnasaTestF > 0 || Pratim.isNasuy) && Pratim.isFemale;

    if (Pratim.isAlman || Pratim.isRavak || Pratim.isGarush || filing.HachnasaTestF == 0) {
        filing.FilingMode = ModeSingle;
        explainMode("אין בן זוג שהכנסתו נחשבת: חישוב יחיד", {idOf(t(filing.HachnasaTestF))});
        CalcOneMode();
        return;
    }
    const TA saf = Nekudot.N260 > 0 ? K(SAF_BEN_ZUG_YELADIM) : K(SAF_BEN_ZUG);
    t.set(filing.SafBenZug, "הכנסת בן הזוג שאינה מחייבת חישוב", saf);
    if (filing.HachnasaTestF <= filing.SafBenZug) {
        filing.FilingMode = ModeAlone;
        explainMode("הכנסת בן הזוג אינה עולה על הסף: נישום בלבד",
                    {idOf(t(filing.HachnasaTestF)), idOf(t(filing.SafBenZug))});
        CalcOneMode();
        return;
    }
    if (Klaliim.isTlutYes)
        CalcTlut();
    else
        CalcNoTlut();
}

// The filing-mode decision with the figures it compared.
template <bool On>
void Calculation<On>::explainMode(const char* rule, std::initializer_list<int> compared) {
    if constexpr (On) t.rec->decided(t.rec->decision(ModeTitle(filing.FilingMode), rule, filing.FilingMode, compared));
}

// Incomes without a dependence in their source: separate, or joint when cheaper.
template <bool On>
void Calculation<On>::CalcNoTlut() {
    if (filing.RegilTestF > c.TESTMEUCHAD() && filing.RegilTestM > c.TESTMEUCHAD()) {
        filing.FilingMode = ModeSeparate;
        explainMode("הכנסת כל אחד מבני הזוג עולה על הסף: חישוב נפרד",
                    {idOf(t(filing.RegilTestM)), idOf(t(filing.RegilTestF)), idOf(K(TESTMEUCHAD))});
        CalcOneMode();
        return;
    }
    compared = true;
    filing.FilingMode = ModeJoint;
    CalcOneMode();
    if constexpr (On) t.rec->finish();
    t.set(filing.MasMeuchad, "מס מגיע בחישוב מאוחד", taxDue());
    filing.FilingMode = ModeSeparate;
    CalcOneMode();
    t.set(filing.MasNifrad, "מס מגיע בחישוב נפרד", taxDue());
    if (filing.MasMeuchad < filing.MasNifrad) {  // a tie leaves the separate run
        filing.FilingMode = ModeJoint;
        explainMode("המס בחישוב מאוחד נמוך מהמס בחישוב נפרד", {idOf(t(filing.MasMeuchad)), idOf(t(filing.MasNifrad))});
        CalcJointAgain();
    } else {
        explainMode("המס בחישוב נפרד אינו עולה על המס בחישוב מאוחד", {idOf(t(filing.MasNifrad)), idOf(t(filing.MasMeuchad))});
    }
}

// Incomes with a dependence in their source: separate on property, or joint when cheaper.
template <bool On>
void Calculation<On>::CalcTlut() {
    t.set(filing.RegilPlusYegiaFTestM, "הכנסה בשיעור רגיל בצירוף יגיעת בן הזוג",
          t(filing.RegilTestM) + t(Yegia.TTLF));
    if (filing.RegilRechushTestF > c.TESTMEUCHAD() && filing.RegilPlusYegiaFTestM > c.TESTMEUCHAD()) {
        filing.FilingMode = ModeSeparateProperty;
        explainMode("הכנסות שני בני הזוג עולות על הסף: חישוב נפרד רכוש",
                    {idOf(t(filing.RegilRechushTestF)), idOf(t(filing.RegilPlusYegiaFTestM)), idOf(K(TESTMEUCHAD))});
        CalcOneMode();
        return;
    }
    filing.FilingMode = ModeJoint;
    CalcOneMode();
    if constexpr (On) t.rec->finish();
    t.set(filing.MasMeuchad, "מס מגיע בחישוב מאוחד", taxDue());
    if (filing.RegilRechushTestF <= 0) {
        explainMode("לבן הזוג אין הכנסה מרכוש בשיעור רגיל: חישוב מאוחד", {idOf(t(filing.RegilRechushTestF))});
        return;
    }
    compared = true;
    filing.FilingMode = ModeSeparateProperty;
    CalcOneMode();
    t.set(filing.MasNifrad, "מס מגיע בחישוב נפרד רכוש", taxDue());
    if (filing.MasMeuchad < filing.MasNifrad) {  // a tie leaves mode 3
        filing.FilingMode = ModeJoint;
        explainMode("המס בחישוב מאוחד נמוך מהמס בחישוב נפרד רכוש", {idOf(t(filing.MasMeuchad)), idOf(t(filing.MasNifrad))});
        CalcJointAgain();
    } else {
        explainMode("המס בחישוב נפרד רכוש אינו עולה על המס בחישוב מאוחד",
                    {idOf(t(filing.MasNifrad)), idOf(t(filing.MasMeuchad))});
    }
}

// The joint way stands after the comparison: its run is made again for its
// figures. It repeats the first run step for step, so the first run's
// explanation stands for it and nothing is recorded.
template <bool On>
void Calculation<On>::CalcJointAgain() {
    jointAgain = true;
    if constexpr (On) {
        Recorder* rec = std::exchange(t.rec, nullptr);
        tlRecorder = nullptr;
        CalcOneMode();
        tlRecorder = rec;
        t.rec = rec;
    } else {
        CalcOneMode();
    }
}

// Every figure of a run starts at 0; only the filing state outlives it.
template <bool On>
void Calculation<On>::ClearCalcState() { st = CalcState{}; }

template <bool On>
void Calculation<On>::CalcOneMode() {
    const int mode = filing.FilingMode;
    ClearCalcState();
    out.ClearCalc();
    if constexpr (On) {
        if (t.rec) t.rec->beginRun();
    }
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
        auto& h = out.Hachnasot;
        PersonState& f = st.F;
        t.who('F');
        for (Amount* a : {&h.N301, &h.N302, &h.N304, &h.N305, &h.RealiF, &f.LineN214, &f.LineN217, &f.LineN226,
                          &f.LineN242, &f.LineN211, &f.LineN228, &f.LineN257, &f.LineN241, &f.LineN212, &f.LineN213,
                          &f.LineAcheret, &f.LineInfla, &f.NikuyBL, &f.NikuyMechkar, &f.NikuyNeft, &f.NikuySratim})
            t.moved(*a, "עובר לחישוב המאוחד");
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
template <bool On>
void Calculation<On>::CalcPersonF() {
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

template class Calculation<false>;
template class Calculation<true>;

}  // namespace engine
}  // namespace zelmor
