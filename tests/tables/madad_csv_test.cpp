#include <gtest/gtest.h>

#include "tables/madad_csv.h"

namespace zelmor {
namespace {

TEST(MadadCsv, ShippedTableIsWholeAndInOrder) {
    std::vector<MadadRow> rows;
    QString last, error;
    ASSERT_TRUE(readShippedMadad(&rows, &last, &error)) << error.toStdString();
    ASSERT_EQ(rows.size(), 176u);
    EXPECT_EQ(rows.front().month, "201201");
    EXPECT_EQ(last, "202608");
    EXPECT_EQ(rows.front().basis, "ממוצע 2010 = 100");
    EXPECT_EQ(rows.front().showMonth, "01/2012");
    for (const MadadRow& r : rows) {
        EXPECT_GT(r.basis51, 0) << r.month.toStdString();
        EXPECT_NEAR(r.basis51, r.madad * r.mekadem, 1e-6 * r.basis51) << r.month.toStdString();
    }
}

TEST(MadadCsv, ColumnsByHeaderAndQuotedFields) {
    std::vector<MadadRow> rows;
    QString last, error;
    const QByteArray text =
        "\xEF\xBB\xBFShow_month,Basis51,Month,Note,MEKADEM,Madad,Basis\r\n"
        "02/2015,20,201502,\"a, \"\"quoted\"\" note\",2,10,b\r\n"
        "\n"
        "01/2015,18,201501,,2,9,b\r\n";
    ASSERT_TRUE(parseMadadCsv(text, &rows, &last, &error)) << error.toStdString();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].month, "201501");
    EXPECT_EQ(rows[1].basis51, 20);
    EXPECT_EQ(last, "201502");
}

TEST(MadadCsv, BadInputNamesLineAndField) {
    const char* header = "Month,Basis,Madad,MEKADEM,Basis51,Show_month\n";
    struct Case {
        QByteArray text;
        const char* mentions;
    } cases[] = {
        {"Month,Basis,Madad\n201501,b,1\n", "MEKADEM"},
        {QByteArray(header) + "201501,b,1,2,2,01/2015\n2015-2,b,1,2,2,02/2015\n", "שורה 3"},
        {QByteArray(header) + "201501,b,x,2,2,01/2015\n", "Madad"},
        {QByteArray(header) + "201501,b,1,2,-2,01/2015\n", "Basis51"},
        {QByteArray(header) + "201501,b,1,2\n", "שורה 2"},
        {QByteArray(header) + "201501,\"b,1,2,2,01/2015\n", "מירכאות"},
        {QByteArray(header) + "201501,b,1,2,2,01/2015\n201501,b,1,2,2,01/2015\n", "201501"},
        {"", "ריקה"},
    };
    for (const Case& c : cases) {
        std::vector<MadadRow> rows;
        QString last, error;
        EXPECT_FALSE(parseMadadCsv(c.text, &rows, &last, &error)) << c.text.toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.mentions)))
            << error.toStdString() << " / " << c.mentions;
    }
}

}  // namespace
}  // namespace zelmor
