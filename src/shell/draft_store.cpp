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
}

DraftStore::~DraftStore() = default;

bool DraftStore::exists() const { return enabled() && QFile::exists(path_); }

bool DraftStore::write(const Draft& draft) {
    if (!enabled()) return false;
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(draftText(draft));
    return file.commit();
}

std::optional<Draft> DraftStore::read(QString* error) const {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return std::nullopt;
    }
    return draftFromText(file.readAll(), error);
}

void DraftStore::remove() {
    if (enabled()) QFile::remove(path_);
}

void DraftStore::setAside() {
    if (!enabled()) return;
    const QString aside = path_ + QStringLiteral(".damaged");
    QFile::remove(aside);
    QFile::rename(path_, aside);
}

}  // namespace zelmor::shell
