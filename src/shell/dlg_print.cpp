#include "shell/dlg_print.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPageLayout>
#include <QPageSize>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "print/paper.h"
#include "print/print_target.h"
#include "shell/messages.h"

namespace zelmor::shell {
namespace {

const QString kPrintErrorTitle = QStringLiteral("שגיאת הדפסה");
const QString kCannotWritePdf = QStringLiteral("לא ניתן לכתוב את קובץ ה-PDF\n");

// The jobs of a preview all go to the one preview printer: a preview keeps only
// what was painted since its painter last began, so the painter stays open
// over all jobs and every job after the first starts on a page of its own, as
// in a PDF file.
class OnePainterTarget final : public PrintTarget {
public:
    explicit OnePainterTarget(QPrinter& printer) : printer_(printer) {}
    ~OnePainterTarget() override {
        if (painter_.isActive()) painter_.end();
    }
    QPainter* beginJob(QString* error) override {
        if (painter_.isActive()) {
            printer_.newPage();
        } else if (!painter_.begin(&printer_)) {
            if (error) *error = QStringLiteral("The preview can't be drawn.");
            return nullptr;
        }
        return &painter_;
    }
    void newPage() override { printer_.newPage(); }
    void endJob() override {}

private:
    QPrinter& printer_;
    QPainter painter_;
};

// The page of the PDF file, for a preview that has no printer to follow.
void usePdfPage(QPrinter& printer) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                      QMarginsF(6.35, 6.35, 6.35, 6.35), QPageLayout::Millimeter));
}

}  // namespace

QString PrintDialog::pdfEntryText() { return QStringLiteral("קובץ PDF…"); }

PrintDialog::PrintDialog(PrintSession session, PrintSetup setup, QWidget* parent)
    : QDialog(parent), session_(std::move(session)), setup_(std::move(setup)) {
    setObjectName(QStringLiteral("frmPrint"));
    setWindowTitle(kPrintDialogTitle);
    setLayoutDirection(Qt::RightToLeft);
    setModal(true);
    if (!setup_.onError) {
        setup_.onError = [this](const QString& title, const QString& text) {
            showMessage(this, MsgIcon::Stop, title, text);
        };
    }
    chooseFile_ = [this](QWidget* owner) {
        QString name = QString::fromStdString(session_.report ? session_.report->NishumID() : std::string());
        if (name.isEmpty()) name = QStringLiteral("report");
        QString path = QFileDialog::getSaveFileName(owner, QStringLiteral("שמירה כקובץ PDF"),
                                                    QDir::home().filePath(name + QStringLiteral(".pdf")),
                                                    QStringLiteral("PDF (*.pdf)"));
        if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".pdf");
        return path;
    };

    auto named = [](QWidget* w, const char* name, const QString& accessible) {
        w->setObjectName(QLatin1String(name));
        if (!accessible.isEmpty()) w->setAccessibleName(accessible);
    };

    cmdPrint_ = new QPushButton(QStringLiteral("הדפס"), this);
    named(cmdPrint_, "cmdPrint", {});
    cmdPrint_->setDefault(true);
    cmdPreview_ = new QPushButton(QStringLiteral("תצוגה מקדימה"), this);
    named(cmdPreview_, "cmdPreview", {});
    cmdCancel_ = new QPushButton(QStringLiteral("ביטול"), this);
    named(cmdCancel_, "cmdCancel", {});

    auto* framePrinter = new QGroupBox(QStringLiteral("בחר מדפסת"), this);
    named(framePrinter, "framePrinter", {});
    cmbPrinters_ = new QComboBox(framePrinter);
    named(cmbPrinters_, "cmbPrinters", QStringLiteral("שם"));
    cmbPrinters_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmbPrinters_->setMinimumContentsLength(24);
    lblPlace_ = new QLabel(framePrinter);
    named(lblPlace_, "lblPlace", {});
    auto* printerForm = new QFormLayout(framePrinter);
    auto* lblName = new QLabel(QStringLiteral("שם :"), framePrinter);
    lblName->setBuddy(cmbPrinters_);
    printerForm->addRow(lblName, cmbPrinters_);
    printerForm->addRow(new QLabel(QStringLiteral("מיקום :"), framePrinter), lblPlace_);

    auto* frameRange = new QGroupBox(QStringLiteral("הדפס את"), this);
    named(frameRange, "frameRange", {});
    chkDetails_ = new QCheckBox(QStringLiteral("נתוני הדו\"ח"), frameRange);
    named(chkDetails_, "chkDetails", {});
    chkBL_ = new QCheckBox(QStringLiteral("דמי ביטוח לאומי"), frameRange);
    named(chkBL_, "chkBL", {});
    chkCurrPage_ = new QCheckBox(QStringLiteral("עמוד נוכחי"), frameRange);
    named(chkCurrPage_, "chkCurrPage", {});
    chkCalc_ = new QCheckBox(QStringLiteral("חישוב הדו\"ח"), frameRange);
    named(chkCalc_, "chkCalc", {});
    // The appendix belongs to the result sheets: it can be chosen with them only.
    chkExplain_ = new QCheckBox(kExplainAppendixTitle, frameRange);
    named(chkExplain_, "chkExplain", {});
    chkExplain_->setEnabled(false);
    connect(chkCalc_, &QCheckBox::toggled, chkExplain_, &QWidget::setEnabled);
    auto* rangeLayout = new QVBoxLayout(frameRange);
    for (QCheckBox* c : {chkDetails_, chkBL_, chkCurrPage_, chkCalc_, chkExplain_}) rangeLayout->addWidget(c);

    auto* groups = new QVBoxLayout;
    groups->addWidget(framePrinter);
    groups->addWidget(frameRange);
    auto* buttons = new QVBoxLayout;
    int buttonWidth = 0;
    for (QPushButton* b : {cmdPrint_, cmdPreview_, cmdCancel_}) buttonWidth = std::max(buttonWidth, b->sizeHint().width());
    for (QPushButton* b : {cmdPrint_, cmdPreview_, cmdCancel_}) {
        b->setMinimumWidth(buttonWidth + 16);  // one width, with room around the longest caption
        buttons->addWidget(b);
    }
    buttons->addStretch();
    auto* top = new QHBoxLayout(this);
    top->addLayout(groups, 1);
    top->addLayout(buttons);

    // Tab order: the buttons, the printer list, the choices.
    QWidget* order[] = {cmdPrint_,   cmdPreview_, cmdCancel_,   cmbPrinters_, chkDetails_,
                        chkBL_,      chkCurrPage_, chkCalc_,    chkExplain_};
    for (std::size_t i = 0; i + 1 < std::size(order); ++i) setTabOrder(order[i], order[i + 1]);

    connect(cmdPrint_, &QPushButton::clicked, this, &PrintDialog::print);
    connect(cmdPreview_, &QPushButton::clicked, this, &PrintDialog::preview);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    connect(cmbPrinters_, &QComboBox::currentIndexChanged, this, &PrintDialog::showPlace);
    // A preview of nothing shows nothing: it waits for a choice.
    auto choicesChanged = [this] { cmdPreview_->setEnabled(!printJobs(choices(), session_.editMode).empty()); };
    for (QCheckBox* c : {chkDetails_, chkBL_, chkCurrPage_, chkCalc_})
        connect(c, &QCheckBox::toggled, this, choicesChanged);
    choicesChanged();

    setPrinters(QPrinterInfo::availablePrinterNames());
    setCurrentPrinter(QPrinterInfo::defaultPrinterName());
    cmdPrint_->setFocus();
}

void PrintDialog::setPrinters(const QStringList& names) {
    cmbPrinters_->clear();
    cmbPrinters_->addItems(names);
    cmbPrinters_->addItem(pdfEntryText());
    cmbPrinters_->setCurrentIndex(-1);
}

void PrintDialog::setCurrentPrinter(const QString& name) {
    // The index of a printer of that name; the PDF entry doesn't count.
    auto printerIndex = [this](const QString& printer) {
        const int index = printer.isEmpty() ? -1 : cmbPrinters_->findText(printer, Qt::MatchExactly);
        return index == cmbPrinters_->count() - 1 ? -1 : index;
    };
    int index = printerIndex(name);
    if (index < 0) index = printerIndex(QPrinterInfo::defaultPrinterName());
    cmbPrinters_->setCurrentIndex(index);
    showPlace();
}

bool PrintDialog::pdfChosen() const { return cmbPrinters_->currentIndex() == cmbPrinters_->count() - 1; }

void PrintDialog::showPlace() {
    const int index = cmbPrinters_->currentIndex();
    if (index < 0 || pdfChosen())
        lblPlace_->clear();
    else
        lblPlace_->setText(QPrinterInfo::printerInfo(cmbPrinters_->itemText(index)).location());
}

PrintChoices PrintDialog::choices() const {
    return {.details = chkDetails_->isChecked(),
            .bl = chkBL_->isChecked(),
            .currPage = chkCurrPage_->isChecked(),
            .calc = chkCalc_->isChecked(),
            .explain = chkCalc_->isChecked() && chkExplain_->isChecked()};
}

void PrintDialog::print() {
    if (cmbPrinters_->currentIndex() < 0) {
        showMessage(this, MsgIcon::Exclamation, kPrintDialogTitle, kNoPrinterMessage);
        return;
    }
    const PrintChoices what = choices();
    const std::size_t jobs = printJobs(what, session_.editMode).size();
    if (!pdfChosen()) {
        const QString name = cmbPrinters_->currentText();
        chosenPrinter_ = name;
        if (jobs > 0) {
            QPrinter printer(QPrinterInfo::printerInfo(name), QPrinter::HighResolution);
            PrinterTarget target(printer);
            runPrintJobs(target, setup_, what, session_);
        }
        accept();
        return;
    }
    if (jobs == 0) {  // nothing to write: no file is asked for
        accept();
        return;
    }
    const QString path = chooseFile_ ? chooseFile_(this) : QString();
    if (path.isEmpty()) return;  // the user gave up choosing: the dialog stays
    PdfFileTarget target(path);
    QString error;
    // A place that can't take the file is named before anything is printed,
    // and another place may do: the dialog stays open.
    auto cannotWrite = [&] { showMessage(this, MsgIcon::Stop, kPrintErrorTitle, kCannotWritePdf + error); };
    if (!target.open(&error)) {
        cannotWrite();
        return;
    }
    // The file is written only when every job printed; a job that could not
    // print has told the user why.
    if (static_cast<std::size_t>(runPrintJobs(target, setup_, what, session_)) < jobs) {
        target.cancel();
        accept();
        return;
    }
    if (!target.finish(&error)) {
        cannotWrite();
        return;
    }
    accept();
}

void PrintDialog::preview() {
    QPrinter printer(QPrinter::HighResolution);
    if (cmbPrinters_->currentIndex() >= 0 && !pdfChosen())
        printer.setPrinterName(cmbPrinters_->currentText());
    else
        usePdfPage(printer);
    QPrintPreviewDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("printPreview"));
    dialog.setWindowTitle(QStringLiteral("תצוגה מקדימה"));
    dialog.setLayoutDirection(Qt::RightToLeft);
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this, &PrintDialog::paintPreview);
    dialog.exec();
}

void PrintDialog::paintPreview(QPrinter* printer) {
    OnePainterTarget target(*printer);
    runPrintJobs(target, setup_, choices(), session_);
}

}  // namespace zelmor::shell
