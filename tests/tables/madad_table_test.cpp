#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "tables/madad_table.h"
#include "tables/madad_test_util.h"

namespace zelmor {
namespace {

using test::ymd;

class MadadTableTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
    QString path() const { return dir_.filePath("Madad.BRK"); }
    // 190101 = 100; 201501 = 200; 201502 no value; 201503 = 300; 201504 no value; locked to 201503.
    void writeSmall(const QString& lock = "201503") {
        test::writeTable(path(),
                         {{"201501", 200, 100, 2}, {"201502", 0, 0, 2}, {"201503", 300, 150, 2},
                          {"201504", 0, 0, 2.5}},
                         lock);
    }
    QTemporaryDir dir_;
};

TEST_F(MadadTableTest, LookupTakesLatestMonthWithValue) {
    writeSmall();
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok()) << t.errorString().toStdString();
    // The key is the month of the date, whatever the day.
    EXPECT_EQ(t.GetMadad(ymd(2015, 1, 1)), 200);
    EXPECT_EQ(t.GetMadad(ymd(2015, 1, 31)), 200);
    EXPECT_EQ(t.GetMadad(ymd(2015, 3, 1)), 300);
    EXPECT_EQ(t.GetMadad(ymd(2015, 3, 31)), 300);
    // A month without a value takes the previous month's.
    EXPECT_EQ(t.GetMadad(ymd(2015, 2, 14)), 200);
    // After the table's end: the last value greater than 0.
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);
    EXPECT_EQ(t.GetMadad(ymd(2030, 12, 31)), 300);
    // Before the first month with a value: the row of last resort.
    EXPECT_EQ(t.GetMadad(ymd(2014, 12, 31)), 100);
    EXPECT_EQ(t.GetMadad(ymd(1900, 6, 1)), 100);
    EXPECT_EQ(t.GetMadad(Date()), 100);
}

TEST_F(MadadTableTest, FallbackRowUsedEvenWhenItHasNoValue) {
    test::writeTable(path(), {{"190101", 0, 0, 1}, {"201001", 50, 50, 1}}, "201001", false);
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    EXPECT_EQ(t.GetMadad(ymd(2009, 12, 1)), 0);
    EXPECT_EQ(t.GetMadad(ymd(2010, 1, 1)), 50);
}

TEST_F(MadadTableTest, LastUpdateMonthFormat) {
    writeSmall("201506");
    MadadTable t(dir_.path());
    EXPECT_EQ(t.LastUpdateMonth(), "2015/06");
    EXPECT_EQ(t.updatedToMessage(), "טבלאות מדדים וסכומים מעודכנות לחודש 2015/06");
}

TEST_F(MadadTableTest, BrokenFileIsReportedNotCrashed) {
    test::writeAll(path(), "this is not a database, just some text that is long enough.....");
    const QByteArray before = test::readAll(path());
    MadadTable t(dir_.path());
    EXPECT_FALSE(t.ok());
    EXPECT_TRUE(t.errorString().contains(path())) << t.errorString().toStdString();
    EXPECT_EQ(t.GetMadad(ymd(2015, 1, 1)), 0);
    QString error;
    EXPECT_FALSE(t.setMadad("201505", 1.0, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(test::readAll(path()), before);

    // A table without the row of last resort is not a table either.
    test::writeTable(path(), {{"201501", 200, 100, 2}}, "201501", false);
    MadadTable t2(dir_.path());
    EXPECT_FALSE(t2.ok());
    EXPECT_TRUE(t2.errorString().contains("190101"));
}

TEST_F(MadadTableTest, CreatedFromShippedTableOnFirstUse) {
    const QString data = dir_.filePath("deep/er/data");
    {
        MadadTable t(data);
        ASSERT_TRUE(t.ok()) << t.errorString().toStdString();
        EXPECT_TRUE(QFileInfo::exists(data + "/Madad.BRK"));
        EXPECT_EQ(t.LastUpdateMonth(), "2026/08");
        const std::vector<MadadRow> rows = t.rows();
        ASSERT_EQ(rows.size(), 177u);  // 176 months and the row of last resort
        EXPECT_EQ(rows.front().month, "190101");
        EXPECT_EQ(rows.front().showMonth, "01/1901");
        EXPECT_EQ(rows.front().basis51, *test::csvBasis51("201201"));
        EXPECT_EQ(rows.front().mekadem, rows[1].mekadem);

        EXPECT_EQ(t.GetMadad(ymd(2015, 11, 20)), *test::csvBasis51("201511"));
        EXPECT_EQ(t.GetMadad(ymd(2015, 6, 1)), *test::csvBasis51("201506"));
        EXPECT_EQ(t.GetMadad(ymd(2011, 7, 1)), *test::csvBasis51("201201"));
        EXPECT_EQ(t.GetMadad(ymd(2031, 1, 1)), *test::csvBasis51("202608"));
        // Nothing beyond the shipped months is editable until the user adds one.
        EXPECT_FALSE(t.isMonthEditable("202608"));
        EXPECT_TRUE(t.isMonthEditable("202609"));
        QString error;
        ASSERT_TRUE(t.setMadad("202609", 106.0, &error)) << error.toStdString();
    }
    // An existing file is used as it is, not made again.
    MadadTable again(data);
    EXPECT_EQ(again.rows().size(), 178u);
    EXPECT_DOUBLE_EQ(again.GetMadad(ymd(2026, 9, 1)), 106.0 * again.rows().back().mekadem);
    EXPECT_FALSE(QFileInfo::exists(data + "/Madad.site"));
    EXPECT_EQ(QDir(data).entryList(QDir::Files), QStringList{"Madad.BRK"});
}

TEST_F(MadadTableTest, EditingRules) {
    writeSmall();
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    EXPECT_FALSE(t.isMonthEditable("201503"));  // LockMonth itself
    EXPECT_FALSE(t.isMonthEditable("201501"));
    EXPECT_TRUE(t.isMonthEditable("201504"));
    EXPECT_FALSE(t.isMonthEditable("abcdef"));  // after "201503" as text, but not a month

    const QByteArray before = test::readAll(path());
    QString error;
    EXPECT_FALSE(t.setMadad("201503", 160.0, &error));
    EXPECT_TRUE(error.contains("03/2015")) << error.toStdString();
    EXPECT_FALSE(t.setMadad("201504", QStringLiteral("abc"), &error));
    EXPECT_EQ(error, "מספר לא חוקי");
    EXPECT_FALSE(t.setMadad("201504", -1.0, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(t.setMadad("201504", std::nan(""), &error));
    EXPECT_FALSE(t.setMadad("2015-4", 1.0, &error));
    EXPECT_FALSE(t.setMadad("201513", 1.0, &error));  // no such month to add
    EXPECT_EQ(test::readAll(path()), before);
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);

    // Basis51 = Madad x MEKADEM, seen at once and kept in the file.
    ASSERT_TRUE(t.setMadad("201504", QStringLiteral("1,160.5"), &error)) << error.toStdString();
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2015, 4, 15)), 1160.5 * 2.5);
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2016, 1, 1)), 1160.5 * 2.5);
    EXPECT_DOUBLE_EQ(MadadTable(dir_.path()).GetMadad(ymd(2015, 4, 1)), 1160.5 * 2.5);

    // A month not in the table yet takes the base of the month before it.
    ASSERT_TRUE(t.setMadad("201506", 120.0, &error)) << error.toStdString();
    const MadadRow added = t.rows().back();
    EXPECT_EQ(added.month, "201506");
    EXPECT_EQ(added.showMonth, "06/2015");
    EXPECT_EQ(added.mekadem, 2.5);
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2015, 5, 1)), 1160.5 * 2.5);
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2015, 6, 1)), 300.0);

    // A blank cell is 0: the month has no value again and falls back.
    ASSERT_TRUE(t.setMadad("201504", QStringLiteral("  "), &error));
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);
}

TEST_F(MadadTableTest, EditRespectsLockOfReplacedFile) {
    writeSmall();
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.isMonthEditable("201504"));
    // Meanwhile the file was replaced by one locked up to 201504.
    writeSmall("201504");
    QString error;
    EXPECT_FALSE(t.setMadad("201504", 100.0, &error));
    EXPECT_TRUE(error.contains("04/2015")) << error.toStdString();
}

TEST_F(MadadTableTest, ReloadIfChanged) {
    writeSmall();
    MadadTable reader(dir_.path());
    EXPECT_FALSE(reader.reloadIfChanged());

    // Another instance (another process, in real life) writes a value.
    MadadTable writer(dir_.path());
    QString error;
    ASSERT_TRUE(writer.setMadad("201504", 400.0, &error)) << error.toStdString();
    EXPECT_EQ(reader.GetMadad(ymd(2015, 4, 1)), 300);  // memory only, until asked to reload
    EXPECT_TRUE(reader.reloadIfChanged());
    EXPECT_DOUBLE_EQ(reader.GetMadad(ymd(2015, 4, 1)), 1000.0);
    EXPECT_FALSE(reader.reloadIfChanged());
    EXPECT_FALSE(writer.reloadIfChanged());  // its own write needs no reload

    // A file that has gone is made again from the shipped table.
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_TRUE(reader.reloadIfChanged());
    EXPECT_EQ(reader.LastUpdateMonth(), "2026/08");

    // A damaged file keeps the table in memory and says why.
    test::writeAll(path(), QByteArray(4096, 'x'));
    const double before = reader.GetMadad(ymd(2015, 11, 1));
    EXPECT_FALSE(reader.reloadIfChanged());
    EXPECT_FALSE(reader.errorString().isEmpty());
    EXPECT_EQ(reader.GetMadad(ymd(2015, 11, 1)), before);
}

}  // namespace
}  // namespace zelmor
