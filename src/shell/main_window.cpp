#include "shell/main_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTreeWidget>
#include <QUrl>
#include <QMenuBar>
#include <QTimer>
#include <QVBoxLayout>

#include "core/field_checks.h"
#include "shell/app_storage.h"
#include "shell/dlg_doch_list.h"
#include "shell/dlg_madadim.h"
#include "shell/dlg_name.h"
#include "shell/dlg_pnia.h"
#include "shell/dlg_print.h"
#include "shell/dlg_sim.h"
#include "shell/draft_store.h"
#include "shell/entry_page.h"
#include "shell/explain_panel.h"
#include "shell/messages.h"
#include "shell/result_view.h"
#include "shell/tools.h"
#include "results/sheet_layout.h"
#include "storage/report_db.h"
#include "tables/madad_table.h"

namespace zelmor::shell {

namespace {

QString u(const char* text) { return QString::fromUtf8(text); }

const char* const kExitTitle = "Orvanta - יציאה";
const char* const kExitText =
    "האם לשמור את הדו\"ח שבעריכה ?\n\nלחץ 'כן' לשמירה, 'לא' ליציאה ללא שמירה,\n'ביטול' לחזור למסך";
const char* const kNewTitle = "פתיחת דו\"ח חדש";
const char* const kNewText = "האם לפתוח דו\"ח חדש ?\n(הדו\"ח הנוכחי יסגר)";
const char* const kCalcTitle = "חישוב מס דו\"ח";
const char* const kOverflowText =
    "לא ניתן לחשב את הדו\"ח: אחד הסכומים חורג מהטווח המותר.\nנא לבדוק את הסכומים שהוזנו.";
const char* const kSumOverflowText = "סכום הסכומים במסך חורג מהטווח המותר.\nנא לתקן את הסכומים.";
const char* const kMadadErrorHead = "לא ניתן לקרוא את טבלת המדדים: ";
const char* const kDraftTitle = "Zelmor - שחזור";
const char* const kDraftQuestion = "נמצא דו\"ח שלא נשמר מהפעלה קודמת. לשחזר אותו?";
const char* const kDraftDamaged =
    "לא ניתן לשחזר את הדו\"ח שלא נשמר: הקובץ פגום.\nהקובץ נשמר בצד בשם ";
const char* const kDraftsOff =
    "תוכנית Zelmor אחרת כבר פועלת על תיקיית הנתונים הזו.\nבהפעלה זו לא נשמר עותק גיבוי של הדו\"ח שבעריכה.";

}  // namespace

MainWindow::MainWindow(const AppOptions& options, QWidget* parent)
    : QMainWindow(parent), options_(options), drafts_(std::make_unique<DraftStore>(options.dataDir)) {
    // Fixed size: no maximise button; minimising stays.
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    childArea_ = new QWidget(this);
    childArea_->setFixedSize(EntryPage::childSize());
    auto* layout = new QVBoxLayout(childArea_);
    layout->setContentsMargins(0, 0, 0, 0);
    setCentralWidget(childArea_);
    buildMenus();
    const QSize child = EntryPage::childSize();
    setFixedSize(child.width(), child.height() + menuBar()->heightForWidth(child.width()));

    draftTimer_ = new QTimer(this);
    draftTimer_->setSingleShot(true);
    draftTimer_->setInterval(kDraftDelayMs);
    connect(draftTimer_, &QTimer::timeout, this, &MainWindow::writeDraft);

    showStoreOutcome(this, StoreAction::Open, db().newNishum(report_));
    setMode(true);
    showPage(1);
    setWindowTitle(QStringLiteral("Zelmor %1").arg(constants_.YEARDOCH()));
    offerDraft();
}

MainWindow::~MainWindow() = default;

bool MainWindow::editMode() const { return mnuCalc_->menuAction()->isVisible(); }

QAction* MainWindow::action(const QString& name) const { return findChild<QAction*>(name); }

QAction* MainWindow::addEntry(QMenu* menu, const char* name, const QString& caption, const QKeySequence& key) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(QLatin1String(name));
    if (!key.isEmpty()) a->setShortcut(key);
    return a;
}

void MainWindow::buildMenus() {
    QMenuBar* bar = menuBar();

    QMenu* doch = bar->addMenu(u("&דו\"ח"));
    doch->menuAction()->setObjectName("mnuDoch");
    connect(addEntry(doch, "mnuDochNew", u("&דו\"ח חדש"), QKeySequence(Qt::CTRL | Qt::Key_N)), &QAction::triggered,
            this, &MainWindow::newReport);
    connect(addEntry(doch, "mnuDochSave", u("&שמור דו\"ח"), QKeySequence(Qt::CTRL | Qt::Key_S)), &QAction::triggered,
            this, [this] { saveReport(); });
    doch->addSeparator();
    connect(addEntry(doch, "mnuDochList", u("&רשימת נישומים")), &QAction::triggered, this,
            &MainWindow::openFromList);
    doch->addSeparator();
    connect(addEntry(doch, "mnuDochPrint", u("&הדפסה..."), QKeySequence(Qt::CTRL | Qt::Key_P)), &QAction::triggered,
            this, &MainWindow::printReport);
    connect(addEntry(doch, "mnuDochPnia", u("&נוסח פניה...")), &QAction::triggered, this,
            [this] { PniaDialog(options_.dataDir, this).exec(); });
    doch->addSeparator();
    connect(addEntry(doch, "mnuDochExit", u("יציאה")), &QAction::triggered, this, &QWidget::close);

    mnuDetails_ = bar->addMenu(u("&מסכי עריכה"));
    mnuDetails_->menuAction()->setObjectName("mnuDetails");
    for (const SectionDef& s : allSections()) {
        const int page = static_cast<int>(s.id);
        connect(addEntry(mnuDetails_, QStringLiteral("mnuDetScr%1").arg(page).toLatin1().constData(),
                         u(s.menuCaption)),
                &QAction::triggered, this, [this, page] { goPage(page); });
    }

    mnuCalcScreens_ = bar->addMenu(u("&מסכי חישוב"));
    mnuCalcScreens_->menuAction()->setObjectName("mnuCalcScreens");
    for (const SheetDef& d : allSheets()) {
        const int sheet = static_cast<int>(d.id), key = detailKeyNumber(d.id);
        connect(addEntry(mnuCalcScreens_, QStringLiteral("mnuCalcScr%1").arg(sheet).toLatin1().constData(),
                         u(sheetLayout(d.id).menuCaption), key ? QKeySequence(Qt::Key_F1 + key - 1) : QKeySequence()),
                &QAction::triggered, this, [this, sheet] { goSheet(sheet); });
    }

    mnuCalc_ = bar->addMenu(u("&חישובים"));
    mnuCalc_->menuAction()->setObjectName("mnuCalc");
    connect(addEntry(mnuCalc_, "mnuCalcDoch", u("חישוב מס דו\"ח"), QKeySequence(Qt::Key_F2)), &QAction::triggered,
            this, [this] { calculate(1); });
    QMenu* income = mnuCalc_->addMenu(u("חישוב הכנסה ע\"פ תשלומים"));
    income->menuAction()->setObjectName("mnuCalcIncome");
    connect(addEntry(income, "mnuIncomeMas", u("קביעת ההכנסה מעסק ע\"פ המס ששולם בפועל")), &QAction::triggered,
            this, [this] { solve(SimQuestion::IncomeForTaxPaid); });
    connect(addEntry(income, "mnuIncomeItra", u("קביעת הכנסה ע\"פ יתרה לתשלום (להחזר)")), &QAction::triggered,
            this, [this] { solve(SimQuestion::IncomeForBalance); });
    QMenu* change = mnuCalc_->addMenu(u("שינויים בהכנסה ובתשלומים"));
    change->menuAction()->setObjectName("mnuCalcChangeIncome");
    connect(addEntry(change, "mnuIncomeChange", u("שינויים בהכנסה")), &QAction::triggered, this,
            [this] { solve(SimQuestion::IncomeChange); });
    connect(addEntry(change, "mnuMasChange", u("שינויים בתשלומי מס")), &QAction::triggered, this,
            [this] { solve(SimQuestion::TaxChange); });
    connect(addEntry(mnuCalc_, "mnuCalcBL", u("חישוב ביטוח לאומי"), QKeySequence(Qt::Key_F11)), &QAction::triggered,
            this, [this] { calculate(8); });

    mnuEdit_ = bar->addMenu(u("&עריכה"));
    mnuEdit_->menuAction()->setObjectName("mnuEdit");
    // The caption shows F2, which reaches this command through the key action
    // below; the entry itself has no shortcut.
    connect(addEntry(mnuEdit_, "mnuEditBack", u("&חזור לעריכת הדו\"ח       F2")), &QAction::triggered, this,
            &MainWindow::backToEditing);

    QMenu* tools = bar->addMenu(u("ע&זרים"));
    tools->menuAction()->setObjectName("mnuTools");
    connect(addEntry(tools, "mnuSite", u("Zelmor - אתר &אינטרנט"), QKeySequence(Qt::CTRL | Qt::Key_I)),
            &QAction::triggered, this, [] { tools::openWebSite(); });
    connect(addEntry(tools, "mnuToolsMadadim", u("&טבלת מדדים"), QKeySequence(Qt::Key_F9)), &QAction::triggered,
            this, &MainWindow::showMadadTable);
    connect(addEntry(tools, "mnuToolsT6111", u("טו&פס 6111"), QKeySequence(Qt::CTRL | Qt::Key_F6)),
            &QAction::triggered, this, [this] {
                // An id just typed on page 1 counts.
                if (takeScreen())
                    tools::startForm6111(this, options_.dataDir, QString::fromStdString(report_.NishumID()));
            });
    connect(addEntry(tools, "mnuUpdateTables", u("עדכון טבלאות מאתר Zelmor")), &QAction::triggered, this,
            &MainWindow::updateTables);
    QAction* calc = addEntry(tools, "mnuToolsCalc", u("מ&חשבון"));
    connect(calc, &QAction::triggered, this, [calc] {
        if (!tools::startCalculator()) calc->setVisible(false);  // for the rest of the run
    });
    connect(addEntry(tools, "mnuToolsName", u("שי&נוי שם משתמש")), &QAction::triggered, this,
            [this] { NameDialog(options_.dataDir, this).exec(); });

    // In result mode F2 leads back to the entry page and F11 to the national
    // insurance sheet, from whatever control of the sheets has the focus.
    auto* keyBack = new QAction(this);
    keyBack->setObjectName("keyEditBack");
    keyBack->setShortcut(QKeySequence(Qt::Key_F2));
    connect(keyBack, &QAction::triggered, this, &MainWindow::backToEditing);
    addAction(keyBack);
    auto* keyBL = new QAction(this);
    keyBL->setObjectName("keySheetBL");
    keyBL->setShortcut(QKeySequence(Qt::Key_F11));
    connect(keyBL, &QAction::triggered, this, [this] { goSheet(8); });
    addAction(keyBL);
}

void MainWindow::setMode(bool edit) {
    mnuDetails_->menuAction()->setVisible(edit);
    mnuCalc_->menuAction()->setVisible(edit);
    mnuCalcScreens_->menuAction()->setVisible(!edit);
    mnuEdit_->menuAction()->setVisible(!edit);
    // A key belongs to the mode whose menu shows it, so that F2 and F11 mean
    // one command at a time.
    for (QAction* a : mnuCalc_->actions()) a->setEnabled(edit);
    for (QAction* a : mnuDetails_->actions()) a->setEnabled(edit);
    for (QAction* a : mnuCalcScreens_->actions()) a->setEnabled(!edit);
    action("keyEditBack")->setEnabled(!edit);
    action("keySheetBL")->setEnabled(!edit);
}

storage::ReportDb& MainWindow::db() {
    if (!db_) db_ = std::make_unique<storage::ReportDb>(options_.dbLocation.toStdString());
    return *db_;
}

const MadadTable* MainWindow::madad() {
    if (!madad_) madad_ = std::make_unique<MadadTable>(options_.dataDir);
    if (!madad_->ok()) {
        const QString error = madad_->errorString();
        madad_.reset();  // tried again at the next calculation
        showMessage(this, MsgIcon::Stop, u(kCalcTitle), u(kMadadErrorHead) + error);
        return nullptr;
    }
    return madad_.get();
}

bool MainWindow::takeScreen() {
    if (!editMode() || !page_) return true;
    if (!page_->leaveCurrent()) return false;
    if (!page_->map2Var(report_)) {
        showMessage(this, MsgIcon::Exclamation, QString::fromLatin1(kWarningTitle), u(kSumOverflowText));
        return false;
    }
    return true;
}

// The entry page goes, and with it the draft it had still to write.
void MainWindow::dropPage() {
    if (page_) {
        // The page may be the sender of the key that turns it.
        page_->hide();
        page_->deleteLater();
        page_ = nullptr;
    }
    draftTimer_->stop();
}

void MainWindow::showPage(int page) {
    dropPage();
    currentPage_ = page;
    auto* p = new EntryPage(static_cast<SectionId>(page), &report_, childArea_);
    p->var2Map(report_);
    connect(p, &EntryPage::pageKey, this, &MainWindow::onPageKey);
    connect(p, &EntryPage::edited, draftTimer_, qOverload<>(&QTimer::start));
    childArea_->layout()->addWidget(p);
    page_ = p;
    p->show();
    p->focusFirst();
}

void MainWindow::loadReport(const NishumInput& report) {
    report_ = report;
    enterEditMode(1);
}

void MainWindow::goPage(int page) {
    if (!editMode() || page < 1 || page > 9 || !takeScreen()) return;
    showPage(page);
    writeDraft();
}

void MainWindow::onPageKey(int key) {
    if (key == Qt::Key_PageDown && currentPage_ < 9) goPage(currentPage_ + 1);
    else if (key == Qt::Key_PageUp && currentPage_ > 1) goPage(currentPage_ - 1);
}

void MainWindow::setTitleWithNames() {
    setWindowTitle(QStringLiteral("Zelmor %1 - %2 %3")
                       .arg(constants_.YEARDOCH())
                       .arg(QString::fromStdString(report_.Pratim.FirstNameM),
                            QString::fromStdString(report_.Pratim.LastNameM)));
}

void MainWindow::enterEditMode(int page) {
    if (results_) {
        results_->hide();
        results_->deleteLater();
        results_ = nullptr;
    }
    setMode(true);
    showPage(page);
    setTitleWithNames();
}

void MainWindow::backToEditing() { enterEditMode(currentPage_); }

void MainWindow::newReport() {
    if (!takeScreen()) return;
    if (askQuestion(this, u(kNewTitle), u(kNewText), QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes) {
        const storage::StoreOutcome outcome = db().newNishum(report_);
        showStoreOutcome(this, StoreAction::Open, outcome);
        if (outcome.ok) drafts_->remove();
    }
    enterEditMode(1);
}

bool MainWindow::saveReport() {
    if (!takeScreen()) return false;
    const storage::StoreOutcome outcome = db().saveNishum(report_);
    if (outcome.error == storage::StoreError::NoId) {
        // Without an id there is nothing to store under: back to the id's field.
        enterEditMode(1);
        showStoreOutcome(this, StoreAction::Save, outcome);
        if (QWidget* id = page_->fieldWidget(QStringLiteral("IDM"))) id->setFocus();
        return false;
    }
    showStoreOutcome(this, StoreAction::Save, outcome);
    if (outcome.ok) drafts_->remove();
    return outcome.ok;
}

void MainWindow::calculate(int sheet) {
    if (!editMode() || !takeScreen()) return;
    const MadadTable* table = madad();
    if (!table) return;
    const std::optional<CalcResult> result = runCalc(*table, nullptr);
    if (!result) return;
    writeDraft();
    dropPage();
    setMode(false);
    auto* view = new ResultView(constants_, *table, options_.today, childArea_);
    childArea_->layout()->addWidget(view);
    results_ = view;
    connect(view, &ResultView::explainRequested, this, &MainWindow::explainCell);
    view->setResult(*result);
    view->show();
    view->goSheet(sheet);
    setWindowTitle(QStringLiteral("Zelmor %1 - %2").arg(constants_.YEARDOCH()).arg(u(ModeTitle(result->FilingMode))));
    // An explanation left open follows the new figures.
    if (explain_ && explain_->isVisible())
        explain_->explain(report_, constants_, *table, options_.today, explain_->sheet(), explain_->field(),
                          &results_->result().out);
}

std::optional<CalcResult> MainWindow::runCalc(const MadadTable& table, trace::Trace* sink) {
    try {
        return CalcDoch(report_, constants_, table, options_.today, sink);
    } catch (const OverflowError&) {
        showMessage(this, MsgIcon::Exclamation, u(kCalcTitle), u(kOverflowText));
        return std::nullopt;
    }
}

void MainWindow::goSheet(int sheet) {
    if (results_ && !editMode()) results_->goSheet(sheet);
}

void MainWindow::openFromList() {
    if (!takeScreen()) return;
    DochListDialog list(db(), this);
    if (list.exec() == QDialog::Accepted && !list.chosenId().isEmpty()) {
        const storage::StoreOutcome outcome = db().openNishum(list.chosenId().toStdString(), report_);
        showStoreOutcome(this, StoreAction::Open, outcome);
        if (outcome.ok) drafts_->remove();  // the report in hand is the stored one
    }
    enterEditMode(1);
}

void MainWindow::solve(SimQuestion question) {
    if (!editMode() || !takeScreen()) return;
    const MadadTable* table = madad();
    if (!table) return;
    SimDialog dialog(question, report_, constants_, *table, options_.today, this);
    if (dialog.exec() == QDialog::Accepted) {
        // The answer's income went into the fields: the page shows them again.
        showPage(currentPage_);
        writeDraft();
    }
}

void MainWindow::updateTables() {
    // A table that cannot be read is what an update repairs: it is not refused here.
    if (!madad_) madad_ = std::make_unique<MadadTable>(options_.dataDir);
    updateMadadTables(this, *madad_, QUrl(tools::updateAddress()));
}

void MainWindow::showMadadTable() {
    if (!madad()) return;
    MadadimDialog(*madad_, this).exec();
}

void MainWindow::printReport() {
    if (editMode() && !takeScreen()) return;
    const MadadTable* table = madad();
    if (!table) return;
    // In result mode the sheets print as they are on show, interest date included.
    NishumOutput out;
    if (!editMode() && results_) out = results_->result().out;
    PrintSession session;
    session.report = &report_;
    session.out = &out;
    session.currentSection = static_cast<SectionId>(currentPage_);
    session.currentSheet = results_ && !editMode() ? static_cast<SheetId>(results_->sheet()) : SheetId::CMain;
    session.editMode = editMode();
    session.calculate = [this, table](NishumOutput& into, trace::Trace* sink) {
        std::optional<CalcResult> result = runCalc(*table, sink);
        if (result) into = std::move(result->out);
        return result.has_value();
    };
    PrintDialog dialog(session, PrintSetup{options_.dataDir, options_.today, {}}, this);
    if (!lastPrinter_.isEmpty()) dialog.setCurrentPrinter(lastPrinter_);
    if (dialog.exec() == QDialog::Accepted && !dialog.chosenPrinter().isEmpty()) lastPrinter_ = dialog.chosenPrinter();
}

void MainWindow::explainCell(SheetId sheet, const QString& field) {
    if (editMode() || !results_) return;
    const MadadTable* table = madad();
    if (!table) return;
    if (!explain_) {
        explain_ = new ExplainPanel(this);
        connect(explain_, &ExplainPanel::lineActivated, this, &MainWindow::editField);
    }
    explain_->explain(report_, constants_, *table, options_.today, sheet, field, &results_->result().out);
    if (!explain_->isVisible()) explain_->placeBeside(this);
    explain_->show();
    explain_->raise();
    explain_->activateWindow();
    explain_->tree()->setFocus();
}

void MainWindow::editField(SectionId section, const QString& field) {
    const int page = static_cast<int>(section);
    if (!editMode()) {
        currentPage_ = page;
        enterEditMode(page);
    } else if (page != currentPage_) {
        goPage(page);
        if (currentPage_ != page) return;  // the field being left refused
    }
    activateWindow();
    raise();
    if (QWidget* w = page_ ? page_->fieldWidget(field) : nullptr) {
        w->setFocus();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->selectAll();
    }
}

void MainWindow::writeDraft() {
    draftTimer_->stop();
    if (!drafts_->enabled()) return;
    Draft draft{report_, currentPage_, {}};
    if (editMode() && page_) draft.texts = page_->rawTexts();
    drafts_->write(draft);
}

void MainWindow::offerDraft() {
    if (!drafts_->enabled()) {
        showMessage(this, MsgIcon::Information, u(kDraftTitle), u(kDraftsOff));
        return;
    }
    if (!drafts_->exists()) return;
    if (askQuestion(this, u(kDraftTitle), u(kDraftQuestion), QMessageBox::Yes | QMessageBox::No) !=
        QMessageBox::Yes) {
        drafts_->remove();
        return;
    }
    QString error;
    const std::optional<Draft> draft = drafts_->read(&error);
    if (!draft) {
        drafts_->setAside();
        showMessage(this, MsgIcon::Exclamation, u(kDraftTitle), u(kDraftDamaged) + drafts_->path() + ".damaged");
        return;
    }
    report_ = draft->report;
    showPage(draft->page);
    page_->setRawTexts(draft->texts);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (!takeScreen()) return;
    switch (askQuestion(this, u(kExitTitle), u(kExitText), QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
                        QMessageBox::Yes, MsgIcon::Information)) {
        case QMessageBox::Yes:
            if (!saveReport()) return;  // nothing is lost: the user stays with the report
            break;
        case QMessageBox::No: drafts_->remove(); break;
        default: return;
    }
    event->accept();
}

void MainWindow::changeEvent(QEvent* event) {
    // The window has one size: a maximised or full-screen state goes back to normal.
    if (event->type() == QEvent::WindowStateChange && (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
        QTimer::singleShot(0, this, [this] { setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen)); });
    QMainWindow::changeEvent(event);
}

}  // namespace zelmor::shell
