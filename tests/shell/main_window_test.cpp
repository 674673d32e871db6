// The main window driven as a user drives it: keys, menu shortcuts, the
// questions answered through the message recorder; the explanation window of a
// result cell; the draft file and the boxes of the storage outcomes.
#include <deque>
#include <memory>

#include "engine/calc.h"
#include "engine/explain.h"
#include "shell/dlg_test_support.h"
#include "shell/draft_store.h"
#include "shell/entry_page.h"
#include "shell/explain_panel.h"
#include "shell/main_window.h"
#include "shell/result_view.h"
#include "shell/sheet_canvas.h"
#include "shell/store_messages.h"
#include "tables/madad_table.h"

namespace zelmor::shell {
namespace {

const QString kSaveTitle = QString::fromUtf8("שמירת דו\"ח");
const Date kToday = *Date::fromYmd(2016, 6, 30);

class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }

    std::unique_ptr<MainWindow> open() {
        auto w = std::make_unique<MainWindow>(AppOptions{dir_.path(), dir_.filePath("D2015.BRK"), kToday});
        w->show();
        w->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(w.get()));
        return w;
    }

    // Types into a field of the page on show, as the user does: focus, keys.
    static void type(MainWindow& w, const char* field, const QString& text) {
        QWidget* f = w.entryPage()->fieldWidget(QLatin1String(field));
        ASSERT_NE(f, nullptr) << field;
        f->setFocus();
        if (auto* edit = qobject_cast<QLineEdit*>(f)) edit->selectAll();
        testing::typeText(f, text);
    }
    static QString textOf(MainWindow& w, const char* field) {
        return qobject_cast<QLineEdit*>(w.entryPage()->fieldWidget(QLatin1String(field)))->text();
    }
    static void key(int k, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(k), mods);
    }
    static QString focusName() { return testing::focusName(); }
    static QString firstFieldName(MainWindow& w) {
        w.entryPage()->focusFirst();
        return focusName();
    }

    QTemporaryDir dir_;
    MessageRecorder rec;
};

TEST_F(MainWindowTest, StartsOnPageOneOfANewReportInEditModeAtOneSize) {
    auto w = open();
    EXPECT_TRUE(w->editMode());
    EXPECT_EQ(w->currentPage(), 1);
    EXPECT_EQ(focusName(), "IDM");
    EXPECT_TRUE(w->report().NishumID().empty());
    EXPECT_TRUE(rec.shown.empty());
    const QSize size = w->size();
    w->resize(size + QSize(200, 100));
    EXPECT_EQ(w->size(), size);
    w->showMaximized();
    QTRY_COMPARE(w->windowState() & Qt::WindowMaximized, Qt::WindowNoState);
    EXPECT_EQ(w->size(), size);
    // The names in the title are kept as they are, empty ones too.
    w->backToEditing();
    EXPECT_EQ(w->windowTitle(), "Zelmor 2015 -  ");
}

TEST_F(MainWindowTest, PageKeysTurnWithoutWrapAndOpenOnTheFirstField) {
    auto w = open();
    key(Qt::Key_PageUp);
    EXPECT_EQ(w->currentPage(), 1);
    EXPECT_EQ(focusName(), "IDM");
    for (int page = 2; page <= 9; ++page) {
        key(Qt::Key_PageDown);
        ASSERT_EQ(w->currentPage(), page);
        const QString onShow = focusName();
        EXPECT_FALSE(onShow.isEmpty());
        EXPECT_EQ(onShow, firstFieldName(*w)) << "page " << page;
    }
    QWidget* focused = QApplication::focusWidget();
    key(Qt::Key_PageDown);
    EXPECT_EQ(w->currentPage(), 9);
    EXPECT_EQ(QApplication::focusWidget(), focused);
    key(Qt::Key_PageUp);
    EXPECT_EQ(w->currentPage(), 8);
    w->action("mnuDetScr3")->trigger();  // the sections menu goes straight to a page
    EXPECT_EQ(w->currentPage(), 3);
    EXPECT_TRUE(rec.shown.empty());
}

TEST_F(MainWindowTest, ARefusedFieldStopsEveryCommandThatReadsTheFields) {
    auto w = open();
    w->goPage(2);
    type(*w, "N150", "12x");
    key(Qt::Key_PageDown);
    EXPECT_EQ(w->currentPage(), 2);
    ASSERT_EQ(rec.shown.size(), 1u);
    EXPECT_EQ(rec.lastText(), QString::fromUtf8("סכום לא חוקי"));
    EXPECT_EQ(focusName(), "N150");

    key(Qt::Key_F2);  // no calculation either
    EXPECT_TRUE(w->editMode());
    key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(rec.shown.size(), 3u);
    EXPECT_NE(rec.shown.back().title, kSaveTitle);
    w->close();  // nor is the exit question asked
    EXPECT_TRUE(w->isVisible());
    EXPECT_EQ(rec.shown.size(), 4u);

    type(*w, "N150", "12");
    key(Qt::Key_PageDown);
    EXPECT_EQ(w->currentPage(), 3);
    EXPECT_EQ(w->report().Yegia.N150.value(), 12);
}

TEST_F(MainWindowTest, CalculateAndBackToEditingReturnToThePageLeftWithTheNames) {
    auto w = open();
    type(*w, "FirstNameM", QString::fromUtf8("דנה"));
    type(*w, "LastNameM", QString::fromUtf8("לוי"));
    w->goPage(2);
    type(*w, "N150", "120000");
    key(Qt::Key_F2);
    ASSERT_FALSE(w->editMode());
    ASSERT_NE(w->resultView(), nullptr);
    EXPECT_EQ(w->entryPage(), nullptr);
    EXPECT_EQ(w->resultView()->sheet(), 1);
    EXPECT_EQ(w->report().Yegia.N150.value(), 120000);
    EXPECT_FALSE(w->action("mnuDetScr1")->isEnabled());

    // The function keys reach the window from the interest date field.
    ASSERT_EQ(focusName(), "RibitDate");
    key(Qt::Key_F5);
    EXPECT_EQ(w->resultView()->sheet(), 4);
    key(Qt::Key_F11);
    EXPECT_EQ(w->resultView()->sheet(), 8);

    key(Qt::Key_F2);
    EXPECT_TRUE(w->editMode());
    EXPECT_EQ(w->currentPage(), 2);
    EXPECT_EQ(w->windowTitle(), QString::fromUtf8("Zelmor 2015 - דנה לוי"));
    EXPECT_EQ(focusName(), firstFieldName(*w));
    EXPECT_EQ(textOf(*w, "N150"), "120,000");

    // F11 from an entry page calculates and opens the national insurance sheet.
    key(Qt::Key_F11);
    ASSERT_FALSE(w->editMode());
    EXPECT_EQ(w->resultView()->sheet(), 8);
    EXPECT_TRUE(rec.shown.empty());
}

TEST_F(MainWindowTest, AnOverflowInTheCalculationLeavesTheUserOnThePageAsTyped) {
    auto w = open();
    w->goPage(2);
    type(*w, "N150", "2000000000");
    type(*w, "N170", "2000000000");
    key(Qt::Key_F2);
    EXPECT_TRUE(w->editMode());
    EXPECT_EQ(w->currentPage(), 2);
    ASSERT_EQ(rec.shown.size(), 1u);
    EXPECT_EQ(rec.shown[0].title, QString::fromUtf8("חישוב מס דו\"ח"));
    EXPECT_TRUE(rec.lastText().startsWith(QString::fromUtf8("לא ניתן לחשב את הדו\"ח")));
    EXPECT_EQ(textOf(*w, "N170"), "2,000,000,000");
    key(Qt::Key_F3);  // a sheet key does nothing on an entry page
    EXPECT_TRUE(w->editMode());
    EXPECT_EQ(rec.shown.size(), 1u);
}

// The taxpayer list, however it is left, and a new report both end on page 1;
// the report in hand goes only when the user says yes.
TEST_F(MainWindowTest, TheTaxpayerListAndANewReportEndOnPageOne) {
    auto w = open();
    type(*w, "IDM", "123456782");
    w->goPage(5);
    rec.answers = {QMessageBox::No};
    key(Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(rec.shown.size(), 1u);
    EXPECT_EQ(rec.shown[0].title, QString::fromUtf8("פתיחת דו\"ח חדש"));
    EXPECT_EQ(w->currentPage(), 1);
    EXPECT_EQ(textOf(*w, "IDM"), "123456782");

    w->goPage(5);
    QTimer::singleShot(0, [] {
        if (auto* list = qobject_cast<QDialog*>(QApplication::activeModalWidget())) list->reject();
    });
    w->action("mnuDochList")->trigger();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(w->currentPage(), 1);
    ASSERT_NE(w->focusWidget(), nullptr);  // the focus it gets back with the keyboard
    EXPECT_EQ(w->focusWidget()->objectName(), "IDM");
    EXPECT_EQ(w->report().NishumID(), "123456782");

    rec.answers = {QMessageBox::Yes};
    w->action("mnuDochNew")->trigger();
    EXPECT_EQ(w->currentPage(), 1);
    EXPECT_TRUE(w->report().NishumID().empty());
    EXPECT_TRUE(textOf(*w, "IDM").isEmpty());
}

TEST_F(MainWindowTest, SaveWithoutAnIdGoesBackToTheIdAndSaveWithOneStores) {
    auto w = open();
    w->goPage(2);
    type(*w, "N150", "5000");
    key(Qt::Key_S, Qt::ControlModifier);
    testing::expectLastMessage(rec, MsgIcon::Exclamation, kSaveTitle, QString::fromUtf8("לא ניתן לשמור ללא מספר ת.ז...."));
    EXPECT_EQ(w->currentPage(), 1);
    EXPECT_EQ(focusName(), "IDM");

    type(*w, "IDM", "123456782");
    key(Qt::Key_S, Qt::ControlModifier);
    testing::expectLastMessage(rec, MsgIcon::Information, kSaveTitle, QString::fromUtf8("הדו\"ח נשמר בהצלחה"));
    NishumInput stored;
    storage::ReportDb db(dir_.filePath("D2015.BRK").toStdString(), storage::ReportDb::Mode::MustExist);
    ASSERT_TRUE(db.openNishum("123456782", stored).ok);
    EXPECT_EQ(stored.Yegia.N150.value(), 5000);
}

TEST_F(MainWindowTest, TheExitQuestionDecidesWhetherTheWindowCloses) {
    auto w = open();
    rec.answers = {QMessageBox::Cancel};
    w->close();
    EXPECT_TRUE(w->isVisible());
    EXPECT_EQ(rec.shown.back().title, QString::fromUtf8("Orvanta - יציאה"));
    EXPECT_EQ(rec.shown.back().icon, MsgIcon::Information);
    // Yes with a save that is refused (no id) keeps the program open on the id.
    rec.answers = {QMessageBox::Yes};
    w->action("mnuDochExit")->trigger();
    EXPECT_TRUE(w->isVisible());
    EXPECT_EQ(rec.shown.back().title, kSaveTitle);
    EXPECT_EQ(focusName(), "IDM");

    w->writeDraft();
    ASSERT_TRUE(w->drafts().exists());
    rec.answers = {QMessageBox::No};
    w->close();
    EXPECT_FALSE(w->isVisible());
    EXPECT_FALSE(w->drafts().exists());
}

TEST_F(MainWindowTest, ADraftLeftByACrashIsRestoredOnItsPageWithTheTextsAsTyped) {
    {
        auto w = open();
        type(*w, "IDM", "123456782");
        key(Qt::Key_PageDown);  // a page turn writes the draft
        type(*w, "N150", "7,5");  // typed, not yet checked
        w->writeDraft();
    }  // gone without the exit question: as after a crash
    rec.answers = {QMessageBox::Yes};
    auto w = open();
    ASSERT_EQ(rec.shown.size(), 1u);
    EXPECT_EQ(rec.shown[0].title, QString::fromUtf8("Zelmor - שחזור"));
    EXPECT_EQ(w->currentPage(), 2);
    EXPECT_EQ(w->report().NishumID(), "123456782");
    EXPECT_EQ(textOf(*w, "N150"), "7,5");
    // The text restored is still unchecked: it is refused like any typed text.
    w->goPage(1);
    EXPECT_EQ(w->currentPage(), 2);
    EXPECT_EQ(rec.shown.size(), 2u);
    type(*w, "N150", "75");
    EXPECT_TRUE(w->saveReport());
    EXPECT_EQ(w->report().Yegia.N150.value(), 75);
    EXPECT_FALSE(w->drafts().exists());
}

TEST_F(MainWindowTest, ADraftRefusedIsDeletedAndASecondProgramKeepsNone) {
    {
        auto w = open();
        type(*w, "IDM", "1");
        w->writeDraft();
    }
    rec.answers = {QMessageBox::No};
    auto first = open();
    EXPECT_EQ(rec.shown.size(), 1u);
    EXPECT_TRUE(first->report().NishumID().empty());
    EXPECT_FALSE(first->drafts().exists());

    auto second = open();
    ASSERT_EQ(rec.shown.size(), 2u);
    EXPECT_EQ(rec.shown[1].icon, MsgIcon::Information);
    EXPECT_FALSE(second->drafts().enabled());
    type(*second, "IDM", "2");
    second->writeDraft();
    EXPECT_FALSE(first->drafts().exists());
}

// The explanation window of a result cell, driven from the result screens as
// a user drives it: F1 or the context menu on an amount, Enter on a report line.
class ExplainPanelTest : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        window_ = open();
        report_ = testing::goldenReport(QStringLiteral("couple.json"));
        window_->loadReport(report_);
        window_->calculate(1);
        ASSERT_FALSE(window_->editMode());
    }
    QLabel* amount(const char* field) const {
        for (SheetCanvas* c : window_->resultView()->findChildren<SheetCanvas*>())
            if (c->isVisibleTo(window_->resultView())) return c->findChild<QLabel*>(QLatin1String(field));
        return nullptr;
    }
    QString rootText() const { return window_->explainPanel()->tree()->topLevelItem(0)->text(0); }

    std::unique_ptr<MainWindow> window_;
    NishumInput report_;
};

// The field of a report line of the explanation, or null.
const FieldDef* fieldOf(const trace::Trace& t, const QTreeWidgetItem* item) {
    const trace::Node& n = t.at(item->data(0, ExplainPanel::kNodeRole).toInt());
    if (n.op != trace::Op::Line) return nullptr;
    const auto dot = n.source().find('.');
    return findField(n.source().substr(0, dot), n.source().substr(dot + 1));
}

TEST_F(ExplainPanelTest, F1OnAnAmountShowsItsTreeAndAReportLineLeadsToItsField) {
    QLabel* tax = amount("MasMagiaM");
    ASSERT_NE(tax, nullptr);
    tax->setFocus();
    QTest::keyClick(tax, Qt::Key_F1);
    ExplainPanel* panel = window_->explainPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_TRUE(panel->isWindow());
    EXPECT_EQ(panel->layoutDirection(), Qt::RightToLeft);

    // The root and its figures read as the command line's explanation does,
    // from the same calculation.
    trace::Trace t;
    CalcDoch(report_, ConstDoch(), MadadTable(dir_.path()), kToday, &t);
    const int node = t.cell("CMain.MasMagiaM");
    ASSERT_GE(node, 0);
    QTreeWidget* tree = panel->tree();
    QTreeWidgetItem* root = tree->topLevelItem(0);
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->text(0).contains(tax->text())) << root->text(0).toStdString();
    QStringList expected = QString::fromStdString(trace::explainText(t, node, 2)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QStringList shown{root->text(0)};
    for (int i = 0; i < root->childCount(); ++i) shown << QStringLiteral("  ") + root->child(i)->text(0);
    for (QString& line : expected) line.remove(QStringLiteral(" (ראו לעיל)"));
    EXPECT_EQ(shown, expected);
    // The filing-mode choice stands under the cell.
    if (t.filing >= 0) {
        ASSERT_EQ(tree->topLevelItemCount(), 2);
        EXPECT_EQ(tree->topLevelItem(1)->text(0).toStdString(), trace::formulaLine(t, t.filing));
    }

    // Enter on a report line of a page other than the first (opening the
    // items on the way): back to editing on its page, the focus in its field.
    QTreeWidgetItem* line = nullptr;
    const FieldDef* field = nullptr;
    for (std::deque<QTreeWidgetItem*> items{root}; !items.empty() && !line; items.pop_front()) {
        field = fieldOf(t, items.front());
        if (field && field->section != SectionId::Pratim) line = items.front();
        items.front()->setExpanded(true);
        for (int i = 0; i < items.front()->childCount(); ++i) items.push_back(items.front()->child(i));
    }
    ASSERT_NE(line, nullptr);
    tree->setCurrentItem(line);
    QTest::keyClick(tree, Qt::Key_Return);
    EXPECT_TRUE(window_->editMode());
    EXPECT_EQ(window_->currentPage(), static_cast<int>(field->section)) << field->name;
    QWidget* entry = window_->entryPage()->fieldWidget(QString::fromUtf8(field->name));
    ASSERT_NE(entry, nullptr) << field->name;
    EXPECT_EQ(window_->focusWidget(), entry) << field->name;
    EXPECT_TRUE(QTest::qWaitFor([&] { return entry->hasFocus(); })) << field->name;
}

TEST_F(ExplainPanelTest, TheContextMenuOfAnAmountExplainsIt) {
    window_->goSheet(6);
    QLabel* cell = nullptr;
    for (QLabel* l : window_->resultView()->findChildren<QLabel*>())
        if (l->isVisible() && l->property("cell").toBool() && l->text() != QStringLiteral("0")) cell = l;
    ASSERT_NE(cell, nullptr);
    QString entries;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* a : menu->actions()) entries += a->text() + QLatin1Char('|');
        menu->setActiveAction(menu->findChild<QAction*>(QStringLiteral("mnuExplain")));
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), cell->mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(cell, &event);
    EXPECT_EQ(entries, QStringLiteral("הסבר|העתק|"));
    ExplainPanel* panel = window_->explainPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->sheet(), SheetId::CZikuim);
    EXPECT_EQ(panel->field(), cell->objectName());
    EXPECT_TRUE(rootText().contains(cell->text()));
}

TEST_F(ExplainPanelTest, TheBalanceForAnotherInterestDateIsTheOneOnShow) {
    QLineEdit* date = window_->resultView()->findChild<QLineEdit*>(QStringLiteral("RibitDate"));
    ASSERT_NE(date, nullptr);
    const double before = sheetValue(window_->resultView()->result().out, SheetId::CMain, "Itra");
    date->setText(QStringLiteral("31/12/2017"));
    QTest::keyClick(date, Qt::Key_Return);
    const double onShow = sheetValue(window_->resultView()->result().out, SheetId::CMain, "Itra");
    ASSERT_NE(onShow, before);
    QLabel* balance = amount("Itra");
    ASSERT_NE(balance, nullptr);
    QTest::keyClick(balance, Qt::Key_F1);
    ASSERT_NE(window_->explainPanel(), nullptr);
    // The explanation is the one of the balance on show, carried to the date chosen.
    EXPECT_TRUE(rootText().endsWith(QStringLiteral(" = ") + QString::fromStdString(trace::formatNumber(onShow))))
        << rootText().toStdString();
    window_->explainCell(SheetId::CMain, QStringLiteral("ItraDate"));
    EXPECT_TRUE(rootText().endsWith(QStringLiteral("תאריך הריבית שנבחר = 31/12/2017"))) << rootText().toStdString();
}

// The draft file: what it keeps, what it refuses, and who may write it.
TEST(DraftTest, KeepsTheFieldsThePageAndTheTextsAsTyped) {
    Draft d;
    d.report.Pratim.IDM = "123456782";
    d.report.Pratim.FirstNameM = "דנה \"הגדולה\"";
    d.report.Pratim.BirthDateM = *Date::fromYmd(1970, 2, 28);
    d.report.Yegia.N150 = Amount(-2147483647 - 1);
    d.report.Yegia.N170 = Amount(2147483647);
    d.report.Nekudot.N260_1 = 3;
    d.report.Klaliim.isHul = true;
    WorkOutDerived(d.report);
    d.page = 7;
    d.texts = {{"N036", "12,3x"}, {"AcherimText", QString::fromUtf8("שורה\nשנייה")}, {"N045", ""}};
    QString error;
    const auto back = draftFromText(draftText(d), &error);
    ASSERT_TRUE(back) << error.toStdString();
    EXPECT_EQ(back->page, 7);
    EXPECT_EQ(back->texts, d.texts);
    EXPECT_EQ(writeReportDocument(back->report, false), writeReportDocument(d.report, false));
}

TEST(DraftTest, RefusesWhatIsNoDraft) {
    const QByteArray good = draftText(Draft{});
    for (const QByteArray& text : {QByteArray(), QByteArray("{\"format\": \"zelmor-report\"}"),
                                   QByteArray(good).replace("\"page\": 1", "\"page\": 10"),
                                   QByteArray(good).replace("\"IDM\"", "\"IDX\""), good.left(good.size() / 2)}) {
        QString error;
        EXPECT_FALSE(draftFromText(text, &error)) << text.toStdString();
        EXPECT_FALSE(error.isEmpty());
    }
}

// One program writes the drafts of a folder (a second window keeps none, as
// shown above); the lock of a program that is gone, as a crash
// leaves it, is taken over with its draft.
TEST(DraftTest, ALockLeftByADeadProgramIsTakenOver) {
    QTemporaryDir dir;
    EXPECT_TRUE(DraftStore(dir.path()).write(Draft{}));
    QProcess gone;
    gone.start("true", {});
    ASSERT_TRUE(gone.waitForStarted());
    const qint64 pid = gone.processId();
    ASSERT_TRUE(gone.waitForFinished());
    QFile lock(dir.filePath(DraftStore::kLockName));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write(QByteArray::number(pid) + "\n" + QCoreApplication::applicationName().toUtf8() + "\n" +
               QSysInfo::machineHostName().toUtf8() + "\n");
    lock.close();
    DraftStore after(dir.path());
    EXPECT_TRUE(after.enabled());
    EXPECT_TRUE(after.exists());
    after.remove();
    EXPECT_FALSE(after.exists());
}

using storage::StoreError;

storage::StoreOutcome outcome(StoreError error, std::string id = {}, std::string detail = {}) {
    return {.ok = error == StoreError::None, .error = error, .idCheck = {}, .id = std::move(id), .database = {},
            .detail = std::move(detail)};
}

// The boxes of the storage outcomes (those of a save that stores or lacks an
// id, and of opening with nothing chosen, are checked through the screens).
TEST(StoreMessages, EachOutcomeOfEachActionHasItsBox) {
    storage::StoreOutcome invisible = outcome(StoreError::BadId, "123\u200F");
    invisible.idCheck = {storage::IdFault::Invisible, 0x200F};
    const QString save = QString::fromUtf8("שמירת דו\"ח"), open = QString::fromUtf8("פתיחת דו\"ח"),
                  list = QString::fromUtf8("רשימת נישומים");
    const struct {
        StoreAction action;
        storage::StoreOutcome out;
        MsgIcon icon;
        QString title;
        const char* text;
    } cases[] = {
        {StoreAction::Save, outcome(StoreError::TemplateId, "NewInit"), MsgIcon::Exclamation, save,
         "לא ניתן לשמור בת.ז. NewInit, השמורה לתבנית הדו\"ח החדש\nנא להזין ת.ז. אחרת ולשמור לאחר מכן"},
        {StoreAction::Save, invisible, MsgIcon::Exclamation, save,
         "מספר ת.ז. אינו יכול להכיל סימני כיוון, תווים בלתי נראים או רווח מיוחד\nנא לתקן ת.ז. ולשמור לאחר מכן"},
        {StoreAction::Save, outcome(StoreError::DatabaseFailure, "1", "disk I/O error"), MsgIcon::Stop, save,
         "שגיאה בשמירת הדו\"ח: disk I/O error\nנא ליצור קשר עם חברת Zelmor"},
        {StoreAction::Open, outcome(StoreError::None, "1"), MsgIcon::None, open, ""},
        {StoreAction::Open, outcome(StoreError::NotFound, "404"), MsgIcon::Exclamation, open, "לא נמצא דו\"ח שמור עם ת.ז. 404"},
        {StoreAction::Open, outcome(StoreError::Damaged, "5", "column isMale holds 2"), MsgIcon::Stop, open,
         "שגיאה בפתיחת הדו\"ח: column isMale holds 2\nהדו\"ח הפתוח לא שונה."},
        {StoreAction::Delete, outcome(StoreError::NoId), MsgIcon::None, list, ""},
        {StoreAction::Delete, outcome(StoreError::TemplateId, "NewInit"), MsgIcon::Exclamation, list,
         "לא ניתן למחוק את תבנית הדו\"ח החדש"},
        {StoreAction::Delete, outcome(StoreError::DatabaseFailure, "1", "locked"), MsgIcon::Stop, list, "שגיאה במחיקת הדו\"ח: locked"},
    };
    for (const auto& c : cases) {
        const ShownMessage m = storeMessage(c.action, c.out);
        EXPECT_EQ(m.icon, c.icon) << c.text;
        EXPECT_EQ(m.title, c.title) << c.text;
        EXPECT_EQ(m.text, QString::fromUtf8(c.text));
    }
}

}  // namespace
}  // namespace zelmor::shell
