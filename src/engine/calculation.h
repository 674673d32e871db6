#pragma once
// The working record of one calculation and the routines that fill it. Each
// routine is one rule of the calculation and carries the rule's name; the two
// persons are computed by the same routines through a Person view: M is the
// registered spouse, F the other spouse.

#include <array>

#include "engine/calc.h"
#include "engine/tracer.h"

namespace zelmor::engine {

// The figures of the calculation that come in pairs, one for each person. The
// members carry the registered spouse's names without the letter M: for F,
// `LineN214` is the 40% line of F (form line 314), `NetN211` is F's net 15%
// line (311), and so on.
struct PersonState {
    Amount HachnasaYegia, RechushRagil;
    Amount LineN214, LineN211, LineN228, LineN257, LineN241, LineN212, LineN213, LineN217, LineN226, LineN242,
        LineAcheret, LineInfla;
    Amount AcheretNamuch, AcheretGavoha, MeyuchadNamuch, MeyuchadGavoha, HachnasaKolel;
    Amount NikuyHishtalmut, NikuyNeft, NikuyHishtalmutNeft, HachnasaMechkar, NikuyMechkar, NikuySratim, NikuimRishon,
        HachnasaAcharei, HachnasaKizva, ChelekSachir, ChelekAtzmai, NikuyKizva;
    Amount NikuimBeforeBL, HachnasaBeforeBL, NikuyBL, NikuimKolel, HachnasaChayevet;
    Amount Yitra35, Yitra40, YitraAcheret, BasisYegia, BasisLoYegia, HefsedYitra;
    Amount KizuzLoYegia, KizuzYegia, NikuimYitra, HefsedSof, YegiaChayav, LoYegiaChayav;
    Amount NetN211, NetN228, NetN257, NetN241, NetN212, NetN217, NetN226, NetN242, NetN213, NetN214,
        NetAcheretNamuch, NetAcheretGavoha, NetInfla;
    Amount ZikuimSum;
    Amount TikraKizva, TikraBituach, OdefMishmarot;
};

// What decides the filing mode and compares two runs: set before the runs and
// kept through all of them.
struct FilingState {
    int FilingMode = 0;
    int JointStage = 0;
    Amount RegilRechushTestM, RegilRechushTestF, RegilTestM, RegilTestF, MeyuchadTestM, MeyuchadTestF,
        HachnasaTestM, HachnasaTestF, RegilPlusYegiaFTestM, SafBenZug;
    Amount MasMeuchad, MasNifrad;
    bool isIshaNesua = false;
};

// The working figures of one run: every run starts from a new one.
struct CalcState {
    bool isYegiaFGreater = false;
    Amount SavedKizvaM;
    PersonState M, F;
    Amount LineN222, LineN225, LineN227;  // rent, foreign rent, gambling: always the registered spouse's
    Amount SafAcheret;
    Amount ChainNikuim, ChainHefsed;
    Amount BracketYegia, BracketLoYegia;
    Amount BracketSum[8];   // [1..7]
    Amount BracketSumA[5];  // [1..4]
    Amount PtorRibitYitra, MeyuchadMasSum, MeyuchadNetSum;
    // National insurance estimate, for the person in hand.
    double BLAzmai = 0, BLSachir = 0, BLHeino = 0, BLNikuy = 0;
    double BLAzmaiRagil = 0, BLAzmaiMufhat = 0, BLAzmaiTTL = 0, BLHeinoRagil = 0, BLHeinoMufhat = 0, BLHeinoTTL = 0;
    char BLSex = 'M';
};

// A person's report fields and sheet cells, by role. The names are the
// registered spouse's; for F each reference points at F's own field
// (N150 -> N170, N136 -> N137, N135 -> N180, ...).
struct Person {
    bool isF;
    PersonState& st;
    // Earned lines (Yegia).
    Amount &N150, &N250, &N158, &N068, &N258, &N358, &N120, &YegiaOther;
    // Regular-rate property lines of the person (Yegia) and their sheet cells.
    Amount &N201, &N202, &N204, &N205;
    Amount &chN201, &chN202, &chN204, &chN205, &chReali, &chN213A, &chN214A, &chAcheretB1;
    // Special-rate lines of the person (Rechush).
    Amount &N214, &N211, &N228, &N257, &N241, &N212, &N213, &N217, &N226, &N242, &Acheret;
    // Deductions (Nikuim).
    Amount &N136, &N218, &N116, &N005, &N118, &N112, &N206, &N135, &N244, &N248, &N030;
    Amount &cnN112S, &cnN112H;
    // Credits (Zikuim).
    Amount &N036, &N140, &N045, &N268, &N132, &N037, &N143, &Acherim;
    std::int32_t &N093, &N093Rate, &N093Month;
    const Date& BirthDate;
};

// On: the calculation records its explanation (a sink was given). Without it
// the figures are plain amounts and the arithmetic is the bare arithmetic.
template <bool On>
class Calculation {
    using TA = typename Tracer<On>::A;  // an amount, traced when On
    using TD = typename Tracer<On>::D;  // a double, traced when On

public:
    Calculation(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today);
    CalcResult run(trace::Trace* sink = nullptr);  // CalcDoch
    Date interestDate;  // the date the balance is carried to; none: today

private:
    // Driver and filing modes.
    void CalcDoch();
    void CalcTlut();
    void CalcNoTlut();
    void CalcOneMode();
    void CalcJointAgain();
    void CalcPersonF();
    void ClearCalcState();
    TA taxDue() const { return t(out.Main.MasMagiaF) + t(out.Main.MasMagiaM); }
    void explainMode(const char* rule, std::initializer_list<int> compared);

    // Income assembly and loss relief.
    void MergeYegia();
    void MergeRechush();
    void RestoreYegia();
    void RestoreRechush();
    void EarnedIncome();
    void GatherLines(Person& p);
    void GatherShared(Person& p);
    void TotalIncome(Person& p);
    void ShiftToRegular(Person& p);
    void Offset(Person& p);
    void OffsetChainStep(Amount& net, const Amount& line);
    void moveInto(Amount& to, Amount& from);
    TA yegiaTotal(const char* total) const;
    TA clamp(TA v, TA hi) const;
    void OffsetChain(Person& p);

    // Deductions.
    void FirstDeductions(Person& p);
    void WorkDisability(Person& p);
    void Pension(Person& p);
    bool isOlderForPension(const Person& p) const;
    void KizvaLimitNikuy(Person& p);
    void JoinPersons();
    void TotalDeductions(Person& p);

    // Bracket tax.
    void BracketStep(Person& p);
    void BracketYegiaScale();
    void BracketLoYegiaScale();

    // Credit points and credits.
    void CalcCreditsM();
    void CalcCreditsF();
    TD OlePoints(Date date) const;
    TD ChayalPoints(const Date& date, const std::int16_t& months) const;
    TD MothersWeights() const;
    TD FathersWeights() const;
    TD countTimes(const std::int16_t& count, TA points) const;
    void PointsCredit(double& zikuy, const double& points);
    struct PointCells {
        double &ole, &oleCredit, &soldier, &soldierCredit, &degree, &degreeCredit;
    };
    void PersonalPoints(const PointCells& cells, Date ole, const Date& discharge, const std::int16_t& months,
                        std::int32_t degree);
    void CreditsForPayments(Person& p);
    void KizvaLimitZikuy(Person& p);
    void Settlement(Person& p);

    // Publication.
    void PublishResults();
    void PublishHachnasot();
    void PublishNikuim();
    void PublishHishuv();
    void PublishMeyuchad();
    void ExemptInterestPool();
    void PublishZikuim();
    void PublishTashlumim();
    void PublishMain();

    // National insurance estimate.
    void CalcBLM();
    void CalcBLF();
    void CalcBL(bool forF);
    void SplitBL();
    void BandAzmai();
    void BandHeino();
    struct BLBands {  // one class of income and its bands, with the constants of the class
        double &income, &total, &reduced, &ordinary;
        const char *totalName, *reducedName, *ordinaryName;
        struct Constant {
            const char* name;
            double value;
        } threshold, add, divide, divideReduced, minimum;
    };
    void Bands(TD U, const BLBands& b);

    int ageInYear(Date birth) const;  // YEARDOCH less the year of birth; -1 for no date

    const NishumInput& report;
    const ConstDoch& c;
    const MadadLookup& madad;
    const Date today;

    // The report as the run sees it: the sections that modes 3 and 4 merge
    // are working copies, put back from the report after each merged run.
    sections::Yegia Yegia;
    sections::Rechush Rechush;
    sections::Nikuim Nikuim;
    sections::Zikuim Zikuim;
    const sections::Pratim& Pratim;
    const sections::Pturot& Pturot;
    const sections::Nekudot& Nekudot;
    const sections::Tashlumim& Tashlumim;
    const sections::Klaliim& Klaliim;

    FilingState filing;
    CalcState st;
    NishumOutput out;
    Person pM, pF;
    bool compared = false;
    bool jointAgain = false;  // the joint run was made again after the comparison
    Tracer<On> t;  // records the explanation when the run has a sink
};

// Interest and linkage of a balance to a date.
Date MadadMonth(Date date);  // the month whose index is in force on a date
double MadadOfDate(const MadadLookup& madad, Date date);
template <bool On>
void Ribit(const Tracer<On>& t, sheets::CMain& m, Date date, const ConstDoch& c, const MadadLookup& madad, Date today);

// The seven bracket amounts of a person on the regular-tax sheet.
std::array<Amount*, 7> BracketSums(sheets::CHishuv& h, bool isF);

}  // namespace zelmor::engine
