// Where a PDF goes: what is at the path is never destroyed.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <iterator>

#include "print/cls_print.h"

using namespace zelmor;

namespace {

// Prints one page into the target and delivers it.
bool printOnePage(PdfFileTarget& target, QString* error) {
    ClsPrint p(target, PageHead{QStringLiteral("משרד"), {}, QStringLiteral("ישראל"), *Date::fromYmd(2016, 1, 1), 2015});
    if (p.PrintHeader() < 0) return false;
    p.PrintEndPage(true);
    return target.finish(error);
}

bool isPdf(const QByteArray& bytes) { return bytes.startsWith("%PDF-") && bytes.trimmed().endsWith("%%EOF"); }

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

mode_t typeOf(const QString& path) {
    struct stat st {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 ? (st.st_mode & S_IFMT) : 0;
}

}  // namespace

TEST(PdfFileTarget, RegularFilesAreReplacedWholeAndLinksStayLinks) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("out.pdf")), link = dir.filePath(QStringLiteral("link.pdf"));
    QString error;
    for (int round = 0; round < 2; ++round) {  // a new name, then over the file
        PdfFileTarget target(file);
        ASSERT_TRUE(printOnePage(target, &error)) << error.toStdString();
        EXPECT_TRUE(isPdf(readAll(file)));
    }
    ASSERT_EQ(::symlink("out.pdf", QFile::encodeName(link).constData()), 0);
    QFile::remove(file);
    PdfFileTarget target(link);
    ASSERT_TRUE(printOnePage(target, &error)) << error.toStdString();
    EXPECT_EQ(typeOf(link), S_IFLNK);
    EXPECT_TRUE(isPdf(readAll(file)));
    // A run that fails keeps the old file.
    const QByteArray before = readAll(file);
    {
        PdfFileTarget failed(file);
        ASSERT_NE(failed.beginJob(&error), nullptr);
        failed.cancel();
    }
    EXPECT_EQ(readAll(file), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System).size(), 2);
}

TEST(PdfFileTarget, PipesAndDevicesAreWrittenIntoNotReplaced) {
    QTemporaryDir dir;
    const QString fifo = dir.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    auto reader = std::async(std::launch::async, [&] {
        std::ifstream in(QFile::encodeName(fifo).toStdString(), std::ios::binary);
        return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(in), {}));
    });
    QString error;
    PdfFileTarget toPipe(fifo);
    ASSERT_TRUE(printOnePage(toPipe, &error)) << error.toStdString();
    EXPECT_TRUE(isPdf(reader.get()));
    EXPECT_EQ(typeOf(fifo), S_IFIFO);

    PdfFileTarget toDevice(QStringLiteral("/dev/null"));
    ASSERT_TRUE(printOnePage(toDevice, &error)) << error.toStdString();
    EXPECT_EQ(typeOf(QStringLiteral("/dev/null")), S_IFCHR);
    // A device that is full: the failure is told.
    PdfFileTarget toFull(QStringLiteral("/dev/full"));
    EXPECT_FALSE(printOnePage(toFull, &error));
    EXPECT_TRUE(error.startsWith(QStringLiteral("/dev/full: cannot write"))) << error.toStdString();
    EXPECT_EQ(typeOf(QStringLiteral("/dev/full")), S_IFCHR);
}

TEST(PdfFileTarget, APlaceThatCannotTakeTheFileIsNamedBeforePrinting) {
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("folder"));
    ASSERT_TRUE(QDir().mkdir(folder));
    const QString readOnly = dir.filePath(QStringLiteral("ro"));
    ASSERT_TRUE(QDir().mkdir(readOnly));
    ::chmod(QFile::encodeName(readOnly).constData(), 0555);
    const struct {
        QString path;
        const char* says;
    } cases[] = {
        {folder, "is a folder"},
        {dir.filePath(QStringLiteral("missing/out.pdf")), "does not exist"},
        {readOnly + QStringLiteral("/out.pdf"), "cannot write"},
    };
    for (const auto& c : cases) {
        if (c.path.startsWith(readOnly) && ::geteuid() == 0) continue;  // root may write anywhere
        PdfFileTarget target(c.path);
        QString error;
        EXPECT_FALSE(target.open(&error)) << c.path.toStdString();
        EXPECT_TRUE(error.startsWith(c.path + QStringLiteral(": "))) << error.toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.says))) << error.toStdString();
    }
    EXPECT_TRUE(QFileInfo(folder).isDir());
}
