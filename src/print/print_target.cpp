#include "print/print_target.h"

#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmor {

// --- printer ---

QPainter* PrinterTarget::beginJob(QString* error) {
    if (printer_.outputFormat() == QPrinter::NativeFormat && printer_.printerName().isEmpty()) {
        if (error) *error = QStringLiteral("No printer is installed or chosen.");
        return nullptr;
    }
    if (!painter_.begin(&printer_)) {
        if (error) {
            const QString name = printer_.printerName().isEmpty() ? printer_.outputFileName() : printer_.printerName();
            *error = QStringLiteral("The device \"%1\" can't be opened for printing.").arg(name);
        }
        return nullptr;
    }
    return &painter_;
}

void PrinterTarget::newPage() { printer_.newPage(); }

void PrinterTarget::endJob() {
    if (painter_.isActive()) painter_.end();
}

// --- PDF file ---

PdfFileTarget::PdfFileTarget(const QString& path) : path_(path) {}

PdfFileTarget::~PdfFileTarget() { cancel(); }

bool PdfFileTarget::open(QString* error) {
    if (file_ || stream_) return true;
    auto fail = [&](const QString& why) {
        if (error) *error = QStringLiteral("%1: %2").arg(path_, why);
        file_.reset();
        stream_.reset();
        return false;
    };
    if (path_ == QLatin1String("-")) {
        stream_ = std::make_unique<QFile>();
        if (!stream_->open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered, QFileDevice::DontCloseHandle))
            return fail(stream_->errorString());
        return true;
    }
    const QByteArray native = QFile::encodeName(path_);
    struct stat st {};
    if (::stat(native.constData(), &st) == 0) {
        if (S_ISDIR(st.st_mode)) return fail(QStringLiteral("is a folder, not a file"));
        if (!S_ISREG(st.st_mode)) {
            // A pipe or a device: written into as it is, never replaced.
            stream_ = std::make_unique<QFile>(path_);
            if (!stream_->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
                return fail(QStringLiteral("cannot write: %1").arg(stream_->errorString()));
            return true;
        }
    } else if (errno != ENOENT) {
        return fail(QStringLiteral("cannot write: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
    } else if (const QFileInfo folder(QFileInfo(path_).absolutePath()); !folder.isDir()) {
        return fail(QStringLiteral("the folder %1 does not exist").arg(folder.filePath()));
    }
    // A regular file or a new name: written beside it and renamed over it.
    file_ = std::make_unique<QSaveFile>(path_);
    if (!file_->open(QIODevice::WriteOnly)) return fail(QStringLiteral("cannot write: %1").arg(file_->errorString()));
    return true;
}

QPainter* PdfFileTarget::beginJob(QString* error) {
    if (!started_) {
        if (!open(error)) return nullptr;
        pdf_.clear();
        buffer_ = std::make_unique<QBuffer>(&pdf_);
        buffer_->open(QIODevice::WriteOnly);
        writer_ = std::make_unique<QPdfWriter>(buffer_.get());
        writer_->setResolution(1200);
        writer_->setCreator(QStringLiteral("Zelmor"));
        writer_->setTitle(QFileInfo(path_).completeBaseName());
        writer_->setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                           QMarginsF(6.35, 6.35, 6.35, 6.35), QPageLayout::Millimeter));
        if (!painter_.begin(writer_.get())) {
            if (error) *error = QStringLiteral("%1: the PDF writer can't start").arg(path_);
            cancel();
            return nullptr;
        }
        started_ = true;
    } else {
        writer_->newPage();  // every job after the first starts on a page of its own
    }
    return &painter_;
}

void PdfFileTarget::newPage() { writer_->newPage(); }

void PdfFileTarget::endJob() {}

bool PdfFileTarget::finish(QString* error) {
    if (!started_) {
        if (error) *error = QStringLiteral("%1: nothing was printed").arg(path_);
        cancel();
        return false;
    }
    painter_.end();
    writer_.reset();
    buffer_.reset();
    QFileDevice* out = file_ ? static_cast<QFileDevice*>(file_.get()) : stream_.get();
    bool ok = out->write(pdf_) == pdf_.size();
    if (file_) ok = ok && file_->commit();
    else ok = ok && stream_->flush();
    if (!ok && error) *error = QStringLiteral("%1: cannot write: %2").arg(path_, out->errorString());
    if (!ok && file_) file_->cancelWriting();
    file_.reset();
    stream_.reset();
    pdf_.clear();
    started_ = false;
    return ok;
}

void PdfFileTarget::cancel() {
    if (painter_.isActive()) painter_.end();
    writer_.reset();
    buffer_.reset();
    pdf_.clear();
    if (file_) {
        file_->cancelWriting();
        file_.reset();
    }
    stream_.reset();
    started_ = false;
}

}  // namespace zelmor
