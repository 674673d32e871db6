#include "tables/madad_table.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <QTimer>
#include <QUuid>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "tables/madad_csv.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace zelmor {

// A month that has a value, for the lookup: the key as bytes, so that the order
// is the byte order in which the database compares text.
struct ValuedMonth {
    std::string month;
    double basis51;
};

struct MadadTable::Snapshot {
    std::vector<MadadRow> rows;       // all rows, in the order of Month
    std::vector<ValuedMonth> valued;  // the rows with Basis51 > 0, in the order of Month
    double fallback = 0;              // Basis51 of row "190101"
    QString lockMonth;
};

namespace {

// A file downloaded as a table is never this large; a bigger answer is not one.
constexpr qint64 kMaxDownloadBytes = 64ll * 1024 * 1024;
// How long a write waits for another process that holds the file.
constexpr int kBusyTimeoutMs = 5000;

const QString kUpdatedTo = QStringLiteral("טבלאות מדדים וסכומים מעודכנות לחודש ");

std::atomic<quint64> g_nextInstance{1};

bool byMonth(const QString& a, const QString& b) { return a.toUtf8() < b.toUtf8(); }

// One connection to one database file for the length of one operation. The
// connection is removed again when the object goes; every QSqlQuery made on it
// must be gone by then.
class Connection {
public:
    enum class Mode { ReadOnly, ReadWrite, Create };

    Connection(const QString& name, const QString& path, Mode mode) : name_(name) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        if (!db.isValid()) {
            error_ = QStringLiteral("רכיב SQLite של Qt אינו מותקן");
            return;
        }
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs);
        if (mode == Mode::Create) {
            db.setDatabaseName(path);
        } else {
            // Through a URI so that a missing file is an error instead of a new empty database.
            options += QStringLiteral(";QSQLITE_OPEN_URI");
            if (mode == Mode::ReadOnly) options += QStringLiteral(";QSQLITE_OPEN_READONLY");
            const QString uri = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath())
                                    .toString(QUrl::FullyEncoded) +
                                (mode == Mode::ReadOnly ? QStringLiteral("?mode=ro")
                                                        : QStringLiteral("?mode=rw"));
            db.setDatabaseName(uri);
        }
        db.setConnectOptions(options);
        if (!db.open()) error_ = db.lastError().text();
    }
    ~Connection() {
        {
            QSqlDatabase db = QSqlDatabase::database(name_, false);
            if (db.isOpen()) db.close();
        }
        QSqlDatabase::removeDatabase(name_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return error_.isEmpty(); }
    QString error() const { return error_; }
    QSqlDatabase db() const { return QSqlDatabase::database(name_, false); }

    // Runs a statement without results; on failure puts the database's text in *error.
    bool exec(const QString& sql, QString* error, QSqlError* sqlError = nullptr) const {
        QSqlQuery q(db());
        if (q.exec(sql)) return true;
        *error = q.lastError().text();
        if (sqlError) *sqlError = q.lastError();
        return false;
    }

private:
    QString name_;
    QString error_;
};

bool isMonthKey(const QString& month) {
    if (month.size() != 6) return false;
    for (QChar ch : month)
        if (ch < QLatin1Char('0') || ch > QLatin1Char('9')) return false;
    return true;
}

bool isCalendarMonth(const QString& month) {
    if (!isMonthKey(month)) return false;
    const int m = month.mid(4, 2).toInt();
    return m >= 1 && m <= 12;
}

// What makes a table unusable, or "" when it can be used: every month a
// calendar month (the row of last resort is one too), every Basis51 usable, a
// value in the row of last resort and in the row of LockMonth, which is a
// month of the table.
QString tableProblem(const MadadTable::Snapshot& t) {
    for (const MadadRow& r : t.rows) {
        if (!isCalendarMonth(r.month)) return QStringLiteral("החודש \"%1\" אינו חודש בצורה YYYYMM").arg(r.month);
        if (const QString p = basis51Problem(r.basis51); !p.isEmpty())
            return QStringLiteral("חודש %1: %2").arg(r.month, p);
    }
    auto valueOf = [&](const QString& month) -> std::optional<double> {
        for (const MadadRow& r : t.rows)
            if (r.month == month) return r.basis51;
        return std::nullopt;
    };
    if (!(t.fallback > 0))
        return QStringLiteral("בשורה %1 אין מדד (Basis51 הוא 0)").arg(QLatin1String(MadadTable::kFallbackMonth));
    if (!isCalendarMonth(t.lockMonth))
        return QStringLiteral("LockMonth \"%1\" אינו חודש בצורה YYYYMM").arg(t.lockMonth);
    const std::optional<double> lockValue = valueOf(t.lockMonth);
    if (!lockValue) return QStringLiteral("LockMonth %1 אינו חודש בטבלה").arg(t.lockMonth);
    if (!(*lockValue > 0))
        return QStringLiteral("בשורת LockMonth %1 אין מדד (Basis51 הוא 0)").arg(t.lockMonth);
    return {};
}

// Reads the whole table through an open connection.
bool readSnapshot(const Connection& c, const QString& path, MadadTable::Snapshot& out,
                  QString* error) {
    QSqlQuery q(c.db());
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral(
            "SELECT Month, Basis51, Basis, Madad, MEKADEM, Show_month FROM Madad"))) {
        *error = QStringLiteral("לא ניתן לקרוא את הטבלה Madad בקובץ %1: %2")
                     .arg(path, q.lastError().text());
        return false;
    }
    bool haveFallback = false;
    while (q.next()) {
        MadadRow r;
        r.month = q.value(0).toString();
        // Null and text are no index: they must not pass as 0, a month without a value.
        const QVariant basis51 = q.value(1);
        bool isNumber = false;
        r.basis51 = basis51.isNull() ? 0 : basis51.toDouble(&isNumber);
        if (!isNumber) {
            *error = QStringLiteral("בטבלת המדדים %1, חודש %2: Basis51 אינו מספר (%3)")
                         .arg(path, r.month, basis51.isNull() ? QStringLiteral("NULL") : basis51.toString());
            return false;
        }
        r.basis = q.value(2).toString();
        r.madad = q.value(3).toDouble();
        r.mekadem = q.value(4).toDouble();
        r.showMonth = q.value(5).toString();
        if (r.month == QLatin1String(MadadTable::kFallbackMonth) && !haveFallback) {
            out.fallback = r.basis51;
            haveFallback = true;
        }
        out.rows.push_back(std::move(r));
    }
    if (q.lastError().isValid()) {
        *error = QStringLiteral("לא ניתן לקרוא את הטבלה Madad בקובץ %1: %2")
                     .arg(path, q.lastError().text());
        return false;
    }
    if (!haveFallback) {
        *error = QStringLiteral("בטבלת המדדים %1 חסרה השורה %2")
                     .arg(path, QLatin1String(MadadTable::kFallbackMonth));
        return false;
    }
    std::stable_sort(out.rows.begin(), out.rows.end(),
                     [](const MadadRow& a, const MadadRow& b) { return byMonth(a.month, b.month); });
    for (const MadadRow& r : out.rows)
        if (r.basis51 > 0) out.valued.push_back({r.month.toUtf8().toStdString(), r.basis51});

    QSqlQuery l(c.db());
    l.setForwardOnly(true);
    if (!l.exec(QStringLiteral("SELECT LockMonth FROM LockMadad"))) {
        *error = QStringLiteral("לא ניתן לקרוא את הטבלה LockMadad בקובץ %1: %2")
                     .arg(path, l.lastError().text());
        return false;
    }
    if (!l.next()) {
        *error = QStringLiteral("בטבלת המדדים %1 אין שורה בטבלה LockMadad").arg(path);
        return false;
    }
    out.lockMonth = l.value(0).toString().trimmed();
    if (const QString problem = tableProblem(out); !problem.isEmpty()) {
        *error = QStringLiteral("טבלת המדדים %1 פגומה: %2").arg(path, problem);
        return false;
    }
    return true;
}

bool readSnapshotFromFile(const QString& connName, const QString& path,
                          std::shared_ptr<const MadadTable::Snapshot>* out, QString* error) {
    auto s = std::make_shared<MadadTable::Snapshot>();
    {
        Connection c(connName, path, Connection::Mode::ReadOnly);
        if (!c.isOpen()) {
            *error = QStringLiteral("לא ניתן לפתוח את טבלת המדדים %1: %2").arg(path, c.error());
            return false;
        }
        if (!readSnapshot(c, path, *s, error)) return false;
    }
    *out = std::move(s);
    return true;
}

// "201503" -> "03/2015"
QString showMonthOf(const QString& month) { return month.mid(4, 2) + QLatin1Char('/') + month.left(4); }

// Removes the download's working file with whatever the database engine may have put beside it.
void removeWorkingFile(const QString& site) {
    QFile::remove(site);
    for (const char* suffix : {"-journal", "-wal", "-shm"}) QFile::remove(site + QLatin1String(suffix));
}

std::filesystem::path fsPath(const QString& path) {
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

}  // namespace

QString basis51Problem(double basis51) {
    if (!std::isfinite(basis51)) return QStringLiteral("המדד אינו מספר סופי");
    if (basis51 < 0) return QStringLiteral("מדד אינו יכול להיות שלילי (%1)").arg(basis51);
    if (basis51 > kMaxBasis51)
        return QStringLiteral("המדד %1 גדול מהמותר (%2)").arg(basis51, 0, 'g', 17).arg(kMaxBasis51, 0, 'g');
    return {};
}

MadadTable::MadadTable(const QString& dataDir)
    : dataDir_(QDir(dataDir).absolutePath()),
      path_(QDir(dataDir_).filePath(QLatin1String(kFileName))),
      instanceId_(g_nextInstance.fetch_add(1)) {
    QString error;
    if (!QFileInfo::exists(path_) && !createFromShipped(&error)) {
        error_ = error;
        return;
    }
    if (!loadFromDisk(&error)) error_ = error;
}

MadadTable::~MadadTable() = default;

bool MadadTable::ok() const { return data_ != nullptr; }
QString MadadTable::errorString() const { return error_; }
QString MadadTable::filePath() const { return path_; }
void MadadTable::setDownloadTimeout(int milliseconds) { timeoutMs_ = std::max(1, milliseconds); }

QString MadadTable::connectionName(const char* purpose) const {
    return QStringLiteral("zelmor.madad.%1.%2.%3")
        .arg(instanceId_)
        .arg(QLatin1String(purpose))
        .arg(reinterpret_cast<quintptr>(QThread::currentThread()), 0, 16);
}

double MadadTable::GetMadad(Date date) const {
    const Snapshot* s = data_.get();
    if (!s) return 0;
    int y = 0, m = 0, d = 0;
    date.ymd(y, m, d);
    char key[32];
    std::snprintf(key, sizeof key, "%04d%02d", y, m);
    const std::string_view k(key);
    // The latest month not after the key that has a value.
    auto it = std::upper_bound(s->valued.begin(), s->valued.end(), k,
                               [](std::string_view a, const ValuedMonth& b) { return a < b.month; });
    if (it == s->valued.begin()) return s->fallback;
    return std::prev(it)->basis51;
}

QString MadadTable::lockMonth() const { return data_ ? data_->lockMonth : QString(); }

QString MadadTable::LastUpdateMonth() const {
    const QString lm = lockMonth();
    if (lm.size() < 6) return lm;
    return lm.left(4) + QLatin1Char('/') + lm.mid(4);
}

QString MadadTable::updatedToMessage() const { return kUpdatedTo + LastUpdateMonth(); }

std::vector<MadadRow> MadadTable::rows() const { return data_ ? data_->rows : std::vector<MadadRow>{}; }

MadadTable::FileStamp MadadTable::readFileStamp() const {
    FileStamp st;
    QFileInfo fi(path_);
    fi.setCaching(false);
    if (!fi.exists()) return st;
    st.size = fi.size();
    st.modified = fi.lastModified().toMSecsSinceEpoch();
    st.changed = fi.metadataChangeTime().toMSecsSinceEpoch();
    // The database's own change counter (bytes 24-27 of its header, big-endian)
    // goes up with every write, even one that falls in the same clock tick.
    QFile f(path_);
    if (f.open(QIODevice::ReadOnly)) {
        const QByteArray head = f.read(28);
        if (head.size() == 28)
            for (int i = 24; i < 28; ++i) st.counter = (st.counter << 8) | static_cast<quint8>(head[i]);
    }
    return st;
}

bool MadadTable::loadFromDisk(QString* error) {
    // The stamp is taken before reading, so that a change made while reading is seen next time.
    const FileStamp stamp = readFileStamp();
    std::shared_ptr<const Snapshot> s;
    if (!readSnapshotFromFile(connectionName("read"), path_, &s, error)) return false;
    data_ = std::move(s);
    stamp_ = stamp;
    error_.clear();
    return true;
}

bool MadadTable::reloadIfChanged() {
    QString error;
    if (!QFileInfo::exists(path_)) {
        if (!createFromShipped(&error) || !loadFromDisk(&error)) {
            error_ = error;
            return false;
        }
        return true;
    }
    if (data_ && readFileStamp() == stamp_) return false;
    if (!loadFromDisk(&error)) {
        error_ = error;
        return false;
    }
    return true;
}

bool MadadTable::createFromShipped(QString* error) {
    std::vector<MadadRow> rows;
    QString lock;
    if (!readShippedMadad(&rows, &lock, error)) return false;
    if (rows.empty()) {
        *error = QStringLiteral("טבלת המדדים המצורפת לתוכנה ריקה");
        return false;
    }
    if (!QDir().mkpath(dataDir_)) {
        *error = QStringLiteral("לא ניתן ליצור את התיקייה %1").arg(dataDir_);
        return false;
    }
    // The row of last resort carries the value of the earliest month.
    MadadRow first = rows.front();
    first.month = QLatin1String(kFallbackMonth);
    first.showMonth = QStringLiteral("01/1901");
    rows.insert(rows.begin(), first);

    // Built under a name of its own and moved into place whole, so that nobody
    // ever sees a half-made table.
    const QString tmp = path_ + QStringLiteral(".%1.new").arg(
                                    QUuid::createUuid().toString(QUuid::Id128));
    bool built = false;
    {
        Connection c(connectionName("create"), tmp, Connection::Mode::Create);
        if (!c.isOpen()) {
            *error = QStringLiteral("לא ניתן ליצור את טבלת המדדים %1: %2").arg(path_, c.error());
        } else {
            QString e;
            bool good =
                c.exec(QStringLiteral("BEGIN IMMEDIATE"), &e) &&
                c.exec(QStringLiteral("CREATE TABLE Madad (Month TEXT PRIMARY KEY, Basis51 REAL, "
                                      "Basis TEXT, Madad REAL, MEKADEM REAL, Show_month TEXT)"),
                       &e) &&
                c.exec(QStringLiteral("CREATE TABLE LockMadad (LockMonth TEXT)"), &e);
            if (good) {
                QSqlQuery ins(c.db());
                good = ins.prepare(QStringLiteral(
                    "INSERT INTO Madad (Month, Basis51, Basis, Madad, MEKADEM, Show_month) "
                    "VALUES (?, ?, ?, ?, ?, ?)"));
                for (const MadadRow& r : rows) {
                    if (!good) break;
                    ins.addBindValue(r.month);
                    ins.addBindValue(r.basis51);
                    ins.addBindValue(r.basis);
                    ins.addBindValue(r.madad);
                    ins.addBindValue(r.mekadem);
                    ins.addBindValue(r.showMonth);
                    good = ins.exec();
                }
                if (!good) e = ins.lastError().text();
            }
            if (good) {
                QSqlQuery ins(c.db());
                good = ins.prepare(QStringLiteral("INSERT INTO LockMadad (LockMonth) VALUES (?)"));
                ins.addBindValue(lock);
                good = good && ins.exec();
                if (!good) e = ins.lastError().text();
            }
            good = good && c.exec(QStringLiteral("COMMIT"), &e);
            if (!good) {
                QString ignored;
                c.exec(QStringLiteral("ROLLBACK"), &ignored);
                *error = QStringLiteral("לא ניתן ליצור את טבלת המדדים %1: %2").arg(path_, e);
            }
            built = good;
        }
    }
    if (!built) {
        QFile::remove(tmp);
        return false;
    }
    // QFile::rename does not replace: if another process made the table first, its table stays.
    if (!QFile::rename(tmp, path_)) {
        QFile::remove(tmp);
        if (!QFileInfo::exists(path_)) {
            *error = QStringLiteral("לא ניתן ליצור את טבלת המדדים %1").arg(path_);
            return false;
        }
    }
    return true;
}

bool MadadTable::isMonthEditable(const QString& month) const {
    const QString m = month.trimmed();
    return data_ && isMonthKey(m) && byMonth(data_->lockMonth, m);
}

bool MadadTable::setMadad(const QString& month, const QString& madadText, QString* error) {
    QString text = madadText.trimmed();
    text.remove(QLatin1Char(','));
    if (text.isEmpty()) text = QStringLiteral("0");
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value)) {
        if (error) *error = QStringLiteral("מספר לא חוקי");
        return false;
    }
    return setMadad(month, value, error);
}

bool MadadTable::setMadad(const QString& monthIn, double madad, QString* errorOut) {
    QString dummy;
    QString* error = errorOut ? errorOut : &dummy;
    const QString month = monthIn.trimmed();
    if (!data_) {
        *error = error_.isEmpty() ? QStringLiteral("טבלת המדדים אינה פתוחה") : error_;
        return false;
    }
    if (!std::isfinite(madad)) {
        *error = QStringLiteral("מספר לא חוקי");
        return false;
    }
    if (madad < 0) {
        *error = QStringLiteral("מדד אינו יכול להיות שלילי (חודש %1)").arg(month);
        return false;
    }
    if (!isMonthKey(month)) {
        *error = QStringLiteral("חודש לא חוקי: \"%1\" (נדרש YYYYMM)").arg(month);
        return false;
    }
    if (!isMonthEditable(month)) {
        *error = QStringLiteral("החודש %1 נעול: מדדי החודשים עד %2 מפורסמים ואינם ניתנים לשינוי")
                     .arg(showMonthOf(month), showMonthOf(data_->lockMonth));
        return false;
    }

    auto fresh = std::make_shared<Snapshot>();
    bool good = false;
    {
        Connection c(connectionName("write"), path_, Connection::Mode::ReadWrite);
        if (!c.isOpen()) {
            *error = QStringLiteral("לא ניתן לפתוח את טבלת המדדים %1: %2").arg(path_, c.error());
            return false;
        }
        QString e;
        bool refused = false;  // e is a complete message for the user, not a database error
        if (!c.exec(QStringLiteral("BEGIN IMMEDIATE"), &e)) {
            *error = QStringLiteral("לא ניתן לכתוב בטבלת המדדים %1: %2").arg(path_, e);
            return false;
        }
        good = [&]() -> bool {
            // The file may have been replaced since it was read: the lock is checked again on it.
            QSqlQuery lq(c.db());
            if (!lq.exec(QStringLiteral("SELECT LockMonth FROM LockMadad")) || !lq.next()) {
                e = QStringLiteral("לא ניתן לקרוא את הטבלה LockMadad: %1").arg(lq.lastError().text());
                return false;
            }
            const QString lock = lq.value(0).toString().trimmed();
            if (!byMonth(lock, month)) {
                refused = true;
                e = QStringLiteral("החודש %1 נעול: מדדי החודשים עד %2 מפורסמים ואינם ניתנים לשינוי")
                        .arg(showMonthOf(month), showMonthOf(lock));
                return false;
            }
            QSqlQuery q(c.db());
            q.prepare(QStringLiteral("SELECT MEKADEM FROM Madad WHERE Month = ?"));
            q.addBindValue(month);
            if (!q.exec()) {
                e = q.lastError().text();
                return false;
            }
            QSqlQuery w(c.db());
            // The value the month gets must be one that a usable table holds.
            auto unusable = [&](double basis51) {
                const QString problem = basis51Problem(basis51);
                if (problem.isEmpty()) return false;
                refused = true;
                e = QStringLiteral("חודש %1: %2").arg(showMonthOf(month), problem);
                return true;
            };
            if (q.next()) {
                const double basis51 = madad * q.value(0).toDouble();
                if (unusable(basis51)) return false;
                w.prepare(QStringLiteral("UPDATE Madad SET Madad = ?, Basis51 = ? WHERE Month = ?"));
                w.addBindValue(madad);
                w.addBindValue(basis51);
                w.addBindValue(month);
            } else {
                if (!isCalendarMonth(month)) {
                    refused = true;
                    e = QStringLiteral("חודש לא חוקי: \"%1\"").arg(month);
                    return false;
                }
                // A new month is given on the base of the latest month before it.
                QSqlQuery p(c.db());
                p.prepare(QStringLiteral(
                    "SELECT Basis, MEKADEM FROM Madad WHERE Month < ? ORDER BY Month DESC LIMIT 1"));
                p.addBindValue(month);
                if (!p.exec() || !p.next()) {
                    refused = true;
                    e = QStringLiteral("אין בטבלה חודש קודם לחודש %1").arg(showMonthOf(month));
                    return false;
                }
                const QString basis = p.value(0).toString();
                const double mekadem = p.value(1).toDouble();
                if (unusable(madad * mekadem)) return false;
                w.prepare(QStringLiteral(
                    "INSERT INTO Madad (Month, Basis51, Basis, Madad, MEKADEM, Show_month) "
                    "VALUES (?, ?, ?, ?, ?, ?)"));
                w.addBindValue(month);
                w.addBindValue(madad * mekadem);
                w.addBindValue(basis);
                w.addBindValue(madad);
                w.addBindValue(mekadem);
                w.addBindValue(showMonthOf(month));
            }
            if (!w.exec()) {
                e = w.lastError().text();
                return false;
            }
            // The table as it now stands, read inside the same transaction.
            return readSnapshot(c, path_, *fresh, &e) && c.exec(QStringLiteral("COMMIT"), &e);
        }();
        if (!good) {
            QString ignored;
            c.exec(QStringLiteral("ROLLBACK"), &ignored);
            *error = refused ? e
                             : QStringLiteral("לא ניתן לכתוב בטבלת המדדים %1: %2").arg(path_, e);
        }
    }
    if (!good) return false;
    data_ = std::move(fresh);
    stamp_ = readFileStamp();
    return true;
}

bool MadadTable::replaceWithDownload(const QString& sitePath, QString* error) {
    // Another process may be writing the old file. Its write lock is waited for
    // and held over the exchange, which also makes the engine roll back a
    // journal left behind by a broken write before the file is swapped.
    std::optional<Connection> hold;
    if (QFileInfo::exists(path_)) {
        hold.emplace(connectionName("swap"), path_, Connection::Mode::ReadWrite);
        QString e;
        QSqlError sqlError;
        if (hold->isOpen() && !hold->exec(QStringLiteral("BEGIN IMMEDIATE"), &e, &sqlError)) {
            const int code = sqlError.nativeErrorCode().toInt() & 0xff;
            if (code == 5 || code == 6) {  // SQLITE_BUSY, SQLITE_LOCKED
                *error = QStringLiteral("טבלת המדדים תפוסה כעת בידי תהליך אחר: %1").arg(e);
                return false;
            }
            // A damaged old file is replaced all the same: that is what an update is for.
            hold.reset();
        }
    }
    std::error_code ec;
    std::filesystem::rename(fsPath(sitePath), fsPath(path_), ec);
    if (hold && hold->isOpen()) {
        QString ignored;
        hold->exec(QStringLiteral("ROLLBACK"), &ignored);
    }
    hold.reset();
    if (ec) {
        *error = QStringLiteral("לא ניתן להחליף את הקובץ %1: %2")
                     .arg(path_, QString::fromLocal8Bit(ec.message().c_str()));
        return false;
    }
    return true;
}

bool MadadTable::UpdateMadadTable(const QUrl& source, QString* messageOut) {
    QString dummy;
    QString* message = messageOut ? messageOut : &dummy;
    auto fail = [&](const QString& why) {
        *message = QStringLiteral("עדכון טבלאות המדדים נכשל: %1").arg(why);
        if (data_) *message += QLatin1Char('\n') + updatedToMessage();
        return false;
    };

    if (source.isEmpty())
        return fail(QStringLiteral("לא הוגדרה כתובת להורדת טבלאות המדדים"));
    if (!source.isValid() || source.scheme().isEmpty())
        return fail(QStringLiteral("כתובת ההורדה אינה תקינה: %1").arg(source.toString()));
    if (!QCoreApplication::instance())
        return fail(QStringLiteral("ההורדה דורשת אובייקט QCoreApplication"));

    const QString site = QDir(dataDir_).filePath(QLatin1String(kDownloadFileName));
    if (!QDir().mkpath(dataDir_))
        return fail(QStringLiteral("לא ניתן ליצור את התיקייה %1").arg(dataDir_));
    // A working file left over from a broken run goes first.
    removeWorkingFile(site);
    if (QFileInfo::exists(site))
        return fail(QStringLiteral("לא ניתן למחוק את הקובץ %1").arg(site));

    // --- download ---
    QString why;
    {
        QFile out(site);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return fail(QStringLiteral("לא ניתן לכתוב את הקובץ %1: %2").arg(site, out.errorString()));

        QNetworkAccessManager nam;
        QNetworkRequest request(source);
        // Never a cached copy: always the newest file.
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::NoLessSafeRedirectPolicy);
        QNetworkReply* reply = nam.get(request);

        bool timedOut = false, tooBig = false, writeFailed = false;
        qint64 total = 0;
        auto drain = [&] {
            const QByteArray chunk = reply->readAll();
            total += chunk.size();
            if (total > kMaxDownloadBytes) {
                tooBig = true;
                reply->abort();
            } else if (!chunk.isEmpty() && out.write(chunk) != chunk.size()) {
                writeFailed = true;
                reply->abort();
            }
        };
        QEventLoop loop;
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            timedOut = true;
            reply->abort();
        });
        QObject::connect(reply, &QNetworkReply::readyRead, &loop, drain);
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        timer.start(timeoutMs_);
        if (!reply->isFinished()) loop.exec(QEventLoop::ExcludeUserInputEvents);
        timer.stop();
        if (!timedOut && !tooBig && !writeFailed) drain();

        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        const QString reason =
            reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        if (timedOut) {
            why = QStringLiteral("השרת לא השיב תוך %1 שניות (%2)")
                      .arg((timeoutMs_ + 999) / 1000)
                      .arg(source.toString());
        } else if (tooBig) {
            why = QStringLiteral("הקובץ שהורד גדול מדי לטבלת מדדים (%1)").arg(source.toString());
        } else if (writeFailed) {
            why = QStringLiteral("לא ניתן לכתוב את הקובץ %1: %2").arg(site, out.errorString());
        } else if (status.isValid() && (status.toInt() < 200 || status.toInt() > 299)) {
            why = QStringLiteral("השרת השיב בשגיאה %1%2 (%3)")
                      .arg(status.toInt())
                      .arg(reason.isEmpty() ? QString() : QStringLiteral(" ") + reason)
                      .arg(source.toString());
        } else if (reply->error() != QNetworkReply::NoError) {
            why = QStringLiteral("אין חיבור לשרת (%1): %2").arg(source.toString(), reply->errorString());
        } else if (!out.flush()) {
            why = QStringLiteral("לא ניתן לכתוב את הקובץ %1: %2").arg(site, out.errorString());
        }
#ifdef Q_OS_UNIX
        // On the disk before it takes the old file's name, so that a crash cannot leave a torn table.
        if (why.isEmpty() && ::fsync(out.handle()) != 0)
            why = QStringLiteral("לא ניתן לכתוב את הקובץ %1").arg(site);
#endif
        delete reply;
        out.close();
    }
    if (!why.isEmpty()) {
        removeWorkingFile(site);
        return fail(why);
    }

    // --- check: the download must be a table, or the old one stays ---
    {
        std::shared_ptr<const Snapshot> probe;
        QString e;
        if (!readSnapshotFromFile(connectionName("check"), site, &probe, &e)) {
            removeWorkingFile(site);
            return fail(QStringLiteral("הקובץ שהורד אינו טבלת מדדים תקינה; הטבלה הקיימת נשארה בתוקף (%1)")
                            .arg(e));
        }
    }

    // --- exchange ---
    if (!replaceWithDownload(site, &why)) {
        removeWorkingFile(site);
        return fail(why);
    }
    if (!loadFromDisk(&why)) {
        error_ = why;
        return fail(why);
    }
    *message = updatedToMessage();
    return true;
}

}  // namespace zelmor
