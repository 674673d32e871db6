#include "print/print_target.h"

#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>

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

QPainter* PdfFileTarget::beginJob(QString* error) {
    if (!started_) {
        file_ = std::make_unique<QSaveFile>(path_);
        if (!file_->open(QIODevice::WriteOnly)) {
            if (error) *error = QStringLiteral("%1: %2").arg(path_, file_->errorString());
            file_.reset();
            return nullptr;
        }
        writer_ = std::make_unique<QPdfWriter>(file_.get());
        writer_->setResolution(1200);
        writer_->setCreator(QStringLiteral("Zelmor"));
        writer_->setTitle(QFileInfo(path_).completeBaseName());
        writer_->setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                           QMarginsF(6.35, 6.35, 6.35, 6.35), QPageLayout::Millimeter));
        if (!painter_.begin(writer_.get())) {
            if (error) *error = QStringLiteral("%1: the PDF writer can't start").arg(path_);
            writer_.reset();
            file_->cancelWriting();
            file_.reset();
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
        return false;
    }
    painter_.end();
    writer_.reset();
    const bool ok = file_->commit();
    if (!ok && error) *error = QStringLiteral("%1: %2").arg(path_, file_->errorString());
    file_.reset();
    started_ = false;
    return ok;
}

void PdfFileTarget::cancel() {
    if (painter_.isActive()) painter_.end();
    writer_.reset();
    if (file_) {
        file_->cancelWriting();
        file_.reset();
    }
    started_ = false;
}

}  // namespace zelmor
