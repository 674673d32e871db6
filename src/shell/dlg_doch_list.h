#pragma once
// The list of taxpayers: every stored report by id and name, sorted by either,
// with a search box that narrows the list as one types (an office holds
// hundreds of clients). Opens one report (the caller opens it; the dialog only
// says which) or deletes one after a question.

#include <QDialog>
#include <QString>

class QLineEdit;
class QPushButton;
class QRadioButton;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTableView;

namespace zelmor::storage {
class ReportDb;
}

namespace zelmor::shell {

class DochListDialog : public QDialog {
    Q_OBJECT
public:
    // `db` must outlive the dialog. The list is read on construction.
    explicit DochListDialog(storage::ReportDb& db, QWidget* parent = nullptr);

    // After exec() returned Accepted: the id and the name of the report to open.
    QString chosenId() const { return chosenId_; }
    QString chosenName() const { return chosenName_; }

    // Rows now in the grid (after the search), for tests and the caller's checks.
    int visibleRows() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void reload();
    void resetCurrentRow();
    int currentSourceRow() const;
    void openCurrent();
    void deleteCurrent();

    storage::ReportDb& db_;
    QLineEdit* search_ = nullptr;
    QTableView* grid_ = nullptr;
    QStandardItemModel* model_ = nullptr;
    QSortFilterProxyModel* filter_ = nullptr;
    QRadioButton* nameSort_ = nullptr;
    QRadioButton* idSort_ = nullptr;
    QPushButton* btnOpen_ = nullptr;
    QPushButton* btnDelete_ = nullptr;
    QPushButton* btnExit_ = nullptr;
    QString chosenId_;
    QString chosenName_;
};

}  // namespace zelmor::shell
