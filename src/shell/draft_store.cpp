#include "shell/draft_store.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>

#include "report/report_json.h"

namespace zelmor::shell {

namespace {
constexpr const char* kFormat = "zelmor-draft";
constexpr int kVersion = 1;
}  // namespace

QByteArray draftText(const Draft& draft) {
    QJsonObject texts;
    for (auto it = draft.texts.cbegin(); it != draft.texts.cend(); ++it) texts.insert(it.key(), it.value());
    const QByteArray report = QByteArray::fromStdString(writeReportDocument(draft.report, false));
    QJsonObject root{{"format", kFormat},
                     {"version", kVersion},
                     {"page", draft.page},
                     {"texts", texts},
                     {"report", QJsonDocument::fromJson(report).object()}};
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

std::optional<Draft> draftFromText(const QByteArray& text, QString* error) {
    QJsonParseError parseError;
    const QJsonDocument doc = QJsonDocument::fromJson(text, &parseError);
    const QJsonObject root = doc.object();
    if (doc.isNull() || !doc.isObject() || root.value("format").toString() != QLatin1String(kFormat) ||
        root.value("version").toInt() != kVersion) {
        *error = QStringLiteral("the file is no draft of this program");
        return std::nullopt;
    }
    Draft draft;
    draft.page = root.value("page").toInt();
    if (draft.page < 1 || draft.page > 9) {
        *error = QStringLiteral("page %1 is no page of the report").arg(draft.page);
        return std::nullopt;
    }
    const QJsonObject texts = root.value("texts").toObject();
    for (auto it = texts.constBegin(); it != texts.constEnd(); ++it) draft.texts.insert(it.key(), it->toString());
    try {
        const QByteArray report = QJsonDocument(root.value("report").toObject()).toJson(QJsonDocument::Compact);
        draft.report = parseReportDocument(report.toStdString());
    } catch (const InputError& e) {
        *error = QString::fromStdString(e.what());
        return std::nullopt;
    }
    return draft;
}

DraftStore::DraftStore(const QString& dataDir) : path_(QDir(dataDir).filePath(QLatin1String(kFileName))) {
    QDir().mkpath(dataDir);
    auto lock = std::make_unique<QLockFile>(QDir(dataDir).filePath(QLatin1String(kLockName)));
    // A lock whose program has died is taken over; a live program's lock is kept
    // however long it has been held.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) lock_ = std::move(lock);
    writer_.setMaxThreadCount(1);  // one writer: the drafts reach the disk in their order
}

DraftStore::~DraftStore() { flush(); }

bool DraftStore::exists() {
    flush();
    return enabled() && QFile::exists(path_);
}

bool DraftStore::write(const Draft& draft) {
    if (!enabled()) return false;
    QByteArray text = draftText(draft);
    {
        std::lock_guard<std::mutex> lock(mutex_);
        const bool writerCalled = waiting_.has_value();
        waiting_ = std::move(text);
        if (writerCalled) return true;  // the writer will take this one instead
    }
    writer_.start([this] { writeWaiting(); });
    return true;
}

void DraftStore::writeWaiting() {
    QByteArray text;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!waiting_) return;
        text = std::move(*waiting_);
        waiting_.reset();
    }
    QSaveFile file(path_);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text);
        file.commit();  // a draft that cannot be written is no reason to stop the user
    }
}

void DraftStore::flush() { writer_.waitForDone(); }

std::optional<Draft> DraftStore::read(QString* error) {
    flush();
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return std::nullopt;
    }
    return draftFromText(file.readAll(), error);
}

void DraftStore::remove() {
    flush();
    if (enabled()) QFile::remove(path_);
}

void DraftStore::setAside() {
    flush();
    if (!enabled()) return;
    const QString aside = path_ + QStringLiteral(".damaged");
    QFile::remove(aside);
    QFile::rename(path_, aside);
}

}  // namespace zelmor::shell
