#pragma once
// Print jobs of the report and of the results, and the logic of the print
// dialog: which jobs run, in which order, and the calculation before the sheets.

#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "core/date.h"
#include "core/tax_year.h"
#include "engine/trace.h"
#include "print/cls_print.h"
#include "report/nishum_input.h"
#include "results/nishum_output.h"

namespace zelmor {

// What every job needs besides the pages: where the installation's two text
// files lie, the print date and where failures are reported.
struct PrintSetup {
    QString dataDir;  // holds USERZELW.NAM (the user's name) and PNIA.TXT (the covering letter)
    Date today;
    PrintErrorSink onError;
};

// The head of a job, read afresh from the installation's files by the same
// routines as the dialogs that keep them (storage/install_files.h): the user's
// name is the first line of USERZELW.NAM, trimmed; the letter the lines of
// PNIA.TXT. A missing or unreadable file reads as empty.
PageHead readPageHead(const PrintSetup& setup, const NishumInput& report, int yearDoch);

// The report's sections: all nine with three lines between them, or only the
// section `current`. False when the device failed at the head (nothing was printed).
bool PrintNishum(PrintTarget& target, const PrintSetup& setup, const NishumInput& report, bool currentOnly,
                 SectionId current = SectionId::Pratim);

// The result sheets: the sheet on screen alone (bCurrentPage), or pages 1 to 7
// with three lines between them, or the national insurance sheet alone (bBL).
// With `explain` (the trace of the calculation that gave `out`) pages 1 to 7
// are followed by the appendix of explanations. False when the device failed at the head.
bool PrintNishum(PrintTarget& target, const PrintSetup& setup, const NishumInput& report, const NishumOutput& out,
                 bool bCurrentPage, bool bBL, SheetId current = SheetId::CMain,
                 const trace::Trace* explain = nullptr);

// --- the print dialog ---

// The dialog's title and the message when no printer is chosen.
inline const QString kPrintDialogTitle = QStringLiteral("הדפסה");
inline const QString kNoPrinterMessage = QStringLiteral("לא נבחרה מדפסת, בחר מדפסת מהרשימה");

struct PrintChoices {
    bool details = false;   // "נתוני הדו"ח": the report's sections
    bool bl = false;        // "דמי ביטוח לאומי": the national insurance sheet
    bool currPage = false;  // "עמוד נוכחי": the page on screen
    bool calc = false;      // "חישוב הדו"ח": the result sheets
    bool explain = false;   // "נספח הסברים": the result sheets end with the appendix of explanations
};

enum class PrintJob { ReportSections, CurrentSection, ResultSheets, NationalInsurance, CurrentSheet };

// The jobs of the dialog's "הדפס", in order. The result sheets and the national
// insurance sheet exclude each other (the sheets win); the page on screen is a
// section in edit mode and a sheet in result mode.
std::vector<PrintJob> printJobs(const PrintChoices& choices, bool editMode);

// What the desktop hands to the print run.
struct PrintSession {
    const NishumInput* report = nullptr;
    NishumOutput* out = nullptr;  // the result set; the sheets' jobs fill it by calculating first
    SectionId currentSection = SectionId::Pratim;
    SheetId currentSheet = SheetId::CMain;
    bool editMode = true;
    // Runs the calculation into *out, recording into `sink` how it came about
    // when there is one. False when it gives no result (it has told the user
    // why); the job that needed it is then left out.
    std::function<bool(NishumOutput& out, trace::Trace* sink)> calculate;
};

// Runs the jobs of the choices one after the other, each with its own head
// and page numbers. Returns the number of jobs that printed; the jobs that
// could not start have been reported through setup.onError.
int runPrintJobs(PrintTarget& target, const PrintSetup& setup, const PrintChoices& choices,
                 const PrintSession& session);

}  // namespace zelmor
