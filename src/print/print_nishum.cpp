#include "print/print_nishum.h"

#include <QFile>

#include "print/paper.h"
#include "storage/install_files.h"

namespace zelmor {

PageHead readPageHead(const PrintSetup& setup, const NishumInput& report, int yearDoch) {
    PageHead head;
    const std::string dataDir = QFile::encodeName(setup.dataDir).toStdString();
    head.userName = QString::fromStdString(storage::UserName(dataDir));
    const std::string letter = storage::Pnia(dataDir);
    if (!letter.empty()) head.letterLines = QString::fromStdString(letter).split(QStringLiteral("\r\n"));
    head.taxpayerName =
        (QString::fromStdString(report.Pratim.FirstNameM) + QLatin1Char(' ') + QString::fromStdString(report.Pratim.LastNameM))
            .trimmed();
    head.printDate = setup.today;
    head.yearDoch = yearDoch;
    return head;
}

bool PrintNishum(PrintTarget& target, const PrintSetup& setup, const NishumInput& report, bool currentOnly,
                 SectionId current) {
    const ConstDoch c;
    ClsPrint p(target, readPageHead(setup, report, c.YEARDOCH()), setup.onError);
    if (p.PrintHeader() < 0) return false;
    p.NextLine(1);
    if (currentOnly) {
        PrintSection(p, current, report, c);
    } else {
        const auto sections = allSections();
        for (std::size_t i = 0; i < sections.size(); ++i) {
            PrintSection(p, sections[i].id, report, c);
            if (i + 1 < sections.size()) p.NextLine(3);
        }
    }
    p.PrintEndPage(true);
    return true;
}

bool PrintNishum(PrintTarget& target, const PrintSetup& setup, const NishumInput& report, const NishumOutput& out,
                 bool bCurrentPage, bool bBL, SheetId current, const trace::Trace* explain) {
    const ConstDoch c;
    ClsPrint p(target, readPageHead(setup, report, c.YEARDOCH()), setup.onError);
    if (p.PrintHeader() < 0) return false;
    p.NextLine(1);
    if (bCurrentPage) {
        PrintSheet(p, current, out, c);
    } else if (!bBL) {
        // Pages 1 to 7; the national insurance sheet prints only by its own choice.
        for (int page = 1; page <= 7; ++page) {
            PrintSheet(p, static_cast<SheetId>(page), out, c);
            if (page < 7) p.NextLine(3);
        }
        if (explain) PrintExplanations(p, *explain, out);
    } else {
        PrintSheet(p, SheetId::CBL, out, c);
    }
    p.PrintEndPage(true);
    return true;
}

std::vector<PrintJob> printJobs(const PrintChoices& choices, bool editMode) {
    std::vector<PrintJob> jobs;
    if (choices.details) jobs.push_back(PrintJob::ReportSections);
    if (choices.calc) jobs.push_back(PrintJob::ResultSheets);
    else if (choices.bl) jobs.push_back(PrintJob::NationalInsurance);
    if (choices.currPage) jobs.push_back(editMode ? PrintJob::CurrentSection : PrintJob::CurrentSheet);
    return jobs;
}

int runPrintJobs(PrintTarget& target, const PrintSetup& setup, const PrintChoices& choices,
                 const PrintSession& session) {
    int printed = 0;
    for (PrintJob job : printJobs(choices, session.editMode)) {
        bool ok = false;
        switch (job) {
            case PrintJob::ReportSections:
                ok = PrintNishum(target, setup, *session.report, false);
                break;
            case PrintJob::CurrentSection:
                ok = PrintNishum(target, setup, *session.report, true, session.currentSection);
                break;
            case PrintJob::ResultSheets:
            case PrintJob::NationalInsurance: {
                // The sheets always print a fresh calculation.
                const bool explain = choices.explain && job == PrintJob::ResultSheets;
                trace::Trace trace;
                if (!session.calculate || !session.calculate(*session.out, explain ? &trace : nullptr)) break;
                ok = PrintNishum(target, setup, *session.report, *session.out, false,
                                 job == PrintJob::NationalInsurance, SheetId::CMain, explain ? &trace : nullptr);
                break;
            }
            case PrintJob::CurrentSheet:
                ok = PrintNishum(target, setup, *session.report, *session.out, true, false, session.currentSheet);
                break;
        }
        if (ok) ++printed;
    }
    return printed;
}

}  // namespace zelmor
