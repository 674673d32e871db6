#include "shell/dlg_sim.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/field_checks.h"
#include "core/values.h"
#include "report/nishum_input.h"
#include "shell/messages.h"

namespace zelmor::shell {
namespace {

// Title of the program's warnings (a refused entry, a refused question).
const QString kWarningTitle = QString::fromLatin1(zelmor::kWarningTitle);
const QString kOverflowText = QStringLiteral("החישוב הופסק: סכום חורג מתחום המספרים המותר.");

QString dialogTitle(SimQuestion q) {
    switch (q) {
        case SimQuestion::IncomeForBalance: return QStringLiteral("קביעת ההכנסה ע\"פ יתרה לתשלום (להחזר)");
        case SimQuestion::IncomeForTaxPaid:
            return QStringLiteral("קביעת ההכנסה מעסק ומשלח יד ע\"פ המס ששולם בפועל");
        case SimQuestion::IncomeChange: return QStringLiteral("שינויים בהכנסה");
        case SimQuestion::TaxChange: return QStringLiteral("שינויים בתשלומי מס");
    }
    return {};
}

QString questionCaption(SimQuestion q) {
    switch (q) {
        case SimQuestion::IncomeForBalance: return QStringLiteral("רשום סכום :");
        case SimQuestion::IncomeChange: return QStringLiteral("תוספת (גריעה) :");
        case SimQuestion::TaxChange: return QStringLiteral("תשלום (החזר) :");
        case SimQuestion::IncomeForTaxPaid: break;
    }
    return QStringLiteral("סכום");
}

QString amountText(Amount a) { return QString::fromStdString(FormatAmount(a.value())); }

// An amount inside a Hebrew caption, kept left to right so that its sign stays
// behind the digits.
QString amountInCaption(Amount a) {
    return QChar(0x202A) + amountText(a) + QChar(0x202C);  // LRE ... PDF
}

// An amount shows with its sign behind the digits ("1,234-"), so it is laid
// out left to right whatever the dialog's direction.
QLabel* amountLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setLayoutDirection(Qt::LeftToRight);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(110);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* captionLabel(QWidget* parent, const char* name, const QString& caption) {
    auto* label = new QLabel(caption, parent);
    label->setObjectName(QLatin1String(name));
    return label;
}

}  // namespace

SimDialog::SimDialog(SimQuestion question, NishumInput& report, const ConstDoch& c, const MadadLookup& madad,
                     Date today, QWidget* parent)
    : QDialog(parent), question_(question), report_(report), c_(c), madad_(madad), today_(today) {
    setWindowTitle(dialogTitle(question));
    setModal(true);
    setLayoutDirection(Qt::RightToLeft);

    cmdCalc_ = new QPushButton(QStringLiteral("חישוב"), this);
    cmdCalc_->setObjectName(QStringLiteral("cmdCalc"));
    cmdUpdate_ = new QPushButton(QStringLiteral("עדכון"), this);
    cmdUpdate_->setObjectName(QStringLiteral("cmdUpdate"));
    cmdCancel_ = new QPushButton(QStringLiteral("ביטול"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    for (auto* b : {cmdCalc_, cmdUpdate_, cmdCancel_}) b->setAutoDefault(false);

    txtSum_ = new QLineEdit(this);
    txtSum_->setObjectName(QStringLiteral("txtSum"));
    txtSum_->setLayoutDirection(Qt::LeftToRight);
    txtSum_->setAlignment(Qt::AlignRight);
    txtSum_->setMaximumWidth(160);
    lblQuestion_ = captionLabel(this, "lblQuestion", QStringLiteral("סכום"));
    lblQuestion_->setBuddy(txtSum_);
    txtSum_->setAccessibleName(questionCaption(question));

    lblResult_ = amountLabel(this, "lblResult");
    lblAnswer_ = captionLabel(this, "lblAnswer", QStringLiteral("יתרה חדשה"));
    lblHefreshSum_ = amountLabel(this, "lblHefreshSum");
    lblHefresh_ = captionLabel(this, "lblHefresh", QStringLiteral("תשלום (החזר) מס עקב תוספת (גריעת) הכנסה בסך"));
    lblItraSum_ = amountLabel(this, "lblItraSum");
    lblItra_ = captionLabel(this, "lblItra", QStringLiteral("יתרה"));

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(10);
    grid->addWidget(lblQuestion_, 0, 0);
    grid->addWidget(txtSum_, 0, 1, Qt::AlignLeft);
    grid->addWidget(lblItra_, 1, 0);
    grid->addWidget(lblItraSum_, 1, 1);
    grid->addWidget(lblHefresh_, 2, 0);
    grid->addWidget(lblHefreshSum_, 2, 1);
    grid->addWidget(lblAnswer_, 3, 0);
    grid->addWidget(lblResult_, 3, 1);
    grid->setColumnStretch(0, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdCalc_);
    buttons->addWidget(cmdUpdate_);
    buttons->addWidget(cmdCancel_);

    auto* main = new QVBoxLayout(this);
    main->addLayout(grid);
    main->addStretch(1);
    main->addLayout(buttons);
    setMinimumWidth(560);

    setTabOrder(txtSum_, cmdCalc_);
    setTabOrder(cmdCalc_, cmdUpdate_);
    setTabOrder(cmdUpdate_, cmdCancel_);

    connect(cmdCalc_, &QPushButton::clicked, this, [this] { calcClicked(); });
    connect(cmdUpdate_, &QPushButton::clicked, this, [this] { updateClicked(); });
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);

    for (auto* l : {lblItra_, lblItraSum_, lblHefresh_, lblHefreshSum_}) l->hide();
    if (question == SimQuestion::IncomeForTaxPaid) {
        // No sum is asked: the tax paid is the target.
        lblQuestion_->hide();
        txtSum_->hide();
        cmdCalc_->hide();
        cmdUpdate_->setDefault(true);
    } else {
        lblQuestion_->setText(questionCaption(question));
        lblAnswer_->hide();
        lblResult_->hide();
        cmdUpdate_->setEnabled(false);
        cmdCalc_->setDefault(true);
    }
}

int SimDialog::exec() {
    if (question_ == SimQuestion::IncomeForTaxPaid) {
        runSim(0);
        if (!hasAnswer_) return Rejected;
    }
    return QDialog::exec();
}

void SimDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (question_ == SimQuestion::IncomeForTaxPaid)
        cmdUpdate_->setFocus(Qt::OtherFocusReason);
    else
        txtSum_->setFocus(Qt::OtherFocusReason);
}

Amount SimDialog::answerIncome() const {
    if (question_ == SimQuestion::IncomeChange) return keptN150_ + lastSum_;
    return result_.SimValue;
}

void SimDialog::calcClicked() {
    const std::string text = txtSum_->text().toStdString();
    if (text.empty()) {
        txtSum_->setFocus(Qt::OtherFocusReason);
        return;
    }
    // The sum is checked as an amount field is on leaving it; its value is
    // what the display form shows.
    const FieldOutcome checked = CheckAmountField(text);
    if (!checked.accepted) {
        showMessage(this, MsgIcon::Exclamation, QString::fromStdString(checked.title),
                    QString::fromStdString(checked.message));
        txtSum_->setFocus(Qt::OtherFocusReason);
        return;
    }
    const Amount sum = ParseAmount(checked.text);
    txtSum_->setText(amountText(sum));
    runSim(sum);
}

void SimDialog::runSim(Amount sum) {
    keptN150_ = report_.Yegia.N150;
    lastSum_ = sum;
    hasAnswer_ = false;
    try {
        result_ = Simulate(question_, sum, report_, c_, madad_, today_);
    } catch (const OverflowError&) {
        hideAnswer();
        showMessage(this, MsgIcon::Stop, windowTitle(), kOverflowText);
        txtSum_->setFocus(Qt::OtherFocusReason);
        return;
    }
    // The trials ran on a copy; the report's income is as the user left it.
    report_.Yegia.N150 = keptN150_;
    if (result_.isSimFail) {
        hideAnswer();
        showMessage(this, MsgIcon::Exclamation, kWarningTitle, QString::fromStdString(result_.message));
        if (question_ != SimQuestion::IncomeForTaxPaid) txtSum_->setFocus(Qt::OtherFocusReason);
        return;
    }
    hasAnswer_ = true;
    showAnswer();
}

void SimDialog::hideAnswer() {
    lblResult_->setText(amountText(result_.SimValue));
    for (auto* l : {lblItra_, lblItraSum_, lblHefresh_, lblHefreshSum_, lblAnswer_, lblResult_}) l->hide();
    cmdUpdate_->setEnabled(false);
}

void SimDialog::showAnswer() {
    lblResult_->setText(amountText(result_.SimValue));
    switch (question_) {
        case SimQuestion::IncomeForBalance:
        case SimQuestion::IncomeForTaxPaid:
            lblAnswer_->setText(QStringLiteral("סכום ההכנסה שחושב :"));
            lblAnswer_->show();
            lblResult_->show();
            break;
        case SimQuestion::IncomeChange:
            lblItra_->setText(QStringLiteral("יתרת מס לתשלום (להחזר) ע\"פ נתוני הדו\"ח"));
            lblHefresh_->setText(QStringLiteral("תשלום (החזר) מס עקב תוספת (גריעת) הכנסה בסך ") + amountInCaption(lastSum_));
            lblAnswer_->setText(QStringLiteral("יתרת מס לתשלום (להחזר) לאחר תוספת (גריעת) ההכנסה"));
            break;
        case SimQuestion::TaxChange:
            lblItra_->setText(QStringLiteral("הכנסה מעסק ע\"פ נתוני הדו\"ח"));
            lblHefresh_->setText(QStringLiteral("תוספת (גריעה) מההכנסה עקב תשלום (החזר) מס בסך ") + amountInCaption(lastSum_));
            lblAnswer_->setText(QStringLiteral("הכנסה מעסק לאחר תשלום (החזר) מס"));
            break;
    }
    if (question_ == SimQuestion::IncomeChange || question_ == SimQuestion::TaxChange) {
        lblItraSum_->setText(amountText(result_.SimBase));
        lblHefreshSum_->setText(amountText(result_.SimHefresh));
        for (auto* l : {lblItra_, lblItraSum_, lblHefresh_, lblHefreshSum_, lblAnswer_, lblResult_}) l->show();
    }
    cmdUpdate_->setEnabled(true);
}

void SimDialog::updateClicked() {
    if (!hasAnswer_) return;
    try {
        const Amount income = answerIncome();
        report_.Yegia.N150 = income;
        report_.Yegia.TTLM = SumTTLM(report_.Yegia);
    } catch (const OverflowError&) {
        report_.Yegia.N150 = keptN150_;
        showMessage(this, MsgIcon::Stop, windowTitle(), kOverflowText);
        return;
    }
    accept();
}

}  // namespace zelmor::shell
