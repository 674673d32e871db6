#pragma once
// Where print jobs go: a printer of the system's print service, or a PDF file.
// A job draws through the target's painter from beginJob to endJob; a page
// turn is newPage. Several jobs may go to one target one after the other.

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QString>
#include <memory>

class QPrinter;

namespace zelmor {

class PrintTarget {
public:
    virtual ~PrintTarget() = default;
    // Starts a job on a fresh page. nullptr when the device can't be used;
    // *error then holds the platform's description of the failure.
    virtual QPainter* beginJob(QString* error) = 0;
    // Turns the page of the running job.
    virtual void newPage() = 0;
    // Ends the running job.
    virtual void endJob() = 0;
};

// A real printer (or any QPrinter, including its own PDF output). Every job is
// a document of its own for the print service.
class PrinterTarget final : public PrintTarget {
public:
    explicit PrinterTarget(QPrinter& printer) : printer_(printer) {}
    QPainter* beginJob(QString* error) override;
    void newPage() override;
    void endJob() override;

private:
    QPrinter& printer_;
    QPainter painter_;
};

// One PDF that takes any number of jobs, each starting on a new page. A4 with
// narrow margins, like the printable area of an office printer.
//
// The PDF is made in memory and goes to its place only on finish(): a run that
// fails leaves nothing behind. What is at the path is never destroyed: a
// regular file (or a new name) is replaced whole by a rename, so a failure
// keeps an older file as it was; a named pipe or a device is written into as
// it is; the path "-" is standard output.
class PdfFileTarget final : public PrintTarget {
public:
    explicit PdfFileTarget(const QString& path);
    ~PdfFileTarget() override;
    // Makes sure the PDF can go to its place, before anything is printed. False
    // (with *error naming the file) for a folder, a missing folder, a place
    // that cannot be written. beginJob does it when it has not been done. A
    // named pipe is opened here, which waits for its reader.
    bool open(QString* error);
    QPainter* beginJob(QString* error) override;
    void newPage() override;
    void endJob() override;
    // Delivers the PDF. False (with *error) when it can't be written, or when
    // no job ran.
    bool finish(QString* error);
    // Drops everything: what is at the path is left as it was.
    void cancel();

private:
    QString path_;
    std::unique_ptr<QSaveFile> file_;   // a regular file or a new name
    std::unique_ptr<QFile> stream_;     // a named pipe, a device or standard output
    QByteArray pdf_;
    std::unique_ptr<QBuffer> buffer_;
    std::unique_ptr<QPdfWriter> writer_;
    QPainter painter_;
    bool started_ = false;
};

}  // namespace zelmor
