#pragma once
// The covering letter that opens every printout: shown for editing, stored on
// "שמור", emptied (on the screen only) by the clear button.

#include <QDialog>
#include <QString>

class QPlainTextEdit;

namespace zelmor::shell {

class PniaDialog : public QDialog {
    Q_OBJECT
public:
    // The letter file lies in `dataDir`, beside the index table; its text is
    // read into the entry on construction.
    explicit PniaDialog(QString dataDir, QWidget* parent = nullptr);

private:
    void save();

    QString dataDir_;
    QPlainTextEdit* txtPnia_ = nullptr;
};

}  // namespace zelmor::shell
