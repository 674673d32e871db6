#pragma once
// The dialog of the four solving questions of the calculation menu. Each works
// on the business income of the registered spouse (Yegia.N150): what income
// gives a balance, what income matches the tax paid, what a change of income
// does to the balance, what change of income goes with a change of tax. A
// question never changes the report; "עדכון" stores the answer's income.

#include <QDialog>
#include <QString>

#include "core/date.h"
#include "engine/solve.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace zelmor {
class ConstDoch;
class MadadLookup;
struct NishumInput;
}  // namespace zelmor

namespace zelmor::shell {

class SimDialog : public QDialog {
    Q_OBJECT
public:
    // `report` must hold what the entry page shows (its screen taken into the
    // fields) and, like the constants and the index, outlive the dialog.
    SimDialog(SimQuestion question, NishumInput& report, const ConstDoch& c, const MadadLookup& madad, Date today,
              QWidget* parent = nullptr);

    // Shows the dialog modally. The tax-paid question asks no sum: it is solved
    // at once, and a refusal shows its message and returns Rejected without the
    // dialog ever showing. Accepted means "עדכון" changed Yegia.N150 and TTLM:
    // the caller shows the entry page again from the fields.
    int exec() override;

    // Runs the question for a sum and shows the answer, as "חישוב" does.
    void runSim(Amount sum);

    SimQuestion question() const { return question_; }
    bool hasAnswer() const { return hasAnswer_; }
    // The business income that "עדכון" would store.
    Amount answerIncome() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void calcClicked();
    void updateClicked();
    void hideAnswer();
    void showAnswer();

    SimQuestion question_;
    NishumInput& report_;
    const ConstDoch& c_;
    const MadadLookup& madad_;
    Date today_;

    Amount keptN150_ = 0;  // the report's income when the question ran
    Amount lastSum_ = 0;
    SimResult result_;
    bool hasAnswer_ = false;

    QPushButton* cmdCalc_ = nullptr;
    QPushButton* cmdUpdate_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QLineEdit* txtSum_ = nullptr;
    QLabel* lblQuestion_ = nullptr;
    QLabel* lblResult_ = nullptr;
    QLabel* lblAnswer_ = nullptr;
    QLabel* lblHefreshSum_ = nullptr;
    QLabel* lblHefresh_ = nullptr;
    QLabel* lblItraSum_ = nullptr;
    QLabel* lblItra_ = nullptr;
};

}  // namespace zelmor::shell
