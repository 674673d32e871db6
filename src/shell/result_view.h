#pragma once
// The result screens: the eight sheets of a calculation, one on show at a
// time, drawn by one generic sheet canvas from each sheet's rows and layout.
// The summary takes the interest date (typed, or picked from a calendar) and
// works the interest out again without a new calculation.

#include <QWidget>

#include "core/date.h"
#include "core/madad_lookup.h"
#include "engine/calc.h"
#include "results/sheet_layout.h"

class QScrollArea;
class QCalendarWidget;

namespace zelmor::shell {

class SheetCanvas;

class ResultView : public QWidget {
    Q_OBJECT
public:
    // The interest date rule needs the year's constants, the price index and today.
    // `madad` must outlive the view.
    ResultView(const ConstDoch& c, const MadadLookup& madad, Date today, QWidget* parent = nullptr);
    ~ResultView() override;

    void setResult(const CalcResult& r);   // shows the summary (sheet 1) and puts the focus in it
    const CalcResult& result() const;      // with the interest fields as the user last set them
    void goSheet(int sheet);               // 1..8 (8 = national insurance), as the menus and F3-F8/F11 ask
    int sheet() const;

    // Page Up/Down (no wrap; Page Down from 7 reaches 8 and stops there), Esc
    // (back to the summary) and Ctrl+C (the sheet as tab-separated text) are
    // handled here; so are F1 and the context menu entry "הסבר" on an amount,
    // which ask for its explanation. The other function keys are left to the
    // main window's menus.
    QSize sizeHint() const override { return {600, 400}; }

signals:
    void sheetChanged(int sheet);
    // The explanation of a cell of the sheet on show is asked for.
    void explainRequested(SheetId sheet, const QString& field);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    bool handleKey(QObject* from, QKeyEvent* e);
    void showSheet();          // builds the sheet on show anew from the result
    void runDateRule();        // Enter in the interest date field
    void openPicker();
    void copySheet() const;
    // The cell F1 means: the amount with the focus, else the one under the mouse pointer.
    QString cellForKey(QObject* from) const;
    void cellMenu(QWidget* cell, const QPoint& at);

    ConstDoch c_;
    const MadadLookup& madad_;
    Date today_;
    SheetParams params_;
    CalcResult result_;
    int sheet_ = 1;
    QScrollArea* scroll_ = nullptr;
    SheetCanvas* canvas_ = nullptr;
    QCalendarWidget* picker_ = nullptr;
};

}  // namespace zelmor::shell
