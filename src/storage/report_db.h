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

// The database cannot be reached, or its content is not what this program
// wrote. The text says what and where.
class StorageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class MessageIcon { None, Information, Exclamation, Stop };

// What an operation tells the user: a message box's title, icon and text.
struct StoreOutcome {
    bool ok = false;
    MessageIcon icon = MessageIcon::None;
    std::string title;
    std::string text;  // empty when nothing needs saying
};

// Why an id cannot be a key: empty after trimming, or holds a double quotation
// mark or a control character. Empty when the id is fine.
std::string idProblem(std::string_view id);

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
    enum class Mode { CreateIfMissing, MustExist };

    // location: a file path, "sqlite:PATH" or a "postgresql://" URI. Nothing is
    // opened yet; the first operation connects (and creates the database and
    // its tables when allowed and missing).
    explicit ReportDb(std::string location, Mode mode = Mode::CreateIfMissing);
    ~ReportDb();
    ReportDb(const ReportDb&) = delete;
    ReportDb& operator=(const ReportDb&) = delete;

    const std::string& location() const { return location_; }
    bool isPostgres() const;

    // Connects and makes sure the tables exist with a known version. Raises
    // StorageError when that cannot be done.
    void ensureReady();

    // Loads the stored report of an id into `report`. On any failure (no such
    // report, database unreachable, a broken row) `report` is left exactly as
    // it was and the outcome says why. Opening "NewInit" gives a new report with
    // an empty id.
    StoreOutcome openNishum(std::string_view id, NishumInput& report);
    // A new report: the template row, with the id wiped.
    StoreOutcome newNishum(NishumInput& report) { return openNishum(kTemplateId, report); }

    // Replaces the two stored rows of the report's id (trimmed) in one
    // transaction. The report itself is not changed.
    StoreOutcome saveNishum(const NishumInput& report);
    // Saves many reports in one transaction (all or none); for batch import.
    // Every id must pass idProblem(); the outcome names the first that does not.
    StoreOutcome saveMany(const std::vector<NishumInput>& reports);

    // The taxpayer list: the view tblNames, without the template row.
    std::vector<NameRow> listNames(ListOrder order);

    // Deletes the report's tblDetails row, as the taxpayer list does; its
    // tblDetails1 row stays until a report is saved under the same id. An
    // empty id deletes nothing.
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

    std::string location_;
    Mode mode_;
    std::unique_ptr<Driver> driver_;
    std::function<void(const char*)> stepHook_;
    std::unique_ptr<ConnectionRegistry> connections_;
};

}  // namespace zelmor::storage
