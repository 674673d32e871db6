#pragma once
// Helpers for the price index table's tests: small table files made to order,
// and an HTTP server on 127.0.0.1 that serves them.

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QTcpServer>
#include <QUrl>
#include <optional>
#include <vector>

#include "core/date.h"

namespace zelmor::test {

struct Month {
    const char* month;
    double basis51;
    double madad = 0;
    double mekadem = 0;
};

// Writes a table file with these rows and this LockMonth. Without row "190101"
// when withFallback is false.
void writeTable(const QString& path, const std::vector<Month>& rows, const QString& lockMonth,
                bool withFallback = true);

QByteArray readAll(const QString& path);
void writeAll(const QString& path, const QByteArray& bytes);
Date ymd(int y, int m, int d);

// The Basis51 of a month as written in the shipped CSV, read independently of the program.
std::optional<double> csvBasis51(const char* month);

// Serves fixed answers by path: 200 with a body, another status, or no answer at all.
class HttpServer {
public:
    HttpServer();
    ~HttpServer();
    void serve(const QString& path, const QByteArray& body) { routes_[path] = {200, body, false}; }
    void fail(const QString& path, int status) { routes_[path] = {status, "not here", false}; }
    void hang(const QString& path) { routes_[path] = {0, {}, true}; }
    QUrl url(const QString& path) const;
    int requests() const { return requests_; }

private:
    struct Route {
        int status;
        QByteArray body;
        bool hang;
    };
    void answer(class QTcpSocket* s, const QByteArray& request);
    QTcpServer server_;
    QMap<QString, Route> routes_;
    int requests_ = 0;
};

}  // namespace zelmor::test
