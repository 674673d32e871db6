#pragma once
// The draft of the report in hand, so that a crash or a power cut loses at most
// half a minute of typing. The draft is one file in the data folder: the
// report's fields as a report document, the page on show and the texts of that
// page exactly as typed (they may not have passed their checks yet, so they are
// kept as texts and never parsed into the fields).
//
// Only one program on a data folder keeps a draft: it holds the folder's draft
// lock for its whole run. A second program on the same folder works without one.
// A lock left behind by a program that died is taken over.
//
// Writing a file safely means waiting for the disk, longer than a page turn
// may take; so the draft is made into text at once and written to disk by a
// thread of its own. Only the newest draft waiting is written. Everything
// that reads or removes the file first waits for the writing to end.

#include <QMap>
#include <QString>
#include <QThreadPool>
#include <memory>
#include <mutex>
#include <optional>

#include "report/nishum_input.h"

class QLockFile;

namespace zelmor::shell {

struct Draft {
    NishumInput report;
    int page = 1;
    QMap<QString, QString> texts;  // field name -> text on the screen
};

// The draft as the file holds it, and back. fromDraftText gives nullopt (and
// the reason in *error) for a text that is no draft of this program.
QByteArray draftText(const Draft& draft);
std::optional<Draft> draftFromText(const QByteArray& text, QString* error);

class DraftStore {
public:
    static constexpr const char* kFileName = "zelmor-draft.json";
    static constexpr const char* kLockName = "zelmor-draft.lock";

    // Takes the lock of the folder; without it the store does nothing.
    explicit DraftStore(const QString& dataDir);
    ~DraftStore();
    DraftStore(const DraftStore&) = delete;
    DraftStore& operator=(const DraftStore&) = delete;

    bool enabled() const { return lock_ != nullptr; }
    QString path() const { return path_; }
    // There is a draft (written by an earlier run or by this one).
    bool exists();

    // Replaces the draft; the old one stays whole until the new one is
    // complete. False when this program keeps no drafts.
    bool write(const Draft& draft);
    // Waits until the drafts handed to write() are on disk.
    void flush();
    std::optional<Draft> read(QString* error);
    void remove();
    // Keeps a draft that cannot be read beside the folder's files under another
    // name, so that nothing typed is thrown away unseen.
    void setAside();

private:
    void writeWaiting();

    QString path_;
    std::unique_ptr<QLockFile> lock_;
    QThreadPool writer_;
    std::mutex mutex_;
    std::optional<QByteArray> waiting_;  // the newest draft not yet taken by the writer
};

}  // namespace zelmor::shell
