// Properties that hold for every report, checked over many generated ones.

#include "engine/calc_test_util.h"
#include "support/report_generator.h"

namespace zelmor::testing {
namespace {

bool noLosses(const NishumInput& n) {
    for (const FieldDef& f : allFields())
        if (f.type == FieldType::Amount && f.ref<Amount>(n) < 0) return false;
    return true;
}

TEST(Properties, HoldOverGeneratedReports) {
    ReportGenerator gen(20151231);
    const FixedMadad flat;
    const ConstDoch c;
    int modes[5] = {};
    for (int i = 0; i < 4000; ++i) {
        const NishumInput n = gen.next();
        const NishumInput before = n;
        CalcResult r;
        try {
            r = CalcDoch(n, c, flat, ymd(2016, 6, 30));
        } catch (const OverflowError&) {
            continue;
        }
        ++modes[r.FilingMode];
        const auto& m = r.out.Main;
        const auto& h = r.out.Hishuv;
        SCOPED_TRACE("report " + n.Pratim.IDM + ", mode " + std::to_string(r.FilingMode));
        // Tax after credits is the tax before them less the credits that counted.
        ASSERT_EQ(m.MasBrutoM - m.ZikuimM, m.MasMagiaM);
        ASSERT_EQ(m.MasBrutoF - m.ZikuimF, m.MasMagiaF);
        ASSERT_GE(m.MasMagiaF, 0);
        // The bracket amounts add up to the taxable income of the scales.
        ASSERT_EQ(h.MSUM_1 + h.MSUM_2 + h.MSUM_3 + h.MSUM_4 + h.MSUM_5 + h.MSUM_6 + h.MSUM_7, h.MSUM_TTL);
        if (noLosses(n) && r.FilingMode != ModeJoint) {
            ASSERT_EQ(h.MSUM_TTL, m.HachnasaNetM);
            ASSERT_EQ(h.FSUM_TTL, m.HachnasaNetF);
        }
        ASSERT_EQ(m.MasLetashlumTTL, m.MasMagiaM + m.MasMagiaF - n.Tashlumim.TashTTL);
        // When two ways were compared, the one on the sheets is the cheaper.
        if (r.compared) {
            ASSERT_EQ(m.MasMagiaM + m.MasMagiaF, std::min(r.MasMeuchad, r.MasNifrad));
        }
        // The report is the same after the calculation.
        ASSERT_EQ(before.Yegia.N150, n.Yegia.N150);
        // A calculation depends on its report alone: the same report again gives the same sheets.
        const CalcResult again = CalcDoch(n, c, flat, ymd(2016, 6, 30));
        ASSERT_EQ(again.FilingMode, r.FilingMode);
        ASSERT_EQ(again.out.Main.Itra, r.out.Main.Itra);
        ASSERT_EQ(again.out.Zikuim.ZIKUY_TTL_M, r.out.Zikuim.ZIKUY_TTL_M);
    }
    // The generator reaches every filing mode.
    for (int mode = 0; mode < 5; ++mode) EXPECT_GT(modes[mode], 10) << "mode " << mode;
}

}  // namespace
}  // namespace zelmor::testing
