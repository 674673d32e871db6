#include "shell/dlg_madadim.h"

#include <QAbstractTableModel>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "shell/messages.h"
#include "tables/madad_table.h"

namespace zelmor::shell {
namespace {

const QString kGridTitle = QStringLiteral("Zelmor - מדדים");
const QString kUpdateTitle = QStringLiteral("עדכון מדדים");

// "#,##0.0": thousands grouped, one decimal.
QString indexText(double value) { return QLocale(QLocale::English, QLocale::UnitedStates).toString(value, 'f', 1); }

// The month after "YYYYMM", or "" past year 9999.
QString nextMonth(const QString& month) {
    int year = month.left(4).toInt(), m = month.mid(4, 2).toInt() + 1;
    if (m > 12) {
        m = 1;
        ++year;
    }
    if (year > 9999) return {};
    return QStringLiteral("%1%2").arg(year, 4, 10, QLatin1Char('0')).arg(m, 2, 10, QLatin1Char('0'));
}

}  // namespace

// The rows of the table and, after them, the month that follows the last one,
// which takes a value like any month after the published ones.
class MadadimModel final : public QAbstractTableModel {
public:
    MadadimModel(MadadTable& table, QObject* parent) : QAbstractTableModel(parent), table_(table) { load(); }

    // Told when a typed value is refused: the cell and the message.
    std::function<void(const QModelIndex&, const QString&)> onRefused;

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 4; }

    QString monthAt(int row) const { return row >= 0 && row < rowCount() ? rows_[row].month : QString(); }
    bool isNewMonth(int row) const { return row == realRows_; }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        switch (section) {
            case MadadimDialog::ColBasis51: return QStringLiteral("מדד על בסיס 9/51");
            case MadadimDialog::ColBasis: return QStringLiteral("בסיס מדד");
            case MadadimDialog::ColMadad: return QStringLiteral("מדד");
            case MadadimDialog::ColShowMonth: return QStringLiteral("חודש");
            default: return {};
        }
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        const MadadRow& r = rows_[index.row()];
        const bool number = index.column() == MadadimDialog::ColBasis51 || index.column() == MadadimDialog::ColMadad;
        switch (role) {
            case Qt::DisplayRole:
                switch (index.column()) {
                    case MadadimDialog::ColBasis51: return isNewMonth(index.row()) ? QString() : indexText(r.basis51);
                    case MadadimDialog::ColBasis: return r.basis;
                    case MadadimDialog::ColMadad: return isNewMonth(index.row()) ? QString() : indexText(r.madad);
                    case MadadimDialog::ColShowMonth: return r.showMonth;
                    default: return {};
                }
            case Qt::EditRole:
                // A cell without a value starts its edit as "0".
                if (index.column() != MadadimDialog::ColMadad) return data(index, Qt::DisplayRole);
                return r.madad == 0 ? QStringLiteral("0") : QString::number(r.madad, 'g', 15);
            case Qt::TextAlignmentRole:
                if (number) return QVariant::fromValue(Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter);
                return {};
            default: return {};
        }
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
        if (index.isValid() && index.column() == MadadimDialog::ColMadad && table_.isMonthEditable(monthAt(index.row())))
            f |= Qt::ItemIsEditable;
        return f;
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override {
        if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable)) return false;
        // The table refuses a text that is no number and a value it could not
        // hold (the index on the 9/51 base must stay within its check).
        QString error;
        if (table_.setMadad(monthAt(index.row()), value.toString(), &error)) {
            afterWrite();
            return true;
        }
        if (onRefused) onRefused(index, error);
        return false;
    }

private:
    void load() {
        rows_ = table_.rows();
        realRows_ = static_cast<int>(rows_.size());
        if (rows_.empty()) return;
        MadadRow next = rows_.back();
        next.month = nextMonth(next.month);
        if (next.month.isEmpty()) return;
        next.basis51 = next.madad = 0;
        next.showMonth = next.month.mid(4, 2) + QLatin1Char('/') + next.month.left(4);
        rows_.push_back(next);
    }

    // A value was written. When it was the new month's, that row became one of
    // the table's and the month after it follows.
    void afterWrite() {
        const std::size_t now = table_.rows().size(), before = static_cast<std::size_t>(realRows_);
        if (now == before + 1) {
            beginInsertRows({}, rowCount(), rowCount());
            load();
            endInsertRows();
        } else if (now != before) {  // changed in some other way as well: read afresh
            beginResetModel();
            load();
            endResetModel();
            return;
        } else {
            load();
        }
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }

    MadadTable& table_;
    std::vector<MadadRow> rows_;
    int realRows_ = 0;
};

// The editor of an index cell. A refused value stays in its cell: the editor
// opens on it again with the refused text until a good value is given or the
// edit is given up with Esc.
class MadadDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // The row whose value was refused, and the text.
    mutable std::optional<std::pair<int, QString>> pending;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
        auto* editor = new QLineEdit(parent);
        editor->setObjectName(QStringLiteral("txtMadad"));
        editor->setAlignment(Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignVCenter);
        return editor;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        auto* line = static_cast<QLineEdit*>(editor);
        line->setText(pending && pending->first == index.row() ? pending->second
                                                                : index.data(Qt::EditRole).toString());
        line->selectAll();
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
        const QString text = static_cast<QLineEdit*>(editor)->text();
        // Only a changed cell is checked and written.
        if (text == index.data(Qt::EditRole).toString() || model->setData(index, text, Qt::EditRole))
            pending.reset();
        else
            pending = std::pair{index.row(), text};
    }

private:
    using QStyledItemDelegate::setModelData;
};

// The grid tells when an editor has closed, after the value was taken or refused.
class MadadGrid final : public QTableView {
public:
    using QTableView::QTableView;
    std::function<void(QAbstractItemDelegate::EndEditHint)> onEditorClosed;

protected:
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override {
        QTableView::closeEditor(editor, hint);
        if (onEditorClosed) onEditorClosed(hint);
    }
};

MadadimDialog::MadadimDialog(MadadTable& table, QWidget* parent) : QDialog(parent), table_(table) {
    setObjectName(QStringLiteral("frmMadadim"));
    setWindowTitle(QStringLiteral("טבלת מדדים"));
    setLayoutDirection(Qt::RightToLeft);
    setModal(true);
    table_.reloadIfChanged();

    model_ = new MadadimModel(table_, this);
    delegate_ = new MadadDelegate(this);
    grid_ = new MadadGrid(this);
    grid_->setObjectName(QStringLiteral("dbgMadadim"));
    grid_->setAccessibleName(QStringLiteral("טבלת מדדים"));
    grid_->setModel(model_);
    grid_->setItemDelegateForColumn(ColMadad, delegate_);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setSelectionBehavior(QAbstractItemView::SelectItems);
    grid_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                           QAbstractItemView::AnyKeyPressed);
    grid_->setTabKeyNavigation(false);  // Tab leaves the grid for the button
    grid_->verticalHeader()->hide();
    grid_->verticalHeader()->setDefaultSectionSize(grid_->fontMetrics().height() + 8);
    grid_->horizontalHeader()->setHighlightSections(false);
    grid_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    grid_->resizeColumnsToContents();
    int width = grid_->verticalScrollBar()->sizeHint().width() + 2 * grid_->frameWidth();
    for (int c = 0; c < model_->columnCount(); ++c) {
        grid_->setColumnWidth(c, grid_->columnWidth(c) + 16);
        width += grid_->columnWidth(c);
    }
    grid_->setMinimumWidth(width);
    grid_->setMinimumHeight(grid_->horizontalHeader()->sizeHint().height() +
                            16 * grid_->verticalHeader()->defaultSectionSize() + 2 * grid_->frameWidth());

    btnExit_ = new QPushButton(QStringLiteral("יציאה"), this);
    btnExit_->setObjectName(QStringLiteral("btnExit"));
    btnExit_->setDefault(true);
    connect(btnExit_, &QPushButton::clicked, this, &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(btnExit_);
    auto* top = new QVBoxLayout(this);
    top->addWidget(grid_);
    top->addLayout(buttons);
    setTabOrder(grid_, btnExit_);

    // A refusal is told once the editor has closed.
    model_->onRefused = [this](const QModelIndex& index, const QString& message) {
        refusal_ = std::pair{index.row(), message};
    };
    grid_->onEditorClosed = [this](QAbstractItemDelegate::EndEditHint hint) { editorClosed(hint); };

    // The newest months in view, the cursor on the first index that can be typed.
    int current = model_->rowCount() - 1;
    for (int row = 0; row < model_->rowCount(); ++row)
        if (model_->flags(model_->index(row, ColMadad)) & Qt::ItemIsEditable) {
            current = row;
            break;
        }
    if (current >= 0) grid_->setCurrentIndex(model_->index(current, ColMadad));
    grid_->setFocus();
}

MadadimDialog::~MadadimDialog() = default;

QTableView* MadadimDialog::grid() const { return grid_; }

int MadadimDialog::rowOfMonth(const QString& month) const {
    for (int row = 0; row < model_->rowCount(); ++row)
        if (model_->monthAt(row) == month) return row;
    return -1;
}

bool MadadimDialog::badEntryPending() const { return delegate_->pending.has_value(); }

void MadadimDialog::editorClosed(QAbstractItemDelegate::EndEditHint hint) {
    // Esc in the editor gives a refused value up; the cell keeps what the table holds.
    if (hint == QAbstractItemDelegate::RevertModelCache) delegate_->pending.reset();
    if (!refusal_) return;
    const auto [row, message] = *std::exchange(refusal_, std::nullopt);
    showMessage(this, MsgIcon::Exclamation, kGridTitle, message);
    // Back to the cell, with what was typed in it.
    const QModelIndex cell = model_->index(row, ColMadad);
    grid_->setCurrentIndex(cell);
    grid_->setFocus();
    grid_->edit(cell);
}

void MadadimDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    grid_->scrollToBottom();
}

bool updateMadadTables(QWidget* parent, MadadTable& table, const QUrl& source) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    QString message;
    const bool ok = table.UpdateMadadTable(source, &message);
    QGuiApplication::restoreOverrideCursor();
    showMessage(parent, ok ? MsgIcon::Information : MsgIcon::Exclamation, kUpdateTitle, message);
    return ok;
}

}  // namespace zelmor::shell
