#pragma once
// What the widget tests share: reading reports, a data folder, finding and
// typing into the controls, and the message boxes shown.
#include <gtest/gtest.h>

#include <QtTest>
#include <QtWidgets>

#include "core/tax_year.h"
#include "report/report_json.h"
#include "shell/messages.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

namespace zelmor::shell::testing {

inline const QString kGoldenReports = QStringLiteral(ZELMOR_SOURCE_DIR "/tests/golden/reports/");
inline const QString kShellData = QStringLiteral(ZELMOR_SOURCE_DIR "/tests/shell/data/");

inline NishumInput readReport(const QString& path) {
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    return parseReportDocument(f.readAll().toStdString());
}

// A report of tests/golden/reports by file name.
inline NishumInput goldenReport(const QString& name) { return readReport(kGoldenReports + name); }

// A data folder of the test's own with the index table shipped with the
// program, the day taken as today, and the message boxes recorded.
class DataFolderTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    MadadTable madad{dir.path()};
    const ConstDoch c{};
    const Date today = *Date::fromYmd(2016, 6, 30);
    MessageRecorder recorder;
};

// Four reports of different households, stored for the taxpayer list.
inline void saveGoldenReports(storage::ReportDb& db) {
    for (const char* name : {"single.json", "couple.json", "couple-low-spouse.json", "widow.json"})
        ASSERT_TRUE(db.saveNishum(goldenReport(QLatin1String(name))).ok) << name;
}

// What zelmor-cli writes on standard output for these words; it must succeed.
inline QByteArray runCli(const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral(ZELMOR_BINARY_DIR "/bin/zelmor-cli"), args);
    EXPECT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return p.readAllStandardOutput();
}

// The named child of a window, of the type asked for; missing is a failure.
template <class T = QWidget>
T* child(const QObject* parent, const char* name) {
    T* w = parent->findChild<T*>(QLatin1String(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}

inline QString focusName() {
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
}

// Types any text, Hebrew included (QTest::keyClicks knows only ASCII keys).
inline void typeText(QWidget* w, const QString& text) {
    for (const QChar ch : text) QTest::sendKeyEvent(QTest::Click, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
}

// The last message box shown: its icon, its title and its text (or the start
// of it, when `text` ends with "...").
inline void expectLastMessage(const MessageRecorder& r, MsgIcon icon, const QString& title, QString text) {
    ASSERT_FALSE(r.shown.empty()) << "no message for " << text.toStdString();
    const ShownMessage& m = r.shown.back();
    EXPECT_EQ(m.icon, icon) << text.toStdString();
    EXPECT_EQ(m.title, title) << text.toStdString();
    if (text.endsWith(QStringLiteral("...")))
        EXPECT_TRUE(m.text.startsWith(text.chopped(3))) << m.text.toStdString();
    else
        EXPECT_EQ(m.text, text);
}

}  // namespace zelmor::shell::testing
