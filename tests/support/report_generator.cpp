#include "support/report_generator.h"

#include <string>

namespace zelmor::testing {

std::int32_t ReportGenerator::amount(double probability, std::int32_t max) {
    if (!chance(probability)) return 0;
    // Mostly round-ish figures, sometimes odd ones, rarely a loss.
    std::int32_t v = std::uniform_int_distribution<std::int32_t>(1, max)(rng_);
    if (chance(0.5)) v = v / 100 * 100;
    if (chance(0.03)) v = -v / 4;
    return v;
}

Date ReportGenerator::birth(int fromYear, int toYear) {
    if (chance(0.03)) return Date();
    return *Date::fromYmd(pick(fromYear, toYear), pick(1, 12), pick(1, 28));
}

NishumInput ReportGenerator::next() {
    NishumInput n;
    auto& p = n.Pratim;
    p.IDM = std::to_string(100000000 + ++counter_);
    p.LastNameM = "ישראלי";
    p.FirstNameM = "משה";
    p.isFemale = chance(0.3);
    p.isMale = !p.isFemale;
    const int status = pick(0, 9);
    p.isNasuy = status < 7;
    p.isRavak = status == 7;
    p.isGarush = status == 8;
    p.isAlman = status == 9;
    p.BirthDateM = birth(1935, 1999);
    const bool spouse = p.isNasuy && chance(0.9);
    if (spouse) p.BirthDateF = birth(1935, 1999);

    auto& y = n.Yegia;
    y.N150 = amount(0.5, 900000);
    y.N250 = amount(0.05, 30000);
    y.N158 = amount(0.6, 600000);
    y.N068 = amount(0.1, 150000);
    y.N258 = amount(0.1, 120000);
    y.N358 = amount(0.03, 50000);
    y.N120 = amount(0.03, 50000);
    y.YegiaM = amount(0.05, 60000);
    if (spouse) {
        // Spouses' incomes across the thresholds of the filing tests.
        const double scale = chance(0.3) ? 30000 : chance(0.5) ? 120000 : 500000;
        y.N170 = amount(0.4, static_cast<std::int32_t>(scale));
        y.N172 = amount(0.6, static_cast<std::int32_t>(scale));
        y.N069 = amount(0.05, 60000);
        y.N272 = amount(0.05, 60000);
        y.YegiaF = amount(0.05, 30000);
        y.N301 = amount(0.15, 200000);
        y.N302 = amount(0.03, 50000);
        y.N305 = amount(0.1, 80000);
    }
    y.N059 = amount(0.1, 100000);
    y.N167 = amount(0.1, 60000);
    y.N201 = amount(0.2, 200000);
    y.N204 = amount(0.05, 100000);
    y.N205 = amount(0.1, 80000);

    auto& r = n.Rechush;
    r.N061 = amount(0.03, 50000);
    r.N060 = amount(0.1, 40000);
    r.N055 = amount(0.05, 50000);
    r.N053 = amount(0.05, 80000);
    r.N214 = amount(0.04, 60000);
    r.N211 = amount(0.15, 60000);
    r.N212 = amount(0.1, 60000);
    r.N213 = amount(0.08, 120000);
    r.N217 = amount(0.1, 40000);
    r.N222 = amount(0.05, 60000);
    r.N225 = amount(0.02, 30000);
    r.N227 = amount(0.02, 20000);
    r.N228 = amount(0.05, 40000);
    r.N241 = amount(0.05, 40000);
    r.N226 = amount(0.05, 30000);
    r.N242 = amount(0.05, 30000);
    r.N257 = amount(0.05, 30000);
    if (chance(0.1)) {
        r.AcheretRate = pick(5, 60);
        r.AcheretM = amount(0.7, 80000);
        r.Acheret = amount(0.3, 40000);
    }
    if (spouse) {
        r.N311 = amount(0.1, 40000);
        r.N313 = amount(0.05, 80000);
        r.N314 = amount(0.03, 40000);
        r.N317 = amount(0.1, 40000);
        r.N312 = amount(0.05, 40000);
        r.N326 = amount(0.03, 20000);
        if (r.AcheretRate != 0) r.AcheretF = amount(0.5, 50000);
    }
    auto& t = n.Pturot;
    t.Reali = amount(0.03, 50000);
    t.Reali25 = amount(0.03, 50000);
    t.Infla = amount(0.03, 20000);
    t.N256Revach = amount(0.05, 40000);

    auto& k = n.Nikuim;
    k.N136 = amount(0.2, 20000);
    k.N218 = amount(0.1, 300000);
    k.N135 = amount(0.35, 40000);
    k.N030 = amount(0.35, 60000);
    k.N005 = amount(0.02, 60000);
    k.N116 = amount(0.02, 60000);
    k.N118 = amount(0.02, 60000);
    k.N112 = amount(0.15, 8000);
    k.N206 = amount(0.1, 4000);
    k.N244 = y.N158 > 0 && chance(0.4) ? Amount(y.N158.value() / 2) : Amount(0);
    k.N248 = amount(0.2, 30000);
    if (spouse) {
        k.N137 = amount(0.1, 15000);
        k.N180 = amount(0.25, 30000);
        k.N089 = amount(0.2, 30000);
        k.N113 = amount(0.05, 5000);
        k.N245 = y.N172 > 0 && chance(0.4) ? Amount(y.N172.value() / 2) : Amount(0);
        k.N249 = amount(0.2, 20000);
    }

    auto& e = n.Nekudot;
    e.N020 = chance(0.95);
    e.N021 = chance(0.1);
    e.N025 = chance(0.05);
    e.N026 = !p.isNasuy && chance(0.4);
    e.N028 = chance(0.03);
    if (chance(0.6)) {
        e.N260_1 = static_cast<std::int16_t>(pick(0, 1));
        e.N260_2 = static_cast<std::int16_t>(pick(0, 2));
        e.N260_3 = static_cast<std::int16_t>(pick(0, 1));
        e.N260_4 = static_cast<std::int16_t>(pick(0, 2));
        e.N260_5 = static_cast<std::int16_t>(pick(0, 3));
        e.N260_6 = static_cast<std::int16_t>(pick(0, 1));
    }
    e.N029 = chance(0.05);
    e.N129 = spouse && chance(0.05);
    e.N023 = static_cast<std::int16_t>(chance(0.05) ? pick(1, 2) : 0);
    e.N131 = static_cast<std::int16_t>(spouse && chance(0.03) ? 1 : 0);
    if (chance(0.05)) e.OleDateM = *Date::fromYmd(pick(2011, 2015), pick(1, 12), pick(1, 28));
    if (spouse && chance(0.05)) e.OleDateF = *Date::fromYmd(pick(2011, 2015), pick(1, 12), pick(1, 28));
    if (chance(0.05)) {
        e.N224 = *Date::fromYmd(pick(2011, 2015), pick(1, 12), pick(1, 28));
        e.N024 = static_cast<std::int16_t>(pick(0, 36));
    }
    e.N181 = static_cast<std::int16_t>(chance(0.1) ? pick(1, 5) : 0);
    e.N182 = static_cast<std::int16_t>(spouse && chance(0.1) ? pick(1, 5) : 0);

    auto& z = n.Zikuim;
    z.N036 = amount(0.3, 12000);
    z.N045 = amount(0.3, 15000);
    z.N268 = amount(0.05, 10000);
    z.N140 = amount(0.1, 5000);
    z.N132 = amount(0.02, 60000);
    z.N037 = amount(0.15, 20000);
    z.N143 = amount(0.01, 5000);
    z.AcherimM = amount(0.02, 3000);
    if (chance(0.05)) {
        z.N093 = pick(1, 2);
        z.N093Rate = z.N093 == 1 ? 13 : 20;
        z.N093Month = pick(1, 12);
    }
    if (spouse) {
        z.N081 = amount(0.2, 8000);
        z.N086 = amount(0.3, 12000);
        z.N237 = amount(0.1, 10000);
        z.AcherimF = amount(0.02, 3000);
    }

    auto& s = n.Tashlumim;
    s.N042M = amount(0.5, 150000);
    s.N042F = spouse ? amount(0.5, 60000) : 0;
    s.N043M = amount(0.1, 10000);
    s.MikdamotM = amount(0.3, 80000);
    s.TashlumimM = amount(0.05, 20000);

    n.Klaliim.isTlutYes = spouse && chance(0.3);
    n.Klaliim.isTlutNo = !n.Klaliim.isTlutYes;
    n.Klaliim.isFamily = chance(0.03);
    n.Klaliim.isBZOzer = spouse && chance(0.05);
    WorkOutDerived(n);
    return n;
}

}  // namespace zelmor::testing
