#include "storage/report_db.h"

#include <QChar>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringDecoder>
#include <QUrl>
#include <QUrlQuery>
#include <QVariant>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

#include "core/values.h"
#include "engine/const_doch.h"

namespace zelmor::storage {

namespace {

StoreOutcome succeeded(std::string id) {
    StoreOutcome out;
    out.ok = true;
    out.id = std::move(id);
    return out;
}

StoreOutcome failed(StoreError error, std::string id, std::string detail = {}) {
    StoreOutcome out;
    out.error = error;
    out.id = std::move(id);
    out.detail = std::move(detail);
    return out;
}

// Why an id cannot be the key of a report: empty, a bad character, or the
// template's. None when it can.
std::optional<StoreOutcome> refusedId(const std::string& id, bool templateAllowed) {
    const IdCheck check = checkId(id);
    if (check.fault == IdFault::Empty) return failed(StoreError::NoId, id);
    if (!check.ok()) {
        StoreOutcome out = failed(StoreError::BadId, id);
        out.idCheck = check;
        return out;
    }
    if (!templateAllowed && id == kTemplateId) return failed(StoreError::TemplateId, id);
    return std::nullopt;
}

std::string qs(const QString& s) { return s.toStdString(); }
QString qt(const std::string& s) { return QString::fromStdString(s); }

std::string quoted(std::string_view ident) { return "\"" + std::string(ident) + "\""; }

// --- The stored columns, in catalogue order ---

struct Columns {
    std::vector<const FieldDef*> details;   // tblDetails; IDM (Pratim) among them
    std::vector<const FieldDef*> details1;  // tblDetails1, beside its own IDM
    const FieldDef* idm = nullptr;
};

const Columns& columns() {
    static const Columns c = [] {
        Columns out;
        for (const FieldDef& f : allFields()) {
            if (f.table == StoredTable::Details) out.details.push_back(&f);
            if (f.table == StoredTable::Details1) out.details1.push_back(&f);
        }
        out.idm = findField("Pratim", "IDM");
        return out;
    }();
    return c;
}

// Without a tblDetails1 row, these fields become 0; the others of that table
// keep the value they had before the open.
bool zeroWhenDetails1Missing(const FieldDef& f) {
    switch (f.section) {
        case SectionId::Pturot:
            return true;
        case SectionId::Nikuim:
            return std::string_view(f.name) == "N206" || std::string_view(f.name) == "N207";
        case SectionId::Nekudot:
            return std::string_view(f.name).starts_with("N260_");
        default:
            return false;
    }
}

bool isNumeric(FieldType t) { return t == FieldType::Amount || t == FieldType::Number || t == FieldType::Count; }

void setZero(const FieldDef& f, NishumInput& r) {
    switch (f.type) {
        case FieldType::Amount: f.ref<Amount>(r) = Amount(0); break;
        case FieldType::Number: f.ref<std::int32_t>(r) = 0; break;
        case FieldType::Count: f.ref<std::int16_t>(r) = 0; break;
        case FieldType::Boolean: f.ref<bool>(r) = false; break;
        case FieldType::Date: f.ref<Date>(r) = Date(); break;
        case FieldType::Text: f.ref<std::string>(r).clear(); break;
    }
}

// One stored value into its field; false with a message naming the column when
// the value is not one that this program writes.
bool readValue(const QVariant& v, const FieldDef& f, const char* table, NishumInput& r, std::string& error) {
    auto fail = [&](const std::string& what) {
        error = "column " + std::string(f.name) + " of " + table + " " + what;
        return false;
    };
    if (v.isNull()) {
        if (f.nullable && isNumeric(f.type)) {
            setZero(f, r);
            return true;
        }
        return fail("holds Null");
    }
    if (f.type == FieldType::Text) {
        f.ref<std::string>(r) = qs(v.toString());
        return true;
    }
    bool ok = false;
    const qlonglong x = v.toLongLong(&ok);
    if (!ok) return fail("holds no whole number (" + qs(v.toString()) + ")");
    auto inRange = [&](qlonglong lo, qlonglong hi) { return x >= lo && x <= hi; };
    constexpr qlonglong i32lo = std::numeric_limits<std::int32_t>::min();
    constexpr qlonglong i32hi = std::numeric_limits<std::int32_t>::max();
    switch (f.type) {
        case FieldType::Amount:
            if (!inRange(i32lo, i32hi)) return fail("is out of the 32-bit range (" + std::to_string(x) + ")");
            f.ref<Amount>(r) = Amount(static_cast<std::int32_t>(x));
            break;
        case FieldType::Number:
            if (!inRange(i32lo, i32hi)) return fail("is out of the 32-bit range (" + std::to_string(x) + ")");
            f.ref<std::int32_t>(r) = static_cast<std::int32_t>(x);
            break;
        case FieldType::Count:
            if (!inRange(-32768, 32767)) return fail("is out of the 16-bit range (" + std::to_string(x) + ")");
            f.ref<std::int16_t>(r) = static_cast<std::int16_t>(x);
            break;
        case FieldType::Boolean:
            if (!inRange(0, 1)) return fail("holds " + std::to_string(x) + " where 0 or 1 belongs");
            f.ref<bool>(r) = x != 0;
            break;
        case FieldType::Date:
            if (!inRange(0, i32hi)) return fail("holds no day number (" + std::to_string(x) + ")");
            f.ref<Date>(r) = Date::fromSerial(static_cast<std::int32_t>(x));
            break;
        case FieldType::Text:
            break;
    }
    return true;
}

// The value written for a field: texts trimmed and never Null, Booleans 0/1,
// dates their day number.
QVariant storedValue(const FieldDef& f, const NishumInput& r) {
    switch (f.type) {
        case FieldType::Text: {
            const std::string t = trimmed(f.ref<std::string>(r));
            // An empty QString that is null would be bound as Null.
            return t.empty() ? QVariant(QString("")) : QVariant(qt(t));
        }
        case FieldType::Date: return QVariant(static_cast<int>(f.ref<Date>(r).serial()));
        case FieldType::Boolean: return QVariant(f.ref<bool>(r) ? 1 : 0);
        case FieldType::Amount: return QVariant(static_cast<int>(f.ref<Amount>(r).value()));
        case FieldType::Number: return QVariant(static_cast<int>(f.ref<std::int32_t>(r)));
        case FieldType::Count: return QVariant(static_cast<int>(f.ref<std::int16_t>(r)));
    }
    return {};
}

// The joined read of a report: the tblDetails columns, the tblDetails1 key
// (Null when that row is missing), the tblDetails1 columns. One statement, so
// that both rows come from the same moment even while another process saves.
std::string selectJoined() {
    const Columns& c = columns();
    std::string sql = "SELECT ";
    for (const FieldDef* f : c.details) sql += "d." + quoted(f->name) + ", ";
    sql += "d1.\"IDM\"";
    for (const FieldDef* f : c.details1) sql += ", d1." + quoted(f->name);
    sql += " FROM \"tblDetails\" d LEFT JOIN \"tblDetails1\" d1 ON d1.\"IDM\" = d.\"IDM\"";
    return sql;
}

// Fills a report from the current row of a joined read. On failure the report
// is partly changed: callers work on a copy.
bool applyRow(const QSqlQuery& q, NishumInput& r, std::string& error) {
    const Columns& c = columns();
    int i = 0;
    for (const FieldDef* f : c.details)
        if (!readValue(q.value(i++), *f, "tblDetails", r, error)) return false;
    const bool hasDetails1 = !q.value(i++).isNull();
    for (const FieldDef* f : c.details1) {
        if (hasDetails1) {
            if (!readValue(q.value(i), *f, "tblDetails1", r, error)) return false;
        } else if (zeroWhenDetails1Missing(*f)) {
            setZero(*f, r);
        }
        ++i;
    }
    // N260 is no column: it is the sum of the six counts.
    try {
        r.Nekudot.N260 = SumN260(r.Nekudot);
    } catch (const OverflowError&) {
        error = "the counts N260_1 to N260_6 of tblDetails1 add up beyond the 16-bit range";
        return false;
    }
    return true;
}

std::string insertSql(const char* table, const std::vector<const FieldDef*>& cols, bool withOwnKey) {
    std::string names, marks;
    if (withOwnKey) {
        names = "\"IDM\"";
        marks = "?";
    }
    for (const FieldDef* f : cols) {
        if (!names.empty()) {
            names += ", ";
            marks += ", ";
        }
        names += quoted(f->name);
        marks += "?";
    }
    return std::string("INSERT INTO ") + quoted(table) + " (" + names + ") VALUES (" + marks + ")";
}

std::string errorText(const QSqlError& e) {
    std::string t = qs(e.text());
    if (t.empty()) t = "unknown database error";
    return t;
}

std::atomic<int> instanceSerial{0};
std::atomic<int> threadSerial{0};
int currentThreadSerial() {
    thread_local const int serial = ++threadSerial;
    return serial;
}

}  // namespace

// --- Names and places ---

std::string DochDbName() { return "D" + std::to_string(ConstDoch().YEARDOCH()) + ".BRK"; }

std::string defaultDbPath(const std::string& dataDir) {
    return (std::filesystem::path(dataDir) / std::to_string(ConstDoch().YEARDOCH()) / DochDbName()).string();
}

IdCheck checkId(std::string_view id) {
    const std::string t = trimmed(id);
    if (t.empty()) return {IdFault::Empty, 0};
    // A byte order mark at the start is a character of the id too.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    const QString text = utf8(QByteArrayView(t.data(), static_cast<qsizetype>(t.size())));
    for (const char32_t ch : text.toUcs4()) {
        if (ch == U'"') return {IdFault::Quote, ch};
        switch (QChar::category(ch)) {
            case QChar::Other_Control:
            case QChar::Separator_Line:
            case QChar::Separator_Paragraph:
                return {IdFault::Control, ch};
            case QChar::Other_Format:  // direction marks and embeddings, joiners, the byte order mark
                return {IdFault::Invisible, ch};
            case QChar::Separator_Space:  // a no-break or thin space looks like the plain one
                if (ch != U' ') return {IdFault::Invisible, ch};
                break;
            default:
                break;
        }
    }
    return {};
}

// --- Drivers: what differs between SQLite and PostgreSQL ---

class ReportDb::Driver {
public:
    virtual ~Driver() = default;
    virtual bool postgres() const = 0;
    virtual QString qtDriver() const = 0;
    // Sets the connection's parameters, and for a file its folder.
    virtual void configure(QSqlDatabase& db, Mode mode) const = 0;
    // Settings of the session that follow a successful open; they write nothing.
    virtual void afterOpen(QSqlDatabase& db, Mode mode) const = 0;
    // Makes a database of ours ready for writing (runs outside a transaction,
    // before the first write of the connection).
    virtual void prepareForWriting(QSqlDatabase& db) const = 0;
    // Starts a write transaction. Several writers of different reports may
    // run at once where the engine allows; `exclusive` shuts out all others.
    virtual void beginWrite(QSqlDatabase& db, const std::vector<std::string>& ids, bool exclusive) const = 0;
    virtual std::string tableExistsSql() const = 0;
    // The number of tables, views and other objects the database holds.
    virtual std::string objectCountSql() const = 0;
    virtual std::string columnType(const FieldDef& f) const = 0;
    // Text order by code points, the same on both engines.
    virtual std::string byteOrder() const = 0;
    // The database for messages (never with a password).
    virtual std::string describe() const = 0;
};

namespace {

void execOrThrow(QSqlQuery& q, const std::string& sql, const std::string& what) {
    if (!q.exec(qt(sql))) throw StorageError(what + ": " + errorText(q.lastError()));
}

// The first read of a file that is no SQLite database at all fails with
// SQLITE_NOTADB: a file of another kind.
[[noreturn]] void structureUnreadable(const ReportDb::Driver& driver, const QSqlError& e) {
    constexpr int kSqliteNotADatabase = 26;
    if (!driver.postgres() && e.nativeErrorCode().toInt() == kSqliteNotADatabase)
        throw StorageError(driver.describe() + " is no report database (it is no database at all)",
                           StoreError::ForeignDatabase);
    throw StorageError("cannot read the structure of the report database " + driver.describe() + ": " + errorText(e));
}

class SqliteDriver : public ReportDb::Driver {
public:
    explicit SqliteDriver(std::string path) : path_(std::move(path)) {}
    bool postgres() const override { return false; }
    QString qtDriver() const override { return "QSQLITE"; }
    void configure(QSqlDatabase& db, ReportDb::Mode mode) const override {
        const QFileInfo info(qt(path_));
        if (mode != ReportDb::Mode::CreateIfMissing && !info.exists())
            throw StorageError("the report database " + path_ + " does not exist");
        if (info.isDir()) throw StorageError(path_ + " is a folder, not a report database");
        if (mode == ReportDb::Mode::CreateIfMissing && !QDir().mkpath(info.absolutePath()))
            throw StorageError("cannot create the folder " + qs(info.absolutePath()));
        // Several processes share the file, also across a network share: a
        // writer waits for the others instead of failing.
        QString options = "QSQLITE_BUSY_TIMEOUT=30000";
        if (mode == ReportDb::Mode::ReadOnly) {
            // Read-only through a URI: nothing is written, not even a journal,
            // so the file can be read where it cannot be written.
            options += ";QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY";
            db.setDatabaseName(QUrl::fromLocalFile(info.absoluteFilePath()).toString(QUrl::FullyEncoded) +
                               "?mode=ro");
        } else {
            db.setDatabaseName(qt(path_));
        }
        db.setConnectOptions(options);
    }
    void afterOpen(QSqlDatabase& db, ReportDb::Mode) const override {
        QSqlQuery q(db);
        if (!q.exec("PRAGMA synchronous=FULL")) structureUnreadable(*this, q.lastError());
    }
    void prepareForWriting(QSqlDatabase& db) const override {
        // The rollback journal: unlike a write-ahead log it works on network
        // shares and lets a read-only folder be read, and a process killed in
        // a save still leaves the last committed state. A file that an older
        // build left in WAL mode is switched here; when another process holds
        // it just now, a later writer switches it.
        QSqlQuery q(db);
        q.exec("PRAGMA journal_mode=DELETE");
    }
    void beginWrite(QSqlDatabase& db, const std::vector<std::string>&, bool) const override {
        // IMMEDIATE takes the write lock at once (waiting up to the busy
        // timeout), so the transaction never has to upgrade a read lock.
        QSqlQuery q(db);
        execOrThrow(q, "BEGIN IMMEDIATE", "cannot start a transaction");
    }
    std::string tableExistsSql() const override {
        return "SELECT 1 FROM sqlite_master WHERE type IN ('table', 'view') AND name = ?";
    }
    std::string objectCountSql() const override { return "SELECT COUNT(*) FROM sqlite_master"; }
    std::string columnType(const FieldDef& f) const override {
        return f.type == FieldType::Text ? "TEXT" : "INTEGER";
    }
    std::string byteOrder() const override { return ""; }  // BINARY is SQLite's default
    std::string describe() const override { return path_; }

private:
    std::string path_;
};

class PostgresDriver : public ReportDb::Driver {
public:
    explicit PostgresDriver(std::string uri) : uri_(std::move(uri)) {}
    bool postgres() const override { return true; }
    QString qtDriver() const override { return "QPSQL"; }
    void configure(QSqlDatabase& db, ReportDb::Mode) const override {
        const QUrl url(qt(uri_));
        if (!url.isValid()) throw StorageError("malformed database URI " + describe());
        db.setHostName(url.host());
        if (url.port() > 0) db.setPort(url.port());
        db.setUserName(url.userName());
        db.setPassword(url.password());
        QString name = url.path();
        if (name.startsWith('/')) name.remove(0, 1);
        db.setDatabaseName(name);
        QStringList options;
        for (const auto& [key, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded)) {
            if (key == "host") db.setHostName(value);  // a socket folder
            else if (key == "port") db.setPort(value.toInt());
            else if (key == "user") db.setUserName(value);
            else if (key == "password") db.setPassword(value);
            else if (key == "dbname") db.setDatabaseName(value);
            else options << key + "=" + value;
        }
        if (!options.contains("connect_timeout", Qt::CaseInsensitive)) options << "connect_timeout=10";
        db.setConnectOptions(options.join(';'));
    }
    void afterOpen(QSqlDatabase& db, ReportDb::Mode mode) const override {
        QSqlQuery q(db);
        execOrThrow(q, "SET client_min_messages TO WARNING", "cannot open the report database " + describe());
        if (mode == ReportDb::Mode::ReadOnly)
            execOrThrow(q, "SET default_transaction_read_only = on", "cannot open the report database " + describe());
    }
    void prepareForWriting(QSqlDatabase&) const override {}
    void beginWrite(QSqlDatabase& db, const std::vector<std::string>& ids, bool exclusive) const override {
        QSqlQuery q(db);
        execOrThrow(q, "BEGIN", "cannot start a transaction");
        // Row locks alone do not order two saves of one id (both delete, then
        // both insert), so writers take advisory locks: every writer holds the
        // database key shared and the report's key alone; a batch or a change
        // of structure holds the database key alone.
        try {
            execOrThrow(q,
                        exclusive ? "SELECT pg_advisory_xact_lock(2015, 0)"
                                  : "SELECT pg_advisory_xact_lock_shared(2015, 0)",
                        "cannot lock the report database");
            if (!exclusive) {
                std::vector<std::string> sorted(ids);
                std::sort(sorted.begin(), sorted.end());
                for (const std::string& id : sorted) {
                    q.prepare("SELECT pg_advisory_xact_lock(2016, hashtext(?))");
                    q.addBindValue(qt(id));
                    if (!q.exec()) throw StorageError("cannot lock the report: " + errorText(q.lastError()));
                }
            }
        } catch (...) {
            q.exec("ROLLBACK");
            throw;
        }
    }
    std::string tableExistsSql() const override {
        return "SELECT 1 FROM information_schema.tables WHERE table_schema = current_schema() AND table_name = ?";
    }
    std::string objectCountSql() const override {
        return "SELECT COUNT(*) FROM information_schema.tables WHERE table_schema = current_schema()";
    }
    std::string columnType(const FieldDef& f) const override {
        switch (f.type) {
            case FieldType::Text: return "TEXT";
            case FieldType::Count:
            case FieldType::Boolean: return "SMALLINT";
            default: return "INTEGER";
        }
    }
    std::string byteOrder() const override { return " COLLATE \"C\""; }
    std::string describe() const override {
        return qs(QUrl(qt(uri_)).toString(QUrl::RemovePassword));
    }

private:
    std::string uri_;
};

std::unique_ptr<ReportDb::Driver> makeDriver(const std::string& location) {
    if (location.starts_with("postgresql://") || location.starts_with("postgres://"))
        return std::make_unique<PostgresDriver>(location);
    std::string path = location;
    if (path.starts_with("sqlite:")) {
        path.erase(0, 7);
        if (path.starts_with("//")) path.erase(0, 2);
    }
    if (path.empty()) throw StorageError("no report database given");
    return std::make_unique<SqliteDriver>(path);
}

}  // namespace

// --- Connections: one per thread and ReportDb object ---

struct ConnectionRegistry {
    std::mutex mutex;
    int instance = 0;
    std::map<int, QString> byThread;  // connection names by thread
};

ReportDb::ReportDb(std::string location, Mode mode)
    : location_(std::move(location)), mode_(mode), driver_(makeDriver(location_)),
      connections_(std::make_unique<ConnectionRegistry>()) {
    connections_->instance = ++instanceSerial;
}

ReportDb::~ReportDb() {
    // Every thread that used this object must be done with it by now.
    for (const auto& [thread, name] : connections_->byThread) {
        {
            QSqlDatabase db = QSqlDatabase::database(name, false);
            if (db.isOpen()) db.close();
        }
        QSqlDatabase::removeDatabase(name);
    }
}

bool ReportDb::isPostgres() const { return driver_->postgres(); }

namespace {

bool tableExists(QSqlDatabase& db, const ReportDb::Driver& driver, const char* name) {
    QSqlQuery q(db);
    q.prepare(qt(driver.tableExistsSql()));
    q.addBindValue(QString(name));
    if (!q.exec()) structureUnreadable(driver, q.lastError());
    return q.next();
}

long long objectCount(QSqlDatabase& db, const ReportDb::Driver& driver) {
    QSqlQuery q(db);
    if (!q.exec(qt(driver.objectCountSql())) || !q.next()) structureUnreadable(driver, q.lastError());
    return q.value(0).toLongLong();
}

int storedVersion(QSqlDatabase& db) {
    QSqlQuery q(db);
    execOrThrow(q, "SELECT MAX(\"version\") FROM \"zelmorSchema\"", "cannot read the structure version");
    return q.next() ? q.value(0).toInt() : 0;
}

void insertReport(QSqlQuery& ins, QSqlQuery& ins1, const NishumInput& r, const QString& id) {
    const Columns& c = columns();
    int i = 0;
    for (const FieldDef* f : c.details) ins.bindValue(i++, storedValue(*f, r));
    if (!ins.exec()) throw StorageError(errorText(ins.lastError()));
    i = 0;
    ins1.bindValue(i++, id);
    for (const FieldDef* f : c.details1) ins1.bindValue(i++, storedValue(*f, r));
    if (!ins1.exec()) throw StorageError(errorText(ins1.lastError()));
}

void prepareOrThrow(QSqlQuery& q, const std::string& sql) {
    if (!q.prepare(qt(sql))) throw StorageError(errorText(q.lastError()));
}

void commitOrThrow(QSqlDatabase& db) {
    QSqlQuery q(db);
    execOrThrow(q, "COMMIT", "cannot commit");
}

void rollbackQuietly(QSqlDatabase& db) {
    QSqlQuery q(db);
    q.exec("ROLLBACK");
}

// Creates whatever of the structure is missing. Runs inside a write transaction.
void createStructure(QSqlDatabase& db, const ReportDb::Driver& driver) {
    const Columns& c = columns();
    auto columnDef = [&](const FieldDef& f) {
        std::string d = quoted(f.name) + " " + driver.columnType(f);
        if (!(f.nullable && isNumeric(f.type))) d += " NOT NULL";
        d += f.type == FieldType::Text ? " DEFAULT ''" : " DEFAULT 0";
        return d;
    };
    std::string details = "CREATE TABLE IF NOT EXISTS \"tblDetails\" (";
    for (const FieldDef* f : c.details) {
        details += columnDef(*f);
        if (f == c.idm) details += " PRIMARY KEY CHECK (\"IDM\" <> '')";
        details += ", ";
    }
    details.resize(details.size() - 2);
    details += ")";
    std::string details1 = "CREATE TABLE IF NOT EXISTS \"tblDetails1\" (\"IDM\" TEXT NOT NULL PRIMARY KEY CHECK (\"IDM\" <> '')";
    for (const FieldDef* f : c.details1) details1 += ", " + columnDef(*f);
    details1 += ")";

    QSqlQuery q(db);
    execOrThrow(q, details, "cannot create tblDetails");
    execOrThrow(q, details1, "cannot create tblDetails1");
    // The taxpayer list: "family name, a blank, first name"; the template row
    // is no taxpayer.
    if (!tableExists(db, driver, "tblNames"))
        execOrThrow(q,
                    "CREATE VIEW \"tblNames\" AS SELECT \"IDM\" AS \"dID\", "
                    "\"LastNameM\" || ' ' || \"FirstNameM\" AS \"dName\" FROM \"tblDetails\" WHERE \"IDM\" <> '" +
                        std::string(kTemplateId) + "'",
                    "cannot create tblNames");
    execOrThrow(q, "CREATE TABLE IF NOT EXISTS \"zelmorSchema\" (\"version\" INTEGER NOT NULL)",
                "cannot create the version table");

    // The template row of a new report: zeros, empty texts, no dates, False.
    auto hasTemplate = [&](const char* table) {
        QSqlQuery t(db);
        prepareOrThrow(t, std::string("SELECT 1 FROM ") + quoted(table) + " WHERE \"IDM\" = ?");
        t.addBindValue(QString(kTemplateId));
        if (!t.exec()) throw StorageError(errorText(t.lastError()));
        return t.next();
    };
    NishumInput blank;
    blank.Pratim.IDM = kTemplateId;
    if (!hasTemplate("tblDetails")) {
        QSqlQuery ins(db);
        prepareOrThrow(ins, insertSql("tblDetails", c.details, false));
        const int n = static_cast<int>(c.details.size());
        for (int i = 0; i < n; ++i) ins.bindValue(i, storedValue(*c.details[i], blank));
        if (!ins.exec()) throw StorageError("cannot add the template row: " + errorText(ins.lastError()));
    }
    if (!hasTemplate("tblDetails1")) {
        QSqlQuery ins1(db);
        prepareOrThrow(ins1, insertSql("tblDetails1", c.details1, true));
        ins1.bindValue(0, QString(kTemplateId));
        const int n = static_cast<int>(c.details1.size());
        for (int i = 0; i < n; ++i) ins1.bindValue(i + 1, storedValue(*c.details1[i], blank));
        if (!ins1.exec()) throw StorageError("cannot add the template row: " + errorText(ins1.lastError()));
    }
    execOrThrow(q, "DELETE FROM \"zelmorSchema\"", "cannot write the structure version");
    execOrThrow(q, "INSERT INTO \"zelmorSchema\" (\"version\") VALUES (" + std::to_string(kSchemaVersion) + ")",
                "cannot write the structure version");
}

}  // namespace

std::string ReportDb::connectionName() {
    std::lock_guard lock(connections_->mutex);
    const int thread = currentThreadSerial();
    auto it = connections_->byThread.find(thread);
    if (it != connections_->byThread.end()) return qs(it->second);

    const QString name =
        QString("zelmor-storage-%1-%2").arg(connections_->instance).arg(thread);
    auto drop = [&] { QSqlDatabase::removeDatabase(name); };
    try {
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(driver_->qtDriver(), name);
            if (!db.isValid())
                throw StorageError("the database driver " + qs(driver_->qtDriver()) +
                                   " is not available (is the Qt SQL plug-in installed?)");
            driver_->configure(db, mode_);
            if (!db.open())
                throw StorageError("cannot open the report database " + driver_->describe() + ": " +
                                   errorText(db.lastError()));
            driver_->afterOpen(db, mode_);

            // What the database holds decides what may be done with it: our
            // tables of a known version are used; a new or empty database is
            // given them when writing is allowed; anything else is another
            // program's and is never written to.
            const std::string where = driver_->describe();
            if (tableExists(db, *driver_, "zelmorSchema")) {
                const int version = storedVersion(db);
                if (version > kSchemaVersion)
                    throw StorageError("the report database " + where +
                                           " was written by a newer version of the program (structure version " +
                                           std::to_string(version) + ")",
                                       StoreError::NewerDatabase);
                if (version < 1 || !tableExists(db, *driver_, "tblDetails") ||
                    !tableExists(db, *driver_, "tblDetails1"))
                    throw StorageError(where + " is no report database of this program (its tables are incomplete)",
                                       StoreError::ForeignDatabase);
                if (mode_ != Mode::ReadOnly) driver_->prepareForWriting(db);
            } else if (objectCount(db, *driver_) > 0) {
                throw StorageError(where + " is no report database of this program (it holds other tables); "
                                           "nothing was written to it",
                                   StoreError::ForeignDatabase);
            } else if (mode_ != Mode::CreateIfMissing) {
                throw StorageError(where + " is empty: no report has been stored in it");
            } else {
                driver_->prepareForWriting(db);
                driver_->beginWrite(db, {}, true);
                try {
                    createStructure(db, *driver_);
                    commitOrThrow(db);
                } catch (...) {
                    rollbackQuietly(db);
                    throw;
                }
            }
        }
    } catch (...) {
        drop();
        throw;
    }
    connections_->byThread.emplace(thread, name);
    return qs(name);
}

void ReportDb::ensureReady() { connectionName(); }

// --- Outcomes ---

StoreOutcome ReportDb::named(StoreOutcome out) const {
    out.database = driver_->describe();
    return out;
}

StoreOutcome ReportDb::failure(const std::exception& e, const std::string& id) const {
    const auto* se = dynamic_cast<const StorageError*>(&e);
    return named(failed(se ? se->kind() : StoreError::DatabaseFailure, id, e.what()));
}

// --- Open ---

StoreOutcome ReportDb::openNishum(std::string_view id, NishumInput& report) {
    const std::string key = trimmed(id);
    if (auto refused = refusedId(key, true)) return named(*refused);
    try {
        QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
        QSqlQuery q(db);
        q.setForwardOnly(true);
        prepareOrThrow(q, selectJoined() + " WHERE d.\"IDM\" = ?");
        q.addBindValue(qt(key));
        if (!q.exec()) throw StorageError(errorText(q.lastError()));
        NishumInput loaded = report;
        if (!q.next()) {
            if (key != kTemplateId) return named(failed(StoreError::NotFound, key));
            loaded = NishumInput();  // the template row is gone: the built-in defaults
        } else {
            std::string error;
            if (!applyRow(q, loaded, error))
                throw StorageError("the stored report " + key + " is damaged: " + error, StoreError::Damaged);
        }
        if (key == kTemplateId) loaded.Pratim.IDM.clear();
        report = std::move(loaded);
        return named(succeeded(key));
    } catch (const std::exception& e) {
        return failure(e, key);
    }
}

// --- Save ---

void ReportDb::saveInTransaction(const std::vector<const NishumInput*>& reports) {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    std::vector<std::string> ids;
    for (const NishumInput* r : reports) ids.push_back(trimmed(r->Pratim.IDM));
    driver_->beginWrite(db, ids, reports.size() > 1);
    try {
        const Columns& c = columns();
        QSqlQuery del(db), del1(db), ins(db), ins1(db);
        prepareOrThrow(del, "DELETE FROM \"tblDetails\" WHERE \"IDM\" = ?");
        prepareOrThrow(del1, "DELETE FROM \"tblDetails1\" WHERE \"IDM\" = ?");
        prepareOrThrow(ins, insertSql("tblDetails", c.details, false));
        prepareOrThrow(ins1, insertSql("tblDetails1", c.details1, true));
        for (std::size_t k = 0; k < reports.size(); ++k) {
            const QString id = qt(ids[k]);
            del.bindValue(0, id);
            if (!del.exec()) throw StorageError(errorText(del.lastError()));
            del1.bindValue(0, id);
            if (!del1.exec()) throw StorageError(errorText(del1.lastError()));
            if (stepHook_) stepHook_("deleted");
            insertReport(ins, ins1, *reports[k], id);
            if (stepHook_) stepHook_("inserted");
        }
        commitOrThrow(db);
    } catch (...) {
        rollbackQuietly(db);
        throw;
    }
}

StoreOutcome ReportDb::saveNishum(const NishumInput& report) {
    const std::string id = trimmed(report.Pratim.IDM);
    if (auto refused = refusedId(id, false)) return named(*refused);
    try {
        saveInTransaction({&report});
        return named(succeeded(id));
    } catch (const std::exception& e) {
        return failure(e, id);
    }
}

StoreOutcome ReportDb::saveMany(const std::vector<NishumInput>& reports) {
    std::vector<const NishumInput*> all;
    for (const NishumInput& r : reports) {
        if (auto refused = refusedId(trimmed(r.Pratim.IDM), false)) return named(*refused);
        all.push_back(&r);
    }
    if (all.empty()) return named(succeeded({}));
    try {
        saveInTransaction(all);
        return named(succeeded({}));
    } catch (const std::exception& e) {
        return failure(e, {});
    }
}

// --- List and delete ---

std::vector<NameRow> ReportDb::listNames(ListOrder order) {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    QSqlQuery q(db);
    q.setForwardOnly(true);
    const std::string by = driver_->byteOrder();
    const std::string sql = "SELECT \"dID\", \"dName\" FROM \"tblNames\" ORDER BY " +
                            (order == ListOrder::ByName ? "\"dName\"" + by + ", \"dID\"" + by : "\"dID\"" + by);
    execOrThrow(q, sql, "cannot read the taxpayer list");
    std::vector<NameRow> rows;
    while (q.next()) rows.push_back({qs(q.value(0).toString()), qs(q.value(1).toString())});
    return rows;
}

StoreOutcome ReportDb::deleteNishum(std::string_view id) {
    const std::string key = trimmed(id);
    if (key.empty()) return named(succeeded(key));  // nothing chosen, nothing deleted
    if (auto refused = refusedId(key, false)) return named(*refused);
    try {
        QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
        QSqlQuery q(db);
        prepareOrThrow(q, "DELETE FROM \"tblDetails\" WHERE \"IDM\" = ?");
        q.addBindValue(qt(key));
        if (!q.exec()) throw StorageError(errorText(q.lastError()));
        return named(succeeded(key));
    } catch (const std::exception& e) {
        return failure(e, key);
    }
}

// --- Batch read ---

std::size_t ReportDb::countStored() {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    QSqlQuery q(db);
    prepareOrThrow(q, "SELECT COUNT(*) FROM \"tblDetails\" WHERE \"IDM\" <> ?");
    q.addBindValue(QString(kTemplateId));
    if (!q.exec() || !q.next()) throw StorageError("cannot count the stored reports: " + errorText(q.lastError()));
    return static_cast<std::size_t>(q.value(0).toLongLong());
}

void ReportDb::forEachStored(const std::function<void(const StoredReport&)>& fn) {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    // The template first: a report without its tblDetails1 row keeps the
    // template's values there, as a new report opened afterwards would.
    NishumInput base;
    if (!newNishum(base).ok) base = NishumInput();

    QSqlQuery q(db);
    q.setForwardOnly(true);
    prepareOrThrow(q, selectJoined() + " WHERE d.\"IDM\" <> ? ORDER BY d.\"IDM\"" + driver_->byteOrder());
    q.addBindValue(QString(kTemplateId));
    if (!q.exec()) throw StorageError("cannot read the stored reports: " + errorText(q.lastError()));
    StoredReport row;
    while (q.next()) {
        row.report = base;
        row.error.clear();
        row.ok = applyRow(q, row.report, row.error);
        row.id = row.ok ? row.report.Pratim.IDM : qs(q.value(0).toString());
        if (!row.ok) row.error = "the stored report " + row.id + " is damaged: " + row.error;
        fn(row);
    }
    if (q.lastError().isValid()) throw StorageError("cannot read the stored reports: " + errorText(q.lastError()));
}

// --- Raw access ---

void ReportDb::execRaw(const std::string& sql) {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    QSqlQuery q(db);
    execOrThrow(q, sql, "statement failed");
}

std::string ReportDb::queryScalar(const std::string& sql) {
    QSqlDatabase db = QSqlDatabase::database(qt(connectionName()), false);
    QSqlQuery q(db);
    execOrThrow(q, sql, "query failed");
    if (!q.next() || q.value(0).isNull()) return {};
    return qs(q.value(0).toString());
}

}  // namespace zelmor::storage
