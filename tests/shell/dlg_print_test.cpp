// The print dialog: the printer list and its PDF entry, the message when
// nothing is chosen, the jobs of the choices against the command-line tool, the
// page on show in either mode, and the preview.
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>

#include "engine/calc.h"
#include "print/pdf_text.h"
#include "shell/dlg_print.h"
#include "shell/dlg_test_support.h"

namespace zelmor::shell {
namespace {

const QString kReportPath = testing::kGoldenReports + QStringLiteral("single.json");

void check(PrintDialog& d, const char* box, bool on) { d.findChild<QCheckBox*>(QLatin1String(box))->setChecked(on); }
QComboBox* printers(PrintDialog& d) { return d.findChild<QComboBox*>(QStringLiteral("cmbPrinters")); }

class PrintDialogTest : public testing::DataFolderTest {
protected:
    void SetUp() override {
        QFile name(dir.filePath(QStringLiteral("USERZELW.NAM")));
        ASSERT_TRUE(name.open(QIODevice::WriteOnly));
        name.write("משרד רואי חשבון\n");
        name.close();
        ASSERT_TRUE(madad.ok()) << madad.errorString().toStdString();
    }

    PrintSession session(bool editMode) {
        return {&report_, &out_, SectionId::Yegia, SheetId::CHishuv, editMode, [this](NishumOutput& o, trace::Trace* sink) {
                    o = CalcDoch(report_, c, madad, today, sink).out;
                    return true;
                }};
    }
    PrintSetup setup() const { return {dir.path(), today, {}}; }

    // A dialog with no printer of the system, the PDF entry chosen and the
    // file chooser answering `path`.
    std::unique_ptr<PrintDialog> pdfDialog(const PrintChoices& parts, const QString& path, bool editMode = true) {
        auto d = std::make_unique<PrintDialog>(session(editMode), setup());
        d->setPrinters({});
        printers(*d)->setCurrentText(PrintDialog::pdfEntryText());
        d->setFileChooser([path](QWidget*) { return path; });
        for (const auto& [box, on] : {std::pair{"chkDetails", parts.details}, {"chkBL", parts.bl}, {"chkCurrPage", parts.currPage},
                                      {"chkCalc", parts.calc}, {"chkExplain", parts.explain}})
            check(*d, box, on);
        return d;
    }

    QStringList cliPages(const QStringList& flags, const QString& path) {
        testing::runCli(QStringList{"print", kReportPath, "--pdf", path, "--today", "2016-06-30", "--data-dir", dir.path()} + flags);
        return test::pdfPages(path);
    }

    NishumInput report_ = testing::readReport(kReportPath);
    NishumOutput out_;
};

TEST_F(PrintDialogTest, ThePdfEntryComesLastAndIsNeverChosenForTheUser) {
    PrintDialog d(session(true), setup());
    QComboBox* list = printers(d);
    d.setPrinters({QStringLiteral("Office"), QStringLiteral("Upstairs")});
    EXPECT_EQ(list->count(), 3);
    EXPECT_EQ(list->itemText(2), PrintDialog::pdfEntryText());
    EXPECT_EQ(list->currentIndex(), -1);

    d.setCurrentPrinter(QStringLiteral("Upstairs"));
    EXPECT_EQ(list->currentText(), "Upstairs");
    // The last choice was a file, or a printer that has gone: nothing is chosen.
    for (const QString& name : {PrintDialog::pdfEntryText(), QStringLiteral("Gone")}) {
        d.setCurrentPrinter(name);
        EXPECT_EQ(list->currentIndex(), -1) << name.toStdString();
    }
}

// The dialog writes what the command-line tool writes for the same report,
// date and parts; results and national insurance together print the results only.
TEST_F(PrintDialogTest, PdfFileAsTheCommandLineToolWritesIt) {
    const struct {
        PrintChoices choices;
        QStringList flags;
    } cases[] = {
        {{.details = true}, {QStringLiteral("--report")}},
        {{.bl = true}, {QStringLiteral("--bl")}},
        {{.details = true, .calc = true}, {QStringLiteral("--report"), QStringLiteral("--results")}},
        {{.bl = true, .calc = true}, {QStringLiteral("--results")}},
        {{.calc = true, .explain = true}, {QStringLiteral("--results"), QStringLiteral("--explain")}},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags.join(QLatin1Char(' ')).toStdString() + (c.choices.bl ? " (bl checked)" : ""));
        const QString mine = dir.filePath(QStringLiteral("dialog%1.pdf").arg(++n));
        auto d = pdfDialog(c.choices, mine);
        d->print();
        EXPECT_EQ(d->result(), QDialog::Accepted);
        const QStringList pages = test::pdfPages(mine);
        EXPECT_EQ(pages, cliPages(c.flags, dir.filePath(QStringLiteral("cli%1.pdf").arg(n))));
        EXPECT_TRUE(test::anyPageHas(pages, QStringLiteral("משרד רואי חשבון")));
    }
    EXPECT_TRUE(recorder.shown.empty()) << recorder.lastText().toStdString();
}

// No printer, no file, a place that can't be written or nothing to print:
// nothing is written, and the dialog stays wherever the user may choose again.
TEST_F(PrintDialogTest, NothingIsWrittenWithoutAPlaceOrAPart) {
    const QString path = dir.filePath(QStringLiteral("none.pdf"));
    auto noPrinter = pdfDialog({.details = true}, path);
    printers(*noPrinter)->setCurrentIndex(-1);
    noPrinter->show();
    ASSERT_NE(noPrinter->focusWidget(), nullptr);
    QTest::keyClick(noPrinter->focusWidget(), Qt::Key_Return);  // the default button: "הדפס"
    testing::expectLastMessage(recorder, MsgIcon::Exclamation, "הדפסה", "לא נבחרה מדפסת, בחר מדפסת מהרשימה");
    EXPECT_TRUE(noPrinter->isVisible());

    auto gaveUp = pdfDialog({.details = true}, QString());
    gaveUp->show();
    gaveUp->print();
    EXPECT_TRUE(gaveUp->isVisible());

    const QString nowhere = dir.filePath(QStringLiteral("no-such-folder/out.pdf"));
    auto badPlace = pdfDialog({.details = true}, nowhere);
    badPlace->show();
    badPlace->print();
    ASSERT_EQ(recorder.shown.size(), 2u);
    EXPECT_EQ(recorder.shown[1].icon, MsgIcon::Stop);
    EXPECT_TRUE(recorder.shown[1].text.contains(nowhere)) << recorder.lastText().toStdString();
    EXPECT_TRUE(badPlace->isVisible());
    EXPECT_FALSE(QFile::exists(nowhere));

    int asked = 0;
    auto nothing = pdfDialog({}, path);
    nothing->setFileChooser([&](QWidget*) { return ++asked, path; });
    nothing->print();
    EXPECT_EQ(nothing->result(), QDialog::Accepted);
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(recorder.shown.size(), 2u);
}

// "עמוד נוכחי" prints the section on show while editing and the sheet on show
// while the results are on screen.
TEST_F(PrintDialogTest, CurrentPageIsTheSectionOrTheSheetOnShow) {
    out_ = CalcDoch(report_, c, madad, today).out;
    for (bool editMode : {true, false}) {
        SCOPED_TRACE(editMode ? "edit mode" : "result mode");
        const QString mine = dir.filePath(editMode ? QStringLiteral("page-edit.pdf") : QStringLiteral("page-result.pdf"));
        pdfDialog({.currPage = true}, mine, editMode)->print();
        const QString direct = dir.filePath(QStringLiteral("direct.pdf"));
        PdfFileTarget target(direct);
        if (editMode)
            PrintNishum(target, setup(), report_, true, SectionId::Yegia);
        else
            PrintNishum(target, setup(), report_, out_, true, false, SheetId::CHishuv);
        ASSERT_TRUE(target.finish(nullptr));
        EXPECT_EQ(test::pdfPages(mine), test::pdfPages(direct));
    }
}

TEST_F(PrintDialogTest, APrinterThatCannotBeUsedIsReported) {
    PrintDialog d(session(true), setup());
    d.setPrinters({QStringLiteral("zelmor-test-no-such-printer")});
    d.setCurrentPrinter(QStringLiteral("zelmor-test-no-such-printer"));
    check(d, "chkDetails", true);
    d.print();
    testing::expectLastMessage(recorder, MsgIcon::Stop, "שגיאת הדפסה", "לא נמצאה מדפסת,...");
    EXPECT_EQ(d.result(), QDialog::Accepted);
    EXPECT_EQ(d.chosenPrinter(), "zelmor-test-no-such-printer");
}

// The preview shows the pages printed; it and the appendix of explanations
// are offered only when there is something for them.
TEST_F(PrintDialogTest, PreviewShowsThePagesOfThePrint) {
    const QString mine = dir.filePath(QStringLiteral("preview.pdf"));
    auto d = pdfDialog({.details = true}, mine);
    auto* appendix = d->findChild<QCheckBox*>(QStringLiteral("chkExplain"));
    EXPECT_FALSE(appendix->isEnabled());  // it belongs to the result sheets
    check(*d, "chkCalc", true);
    EXPECT_TRUE(appendix->isEnabled());
    auto* preview = d->findChild<QPushButton*>(QStringLiteral("cmdPreview"));
    EXPECT_TRUE(preview->isEnabled());
    int previewPages = -1;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        previewPages = dialog->findChild<QPrintPreviewWidget*>()->pageCount();
        dialog->reject();
    });
    preview->click();
    d->print();
    EXPECT_EQ(previewPages, test::pdfPages(mine).size());

    check(*d, "chkDetails", false);
    check(*d, "chkCalc", false);
    EXPECT_FALSE(preview->isEnabled());
}

}  // namespace
}  // namespace zelmor::shell
