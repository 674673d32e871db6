#pragma once
// Where print jobs go: a printer of the system's print service, or a PDF file.
// A job draws through the target's painter from beginJob to endJob; a page
// turn is newPage. Several jobs may go to one target one after the other.

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

// One PDF file that takes any number of jobs, each starting on a new page. The
// file appears only on finish(): a run that fails leaves no file behind and
// keeps an older file of that name as it was. A4 with narrow margins, like the
// printable area of an office printer.
class PdfFileTarget final : public PrintTarget {
public:
    explicit PdfFileTarget(const QString& path);
    ~PdfFileTarget() override;
    QPainter* beginJob(QString* error) override;
    void newPage() override;
    void endJob() override;
    // Writes the file. False (with *error) when it can't be written, or when no
    // job ran.
    bool finish(QString* error);
    // Drops everything: the file is left as it was.
    void cancel();

private:
    QString path_;
    std::unique_ptr<QSaveFile> file_;
    std::unique_ptr<QPdfWriter> writer_;
    QPainter painter_;
    bool started_ = false;
};

}  // namespace zelmor
