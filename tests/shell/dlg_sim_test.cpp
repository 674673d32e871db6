// The solving dialog against the solver itself and against zelmor-cli.
#include "core/values.h"
#include "shell/dlg_sim.h"
#include "shell/dlg_test_support.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

QString shown(Amount a) { return QString::fromStdString(FormatAmount(a.value())); }

QString label(SimDialog& dlg, const char* name) { return child<QLabel>(&dlg, name)->text(); }

// Types the sum and presses Enter, as a user asks the question.
void ask(SimDialog& dlg, const QString& sum) {
    auto* txt = child<QLineEdit>(&dlg, "txtSum");
    txt->clear();
    QTest::keyClicks(txt, sum);
    QTest::keyClick(txt, Qt::Key_Return);
}

class SimDialogTest : public DataFolderTest {
protected:
    SimResult solve(SimQuestion q, Amount sum, const NishumInput& r) const { return Simulate(q, sum, r, c, madad, today); }
};

// Every question's answer is the solver's answer for the same report and sum
// (and, for one, that of the command-line tool), shown in the labels the
// question uses, and the report is left as it was.
TEST_F(SimDialogTest, AnswersAreTheSolversAnswers) {
    const struct {
        const char* report;
        SimQuestion question;
        const char* sum;
    } cases[] = {
        {"single.json", SimQuestion::IncomeForBalance, "5000"},
        {"single.json", SimQuestion::IncomeForBalance, "2,500-"},
        {"couple.json", SimQuestion::IncomeForBalance, "0"},
        {"single.json", SimQuestion::IncomeChange, "12000"},
        {"couple.json", SimQuestion::IncomeChange, "-30000"},
        {"single.json", SimQuestion::IncomeChange, "0"},
        {"single.json", SimQuestion::TaxChange, "3000"},
        {"couple-low-spouse.json", SimQuestion::TaxChange, "-1000"},
        {"couple.json", SimQuestion::TaxChange, "6000"},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(std::string(k.report) + " question " + std::to_string(int(k.question)) + " sum " + k.sum);
        NishumInput report = goldenReport(QLatin1String(k.report));
        const NishumInput before = report;
        const SimResult expected = solve(k.question, ParseAmount(k.sum), report);
        if (k.question == SimQuestion::TaxChange && std::string_view(k.report) == "couple.json") {
            const QJsonObject cli = QJsonDocument::fromJson(runCli({"solve", "--question", "4", "--sum", k.sum, "--today", "2016-06-30",
                                                                    "--data-dir", dir.path(), kGoldenReports + k.report}))
                                        .object();
            EXPECT_EQ(cli.value("SimValue").toInt(), expected.SimValue.value());
            EXPECT_EQ(cli.value("SimBase").toInt(), expected.SimBase.value());
            EXPECT_EQ(cli.value("SimHefresh").toInt(), expected.SimHefresh.value());
        }
        SimDialog dlg(k.question, report, c, madad, today);
        dlg.show();
        ask(dlg, QLatin1String(k.sum));
        ASSERT_EQ(dlg.hasAnswer(), !expected.isSimFail);
        EXPECT_EQ(report.Yegia.N150, before.Yegia.N150);
        if (expected.isSimFail) {
            EXPECT_EQ(recorder.lastText().toStdString(), expected.message);
            continue;
        }
        EXPECT_EQ(label(dlg, "lblResult"), shown(expected.SimValue));
        EXPECT_TRUE(child<QLabel>(&dlg, "lblResult")->isVisible());
        EXPECT_TRUE(child<QPushButton>(&dlg, "cmdUpdate")->isEnabled());
        const bool sixLabels = k.question != SimQuestion::IncomeForBalance;
        EXPECT_EQ(child<QLabel>(&dlg, "lblItraSum")->isVisible(), sixLabels);
        if (sixLabels) {
            EXPECT_EQ(label(dlg, "lblItraSum"), shown(expected.SimBase));
            EXPECT_EQ(label(dlg, "lblHefreshSum"), shown(expected.SimHefresh));
            EXPECT_TRUE(label(dlg, "lblHefresh").contains(shown(ParseAmount(k.sum))));
        } else {
            EXPECT_EQ(label(dlg, "lblAnswer"), QStringLiteral("סכום ההכנסה שחושב :"));
        }
    }
}

TEST_F(SimDialogTest, RefusalsHideTheAnswer) {
    NishumInput report = goldenReport(QStringLiteral("single.json"));
    SimDialog dlg(SimQuestion::IncomeForBalance, report, c, madad, today);
    dlg.show();
    auto* update = child<QPushButton>(&dlg, "cmdUpdate");
    auto* result = child<QLabel>(&dlg, "lblResult");
    auto* sum = child<QLineEdit>(&dlg, "txtSum");
    EXPECT_FALSE(update->isEnabled());
    EXPECT_FALSE(result->isVisible());
    EXPECT_EQ(dlg.focusWidget(), sum);

    ask(dlg, QStringLiteral(""));  // nothing asked, nothing said
    EXPECT_TRUE(recorder.shown.empty());
    EXPECT_FALSE(dlg.hasAnswer());
    ask(dlg, QStringLiteral("abc"));
    ASSERT_EQ(recorder.shown.size(), 1u);
    EXPECT_EQ(recorder.shown[0].text, QStringLiteral("סכום לא חוקי"));
    EXPECT_EQ(recorder.shown[0].icon, MsgIcon::Exclamation);

    ask(dlg, QStringLiteral("5000"));
    EXPECT_TRUE(update->isEnabled());
    EXPECT_EQ(sum->text(), QStringLiteral("5,000"));
    // A refund above everything paid: refused, and the earlier answer goes.
    ask(dlg, QStringLiteral("-999999"));
    EXPECT_EQ(recorder.lastText(), QStringLiteral("לא ניתן להגיע ליתרת החזר גבוהה מהסכומים ששולמו בפועל ע\"ח המס"));
    EXPECT_FALSE(update->isEnabled());
    EXPECT_FALSE(result->isVisible());
    EXPECT_EQ(dlg.focusWidget(), sum);
}

TEST_F(SimDialogTest, UpdateStoresTheIncomeAndCancelKeepsIt) {
    NishumInput report = goldenReport(QStringLiteral("single.json"));
    const Amount n150 = report.Yegia.N150;
    for (const char* button : {"cmdCancel", "cmdUpdate"}) {
        SimDialog dlg(SimQuestion::IncomeChange, report, c, madad, today);
        dlg.show();
        ask(dlg, QStringLiteral("7000"));
        child<QPushButton>(&dlg, button)->click();
        const bool update = std::string_view(button) == "cmdUpdate";
        EXPECT_EQ(dlg.result(), update ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(report.Yegia.N150, update ? n150 + 7000 : n150);
    }
    EXPECT_EQ(report.Yegia.TTLM, SumTTLM(report.Yegia));
}

// The tax-paid question asks no sum: it is answered before the dialog shows.
TEST_F(SimDialogTest, TaxPaidQuestionAnswersAtOnce) {
    NishumInput report = goldenReport(QStringLiteral("couple.json"));
    const SimResult expected = solve(SimQuestion::IncomeForTaxPaid, 0, report);
    ASSERT_FALSE(expected.isSimFail);
    SimDialog dlg(SimQuestion::IncomeForTaxPaid, report, c, madad, today);
    bool sumAsked = true;
    QTimer::singleShot(0, &dlg, [&] {
        sumAsked = child<QLineEdit>(&dlg, "txtSum")->isVisible() || child<QPushButton>(&dlg, "cmdCalc")->isVisible();
        EXPECT_EQ(label(dlg, "lblResult"), shown(expected.SimValue));
        QTest::keyClick(&dlg, Qt::Key_Return);  // the default button stores the answer
    });
    EXPECT_EQ(dlg.exec(), QDialog::Accepted);
    EXPECT_FALSE(sumAsked);
    EXPECT_EQ(report.Yegia.N150, expected.SimValue);

    // Other incomes already taxed above what was paid: refused, never shown.
    NishumInput unpaid = goldenReport(QStringLiteral("single.json"));
    unpaid.Tashlumim = {};
    const SimResult refused = solve(SimQuestion::IncomeForTaxPaid, 0, unpaid);
    ASSERT_TRUE(refused.isSimFail);
    const Amount before = unpaid.Yegia.N150;
    SimDialog refusing(SimQuestion::IncomeForTaxPaid, unpaid, c, madad, today);
    EXPECT_EQ(refusing.exec(), QDialog::Rejected);
    EXPECT_EQ(recorder.lastText().toStdString(), refused.message);
    EXPECT_EQ(unpaid.Yegia.N150, before);
}

}  // namespace
