#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTcpServer>
#include <gtest/gtest.h>

#include "tables/madad_table.h"
#include "tables/madad_test_util.h"

namespace zelmor {
namespace {

using test::ymd;

// The table in the data folder is the small one (locked to 201503, value 300);
// the server has a newer one (locked to 201609, value 777) and some bad answers.
class MadadUpdateTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        test::writeTable(path(), {{"201501", 200, 100, 2}, {"201503", 300, 150, 2}, {"201504", 0, 0, 2}},
                         "201503");
        const QString newer = dir_.filePath("newer.db");
        test::writeTable(newer, {{"201609", 777, 100, 7.77}}, "201609");
        newer_ = test::readAll(newer);
        const QString noFallback = dir_.filePath("nofallback.db");
        test::writeTable(noFallback, {{"201609", 777, 100, 7.77}}, "201609", false);
        server_.serve("/downloads/Madad.brk", newer_);
        server_.serve("/garbage", QByteArray(8192, '\x5a'));
        server_.serve("/empty", QByteArray());
        server_.serve("/nofallback", test::readAll(noFallback));
        server_.fail("/missing", 404);
        server_.hang("/slow");
    }
    QString path() const { return dir_.filePath("Madad.BRK"); }
    QString site() const { return dir_.filePath("Madad.site"); }

    // The update failed, and the old table is exactly as it was, in the file and in memory.
    void expectUntouched(MadadTable& t, const QByteArray& before, const QString& message) {
        EXPECT_EQ(test::readAll(path()), before);
        EXPECT_FALSE(QFileInfo::exists(site()));
        EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);
        EXPECT_EQ(t.LastUpdateMonth(), "2015/03");
        EXPECT_TRUE(message.contains("עדכון טבלאות המדדים נכשל")) << message.toStdString();
        EXPECT_TRUE(message.contains("טבלאות מדדים וסכומים מעודכנות לחודש 2015/03"));
    }

    QTemporaryDir dir_;
    test::HttpServer server_;
    QByteArray newer_;
};

TEST_F(MadadUpdateTest, GoodFileReplacesTableAndUserMonths) {
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    QString message;
    ASSERT_TRUE(t.setMadad("201504", 500.0, &message));
    test::writeAll(site(), "left over from a broken run");

    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message))
        << message.toStdString();
    EXPECT_EQ(message, "טבלאות מדדים וסכומים מעודכנות לחודש 2016/09");
    EXPECT_EQ(test::readAll(path()), newer_);
    EXPECT_FALSE(QFileInfo::exists(site()));
    EXPECT_EQ(QDir(dir_.path()).entryList({"Madad*"}, QDir::Files), QStringList{"Madad.BRK"});
    // The new table counts at once; the value typed for 201504 went with the old file.
    EXPECT_EQ(t.LastUpdateMonth(), "2016/09");
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 100);
    EXPECT_EQ(t.GetMadad(ymd(2016, 9, 1)), 777);
    EXPECT_FALSE(t.reloadIfChanged());

    // A second update in the same run works as well.
    const QString third = dir_.filePath("third.db");
    test::writeTable(third, {{"201609", 777, 100, 7.77}, {"201610", 888, 100, 8.88}}, "201610");
    server_.serve("/downloads/Madad.brk", test::readAll(third));
    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message))
        << message.toStdString();
    EXPECT_EQ(t.LastUpdateMonth(), "2016/10");
    EXPECT_EQ(t.GetMadad(ymd(2016, 11, 1)), 888);
}

TEST_F(MadadUpdateTest, OtherInstanceSeesUpdateOnReload) {
    MadadTable a(dir_.path());
    MadadTable b(dir_.path());
    QString message;
    ASSERT_TRUE(a.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message));
    EXPECT_EQ(b.GetMadad(ymd(2016, 9, 1)), 300);
    EXPECT_TRUE(b.reloadIfChanged());
    EXPECT_EQ(b.GetMadad(ymd(2016, 9, 1)), 777);
}

TEST_F(MadadUpdateTest, BadDownloadsLeaveOldFileByteForByte) {
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    const QByteArray before = test::readAll(path());
    t.setDownloadTimeout(300);
    struct Case {
        QUrl url;
        const char* mentions;
    } cases[] = {
        {server_.url("/garbage"), "אינו טבלת מדדים"},
        {server_.url("/empty"), "אינו טבלת מדדים"},
        {server_.url("/nofallback"), "190101"},
        {server_.url("/missing"), "404"},
        {server_.url("/slow"), "לא השיב"},
    };
    for (const Case& c : cases) {
        test::writeAll(site(), "left over");
        QString message;
        EXPECT_FALSE(t.UpdateMadadTable(c.url, &message)) << c.url.toString().toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.mentions)))
            << message.toStdString() << " / " << c.mentions;
        expectUntouched(t, before, message);
    }
}

TEST_F(MadadUpdateTest, NoAddressOrNoServer) {
    MadadTable t(dir_.path());
    const QByteArray before = test::readAll(path());
    QString message;
    EXPECT_FALSE(t.UpdateMadadTable(QUrl(), &message));
    EXPECT_TRUE(message.contains("לא הוגדרה כתובת")) << message.toStdString();
    expectUntouched(t, before, message);
    EXPECT_EQ(server_.requests(), 0);

    // A port on which nobody listens: a closed server is the surest way to find one.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const quint16 port = closed.serverPort();
    closed.close();
    EXPECT_FALSE(t.UpdateMadadTable(QUrl(QStringLiteral("http://127.0.0.1:%1/x").arg(port)), &message));
    EXPECT_TRUE(message.contains("אין חיבור לשרת")) << message.toStdString();
    expectUntouched(t, before, message);
}

TEST_F(MadadUpdateTest, DamagedOldFileIsReplaced) {
    test::writeAll(path(), QByteArray(4096, 'x'));
    MadadTable t(dir_.path());
    EXPECT_FALSE(t.ok());
    QString message;
    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message))
        << message.toStdString();
    EXPECT_TRUE(t.ok());
    EXPECT_EQ(t.GetMadad(ymd(2017, 1, 1)), 777);
}

}  // namespace
}  // namespace zelmor
