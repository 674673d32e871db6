#include "support/report_generator.h"

#include <string>

namespace zelmor::testing {
namespace {

// How often a line carries an amount, and up to how much.
struct Line {
    const char* section;
    const char* name;
    double probability;
    std::int32_t max;
    bool spouseOnly = false;
};

const Line kLines[] = {
    {"Yegia", "N150", 0.5, 900000}, {"Yegia", "N250", 0.05, 30000}, {"Yegia", "N158", 0.6, 600000},
    {"Yegia", "N068", 0.1, 150000}, {"Yegia", "N258", 0.1, 120000}, {"Yegia", "N358", 0.03, 50000},
    {"Yegia", "N120", 0.03, 50000}, {"Yegia", "YegiaM", 0.05, 60000}, {"Yegia", "N069", 0.05, 60000, true},
    {"Yegia", "N272", 0.05, 60000, true}, {"Yegia", "YegiaF", 0.05, 30000, true}, {"Yegia", "N301", 0.15, 200000, true},
    {"Yegia", "N302", 0.03, 50000, true}, {"Yegia", "N305", 0.1, 80000, true}, {"Yegia", "N059", 0.1, 100000},
    {"Yegia", "N167", 0.1, 60000}, {"Yegia", "N201", 0.2, 200000}, {"Yegia", "N204", 0.05, 100000},
    {"Yegia", "N205", 0.1, 80000}, {"Rechush", "N061", 0.03, 50000}, {"Rechush", "N060", 0.1, 40000},
    {"Rechush", "N055", 0.05, 50000}, {"Rechush", "N053", 0.05, 80000}, {"Rechush", "N214", 0.04, 60000},
    {"Rechush", "N211", 0.15, 60000}, {"Rechush", "N212", 0.1, 60000}, {"Rechush", "N213", 0.08, 120000},
    {"Rechush", "N217", 0.1, 40000}, {"Rechush", "N222", 0.05, 60000}, {"Rechush", "N225", 0.02, 30000},
    {"Rechush", "N227", 0.02, 20000}, {"Rechush", "N228", 0.05, 40000}, {"Rechush", "N241", 0.05, 40000},
    {"Rechush", "N226", 0.05, 30000}, {"Rechush", "N242", 0.05, 30000}, {"Rechush", "N257", 0.05, 30000},
    {"Rechush", "N311", 0.1, 40000, true}, {"Rechush", "N313", 0.05, 80000, true},
    {"Rechush", "N314", 0.03, 40000, true}, {"Rechush", "N317", 0.1, 40000, true},
    {"Rechush", "N312", 0.05, 40000, true}, {"Rechush", "N326", 0.03, 20000, true},
    {"Pturot", "Reali", 0.03, 50000}, {"Pturot", "Reali25", 0.03, 50000}, {"Pturot", "Infla", 0.03, 20000},
    {"Pturot", "N256Revach", 0.05, 40000}, {"Nikuim", "N136", 0.2, 20000}, {"Nikuim", "N218", 0.1, 300000},
    {"Nikuim", "N135", 0.35, 40000}, {"Nikuim", "N030", 0.35, 60000}, {"Nikuim", "N005", 0.02, 60000},
    {"Nikuim", "N116", 0.02, 60000}, {"Nikuim", "N118", 0.02, 60000}, {"Nikuim", "N112", 0.15, 8000},
    {"Nikuim", "N206", 0.1, 4000}, {"Nikuim", "N248", 0.2, 30000}, {"Nikuim", "N137", 0.1, 15000, true},
    {"Nikuim", "N180", 0.25, 30000, true}, {"Nikuim", "N089", 0.2, 30000, true}, {"Nikuim", "N113", 0.05, 5000, true},
    {"Nikuim", "N249", 0.2, 20000, true}, {"Zikuim", "N036", 0.3, 12000}, {"Zikuim", "N045", 0.3, 15000},
    {"Zikuim", "N268", 0.05, 10000}, {"Zikuim", "N140", 0.1, 5000}, {"Zikuim", "N132", 0.02, 60000},
    {"Zikuim", "N037", 0.15, 20000}, {"Zikuim", "N143", 0.01, 5000}, {"Zikuim", "AcherimM", 0.02, 3000},
    {"Zikuim", "N081", 0.2, 8000, true}, {"Zikuim", "N086", 0.3, 12000, true}, {"Zikuim", "N237", 0.1, 10000, true},
    {"Zikuim", "AcherimF", 0.02, 3000, true}, {"Tashlumim", "N042M", 0.5, 150000},
    {"Tashlumim", "N042F", 0.5, 60000, true}, {"Tashlumim", "N043M", 0.1, 10000},
    {"Tashlumim", "MikdamotM", 0.3, 80000}, {"Tashlumim", "TashlumimM", 0.05, 20000},
};

}  // namespace

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

    for (const Line& line : kLines)
        if (spouse || !line.spouseOnly) findField(line.section, line.name)->ref<Amount>(n) = amount(line.probability, line.max);
    if (spouse) {
        // The spouse's income across the thresholds of the filing tests.
        const std::int32_t scale = chance(0.3) ? 30000 : chance(0.5) ? 120000 : 500000;
        n.Yegia.N170 = amount(0.4, scale);
        n.Yegia.N172 = amount(0.6, scale);
        n.Nikuim.N245 = n.Yegia.N172 > 0 && chance(0.4) ? Amount(n.Yegia.N172.value() / 2) : Amount(0);
    }
    n.Nikuim.N244 = n.Yegia.N158 > 0 && chance(0.4) ? Amount(n.Yegia.N158.value() / 2) : Amount(0);
    if (chance(0.1)) {
        n.Rechush.AcheretRate = pick(5, 60);
        n.Rechush.AcheretM = amount(0.7, 80000);
        n.Rechush.Acheret = amount(0.3, 40000);
        if (spouse) n.Rechush.AcheretF = amount(0.5, 50000);
    }

    auto& e = n.Nekudot;
    e.N020 = chance(0.95);
    e.N021 = chance(0.1);
    e.N025 = chance(0.05);
    e.N026 = !p.isNasuy && chance(0.4);
    e.N028 = chance(0.03);
    if (chance(0.6)) {
        std::int16_t* bands[] = {&e.N260_1, &e.N260_2, &e.N260_3, &e.N260_4, &e.N260_5, &e.N260_6};
        for (std::int16_t* b : bands) *b = static_cast<std::int16_t>(pick(0, 2));
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
    if (chance(0.05)) {
        n.Zikuim.N093 = pick(1, 2);
        n.Zikuim.N093Rate = n.Zikuim.N093 == 1 ? 13 : 20;
        n.Zikuim.N093Month = pick(1, 12);
    }

    n.Klaliim.isTlutYes = spouse && chance(0.3);
    n.Klaliim.isTlutNo = !n.Klaliim.isTlutYes;
    n.Klaliim.isFamily = chance(0.03);
    n.Klaliim.isBZOzer = spouse && chance(0.05);
    WorkOutDerived(n);
    return n;
}

}  // namespace zelmor::testing
