#pragma once
// The report database of the tax year: one row in tblDetails and one in
// tblDetails1 for every stored report, both keyed by the registered spouse's id,
// plus the template row "NewInit" that a new report is opened from.
//
// The database is SQLite (a plain path or "sqlite:PATH") or PostgreSQL (a
// "postgresql://user@host:port/dbname" URI, for offices where several
// workstations share one database). Both are reached through Qt's SQL module,
// one connection per thread and ReportDb object.
//
// Stored values: a text column holds the field trimmed, never Null; amounts,
// numbers and counts are integers; a Boolean is 0 or 1; a date is its day number
// (0 = no date). A numeric column whose catalogue row allows Null reads Null as
// 0; every other column is NOT NULL. N260 is no column.
//
// Safety of the stored reports comes first: a save replaces both rows in one
// transaction, so a failure at any step leaves the rows as they were; the id is
// always bound as a parameter; and an open loads into a copy, so that the open
// report is never left half loaded.

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "report/nishum_input.h"

namespace zelmor::storage {

// The key of the template row of a new report.
inline constexpr const char* kTemplateId = "NewInit";
// Bumped whenever the stored structure changes; the database keeps its own.
inline constexpr int kSchemaVersion = 1;

// "D2015.BRK": the database of this build's tax year.
std::string DochDbName();
// The default place of the report database: <dataDir>/2015/D2015.BRK.
std::string defaultDbPath(const std::string& dataDir);

// Why an operation on the stored reports did not happen. The storage says
// what went wrong; the desktop and the command line choose their own words.
enum class StoreError {
    None,
    NoId,             // the id is empty after trimming
    BadId,            // the id holds a character no id may hold (see IdFault)
    TemplateId,       // the id of the template row, which is no report
    NotFound,         // no report is stored under the id
    Damaged,          // the stored rows hold a value this program never writes
    DatabaseFailure,  // the database cannot be reached, or a statement failed
    ForeignDatabase,  // the file or database holds something else than our tables
    NewerDatabase,    // the structure was written by a newer version of the program
};

// The database cannot be reached, or its content is not what this program
// wrote. The text says what and where, in English, for logs and the command line.
class StorageError : public std::runtime_error {
public:
    explicit StorageError(const std::string& what, StoreError kind = StoreError::DatabaseFailure)
        : std::runtime_error(what), kind_(kind) {}
    StoreError kind() const { return kind_; }

private:
    StoreError kind_;
};

// What is wrong with an id as a key. An id that looks like another one is
// refused: besides the double quotation mark and control characters this takes
// direction marks, joiners, the byte order mark, every other invisible format
// character and blanks other than the plain space.
enum class IdFault { None, Empty, Quote, Control, Invisible };

struct IdCheck {
    IdFault fault = IdFault::None;
    char32_t ch = 0;  // the character at fault (Quote, Control, Invisible)
    bool ok() const { return fault == IdFault::None; }
};
// Checks the id after trimming it.
IdCheck checkId(std::string_view id);

// The outcome of opening, saving or deleting a report.
struct StoreOutcome {
    bool ok = false;
    StoreError error = StoreError::None;
    IdCheck idCheck;       // with BadId: what is wrong with the id
    std::string id;        // the id the operation was about, trimmed
    std::string database;  // the database, as it can be named to the user (never a password)
    std::string detail;    // with the failures of the database: what happened, in English
};

struct NameRow {
    std::string dID;
    std::string dName;
};
enum class ListOrder { ByName, ById };

// One stored report as the batch read gives it: either the report or what is
// wrong with its rows.
struct StoredReport {
    std::string id;
    bool ok = false;
    NishumInput report;
    std::string error;
};

struct ConnectionRegistry;

class ReportDb {
public:
    // CreateIfMissing: a missing file, or an empty one, becomes a report
    // database. MustExist: the database must be there with its tables.
    // ReadOnly: as MustExist, and nothing is ever written (a SQLite file is
    // opened read-only, so it can be read from a read-only folder); every
    // write is refused.
    enum class Mode { CreateIfMissing, MustExist, ReadOnly };

    // location: a file path, "sqlite:PATH" or a "postgresql://" URI. Nothing is
    // opened yet; the first operation connects (and creates the database and
    // its tables when allowed and missing). A database that holds anything but
    // our tables is never written to: every operation on it fails with
    // ForeignDatabase.
    explicit ReportDb(std::string location, Mode mode = Mode::CreateIfMissing);
    ~ReportDb();
    ReportDb(const ReportDb&) = delete;
    ReportDb& operator=(const ReportDb&) = delete;

    const std::string& location() const { return location_; }
    bool isPostgres() const;

    // Connects and makes sure the tables exist with a known version. Raises
    // StorageError (with its kind) when that cannot be done.
    void ensureReady();

    // Loads the stored report of an id into `report`. On any failure (no such
    // report, database unreachable, a broken row) `report` is left exactly as
    // it was and the outcome says why. Opening "NewInit" gives a new report with
    // an empty id.
    StoreOutcome openNishum(std::string_view id, NishumInput& report);
    // A new report: the template row, with the id wiped.
    StoreOutcome newNishum(NishumInput& report) { return openNishum(kTemplateId, report); }

    // Replaces the two stored rows of the report's id (trimmed) in one
    // transaction. The report itself is not changed. The template's id is
    // refused (TemplateId): the template row is never written.
    StoreOutcome saveNishum(const NishumInput& report);
    // Saves many reports in one transaction (all or none); for batch import.
    // Every id must pass checkId() and none may be the template's; the outcome
    // names the first that does not, and nothing is stored.
    StoreOutcome saveMany(const std::vector<NishumInput>& reports);

    // The taxpayer list: the view tblNames, without the template row.
    std::vector<NameRow> listNames(ListOrder order);

    // Deletes the report's tblDetails row, as the taxpayer list does; its
    // tblDetails1 row stays until a report is saved under the same id. An
    // empty id deletes nothing (and succeeds); the template's id is refused.
    StoreOutcome deleteNishum(std::string_view id);

    // The number of stored reports (the template row not counted).
    std::size_t countStored();

    // Every stored report in id order, without the template row, read in one
    // query. A missing tblDetails1 row falls back to the template's values by
    // the open rules. Raises StorageError when the database cannot be read.
    void forEachStored(const std::function<void(const StoredReport&)>& fn);

    // For tests of failure handling: called at the named steps of a save
    // ("deleted": both old rows are deleted and the new ones not yet added;
    // "inserted": both new rows are added, before the commit). An exception
    // thrown from it fails the save at that step.
    void setSaveStepHook(std::function<void(const char* step)> hook) { stepHook_ = std::move(hook); }

    // Runs one statement on this thread's connection (tests and maintenance).
    // Raises StorageError on failure.
    void execRaw(const std::string& sql);
    // The first column of the first row of a query, as text ("" for Null or no row).
    std::string queryScalar(const std::string& sql);

    class Driver;

private:
    // This thread's connection, opened (and the structure checked) on first use.
    std::string connectionName();
    void saveInTransaction(const std::vector<const NishumInput*>& reports);
    // The outcome with the database named; the outcome of a caught failure.
    StoreOutcome named(StoreOutcome out) const;
    StoreOutcome failure(const std::exception& e, const std::string& id) const;

    std::string location_;
    Mode mode_;
    std::unique_ptr<Driver> driver_;
    std::function<void(const char*)> stepHook_;
    std::unique_ptr<ConnectionRegistry> connections_;
};

}  // namespace zelmor::storage
