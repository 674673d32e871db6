#include "shell/explain_panel.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "core/values.h"
#include "engine/calc.h"
#include "engine/explain.h"
#include "engine/trace.h"
#include "results/sheet_rows.h"

namespace zelmor::shell {
namespace {

constexpr int kOpenedRole = Qt::UserRole + 2;  // the item's figures are in the tree already
constexpr int kPanelWidth = 560;

QString q(const std::string& s) { return QString::fromStdString(s); }

// The caption of the row that shows a cell, or the cell's name when no row shows it.
QString cellCaption(SheetId sheet, const QString& field) {
    const std::string name = field.toStdString();
    for (const SheetRow& row : sheetRows(sheet))
        for (const char* f : row.fields)
            if (f && name == f && *row.screenCaption) {
                QString caption = QString::fromUtf8(row.screenCaption).trimmed();
                while (caption.endsWith(QLatin1Char(':'))) caption.chop(1);
                return caption.trimmed();
            }
    return field;
}

// The figures a node is made of, as the explanation names them: through its
// unnamed steps, without the zeros a formula already shows.
std::vector<int> figuresOf(const trace::Trace& t, int node) {
    std::vector<int> ids;
    const QJsonObject tree = QJsonDocument::fromJson(QByteArray::fromStdString(trace::explainJson(t, node, 2))).object();
    for (const QJsonValue kid : tree.value(QStringLiteral("children")).toArray())
        ids.push_back(kid.toObject().value(QStringLiteral("id")).toInt(-1));
    return ids;
}

}  // namespace

ExplainPanel::ExplainPanel(QWidget* parent) : QWidget(parent, Qt::Window), trace_(std::make_unique<trace::Trace>()) {
    setObjectName(QStringLiteral("frmExplain"));
    setLayoutDirection(Qt::RightToLeft);
    setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    auto* layout = new QVBoxLayout(this);
    mode_ = new QLabel(this);
    mode_->setObjectName(QStringLiteral("lblMode"));
    layout->addWidget(mode_);
    tree_ = new QTreeWidget(this);
    tree_->setObjectName(QStringLiteral("tvExplain"));
    tree_->setAccessibleName(QStringLiteral("הסבר"));
    tree_->setHeaderHidden(true);
    tree_->setColumnCount(1);
    tree_->setExpandsOnDoubleClick(false);  // a double click activates, as Enter does
    // A formula keeps its one line; a long one scrolls sideways.
    tree_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    tree_->header()->setStretchLastSection(false);
    layout->addWidget(tree_, 1);
    auto* hint = new QLabel(QStringLiteral("שורה של הדו\"ח, במקש Enter או בלחיצה כפולה: מעבר לשדה שלה בעריכת הדו\"ח"), this);
    hint->setObjectName(QStringLiteral("lblHint"));
    hint->setWordWrap(true);
    layout->addWidget(hint);

    connect(tree_, &QTreeWidget::itemExpanded, this, &ExplainPanel::open);
    connect(tree_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { activate(item); });
    resize(kPanelWidth, 480);
}

ExplainPanel::~ExplainPanel() = default;

void ExplainPanel::explain(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today,
                           SheetId sheet, const QString& field, const NishumOutput* shown) {
    sheet_ = sheet;
    field_ = field;
    tree_->clear();
    const std::string sheetName = allSheets()[static_cast<std::size_t>(sheet) - 1].name;
    const std::string id = sheetName + "." + field.toStdString();
    QString caption = cellCaption(sheet, field);
    // The balance carried to the date on show, when one was chosen there.
    const Date interestDate = shown && shown->Main.RibitDate != today ? shown->Main.RibitDate : Date();
    CalcResult result;
    try {
        result = CalcDoch(report, c, madad, today, trace_.get(), interestDate);
    } catch (const OverflowError&) {
        trace_->clear();
        mode_->setText(QStringLiteral("לא ניתן לחשב את הדו\"ח: אחד הסכומים חורג מהטווח המותר."));
        setWindowTitle(QStringLiteral("הסבר - ") + caption);
        return;
    }
    mode_->setText(QString::fromUtf8(ModeTitle(result.FilingMode)));
    const int node = trace_->cell(id);
    const double onShow = sheetValue(shown ? *shown : result.out, sheet, field.toStdString());
    const SheetFieldDef* def = findSheetField(sheetName, field.toStdString());
    const QString valueText = def && def->type == SheetFieldType::Date
                                  ? q(FormatDate(Date::fromSerial(static_cast<std::int32_t>(onShow))))
                                  : q(trace::formatNumber(onShow));
    QTreeWidgetItem* root = nullptr;
    if (node >= 0) {
        caption = q(trace_->name(node));
        root = addNode(nullptr, node);
        root->setExpanded(true);
    } else {
        // A row the run left empty, or a figure whose rule records nothing.
        root = new QTreeWidgetItem(tree_);
        root->setText(0, caption + QStringLiteral(" = ") + valueText + QStringLiteral(" (אין הסבר רשום לתא זה)"));
        root->setData(0, kNodeRole, -1);
    }
    if (trace_->filing >= 0) addNode(nullptr, trace_->filing);
    tree_->setCurrentItem(root);
    setWindowTitle(QStringLiteral("הסבר - ") + caption);
}

QTreeWidgetItem* ExplainPanel::addNode(QTreeWidgetItem* parent, int node) {
    auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree_);
    const trace::Node& n = trace_->at(node);
    item->setText(0, q(trace::formulaLine(*trace_, node)));
    item->setData(0, kNodeRole, node);
    if (!n.leaf() && n.count > 0) item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (n.op == trace::Op::Line) {
        item->setForeground(0, tree_->palette().brush(QPalette::Link));
        item->setToolTip(0, QStringLiteral("מקש Enter או לחיצה כפולה: מעבר לשדה"));
    }
    return item;
}

void ExplainPanel::open(QTreeWidgetItem* item) {
    const int node = item->data(0, kNodeRole).toInt();
    if (node < 0 || item->data(0, kOpenedRole).toBool()) return;
    item->setData(0, kOpenedRole, true);
    for (int kid : figuresOf(*trace_, node)) addNode(item, kid);
    if (item->childCount() == 0) item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
}

void ExplainPanel::activate(QTreeWidgetItem* item) {
    if (!item) return;
    const int node = item->data(0, kNodeRole).toInt();
    if (node < 0) return;
    const trace::Node& n = trace_->at(node);
    if (n.op != trace::Op::Line) {
        item->setExpanded(!item->isExpanded());
        return;
    }
    const auto dot = n.source().find('.');
    if (dot == std::string_view::npos) return;
    if (const FieldDef* f = findField(n.source().substr(0, dot), n.source().substr(dot + 1)))
        emit lineActivated(f->section, QString::fromUtf8(f->name));
}

void ExplainPanel::placeBeside(const QWidget* owner) {
    const QRect frame = owner->frameGeometry();
    const QScreen* screen = owner->screen() ? owner->screen() : QGuiApplication::primaryScreen();
    const QRect room = screen ? screen->availableGeometry() : QRect();
    const int width = std::max(this->width(), kPanelWidth);
    resize(width, std::max(owner->height(), 320));
    const int edge = frameGeometry().width() - geometry().width();  // the window frame, when there is one
    int x = frame.right() + 1;
    if (!room.isNull() && x + width + edge > room.right()) x = std::max(room.left(), frame.left() - width - edge);
    move(x, frame.top());
}

void ExplainPanel::keyPressEvent(QKeyEvent* e) {
    if (e->key() == Qt::Key_Escape && !(e->modifiers() & ~Qt::KeypadModifier)) {
        close();
        return;
    }
    QWidget::keyPressEvent(e);
}

}  // namespace zelmor::shell
