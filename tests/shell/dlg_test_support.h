#pragma once
// What the dialog tests share: the golden reports and typing any text.
#include <gtest/gtest.h>

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

}  // namespace zelmor::shell::testing
