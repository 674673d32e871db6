#pragma once
// What the widget tests share: the golden reports, typing any text, and the
// pictures for a person to look at.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QString>
#include <QtTest>

#include "report/report_json.h"

namespace zelmor::shell::testing {

inline const QString kGoldenReports = QStringLiteral(ZELMOR_SOURCE_DIR "/tests/golden/reports/");

// A report of tests/golden/reports by file name.
inline NishumInput goldenReport(const QString& name) {
    QFile f(kGoldenReports + name);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << name.toStdString();
    return parseReportDocument(f.readAll().toStdString());
}

// Types any text, Hebrew included (QTest::keyClicks knows only ASCII keys).
inline void typeText(QWidget* w, const QString& text) {
    for (const QChar ch : text) QTest::sendKeyEvent(QTest::Click, w, Qt::Key_unknown, QString(ch), Qt::NoModifier);
}

// The folder that ZELMOR_DIALOG_SHOTS names: pictures of the screens are
// written only when it is set (the picture tests skip otherwise).
inline QString picturesFolder() {
    const QString folder = qEnvironmentVariable("ZELMOR_DIALOG_SHOTS");
    if (!folder.isEmpty()) QDir().mkpath(folder);
    return folder;
}

// A picture of the widget, shown and painted, as <folder>/<name>.png.
inline void savePicture(QWidget& w, const QString& folder, const QString& name) {
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    ASSERT_TRUE(w.grab().save(QDir(folder).filePath(name + QStringLiteral(".png"))));
}

#define ZELMOR_PICTURES_OR_SKIP(folder)             \
    const QString folder = ::zelmor::shell::testing::picturesFolder(); \
    if (folder.isEmpty()) GTEST_SKIP() << "set ZELMOR_DIALOG_SHOTS to a folder to get the pictures"

}  // namespace zelmor::shell::testing
