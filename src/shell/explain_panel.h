#pragma once
// How one result cell came about, in a window of its own beside the main
// window: the cell's formula with its numbers at the top, the figures it was
// made of below it, each opening in turn down to the report's own lines, the
// year's constants and the price index. A report line, activated (Enter or a
// double click), asks for its entry field; the filing-mode choice stands under
// the cell, closed.

#include <QString>
#include <QWidget>
#include <memory>

#include "core/date.h"
#include "core/madad_lookup.h"
#include "core/tax_year.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace zelmor::trace {
struct Trace;
}

namespace zelmor::shell {

class ExplainPanel : public QWidget {
    Q_OBJECT
public:
    // The item data role that holds a tree item's node in the trace.
    static constexpr int kNodeRole = Qt::UserRole + 1;

    explicit ExplainPanel(QWidget* parent = nullptr);
    ~ExplainPanel() override;

    // Works the report out again, recording how, and shows the cell's tree.
    // The figures are those of the results on show when the arguments are
    // theirs; `shown` (the sheets on show) gives the interest date chosen on
    // the summary, and the value of a cell that has no explanation.
    void explain(const NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today, SheetId sheet,
                 const QString& field, const NishumOutput* shown = nullptr);

    SheetId sheet() const { return sheet_; }
    const QString& field() const { return field_; }
    QTreeWidget* tree() const { return tree_; }

    // Places the window beside `owner`: on its right when the screen has room there, else on its left.
    void placeBeside(const QWidget* owner);

signals:
    // A report line of the tree was activated: the section and the field's name.
    void lineActivated(SectionId section, const QString& field);

protected:
    void keyPressEvent(QKeyEvent* e) override;

private:
    QTreeWidgetItem* addNode(QTreeWidgetItem* parent, int node);
    void open(QTreeWidgetItem* item);  // the item's figures, the first time it opens
    void activate(QTreeWidgetItem* item);

    std::unique_ptr<trace::Trace> trace_;
    SheetId sheet_ = SheetId::CMain;
    QString field_;
    QLabel* mode_ = nullptr;
    QTreeWidget* tree_ = nullptr;
};

}  // namespace zelmor::shell
