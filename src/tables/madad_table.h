#pragma once
// The consumer price index table: the file "Madad.BRK" in the data folder, an
// SQLite database with the tables
//   Madad(Month TEXT primary key, Basis51 REAL, Basis TEXT, Madad REAL, MEKADEM REAL, Show_month TEXT)
//   LockMadad(LockMonth TEXT)
// Month is "YYYYMM" and is compared as text. Basis51 is the index on the base
// September 1951, 0 while the month has no value. The row "190101" is the value
// of last resort. Months up to and including LockMonth come from the published
// file and are read-only; later months may be typed in by the user.
//
// The table is small, so it is read into memory whole: GetMadad answers from
// memory and never touches the disk. reloadIfChanged() picks up changes made to
// the file by another process; setMadad() and UpdateMadadTable() keep the copy
// in memory current themselves. The database is opened only for the length of
// one operation, each time under a connection name of this instance's own.
//
// Const members may be called from several threads at once as long as no
// non-const member runs at the same time.

#include <QString>
#include <QUrl>
#include <memory>
#include <vector>

#include "core/madad_lookup.h"

namespace zelmor {

// One row of table Madad, as the table screen shows it.
struct MadadRow {
    QString month;      // "YYYYMM"
    double basis51 = 0;
    QString basis;      // the name of the base that Madad is given on
    double madad = 0;
    double mekadem = 0; // Madad x MEKADEM = Basis51
    QString showMonth;  // "MM/YYYY"
};

// The highest Basis51 that a usable table holds. The index of September 1951
// stands in the tens of millions today; a value beyond this bound is no index
// but a damaged table, and would carry every linked amount out of range.
inline constexpr double kMaxBasis51 = 1e12;

// What is wrong with a value of Basis51, or "" when it is usable: 0 (a month
// without a value yet) or a finite positive number up to kMaxBasis51. The
// tables' check, and the check of a value typed into the index grid.
QString basis51Problem(double basis51);

class MadadTable final : public MadadLookup {
public:
    // The file name of the table in the data folder, and the download's working file.
    static constexpr const char* kFileName = "Madad.BRK";
    static constexpr const char* kDownloadFileName = "Madad.site";
    // The month of the row of last resort.
    static constexpr const char* kFallbackMonth = "190101";

    // Opens <dataDir>/Madad.BRK and reads it into memory. When the file does not
    // exist it is made (with the folder) from the table that ships with the
    // program. Check ok(); on failure errorString() says what went wrong and
    // GetMadad answers 0.
    explicit MadadTable(const QString& dataDir);
    ~MadadTable() override;
    MadadTable(const MadadTable&) = delete;
    MadadTable& operator=(const MadadTable&) = delete;

    bool ok() const;
    QString errorString() const;
    QString filePath() const;

    // The index (base 9/1951) for the month of the date: the value of the latest
    // month not after it that has a value (Basis51 > 0), else the value of row
    // "190101".
    double GetMadad(Date date) const override;

    // LockMonth as "YYYY/MM".
    QString LastUpdateMonth() const;
    // LockMonth as stored, "YYYYMM".
    QString lockMonth() const;

    // All rows of table Madad in the order of Month.
    std::vector<MadadRow> rows() const;

    // Reads the file again when it was changed (or replaced) since it was last
    // read. Returns true when the table in memory was replaced. A file that has
    // gone missing is made again from the shipped table.
    bool reloadIfChanged();

    // Only months after LockMonth may be given a value.
    bool isMonthEditable(const QString& month) const;

    // Sets Madad of a month after LockMonth and with it Basis51 = Madad x MEKADEM,
    // in the file and in memory at once. A month that the table has no row for
    // yet gets one, with the base and multiplier of the latest earlier month.
    // Refuses, with a message in *error, a locked or malformed month and a value
    // that is not a number or is negative.
    bool setMadad(const QString& month, double madad, QString* error);
    // The same with the text typed into the grid's cell; a blank cell counts as "0".
    bool setMadad(const QString& month, const QString& madadText, QString* error);

    // Replaces the table with the file published at `source`. The file is
    // downloaded to <dataDir>/Madad.site and put in place of Madad.BRK (by an
    // atomic rename) only when it is a usable price index table; otherwise the
    // old file stays as it was and the working file is removed. Usable: every
    // Month is a month "YYYYMM" (the row "190101" among them), every Basis51
    // passes basis51Problem(), the row "190101" and the row of LockMonth have a
    // value above 0, and LockMonth is a month of the table. Opening the table
    // file applies the same check, so a damaged table is named as the cause. Returns true when the new file is in place. *message gets the
    // text for the user: on success the month that the tables now reach, on
    // failure what went wrong as well. Blocks until done or timed out; needs a
    // QCoreApplication.
    bool UpdateMadadTable(const QUrl& source, QString* message);

    // How long a download may take before it is given up (default one minute).
    void setDownloadTimeout(int milliseconds);

    // The text that tells the user how far the tables reach.
    QString updatedToMessage() const;

    struct Snapshot;  // the table as read from the file

private:
    bool loadFromDisk(QString* error);
    bool createFromShipped(QString* error);
    bool replaceWithDownload(const QString& sitePath, QString* error);
    // What tells that the file has changed since it was read.
    struct FileStamp {
        qint64 size = -1;  // -1: no file
        qint64 modified = 0;
        qint64 changed = 0;
        quint32 counter = 0;
        bool operator==(const FileStamp&) const = default;
    };
    FileStamp readFileStamp() const;
    QString connectionName(const char* purpose) const;

    QString dataDir_;
    QString path_;
    std::shared_ptr<const Snapshot> data_;
    QString error_;
    FileStamp stamp_;
    int timeoutMs_ = 60000;
    quint64 instanceId_ = 0;
};

}  // namespace zelmor
