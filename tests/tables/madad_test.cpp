#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QPair>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "core/date.h"
#include "tables/madad_csv.h"
#include "tables/madad_table.h"

namespace zelmor {
namespace {

struct Month {
    const char* month;
    double basis51, madad, mekadem;
};

// Writes a table file with these rows (and row 190101 = 100 when withFallback) and this LockMonth,
// then runs `damage`, a statement that spoils it.
void writeTable(const QString& path, std::vector<Month> rows, const QString& lockMonth,
                bool withFallback = true, const QString& damage = {}) {
    QFile::remove(path);
    if (withFallback) rows.insert(rows.begin(), Month{"190101", 100.0, 1.0, 100.0});
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), path);
        db.setDatabaseName(path);
        ASSERT_TRUE(db.open()) << db.lastError().text().toStdString();
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("CREATE TABLE Madad (Month TEXT PRIMARY KEY, Basis51 REAL, Basis TEXT, "
                           "Madad REAL, MEKADEM REAL, Show_month TEXT)"));
        ASSERT_TRUE(q.exec("CREATE TABLE LockMadad (LockMonth TEXT)"));
        for (const Month& m : rows) {
            const QString month = QString::fromLatin1(m.month);
            ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO Madad VALUES ('%1', %2, 'b', %3, %4, '%5/%6')")
                                   .arg(month).arg(m.basis51).arg(m.madad).arg(m.mekadem)
                                   .arg(month.mid(4), month.left(4))))
                << q.lastError().text().toStdString();
        }
        ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO LockMadad VALUES ('%1')").arg(lockMonth)));
        if (!damage.isEmpty()) {
            ASSERT_TRUE(q.exec(damage)) << damage.toStdString();
        }
    }
    QSqlDatabase::removeDatabase(path);
}

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

Date ymd(int y, int m, int d) { return *Date::fromYmd(y, m, d); }

void expectMentions(const QString& text, const char* what) {
    EXPECT_TRUE(text.contains(QString::fromUtf8(what))) << text.toStdString() << "\nshould mention: " << what;
}

// The Basis51 of a month as written in the shipped CSV, read independently of the program.
double csvBasis51(const char* month) {
    const QList<QByteArray> lines = readAll(QStringLiteral(ZELMOR_SOURCE_DIR "/data/madad.csv")).split('\n');
    const qsizetype col = lines.value(0).split(',').indexOf("Basis51");
    for (const QByteArray& line : lines)
        if (line.startsWith(QByteArray(month) + ',')) return line.split(',').value(col).toDouble();
    ADD_FAILURE() << month << " is not in the CSV";
    return 0;
}

// Serves fixed answers by path on 127.0.0.1: a status with a body (status 0: no answer at all); else 404.
class HttpServer {
public:
    HttpServer() {
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            while (QTcpSocket* s = server_.nextPendingConnection()) {
                auto request = std::make_shared<QByteArray>();
                QObject::connect(s, &QTcpSocket::readyRead, s, [this, s, request] {
                    *request += s->readAll();
                    if (!request->contains("\r\n\r\n")) return;
                    const auto [status, body] =
                        routes_.value(QString::fromLatin1(request->split(' ').value(1)), {404, "no"});
                    if (status == 0) return;
                    s->write("HTTP/1.1 " + QByteArray::number(status) + (status == 200 ? " OK" : " Error") +
                             "\r\nContent-Length: " + QByteArray::number(body.size()) +
                             "\r\nConnection: close\r\n\r\n" + body);
                    s->disconnectFromHost();
                });
            }
        });
        EXPECT_TRUE(server_.listen(QHostAddress::LocalHost, 0));
    }
    void serve(const QString& path, const QByteArray& body, int status = 200) { routes_[path] = {status, body}; }
    QUrl url(const QString& path) const {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(server_.serverPort()).arg(path));
    }

private:
    QTcpServer server_;
    QMap<QString, QPair<int, QByteArray>> routes_;
};

TEST(MadadCsv, ColumnsByHeaderQuotedFieldsAndBadInputNamingLineAndField) {
    std::vector<MadadRow> rows;
    QString last, error;
    ASSERT_TRUE(parseMadadCsv("\xEF\xBB\xBFShow_month,Basis51,Month,Note,MEKADEM,Madad,Basis\r\n"
                              "02/2015,20,201502,\"a, \"\"quoted\"\" note\",2,10,b\r\n\n"
                              "01/2015,18,201501,,2,9,b\r\n",
                              &rows, &last, &error))
        << error.toStdString();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].month, "201501");
    EXPECT_EQ(rows[1].basis51, 20);
    EXPECT_EQ(last, "201502");

    const QByteArray header = "Month,Basis,Madad,MEKADEM,Basis51,Show_month\n";
    const struct {
        QByteArray text;
        const char* mentions;
    } cases[] = {
        {"Month,Basis,Madad\n201501,b,1\n", "MEKADEM"},
        {header + "201501,b,1,2,2,01/2015\n2015-2,b,1,2,2,02/2015\n", "שורה 3"},
        {header + "201501,b,x,2,2,01/2015\n", "Madad"},
        {header + "201501,b,1,2,-2,01/2015\n", "Basis51"},
        {header + "201501,b,1,2\n", "שורה 2"},
        {header + "201501,\"b,1,2,2,01/2015\n", "מירכאות"},
        {header + "201501,b,1,2,2,01/2015\n201501,b,1,2,2,01/2015\n", "201501"},
        {"", "ריקה"},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(parseMadadCsv(c.text, &rows, &last, &error)) << c.text.toStdString();
        expectMentions(error, c.mentions);
    }
}

TEST(MadadValues, Basis51IsZeroOrAFinitePositiveIndexUpToTheBound) {
    for (double good : {0.0, 1e-3, 100.0, 40962585.6, kMaxBasis51}) EXPECT_EQ(basis51Problem(good), "") << good;
    for (double bad : {-1.0, -0.0001, kMaxBasis51 * 1.0001, 1e308, HUGE_VAL, -HUGE_VAL, std::nan("")})
        EXPECT_NE(basis51Problem(bad), "") << bad;
}

// The data folder holds a small table: 190101 = 100; 201501 = 200; 201502 no value; 201503 = 300;
// 201504 no value; locked to 201503. The server has a newer one (locked to 201609, value 777)
// and some bad answers.
class MadadTableTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        writeSmall();
        before_ = readAll(path());
        const QString newer = dir_.filePath("newer.db"), noFallback = dir_.filePath("nofallback.db");
        writeTable(newer, {{"201609", 777, 100, 7.77}}, "201609");
        writeTable(noFallback, {{"201609", 777, 100, 7.77}}, "201609", false);
        newer_ = readAll(newer);
        server_.serve("/downloads/Madad.brk", newer_);
        server_.serve("/older", before_);
        server_.serve("/garbage", QByteArray(8192, '\x5a'));
        server_.serve("/empty", QByteArray());
        server_.serve("/nofallback", readAll(noFallback));
        server_.serve("/slow", {}, 0);
    }
    QString path() const { return dir_.filePath("Madad.BRK"); }
    QString site() const { return dir_.filePath("Madad.site"); }
    void writeSmall(const QString& lock = "201503") {
        writeTable(path(), {{"201501", 200, 100, 2}, {"201502", 0, 0, 2}, {"201503", 300, 150, 2},
                            {"201504", 0, 0, 2.5}}, lock);
    }
    // A download from url is refused, saying why, and the old table stays: in the file, byte for byte,
    // and in memory; what was left of a broken earlier download goes.
    void expectRefusedDownload(MadadTable& t, const QUrl& url, const char* mentions) {
        SCOPED_TRACE(url.toString().toStdString());
        if (!url.isEmpty()) writeAll(site(), "left over");
        QString message;
        EXPECT_FALSE(t.UpdateMadadTable(url, &message));
        expectMentions(message, mentions);
        expectMentions(message, "עדכון טבלאות המדדים נכשל");
        expectMentions(message, "טבלאות מדדים וסכומים מעודכנות לחודש 2015/03");
        EXPECT_EQ(readAll(path()), before_);
        EXPECT_FALSE(QFileInfo::exists(site()));
        EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);
    }
    QTemporaryDir dir_;
    HttpServer server_;
    QByteArray before_, newer_;
};

TEST_F(MadadTableTest, LookupTakesLatestMonthWithValue) {
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok()) << t.errorString().toStdString();
    EXPECT_EQ(t.LastUpdateMonth(), "2015/03");
    const struct {
        Date date;
        double expected;
    } cases[] = {
        {ymd(2015, 1, 1), 200}, {ymd(2015, 3, 31), 300},  // the month of the date, whatever the day
        {ymd(2015, 2, 14), 200},                           // no value: the previous month's
        {ymd(2015, 4, 1), 300}, {ymd(2030, 12, 31), 300},  // after the end: the last value
        {ymd(2014, 12, 31), 100}, {Date(), 100},           // before the first: row 190101
    };
    for (const auto& c : cases) EXPECT_EQ(t.GetMadad(c.date), c.expected) << c.date.serial();
}

TEST_F(MadadTableTest, CreatedFromShippedTableOnFirstUse) {
    const QString data = dir_.filePath("deep/er/data");
    {
        MadadTable t(data);
        ASSERT_TRUE(t.ok()) << t.errorString().toStdString();
        EXPECT_EQ(t.LastUpdateMonth(), "2026/08");
        const std::vector<MadadRow> rows = t.rows();
        ASSERT_EQ(rows.size(), 177u);  // 176 months and the row of last resort
        EXPECT_EQ(rows.front().month, "190101");
        for (const MadadRow& r : rows)
            EXPECT_NEAR(r.basis51, r.madad * r.mekadem, 1e-6 * r.basis51) << r.month.toStdString();
        EXPECT_EQ(rows.front().basis51, csvBasis51("201201"));
        EXPECT_EQ(t.GetMadad(ymd(2015, 11, 20)), csvBasis51("201511"));
        EXPECT_EQ(t.GetMadad(ymd(2031, 1, 1)), csvBasis51("202608"));
        // Nothing beyond the shipped months is editable until the user adds one.
        EXPECT_FALSE(t.isMonthEditable("202608"));
        QString error;
        ASSERT_TRUE(t.setMadad("202609", 106.0, &error)) << error.toStdString();
    }
    // An existing file is used as it is, not made again.
    EXPECT_EQ(MadadTable(data).rows().size(), 178u);
    EXPECT_EQ(QDir(data).entryList(QDir::Files), QStringList{"Madad.BRK"});
}

TEST_F(MadadTableTest, EditingRules) {
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    EXPECT_FALSE(t.isMonthEditable("201501"));
    EXPECT_FALSE(t.isMonthEditable("abcdef"));  // after "201503" as text, but not a month

    QString error;
    EXPECT_FALSE(t.setMadad("201503", 160.0, &error));  // LockMonth itself
    expectMentions(error, "03/2015");
    EXPECT_FALSE(t.setMadad("201504", QStringLiteral("abc"), &error));
    EXPECT_EQ(error, "מספר לא חוקי");
    for (auto [month, value] : {std::pair{"201504", -1.0}, {"201504", std::nan("")}, {"2015-4", 1.0},
                                {"201513", 1.0}, {"201504", 1e300}})
        EXPECT_FALSE(t.setMadad(month, value, &error)) << month << ' ' << value;
    expectMentions(error, "04/2015");  // a value that would make the table unusable
    EXPECT_EQ(readAll(path()), before_);

    // Basis51 = Madad x MEKADEM, seen at once and kept in the file.
    ASSERT_TRUE(t.isMonthEditable("201504"));
    ASSERT_TRUE(t.setMadad("201504", QStringLiteral("1,160.5"), &error)) << error.toStdString();
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2016, 1, 1)), 1160.5 * 2.5);
    EXPECT_DOUBLE_EQ(MadadTable(dir_.path()).GetMadad(ymd(2015, 4, 1)), 1160.5 * 2.5);

    // A month not in the table yet takes the base of the month before it.
    ASSERT_TRUE(t.setMadad("201506", 120.0, &error)) << error.toStdString();
    EXPECT_EQ(t.rows().back().showMonth, "06/2015");
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2015, 5, 1)), 1160.5 * 2.5);
    EXPECT_DOUBLE_EQ(t.GetMadad(ymd(2015, 6, 1)), 300.0);

    // A blank cell is 0: the month has no value again and falls back.
    ASSERT_TRUE(t.setMadad("201504", QStringLiteral("  "), &error));
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 300);

    // Meanwhile the file was replaced by one locked up to 201504: its lock counts.
    writeSmall("201504");
    EXPECT_FALSE(t.setMadad("201504", 100.0, &error));
    expectMentions(error, "04/2015");
}

TEST_F(MadadTableTest, ReloadIfChanged) {
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
    writeAll(path(), QByteArray(4096, 'x'));
    EXPECT_FALSE(reader.reloadIfChanged());
    EXPECT_FALSE(reader.errorString().isEmpty());
    EXPECT_EQ(reader.GetMadad(ymd(2015, 11, 1)), csvBasis51("201511"));
}

TEST_F(MadadTableTest, GoodFileReplacesTableAndUserMonths) {
    MadadTable t(dir_.path()), other(dir_.path());
    ASSERT_TRUE(t.ok());
    QString message;
    ASSERT_TRUE(t.setMadad("201504", 500.0, &message));
    writeAll(site(), "left over from a broken run");

    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message)) << message.toStdString();
    EXPECT_EQ(message, "טבלאות מדדים וסכומים מעודכנות לחודש 2016/09");
    EXPECT_EQ(readAll(path()), newer_);
    EXPECT_EQ(QDir(dir_.path()).entryList({"Madad*"}, QDir::Files), QStringList{"Madad.BRK"});
    // The new table counts at once; the value typed for 201504 went with the old file.
    EXPECT_EQ(t.LastUpdateMonth(), "2016/09");
    EXPECT_EQ(t.GetMadad(ymd(2015, 4, 1)), 100);
    EXPECT_EQ(t.GetMadad(ymd(2016, 9, 1)), 777);
    EXPECT_FALSE(t.reloadIfChanged());
    // Another instance sees it when it reloads.
    EXPECT_EQ(other.GetMadad(ymd(2016, 9, 1)), 300);
    EXPECT_TRUE(other.reloadIfChanged());
    EXPECT_EQ(other.GetMadad(ymd(2016, 9, 1)), 777);

    // A second update in the same run works as well.
    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/older"), &message)) << message.toStdString();
    EXPECT_EQ(t.LastUpdateMonth(), "2015/03");
    EXPECT_EQ(t.GetMadad(ymd(2016, 9, 1)), 300);
}

TEST_F(MadadTableTest, BadDownloadOrNoAddressLeavesOldFileByteForByte) {
    MadadTable t(dir_.path());
    ASSERT_TRUE(t.ok());
    t.setDownloadTimeout(300);
    // A port on which nobody listens: a closed server is the surest way to find one.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const QUrl refused(QStringLiteral("http://127.0.0.1:%1/x").arg(closed.serverPort()));
    closed.close();
    expectRefusedDownload(t, server_.url("/garbage"), "אינו טבלת מדדים");
    expectRefusedDownload(t, server_.url("/empty"), "אינו טבלת מדדים");
    expectRefusedDownload(t, server_.url("/nofallback"), "190101");
    expectRefusedDownload(t, server_.url("/missing"), "404");
    expectRefusedDownload(t, server_.url("/slow"), "לא השיב");
    expectRefusedDownload(t, refused, "אין חיבור לשרת");
    expectRefusedDownload(t, QUrl(), "לא הוגדרה כתובת");
}

TEST_F(MadadTableTest, DamagedFileIsReportedAndAnUpdateReplacesIt) {
    writeAll(path(), QByteArray(4096, 'x'));
    MadadTable t(dir_.path());
    EXPECT_FALSE(t.ok());
    expectMentions(t.errorString(), qPrintable(path()));
    EXPECT_EQ(t.GetMadad(ymd(2015, 1, 1)), 0);
    QString message;
    EXPECT_FALSE(t.setMadad("201505", 1.0, &message));
    EXPECT_EQ(readAll(path()), QByteArray(4096, 'x'));
    ASSERT_TRUE(t.UpdateMadadTable(server_.url("/downloads/Madad.brk"), &message)) << message.toStdString();
    EXPECT_TRUE(t.ok());
    EXPECT_EQ(t.GetMadad(ymd(2017, 1, 1)), 777);
}

// Each kind of unusable table: refused on opening, naming what is wrong, and
// refused as a download, which leaves the old table in place.
TEST_F(MadadTableTest, UnusableTablesAreRefusedWithTheReason) {
    const std::vector<Month> good = {{"201608", 700, 100, 7}, {"201609", 777, 100, 7.77}};
    const struct {
        std::vector<Month> rows;
        const char* lock;
        bool withFallback;
        const char* damage;
        const char* mentions;
    } cases[] = {
        {{{"190101", 0, 0, 1}, {"201609", 0, 0, 1}}, "201609", false, "", "190101"},  // all 0
        {good, "201609", true, "UPDATE Madad SET Basis51 = NULL WHERE Month = '201608'", "NULL"},
        {good, "201609", true, "UPDATE Madad SET Basis51 = 'abc' WHERE Month = '201608'", "abc"},
        {good, "201609", true, "UPDATE Madad SET Basis51 = 1e308 WHERE Month = '201608'", "201608"},
        {good, "201609", true, "UPDATE Madad SET Basis51 = -5 WHERE Month = '201608'", "שלילי"},
        {{{"201608", 700, 100, 7}, {"201609", 0, 0, 7.77}}, "201609", true, "", "LockMonth"},  // lock row 0
        {good, "2016-9", true, "", "2016-9"},
        {good, "201610", true, "", "201610"},  // not a month of the table
        {good, "201609", true, "INSERT INTO Madad VALUES ('201613', 1, 'b', 1, 1, '')", "201613"},
        {good, "201609", true, "INSERT INTO Madad VALUES ('abc', 0, 'b', 0, 1, '')", "abc"},
    };
    MadadTable t(dir_.path());
    int n = 0;
    for (const auto& c : cases) {
        const QString bad = dir_.filePath(QStringLiteral("bad%1/Madad.BRK").arg(++n));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(bad).path()));
        writeTable(bad, c.rows, c.lock, c.withFallback, c.damage);
        MadadTable opened(QFileInfo(bad).path());
        EXPECT_FALSE(opened.ok()) << c.mentions;
        expectMentions(opened.errorString(), c.mentions);
        server_.serve(QStringLiteral("/bad%1").arg(n), readAll(bad));
        expectRefusedDownload(t, server_.url(QStringLiteral("/bad%1").arg(n)), c.mentions);
    }
}

}  // namespace
}  // namespace zelmor
