#pragma once
// One result sheet on screen, drawn from the sheet's row table and layout:
// the title, the column heads, each shown row at the position the walk gives
// it (hidden rows take no place), the rules, and on the summary the interest
// date field, its date picker, the exemption and the buttons to the details.
// Every value label is named after its field.

#include <QString>
#include <QWidget>
#include <vector>

#include "engine/calc.h"
#include "results/sheet_layout.h"

class QLabel;
class QLineEdit;
class QToolButton;

namespace zelmor::shell {

class SheetCanvas : public QWidget {
    Q_OBJECT
public:
    SheetCanvas(SheetId sheet, const CalcResult& result, const SheetParams& params, QWidget* parent = nullptr);

    SheetId sheet() const { return sheet_; }
    // The interest date field and its picker (summary only; nullptr elsewhere).
    QLineEdit* dateField() const { return dateField_; }
    QToolButton* dateButton() const { return dateButton_; }
    // The sheet as tab-separated text: the title, the heads, then each shown
    // row's caption and cells, one line each.
    QString sheetText() const;
    // The height the content needs at the present width.
    // The name of the cell a widget of the sheet shows, or "" for a caption,
    // a head or a button. The cells take the focus (click or Tab), so that F1
    // and the context menu know which one is meant.
    QString cellField(const QObject* widget) const;

signals:
    void detailsRequested(int page);  // a button of the summary

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    struct Item {
        QWidget* widget;
        Box box;
        double top;        // px from the top of the canvas
        int height = 0;    // 0: a row's height
    };
    QLabel* addLabel(const QString& text, Box box, double top, bool bold = false, bool amount = false,
                     const QString& name = {});
    void addHeads(int block, double top);
    void addRow(const SheetRow& row, double top);
    void addRules(int block, double top, int width);
    void addSummaryExtras(const SheetRow& row, double top);
    void relayout();
    double rowPx() const;

    SheetId sheet_;
    const CalcResult& result_;
    const SheetParams& params_;
    std::vector<Item> items_;
    QStringList textLines_;
    QLineEdit* dateField_ = nullptr;
    QToolButton* dateButton_ = nullptr;
};

}  // namespace zelmor::shell
