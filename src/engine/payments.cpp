// Interest and linkage of the balance: simple interest of 4% a year from the
// end of the tax year, and linkage to the consumer price index of the tax and
// of the interest.

#include "engine/calculation.h"

namespace zelmor {

namespace engine {

// The index in force on a date looks back: two months up to the 14th of the
// month, one month from the 15th.
double MadadOfDate(const MadadLookup& madad, Date date) {
    return madad.GetMadad(date.addMonths(date.day() <= 14 ? -2 : -1));
}

}  // namespace engine

void CalcRibit(sheets::CMain& m, Date date, const ConstDoch& c, const MadadLookup& madad, Date today) {
    if (date.isNull()) date = today;
    const Date start = c.RIBITBASICDATE();
    const std::int32_t D = daysBetween(start, date);
    const Amount B = m.MasLetashlumTTL;
    const Amount I = R(D / static_cast<double>(c.RIBIT_DAYS()) * (B * c.RIBIT_RATE()));
    const double Y = engine::MadadOfDate(madad, date) / engine::MadadOfDate(madad, start);
    const Amount L = R((Y - 1) * B.value());
    const Amount K = R((Y - 1) * I.value());
    m.RibitDate = date;
    m.ItraDate = date;
    m.Ribit = I + L + K;
    // Interest on a debt of the registered spouse is exempt early in the next
    // year: whole in January, half in February, a quarter in March.
    m.PtorRibit = 0;
    if (m.MasLetashlumM >= 1 && date.year() == c.YEARDOCH() + 1) {
        switch (date.month()) {
            case 1: m.PtorRibit = m.Ribit; break;
            case 2: m.PtorRibit = R(m.Ribit * c.PTOR_RIBIT_FEB()); break;
            case 3: m.PtorRibit = R(m.Ribit * c.PTOR_RIBIT_MAR()); break;
            default: break;
        }
    }
    m.Ribit -= m.PtorRibit;
    if (date <= start) {
        m.Ribit = 0;
        m.PtorRibit = 0;
    }
    m.Itra = m.Ribit + m.MasLetashlumTTL;
}

}  // namespace zelmor
