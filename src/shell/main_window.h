#pragma once
// The frame of the desktop program: one window of fixed size with the menu bar,
// showing one child screen at a time. In edit mode that is the entry page of the
// report's current page; in result mode the result sheets. The menu
// "חישובים" is visible in edit mode only, and that visibility is the mark of
// the mode.

#include <QMainWindow>
#include <QString>
#include <memory>
#include <optional>

#include "core/date.h"
#include "engine/calc.h"
#include "engine/solve.h"
#include "report/nishum_input.h"

class QAction;
class QMenu;
class QTimer;

namespace zelmor {
class MadadTable;
namespace storage {
class ReportDb;
}
}  // namespace zelmor

namespace zelmor::shell {

class DraftStore;
class EntryPage;
class ExplainPanel;
class ResultView;

// What the command line gives: the data folder (the index table, the drafts,
// the user's small text files), the report database and the date taken for today.
struct AppOptions {
    QString dataDir;
    QString dbLocation;
    Date today;
};

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // How long typing may go on before the draft is written.
    static constexpr int kDraftDelayMs = 30000;

    // Opens a new report on page 1 (or, after a crash, offers the draft).
    explicit MainWindow(const AppOptions& options, QWidget* parent = nullptr);
    ~MainWindow() override;

    bool editMode() const;
    int currentPage() const { return currentPage_; }
    const NishumInput& report() const { return report_; }
    EntryPage* entryPage() const { return page_; }
    ResultView* resultView() const { return results_; }
    DraftStore& drafts() { return *drafts_; }
    // A menu entry or key action by its name ("mnuDochNew").
    QAction* action(const QString& name) const;

    // Puts a report in hand as opening a stored one does: edit mode, page 1.
    void loadReport(const NishumInput& report);

    // The commands of the menus.
    void goPage(int page);
    void newReport();
    bool saveReport();
    void calculate(int sheet = 1);
    void backToEditing();
    void goSheet(int sheet);
    void openFromList();
    void solve(SimQuestion question);
    void updateTables();
    void showMadadTable();
    void printReport();
    // Opens (or brings up) the window beside this one that explains a cell of
    // the results on show, worked out from the report in hand.
    void explainCell(SheetId sheet, const QString& field);
    // Back to editing on the page of a report field, with the focus in that field.
    void editField(SectionId section, const QString& field);
    ExplainPanel* explainPanel() const { return explain_; }
    // Writes the draft now: the fields and the texts of the page on show.
    void writeDraft();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildMenus();
    QAction* addEntry(QMenu* menu, const char* name, const QString& caption, const QKeySequence& key = {});
    // Runs the leave-field rule of the field that has the focus and takes the
    // page's texts into the fields. false: refused, the user stays where he is.
    bool takeScreen();
    void onPageKey(int key);
    void showPage(int page);
    void dropPage();
    // The calculation of the report in hand; nothing when it overflowed, after telling the user.
    std::optional<CalcResult> runCalc(const MadadTable& table, trace::Trace* sink);
    void enterEditMode(int page);
    void setMode(bool edit);
    void setTitleWithNames();
    void offerDraft();
    storage::ReportDb& db();
    const MadadTable* madad();

    AppOptions options_;
    ConstDoch constants_;
    NishumInput report_;
    int currentPage_ = 1;
    EntryPage* page_ = nullptr;
    ResultView* results_ = nullptr;
    QWidget* childArea_ = nullptr;
    std::unique_ptr<storage::ReportDb> db_;
    std::unique_ptr<MadadTable> madad_;
    std::unique_ptr<DraftStore> drafts_;
    QTimer* draftTimer_ = nullptr;
    ExplainPanel* explain_ = nullptr;
    QMenu* mnuDetails_ = nullptr;
    QMenu* mnuCalcScreens_ = nullptr;
    QMenu* mnuCalc_ = nullptr;
    QMenu* mnuEdit_ = nullptr;
    QString lastPrinter_;  // the printer chosen last, offered first the next time
};

}  // namespace zelmor::shell
