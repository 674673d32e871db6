#pragma once
// The print dialog: which printer, and what to print. The printers of the
// system are listed, and after them an entry that writes a PDF file instead;
// that entry is never chosen for the user. "הדפס" runs the jobs of the checked
// boxes one after the other, each with its own page head and page numbers;
// "תצוגה מקדימה" shows the same jobs on screen first.

#include <QDialog>
#include <QString>
#include <QStringList>
#include <functional>

#include "print/print_nishum.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPrinter;
class QPushButton;

namespace zelmor::shell {

class PrintDialog : public QDialog {
    Q_OBJECT
public:
    // Asks where the PDF file goes; an empty path means the user gave up.
    using FileChooser = std::function<QString(QWidget* parent)>;

    // `session` is the open report and result set as the main window holds
    // them (both must outlive the dialog); `setup` the installation folder and
    // today. A setup without an error sink reports a printer that can't be used
    // in a message box.
    PrintDialog(PrintSession session, PrintSetup setup, QWidget* parent = nullptr);

    // The text of the last entry of the printer list.
    static QString pdfEntryText();

    // Lists these printers instead of the system's (before the dialog is shown).
    void setPrinters(const QStringList& names);
    // Selects the printer of this name when it is listed (the one chosen last
    // time); without it the system's default printer is selected. The PDF
    // entry is never selected this way.
    void setCurrentPrinter(const QString& name);
    // The printer that "הדפס" printed on; empty when nothing went to a printer.
    QString chosenPrinter() const { return chosenPrinter_; }
    // Replaces the file dialog that asks for the PDF file's path.
    void setFileChooser(FileChooser chooser) { chooseFile_ = std::move(chooser); }

    PrintChoices choices() const;

    // The buttons' work, as the buttons call them.
    void print();
    void preview();

private:
    bool pdfChosen() const;
    void showPlace();
    // Draws the jobs of the choices on one printer, one job after the other on
    // fresh pages, as the preview shows them.
    void paintPreview(QPrinter* printer);

    PrintSession session_;
    PrintSetup setup_;
    FileChooser chooseFile_;
    QString chosenPrinter_;

    QPushButton* cmdPrint_ = nullptr;
    QPushButton* cmdPreview_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QComboBox* cmbPrinters_ = nullptr;
    QLabel* lblPlace_ = nullptr;
    QCheckBox* chkDetails_ = nullptr;
    QCheckBox* chkBL_ = nullptr;
    QCheckBox* chkCurrPage_ = nullptr;
    QCheckBox* chkCalc_ = nullptr;
    QCheckBox* chkExplain_ = nullptr;
};

}  // namespace zelmor::shell
