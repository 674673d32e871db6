#include "tables/madad_test_util.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpSocket>
#include <gtest/gtest.h>
#include <memory>

namespace zelmor::test {

void writeTable(const QString& path, const std::vector<Month>& rows, const QString& lockMonth,
                bool withFallback) {
    QFile::remove(path);
    const QString name = QStringLiteral("test.write.") + path;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        ASSERT_TRUE(db.open()) << db.lastError().text().toStdString();
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("CREATE TABLE Madad (Month TEXT PRIMARY KEY, Basis51 REAL, Basis TEXT, "
                           "Madad REAL, MEKADEM REAL, Show_month TEXT)"));
        ASSERT_TRUE(q.exec("CREATE TABLE LockMadad (LockMonth TEXT)"));
        std::vector<Month> all = rows;
        if (withFallback) all.insert(all.begin(), Month{"190101", 100.0, 1.0, 100.0});
        for (const Month& m : all) {
            q.prepare("INSERT INTO Madad VALUES (?, ?, ?, ?, ?, ?)");
            q.addBindValue(QString::fromLatin1(m.month));
            q.addBindValue(m.basis51);
            q.addBindValue(QStringLiteral("בסיס"));
            q.addBindValue(m.madad);
            q.addBindValue(m.mekadem);
            q.addBindValue(QString::fromLatin1(m.month).mid(4) + "/" + QString::fromLatin1(m.month).left(4));
            ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
        }
        q.prepare("INSERT INTO LockMadad VALUES (?)");
        q.addBindValue(lockMonth);
        ASSERT_TRUE(q.exec());
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
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

std::optional<double> csvBasis51(const char* month) {
    const QByteArray csv = readAll(QStringLiteral(ZELMOR_SOURCE_DIR "/data/madad.csv"));
    const QList<QByteArray> lines = csv.split('\n');
    const QList<QByteArray> header = lines.value(0).split(',');
    const qsizetype col = header.indexOf("Basis51");
    for (const QByteArray& line : lines)
        if (line.startsWith(QByteArray(month) + ',')) return line.split(',').value(col).toDouble();
    return std::nullopt;
}

HttpServer::HttpServer() {
    QObject::connect(&server_, &QTcpServer::newConnection, [this] {
        while (QTcpSocket* s = server_.nextPendingConnection()) {
            auto buffer = std::make_shared<QByteArray>();
            QObject::connect(s, &QTcpSocket::readyRead, s, [this, s, buffer] {
                *buffer += s->readAll();
                if (buffer->contains("\r\n\r\n")) answer(s, *buffer);
            });
        }
    });
    EXPECT_TRUE(server_.listen(QHostAddress::LocalHost, 0));
}

HttpServer::~HttpServer() { server_.close(); }

QUrl HttpServer::url(const QString& path) const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(server_.serverPort()).arg(path));
}

void HttpServer::answer(QTcpSocket* s, const QByteArray& request) {
    ++requests_;
    const QString path = QString::fromLatin1(request.split(' ').value(1));
    const auto it = routes_.constFind(path);
    const Route r = it != routes_.cend() ? *it : Route{404, "not found", false};
    if (r.hang) return;
    const QByteArray head = "HTTP/1.1 " + QByteArray::number(r.status) +
                            (r.status == 200 ? " OK" : " Not Found") +
                            "\r\nContent-Type: application/octet-stream\r\nContent-Length: " +
                            QByteArray::number(r.body.size()) + "\r\nConnection: close\r\n\r\n";
    s->write(head + r.body);
    s->disconnectFromHost();
}

}  // namespace zelmor::test
