#pragma once
// One entry screen: the fields of one report section, drawn from the entry
// layout and the field catalogue, with the rules that run while the user types
// (Enter to the next field, checks when a field is left, totals that follow
// their parts, the ceiling and insured-income rules, the lists of lines 64 and
// 73, the female wording of the marital options).

#include <QFont>
#include <QMap>
#include <QSize>
#include <QString>
#include <QWidget>
#include <map>
#include <memory>
#include <vector>

#include "core/amount.h"
#include "report/entry_layout.h"

class QComboBox;
class QGridLayout;
class QLineEdit;

namespace zelmor::shell {

class EntryPage : public QWidget {
    Q_OBJECT
public:
    // `report` is read (never written) by rules that look at other sections' stored fields
    // (the insured income rule reads Yegia's salaries). It must outlive the page.
    EntryPage(SectionId section, const NishumInput* report, QWidget* parent = nullptr);
    ~EntryPage() override;
    SectionId section() const;
    void var2Map(const NishumInput& n);  // fields -> screen (formats, options, female wording, lists)
    // Runs the whole leave-field rule of the field that has the focus (its check, the ceiling or insured-income
    // rule, the refresh of totals). false: refused; the message was shown and the focus is back in the field.
    bool leaveCurrent();
    // screen -> fields. Call only after leaveCurrent() returned true. Derived totals are stored as the sums of
    // their parts. Returns false (and changes nothing) if a text cannot be parsed or a sum overflows.
    bool map2Var(NishumInput& n) const;
    void focusFirst();  // the first field in tab order gets the focus, its text selected
    QMap<QString, QString> rawTexts() const;          // field name -> text exactly as on screen (drafts)
    void setRawTexts(const QMap<QString, QString>&);  // restores typed texts (after var2Map)
    QWidget* fieldWidget(const QString& name) const;  // by field name; nullptr if none

    // The entry widgets in tab order (what Enter and Tab walk through).
    const std::vector<QWidget*>& tabOrder() const { return tabOrder_; }

    // The font every entry screen is drawn in, and the fixed size of the area
    // that shows one page: every one of the nine fits it without clipping or scrolling.
    static QFont screenFont();
    static QSize childSize();

signals:
    void pageKey(int qtKey);  // Qt::Key_PageDown or Qt::Key_PageUp pressed in any field of the page
    void edited();            // the user changed something (starts the draft timer)

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Slot;
    using SlotMap = std::map<const FieldDef*, std::unique_ptr<Slot>>;
    Slot* slotOf(QObject* widget) const;
    Slot* slotNamed(const char* name) const;
    void build();
    QWidget* buildBlock(const EntryBlock& block, SlotMap& placed);
    void addRow(QGridLayout* grid, int r, const EntryBlock& block, const EntryRow& row, SlotMap& placed);
    void placeBlocks(const std::vector<QWidget*>& blocks);
    void addField(Slot& s);
    bool runLeaveRule(Slot& s);
    void refocus(Slot& s);
    void refreshTotals();
    void applyWording(bool female);
    void fillRates(QComboBox* settlement);
    void moveNext(QWidget* from);

    SectionId section_;
    const NishumInput* report_;
    Amount ceiling_;
    std::vector<std::unique_ptr<Slot>> slots_;  // catalogue order
    std::vector<QWidget*> tabOrder_;
    QWidget* current_ = nullptr;  // the entry field that last had the focus
    bool inRule_ = false;         // a rule is showing its message or putting the focus back
};

}  // namespace zelmor::shell
