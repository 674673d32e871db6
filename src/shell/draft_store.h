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

#include <QMap>
#include <QString>
#include <memory>
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
    // A draft left by an earlier run is waiting.
    bool exists() const;

    // Replaces the draft; the old one stays whole until the new one is complete.
    bool write(const Draft& draft);
    std::optional<Draft> read(QString* error) const;
    void remove();
    // Keeps a draft that cannot be read beside the folder's files under another
    // name, so that nothing typed is thrown away unseen.
    void setAside();

private:
    QString path_;
    std::unique_ptr<QLockFile> lock_;
};

}  // namespace zelmor::shell
