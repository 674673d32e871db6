// The draft file: what it keeps, what it refuses, and who may write it.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>

#include "report/report_json.h"
#include "shell/draft_store.h"

namespace zelmor::shell {
namespace {

TEST(DraftTest, KeepsTheFieldsThePageAndTheTextsAsTyped) {
    Draft d;
    d.report.Pratim.IDM = "123456782";
    d.report.Pratim.FirstNameM = "דנה \"הגדולה\"";
    d.report.Pratim.BirthDateM = *Date::fromYmd(1970, 2, 28);
    d.report.Yegia.N150 = Amount(-2147483647 - 1);
    d.report.Yegia.N170 = Amount(2147483647);
    d.report.Nekudot.N260_1 = 3;
    d.report.Klaliim.isHul = true;
    WorkOutDerived(d.report);
    d.page = 7;
    d.texts = {{"N036", "12,3x"}, {"AcherimText", QString::fromUtf8("שורה\nשנייה")}, {"N045", ""}};
    QString error;
    const auto back = draftFromText(draftText(d), &error);
    ASSERT_TRUE(back) << error.toStdString();
    EXPECT_EQ(back->page, 7);
    EXPECT_EQ(back->texts, d.texts);
    EXPECT_EQ(writeReportDocument(back->report, false), writeReportDocument(d.report, false));
}

TEST(DraftTest, RefusesWhatIsNoDraft) {
    const QByteArray good = draftText(Draft{});
    for (const QByteArray& text : {QByteArray(), QByteArray("{\"format\": \"zelmor-report\"}"),
                                   QByteArray(good).replace("\"page\": 1", "\"page\": 10"),
                                   QByteArray(good).replace("\"IDM\"", "\"IDX\""), good.left(good.size() / 2)}) {
        QString error;
        EXPECT_FALSE(draftFromText(text, &error)) << text.toStdString();
        EXPECT_FALSE(error.isEmpty());
    }
}

// One program writes the drafts of a folder (the main window's tests show a
// second one keeps none); the lock of a program that is gone, as a crash
// leaves it, is taken over with its draft.
TEST(DraftTest, ALockLeftByADeadProgramIsTakenOver) {
    QTemporaryDir dir;
    EXPECT_TRUE(DraftStore(dir.path()).write(Draft{}));
    QProcess gone;
    gone.start("true", {});
    ASSERT_TRUE(gone.waitForStarted());
    const qint64 pid = gone.processId();
    ASSERT_TRUE(gone.waitForFinished());
    QFile lock(dir.filePath(DraftStore::kLockName));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write(QByteArray::number(pid) + "\n" + QCoreApplication::applicationName().toUtf8() + "\n" +
               QSysInfo::machineHostName().toUtf8() + "\n");
    lock.close();
    DraftStore after(dir.path());
    EXPECT_TRUE(after.enabled());
    EXPECT_TRUE(after.exists());
    after.remove();
    EXPECT_FALSE(after.exists());
}

}  // namespace
}  // namespace zelmor::shell
