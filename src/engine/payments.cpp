// Interest and linkage of the balance: simple interest of 4% a year from the
// end of the tax year, and linkage to the consumer price index of the tax and
// of the interest.

#include "engine/calculation.h"

namespace zelmor {

namespace engine {

// The index in force on a date looks back: two months up to the 14th of the
// month, one month from the 15th.
Date MadadMonth(Date date) { return date.addMonths(date.day() <= 14 ? -2 : -1); }

double MadadOfDate(const MadadLookup& madad, Date date) { return madad.GetMadad(MadadMonth(date)); }

// The interest and linkage of the balance to a date (no date: today).
template <bool On>
void Ribit(const Tracer<On>& t, sheets::CMain& m, Date date, const ConstDoch& c, const MadadLookup& madad, Date today) {
    const bool chosen = !date.isNull();
    if (!chosen) date = today;
    const Date start = c.RIBITBASICDATE();
    t.who(0);
    const auto day = chosen ? t.chosenDate(date) : t.today(date);
    t.set(m.RibitDate, "", day);
    t.set(m.ItraDate, "", day);
    const auto D = t.name("ימים מתחילת הריבית", day - t.kDate("RIBITBASICDATE", start));
    const auto B = t(m.MasLetashlumTTL);
    const auto I = t.name("ריבית", R(D / t.k("RIBIT_DAYS", static_cast<double>(c.RIBIT_DAYS())) * (B * K(RIBIT_RATE))));
    const Date now = MadadMonth(date), then = MadadMonth(start);
    const auto Y = t.name("שיעור השינוי במדד", t.madad(now, madad.GetMadad(now)) / t.madad(then, madad.GetMadad(then)));
    const auto one = t.k("1", 1.0);
    const auto L = t.name("הפרשי הצמדה", R((Y - one) * B));
    const auto L2 = t.name("הפרשי הצמדה על הריבית", R((Y - one) * I));
    t.set(m.Ribit, "ריבית והפרשי הצמדה", I + L + L2);
    // Interest on a debt of the registered spouse is exempt early in the next
    // year: whole in January, half in February, a quarter in March.
    const char* exempt = "פטור מריבית";
    t.set(m.PtorRibit, exempt, t.zero());
    if (m.MasLetashlumM >= 1 && date.year() == c.YEARDOCH() + 1) {
        switch (date.month()) {
            case 1: t.set(m.PtorRibit, exempt, t(m.Ribit)); break;
            case 2: t.set(m.PtorRibit, exempt, R(t(m.Ribit) * K(PTOR_RIBIT_FEB))); break;
            case 3: t.set(m.PtorRibit, exempt, R(t(m.Ribit) * K(PTOR_RIBIT_MAR))); break;
            default: break;
        }
    }
    t.set(m.Ribit, "ריבית בניכוי הפטור", t(m.Ribit) - t(m.PtorRibit));
    if (date <= start) {
        t.set(m.Ribit, "אין ריבית לפני תחילתה", t.zero());
        t.set(m.PtorRibit, exempt, t.zero());
    }
    t.set(m.Itra, "יתרה לתשלום בצירוף ריבית", t(m.Ribit) + t(m.MasLetashlumTTL));
}

template void Ribit(const Tracer<false>&, sheets::CMain&, Date, const ConstDoch&, const MadadLookup&, Date);
template void Ribit(const Tracer<true>&, sheets::CMain&, Date, const ConstDoch&, const MadadLookup&, Date);

}  // namespace engine

void CalcRibit(sheets::CMain& m, Date date, const ConstDoch& c, const MadadLookup& madad, Date today) {
    engine::Ribit(engine::Tracer<false>{}, m, date, c, madad, today);
}

}  // namespace zelmor
