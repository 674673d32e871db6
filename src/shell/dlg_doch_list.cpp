#include "shell/dlg_doch_list.h"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

#include "shell/messages.h"
#include "shell/store_messages.h"
#include "storage/report_db.h"

namespace zelmor::shell {
namespace {

const QString kTitle = QStringLiteral("רשימת נישומים");

// The one place where what storage says reaches the user: a failed call shows
// its message and the caller learns whether the call went through.
bool showStoreOutcome(QWidget* parent, const storage::StoreOutcome& outcome) {
    const ShownMessage m = storeMessage(StoreAction::Delete, outcome);
    if (!m.text.isEmpty()) showMessage(parent, m.icon, m.title.isEmpty() ? kTitle : m.title, m.text);
    return outcome.ok;
}

// The list as storage gives it; a database that cannot be read gives an empty
// list after its message.
std::vector<storage::NameRow> readNames(QWidget* parent, storage::ReportDb& db, storage::ListOrder order) {
    try {
        return db.listNames(order);
    } catch (const std::exception& e) {
        showMessage(parent, MsgIcon::Stop, kTitle, QString::fromUtf8(e.what()));
        return {};
    }
}

enum Column { ColId = 0, ColName = 1 };

}  // namespace

DochListDialog::DochListDialog(storage::ReportDb& db, QWidget* parent) : QDialog(parent), db_(db) {
    setWindowTitle(kTitle);
    setModal(true);
    setLayoutDirection(Qt::RightToLeft);

    auto* searchLabel = new QLabel(QStringLiteral("&חיפוש:"), this);
    search_ = new QLineEdit(this);
    search_->setObjectName(QStringLiteral("txtSearch"));
    search_->setAccessibleName(QStringLiteral("חיפוש"));
    search_->setPlaceholderText(QStringLiteral("ת.ז. או שם"));
    search_->setClearButtonEnabled(true);
    searchLabel->setBuddy(search_);
    search_->installEventFilter(this);

    model_ = new QStandardItemModel(0, 2, this);
    model_->setHorizontalHeaderLabels({QStringLiteral("ת.ז"), QStringLiteral("שם")});
    filter_ = new QSortFilterProxyModel(this);
    filter_->setSourceModel(model_);
    filter_->setFilterKeyColumn(-1);  // a hit in the id or in the name
    filter_->setFilterCaseSensitivity(Qt::CaseInsensitive);

    grid_ = new QTableView(this);
    grid_->setObjectName(QStringLiteral("dbdochlist"));
    grid_->setAccessibleName(kTitle);
    grid_->setModel(filter_);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setTabKeyNavigation(false);
    grid_->verticalHeader()->hide();
    grid_->horizontalHeader()->setSectionResizeMode(ColId, QHeaderView::ResizeToContents);
    grid_->horizontalHeader()->setStretchLastSection(true);
    grid_->setMinimumSize(380, 260);

    auto* sortBox = new QGroupBox(QStringLiteral("מיין ע\"פ"), this);
    nameSort_ = new QRadioButton(QStringLiteral("שם"), sortBox);
    nameSort_->setObjectName(QStringLiteral("NameSort"));
    idSort_ = new QRadioButton(QStringLiteral("ת.ז."), sortBox);
    idSort_->setObjectName(QStringLiteral("IDSort"));
    nameSort_->setChecked(true);
    auto* sortLayout = new QVBoxLayout(sortBox);
    sortLayout->addWidget(nameSort_);
    sortLayout->addWidget(idSort_);

    btnOpen_ = new QPushButton(QStringLiteral("&פתח"), this);
    btnOpen_->setObjectName(QStringLiteral("btnOpen"));
    btnDelete_ = new QPushButton(QStringLiteral("&מחק"), this);
    btnDelete_->setObjectName(QStringLiteral("btnDelete"));
    btnExit_ = new QPushButton(QStringLiteral("&יציאה"), this);
    btnExit_->setObjectName(QStringLiteral("btnExit"));
    btnOpen_->setDefault(true);
    btnDelete_->setAutoDefault(false);
    btnExit_->setAutoDefault(false);

    auto* side = new QVBoxLayout;
    side->addWidget(sortBox);
    side->addStretch(1);
    side->addWidget(btnOpen_);
    side->addWidget(btnDelete_);
    side->addWidget(btnExit_);

    auto* searchRow = new QHBoxLayout;
    searchRow->addWidget(searchLabel);
    searchRow->addWidget(search_, 1);

    auto* left = new QVBoxLayout;
    left->addLayout(searchRow);
    left->addWidget(grid_, 1);

    auto* main = new QHBoxLayout(this);
    main->addLayout(left, 1);
    main->addLayout(side);

    setTabOrder(search_, grid_);
    setTabOrder(grid_, nameSort_);
    setTabOrder(nameSort_, idSort_);
    setTabOrder(idSort_, btnOpen_);
    setTabOrder(btnOpen_, btnDelete_);
    setTabOrder(btnDelete_, btnExit_);

    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        filter_->setFilterFixedString(text.trimmed());
        resetCurrentRow();
    });
    connect(nameSort_, &QRadioButton::toggled, this, [this](bool) { reload(); });
    connect(grid_, &QTableView::doubleClicked, this, [this] { openCurrent(); });
    connect(btnOpen_, &QPushButton::clicked, this, [this] { openCurrent(); });
    connect(btnDelete_, &QPushButton::clicked, this, [this] { deleteCurrent(); });
    connect(btnExit_, &QPushButton::clicked, this, &QDialog::reject);

    reload();
}

int DochListDialog::visibleRows() const { return filter_->rowCount(); }

void DochListDialog::reload() {
    const auto order = nameSort_->isChecked() ? storage::ListOrder::ByName : storage::ListOrder::ById;
    const auto rows = readNames(this, db_, order);
    model_->removeRows(0, model_->rowCount());
    for (const auto& row : rows) {
        auto* id = new QStandardItem(QString::fromStdString(row.dID));
        auto* name = new QStandardItem(QString::fromStdString(row.dName));
        model_->appendRow({id, name});
    }
    resetCurrentRow();
}

// The first row of the grid becomes the current one (none in an empty grid).
void DochListDialog::resetCurrentRow() {
    if (filter_->rowCount() == 0) {
        grid_->selectionModel()->clear();
        return;
    }
    const QModelIndex first = filter_->index(0, ColId);
    // Through the selection model: the view's own row selection needs a laid
    // out header, which a grid not yet shown lacks.
    grid_->selectionModel()->setCurrentIndex(first, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    grid_->scrollTo(first);
}

int DochListDialog::currentSourceRow() const {
    const QModelIndex current = grid_->currentIndex();
    if (!current.isValid()) return -1;
    return filter_->mapToSource(current).row();
}

void DochListDialog::openCurrent() {
    const int row = currentSourceRow();
    const QString id = row < 0 ? QString() : model_->item(row, ColId)->text().trimmed();
    if (id.isEmpty()) {
        showMessage(this, MsgIcon::Exclamation, kTitle, QStringLiteral("לא נבחר אף נישום לפתיחה"));
        return;
    }
    chosenId_ = id;
    chosenName_ = model_->item(row, ColName)->text();
    accept();
}

void DochListDialog::deleteCurrent() {
    const auto answer = askQuestion(this, kTitle, QStringLiteral("האם את/ה בטוח/ה שברצונך למחוק את הדו\"ח ?"),
                                    QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes) return;
    const int row = currentSourceRow();
    // No row selected: the id is empty and storage deletes nothing.
    const QString id = row < 0 ? QString() : model_->item(row, ColId)->text();
    showStoreOutcome(this, db_.deleteNishum(id.toStdString()));
    reload();
}

void DochListDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    resetCurrentRow();
    search_->setFocus(Qt::OtherFocusReason);
}

// Moving through the grid without leaving the search box: the arrows and the
// page keys go to the grid, so that one can type, pick and press Enter.
bool DochListDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
            QApplication::sendEvent(grid_, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace zelmor::shell
