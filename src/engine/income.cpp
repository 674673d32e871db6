// Income assembly: merging the spouses, gathering each person's lines, the
// shift of special-rate lines into regular income, and the offset of
// deductions and losses.

#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/calculation.h"
#include "report/entry_layout.h"

namespace zelmor::engine {
// Adds the second field into the first and empties the second.
template <bool On>
void Calculation<On>::moveInto(Amount& to, Amount& from) {
    t.set(to, "בצירוף בן הזוג", t(to) + t(from));
    t.moved(from, "הועבר לנישום");
}

// Modes 3 and 4: F's earned lines (and the insured salary) join M's.
template <bool On>
void Calculation<On>::MergeYegia() {
    auto& y = Yegia;
    t.who('M');
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
template <bool On>
void Calculation<On>::MergeRechush() {
    auto& y = Yegia;
    auto& r = Rechush;
    auto& n = Nikuim;
    auto& z = Zikuim;
    const std::pair<Amount*, const Amount*> pairs[] = {
        {&y.N201, &y.N301}, {&y.N202, &y.N302}, {&y.N204, &y.N304}, {&y.N205, &y.N305}, {&r.N217, &r.N317},
        {&r.N226, &r.N326}, {&r.N242, &r.N342}, {&r.N214, &r.N314}, {&r.N211, &r.N311}, {&r.N228, &r.N328},
        {&r.N257, &r.N357}, {&r.N241, &r.N341}, {&r.N212, &r.N312}, {&r.N213, &r.N313}, {&r.AcheretM, &r.AcheretF},
        {&n.N112, &n.N113}, {&n.N206, &n.N207}, {&n.N030, &n.N089}, {&n.N005, &n.N006}, {&n.N116, &n.N117},
        {&n.N118, &n.N119}, {&z.N036, &z.N081}, {&z.N045, &z.N086}, {&z.N268, &z.N269}, {&z.N132, &z.N232},
        {&z.N037, &z.N237}, {&z.N143, &z.N144}, {&z.AcherimM, &z.AcherimF}};
    t.who('M');
    for (const auto& [to, from] : pairs) t.set(*to, "בצירוף בן הזוג", t(*to) + t(*from));
}

// The merged fields get the user's figures back.
template <bool On>
void Calculation<On>::RestoreYegia() {
    Yegia = report.Yegia;
    Nikuim.N244 = report.Nikuim.N244;
    Nikuim.N245 = report.Nikuim.N245;
    if constexpr (On) {
        if (!t.rec) return;  // a run that records nothing
        t.rec->forget(&Yegia, &Yegia + 1);
        t.rec->forget(&Nikuim.N244, &Nikuim.N244 + 1);
        t.rec->forget(&Nikuim.N245, &Nikuim.N245 + 1);
    }
}

template <bool On>
void Calculation<On>::RestoreRechush() {
    Yegia = report.Yegia;
    Rechush = report.Rechush;
    Nikuim = report.Nikuim;
    Zikuim = report.Zikuim;
    if constexpr (On) {
        if (!t.rec) return;  // a run that records nothing
        t.rec->forget(&Yegia, &Yegia + 1);
        t.rec->forget(&Rechush, &Rechush + 1);
        t.rec->forget(&Nikuim, &Nikuim + 1);
        t.rec->forget(&Zikuim, &Zikuim + 1);
    }
}

// The sum of a derived total's parts in the run's copy of the earned lines.
template <bool On>
auto Calculation<On>::yegiaTotal(const char* total) const -> TA {
    // Where each total's parts lie within the earned lines, found once.
    static const auto parts = [] {
        std::vector<std::pair<std::string_view, std::vector<std::ptrdiff_t>>> found;
        sections::Yegia y;
        for (const DerivedTotal& d : derivedTotals()) {
            if (d.section != SectionId::Yegia) continue;
            auto& offsets = found.emplace_back(d.total, std::vector<std::ptrdiff_t>{}).second;
            for (const char* part : d.parts)
                offsets.push_back(static_cast<const char*>(findField("Yegia", part)->inSection(&y)) -
                                  reinterpret_cast<const char*>(&y));
        }
        return found;
    }();
    for (const auto& [name, offsets] : parts) {
        if (name != total) continue;
        TA sum = t.zero();
        for (const std::ptrdiff_t at : offsets)
            sum = sum + t(*reinterpret_cast<const Amount*>(reinterpret_cast<const char*>(&Yegia) + at));
        return sum;
    }
    throw std::logic_error("no total " + std::string(total));
}

// Earned income of both persons, and who carries the lines of both spouses:
// F only when F earned more.
template <bool On>
void Calculation<On>::EarnedIncome() {
    const char* name = "הכנסה מיגיעה אישית";
    if constexpr (On) {
        t.who('M');
        t.set(st.M.HachnasaYegia, name, yegiaTotal("TTLM"));
        t.who('F');
        t.set(st.F.HachnasaYegia, name, yegiaTotal("TTLF"));
    } else {
        st.M.HachnasaYegia = SumTTLM(Yegia);
        st.F.HachnasaYegia = SumTTLF(Yegia);
    }
    st.isYegiaFGreater = st.F.HachnasaYegia > st.M.HachnasaYegia;
}

// The person's own lines.
template <bool On>
void Calculation<On>::GatherLines(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    t.set(p.chN201, "", t(p.N201));
    t.set(p.chN202, "", t(p.N202));
    t.set(p.chN204, "", t(p.N204));
    t.set(p.chN205, "", t(p.N205));
    t.set(s.LineN214, "", t(p.N214));
    t.set(s.LineN211, "", t(p.N211));
    t.set(s.LineN228, "", t(p.N228));
    t.set(s.LineN257, "", t(p.N257));
    t.set(s.LineN241, "", t(p.N241));
    t.set(s.LineN212, "", t(p.N212));
    t.set(s.LineN213, "", t(p.N213));
    t.set(s.LineN217, "", t(p.N217));
    t.set(s.LineN226, "", t(p.N226));
    t.set(s.LineN242, "", t(p.N242));
    t.set(s.LineAcheret, "", t(p.Acheret));
    if (!p.isF) {
        t.set(st.LineN222, "", t(Rechush.N222));
        t.set(st.LineN225, "", t(Rechush.N225));
        t.set(st.LineN227, "", t(Rechush.N227));
    }
}

// The lines of both spouses, on top of the person's own.
template <bool On>
void Calculation<On>::GatherShared(Person& p) {
    PersonState& s = p.st;
    const auto& r = Rechush;
    const auto& pt = Pturot;
    const char* both = "בצירוף הכנסות משותפות";
    t.who(p.isF ? 'F' : 'M');
    t.set(p.chN201, "", t(p.chN201) + t(Yegia.N059));
    t.set(p.chN202, "", t(p.chN202) + t(Yegia.N159));
    t.set(p.chN204, "", t(p.chN204) + t(Yegia.N367));
    t.set(p.chN205, "", t(p.chN205) + t(Yegia.N167));
    t.set(s.LineN214, both, t(s.LineN214) + t(r.N061));
    t.set(s.LineN211, both, t(s.LineN211) + t(r.N060) + t(pt.N256Revach));
    t.set(s.LineN228, both, t(s.LineN228) + t(r.N067) + t(pt.N256Revach20));
    t.set(s.LineN257, both, t(s.LineN257) + t(r.N157) + t(pt.N256Revach25));
    t.set(s.LineN241, both, t(s.LineN241) + t(r.N141));
    t.set(s.LineN212, both, t(s.LineN212) + t(r.N055) + t(pt.Reali25));
    t.set(s.LineN213, both, t(s.LineN213) + t(r.N053));
    t.set(s.LineN217, both, t(s.LineN217) + t(r.N078));
    t.set(s.LineN226, both, t(s.LineN226) + t(r.N126));
    t.set(s.LineN242, both, t(s.LineN242) + t(r.N142));
    t.set(s.LineAcheret, both, t(s.LineAcheret) + t(r.Acheret));
    t.set(p.chReali, "", t(pt.Reali));
    t.set(s.LineInfla, "", t(pt.Infla));
}

// Total income of the person: regular-rate property, earned, and the
// special-rate lines that count in the total.
template <bool On>
void Calculation<On>::TotalIncome(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    t.set(s.RechushRagil, "הכנסה מרכוש בשיעור רגיל",
          t(p.chN201) + t(p.chN202) + t(p.chN204) + t(p.chN205) + t(p.chReali));
    if (Rechush.AcheretRate <= c.ACHERET_NAMUCH_MAX())
        t.set(s.AcheretNamuch, "הכנסה אחרת בשיעור נמוך", t(s.LineAcheret));
    else
        t.set(s.AcheretGavoha, "הכנסה אחרת בשיעור גבוה", t(s.LineAcheret));
    t.set(s.MeyuchadNamuch, "הכנסות בשיעורים נמוכים",
          t(s.LineN211) + t(s.LineN228) + t(s.LineN257) + t(s.LineN241) + t(s.LineN212) + t(s.AcheretNamuch) +
              t(s.LineInfla));
    t.set(s.MeyuchadGavoha, "הכנסות בשיעורים גבוהים", t(s.LineN214) + t(s.LineN213) + t(s.AcheretGavoha));
    t.set(s.HachnasaKolel, "סך כל ההכנסות",
          t(s.RechushRagil) + t(s.HachnasaYegia) + t(s.MeyuchadNamuch) + t(s.MeyuchadGavoha));
}

// Below 0 it is 0; above hi it is hi.
template <bool On>
auto Calculation<On>::clamp(TA v, TA hi) const -> TA { return MinLong(MaxLong(v, t.zero()), hi); }

// While regular income stays under the top of bracket 3, part of the 35%, the
// 40% and the high limited-rate lines is taxed on the regular scales; then the
// two scales, the age rule and the netting of losses.
template <bool On>
void Calculation<On>::ShiftToRegular(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    const TA B = t(s.RechushRagil) + t(s.HachnasaYegia);
    t.set(p.chN213A, "הכנסה בשיעור 35% שחויבה בשיעור רגיל", clamp(K(SUM3) - B, t(s.LineN213)));
    t.set(s.Yitra35, "יתרת הכנסה בשיעור 35%", t(s.LineN213) - t(p.chN213A));
    t.set(p.chN214A, "הכנסה בשיעור 40% שחויבה בשיעור רגיל", clamp(K(SUM3) - (B + t(p.chN213A)), t(s.LineN214)));
    t.set(s.Yitra40, "יתרת הכנסה בשיעור 40%", t(s.LineN214) - t(p.chN214A));
    t.set(st.SafAcheret, "תקרת ההכנסה האחרת בשיעור רגיל",
          Rechush.AcheretRate <= c.ACHERET_SUM3_MAX() ? K(SUM3) : K(SUM4));
    t.set(p.chAcheretB1, "הכנסה אחרת שחויבה בשיעור רגיל",
          clamp(t(st.SafAcheret) - (B + t(p.chN213A) + t(p.chN214A)), t(s.AcheretGavoha)));
    t.set(s.YitraAcheret, "יתרת הכנסה אחרת", t(s.AcheretGavoha) - t(p.chAcheretB1));
    t.set(s.BasisYegia, "הכנסה מיגיעה אישית בשיעור רגיל", t(s.HachnasaYegia) + t(p.chN214A));
    t.set(s.BasisLoYegia, "הכנסה שלא מיגיעה אישית בשיעור רגיל",
          t(s.RechushRagil) + t(p.chN213A) + t(p.chAcheretB1));

    // A person born in or before YEARYEGIA has only the earned scale.
    if (!p.BirthDate.isNull() && p.BirthDate.year() <= c.YEARYEGIA()) {
        t.set(s.BasisYegia, "הכנסה בשיעור רגיל (מבוגר: כולה כהכנסה מיגיעה)", t(s.BasisYegia) + t(s.BasisLoYegia));
        t.moved(s.BasisLoYegia, "הועברה להכנסה מיגיעה אישית");
    }
    // A loss of the earned scale eats the non-earned scale first; what is left
    // goes on down the special-rate lines.
    if (s.BasisYegia < 0) {
        t.set(s.BasisLoYegia, "לאחר קיזוז הפסד מיגיעה אישית", t(s.BasisLoYegia) + t(s.BasisYegia));
        t.moved(s.BasisYegia, "ההפסד קוזז");
    }
    if (s.BasisLoYegia < 0) {
        t.set(s.HefsedYitra, "הפסד שנותר לקיזוז", t.zero() - t(s.BasisLoYegia));
        t.moved(s.BasisLoYegia, "ההפסד עבר לקיזוז מהכנסות בשיעור מיוחד");
    }
}

// Deductions go against the non-earned scale, then the earned scale, then the
// special-rate lines from the highest rate down.
template <bool On>
void Calculation<On>::Offset(Person& p) {
    PersonState& s = p.st;
    t.who(p.isF ? 'F' : 'M');
    t.set(s.KizuzLoYegia, "ניכויים שקוזזו מהכנסה שלא מיגיעה אישית", MinLong(t(s.NikuimKolel), t(s.BasisLoYegia)));
    t.set(s.LoYegiaChayav, "הכנסה חייבת שלא מיגיעה אישית", t(s.BasisLoYegia) - t(s.KizuzLoYegia));
    t.set(s.KizuzYegia, "ניכויים שקוזזו מהכנסה מיגיעה אישית",
          MinLong(t(s.NikuimKolel) - t(s.KizuzLoYegia), t(s.BasisYegia)));
    t.set(s.YegiaChayav, "הכנסה חייבת מיגיעה אישית", t(s.BasisYegia) - t(s.KizuzYegia));
    t.set(st.ChainNikuim, "יתרת ניכויים", t(s.NikuimKolel) - t(s.KizuzLoYegia) - t(s.KizuzYegia));
    t.set(st.ChainHefsed, "יתרת הפסד", t(s.HefsedYitra));
    OffsetChain(p);
    t.set(s.NikuimYitra, "ניכויים שקוזזו מהכנסות בשיעור מיוחד ולא נוצלו", t(st.ChainNikuim));
    t.set(s.HefsedSof, "הפסד שלא קוזז", t(st.ChainHefsed));
}

// One line of the chain: offset first by deductions, then by the loss.
template <bool On>
void Calculation<On>::OffsetChainStep(Amount& net, const Amount& line) {
    TA x = t(line);
    const TA a = MinLong(t(st.ChainNikuim), x);
    t.set(st.ChainNikuim, "יתרת ניכויים", t(st.ChainNikuim) - a);
    x = x - a;
    const TA b = MinLong(t(st.ChainHefsed), x);
    x = x - b;
    t.set(st.ChainHefsed, "יתרת הפסד", t(st.ChainHefsed) - b);
    t.set(net, "הכנסה לאחר קיזוז ניכויים והפסדים", x);
}

template <bool On>
void Calculation<On>::OffsetChain(Person& p) {
    PersonState& s = p.st;
    const Amount rate = Rechush.AcheretRate;
    if (rate >= c.RATE_N214()) OffsetChainStep(s.NetAcheretGavoha, s.YitraAcheret);
    OffsetChainStep(s.NetN214, s.Yitra40);
    if (rate < c.RATE_N214()) OffsetChainStep(s.NetAcheretGavoha, s.YitraAcheret);
    OffsetChainStep(s.NetN213, s.Yitra35);
    OffsetChainStep(s.NetN212, s.LineN212);
    if (rate > c.RATE_N257() && rate <= c.RATE_N212()) OffsetChainStep(s.NetAcheretNamuch, s.AcheretNamuch);
    OffsetChainStep(s.NetN257, s.LineN257);
    OffsetChainStep(s.NetN241, s.LineN241);
    OffsetChainStep(s.NetN242, s.LineN242);
    if (rate > c.RATE_N228() && rate <= c.RATE_N242()) OffsetChainStep(s.NetAcheretNamuch, s.AcheretNamuch);
    OffsetChainStep(s.NetN228, s.LineN228);
    OffsetChainStep(s.NetN226, s.LineN226);
    if (rate > c.RATE_N211() && rate <= c.RATE_N226()) OffsetChainStep(s.NetAcheretNamuch, s.AcheretNamuch);
    OffsetChainStep(s.NetN211, s.LineN211);
    OffsetChainStep(s.NetN217, s.LineN217);
    if (rate > c.RATE_INFLA() && rate <= c.RATE_N217()) OffsetChainStep(s.NetAcheretNamuch, s.AcheretNamuch);
    OffsetChainStep(s.NetInfla, s.LineInfla);
    if (rate <= c.RATE_INFLA()) OffsetChainStep(s.NetAcheretNamuch, s.AcheretNamuch);
}

template class Calculation<false>;
template class Calculation<true>;

}  // namespace zelmor::engine
