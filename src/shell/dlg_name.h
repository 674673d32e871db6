#pragma once
// The name of the user of the installation, printed in the head of every
// printout. The entry starts empty; "אישור" stores what it holds (an empty
// entry stores an empty name), "ביטול" leaves the stored name alone.

#include <QDialog>
#include <QString>

class QLineEdit;

namespace zelmor::shell {

class NameDialog : public QDialog {
    Q_OBJECT
public:
    // The name file lies in `dataDir`, beside the index table.
    explicit NameDialog(QString dataDir, QWidget* parent = nullptr);

private:
    void save();

    QString dataDir_;
    QLineEdit* txtName_ = nullptr;
};

}  // namespace zelmor::shell
