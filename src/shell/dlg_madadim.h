#pragma once
// The price index table on screen, and the update of the table from the
// published file.
//
// The grid shows every month of the table, the newest at the foot, and after
// them a row for the month that follows the last one. Only the index ("מדד")
// of a month after the last published month can be typed; the index on the
// base of September 1951 is worked out from it and written to the table file
// as soon as the value is taken, so the next calculation links with it.

#include <QAbstractItemDelegate>
#include <QDialog>
#include <QString>
#include <QUrl>
#include <optional>
#include <utility>

class QPushButton;
class QTableView;

namespace zelmor {
class MadadTable;
}

namespace zelmor::shell {

class MadadimModel;
class MadadDelegate;
class MadadGrid;

class MadadimDialog : public QDialog {
    Q_OBJECT
public:
    // The grid's columns.
    enum Column { ColBasis51 = 0, ColBasis = 1, ColMadad = 2, ColShowMonth = 3 };

    // `table` must outlive the dialog. The file is read again first when
    // another program has changed it.
    explicit MadadimDialog(MadadTable& table, QWidget* parent = nullptr);
    ~MadadimDialog() override;

    QTableView* grid() const;
    // The row of a month ("YYYYMM") in the grid, or -1.
    int rowOfMonth(const QString& month) const;
    // Whether a typed value was refused and the cursor is held on its cell.
    bool badEntryPending() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void editorClosed(QAbstractItemDelegate::EndEditHint hint);

    MadadTable& table_;
    MadadimModel* model_ = nullptr;
    MadadDelegate* delegate_ = nullptr;
    MadadGrid* grid_ = nullptr;
    std::optional<std::pair<int, QString>> refusal_;  // the row of a value just refused, and why
    QPushButton* btnExit_ = nullptr;
};

// Replaces the index table with the file published at `source`, the busy
// pointer showing while it runs, and then tells how far the tables now reach:
// an information message when the new file is in place, a warning naming the
// failure otherwise (the old table is kept). Returns whether it was replaced.
bool updateMadadTables(QWidget* parent, MadadTable& table, const QUrl& source);

}  // namespace zelmor::shell
