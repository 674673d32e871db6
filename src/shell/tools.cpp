#include "shell/tools.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

#include "core/version.h"
#include "shell/messages.h"

namespace zelmor::shell::tools {
namespace {

QVariant setting(const char* key, const QVariant& fallback = {}) {
    return QSettings(QStringLiteral("Zelmor"), QStringLiteral("Zelmor")).value(QLatin1String(key), fallback);
}

}  // namespace

// The maker's web site unless the installation sets its own.
QString webSiteAddress() { return setting("app/webSite", QLatin1String(kWebSite)).toString().trimmed(); }

QString updateAddress() { return setting("tables/updateAddress").toString().trimmed(); }

QString form6111Folder(const QString& dataDir) {
    const QString folder = setting("tools/form6111Folder").toString().trimmed();
    return folder.isEmpty() ? QDir(dataDir).filePath(QStringLiteral("T6111ME")) : folder;
}

QString form6111Program() {
    const QString program = setting("tools/form6111Program").toString().trimmed();
    return program.isEmpty() ? QStringLiteral("T611111.EXE") : program;
}

bool openWebSite() {
    const QUrl url(webSiteAddress());
    return url.isValid() && !url.isEmpty() && QDesktopServices::openUrl(url);
}

const QStringList& calculatorCandidates() {
    static const QStringList names{QStringLiteral("gnome-calculator"), QStringLiteral("kcalc"),
                                   QStringLiteral("galculator"), QStringLiteral("xcalc")};
    return names;
}

QString findCalculator() {
    for (const QString& name : calculatorCandidates()) {
        const QString path = QStandardPaths::findExecutable(name);
        if (!path.isEmpty()) return path;
    }
    return {};
}

bool calculatorAvailable() { return !findCalculator().isEmpty(); }

bool startCalculator() {
    for (const QString& name : calculatorCandidates()) {
        const QString path = QStandardPaths::findExecutable(name);
        if (!path.isEmpty() && QProcess::startDetached(path, {})) return true;
    }
    return false;
}

bool startForm6111(QWidget* parent, const QString& dataDir, const QString& nishumId) {
    const QDir folder(form6111Folder(dataDir));
    const QString program = folder.filePath(form6111Program());
    // The program runs in its own folder, as it expects; the program's own
    // current folder is never changed.
    const bool started = folder.exists() && QFileInfo(program).isExecutable() &&
                         QProcess::startDetached(program, {nishumId.trimmed()}, folder.absolutePath());
    if (!started)
        showMessage(parent, MsgIcon::Exclamation, QStringLiteral("טופס 6111"),
                    QStringLiteral("בעיה בהפעלת טופס 6111.\nניתן לפנות לתמיכה"));
    return started;
}

}  // namespace zelmor::shell::tools
