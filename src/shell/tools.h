#pragma once
// The actions of the tools menu that start something outside the program: the
// web site, the desktop calculator and the form 6111 program. Every outside
// program is started detached: the program never waits for it or watches it.
//
// Addresses and folders are settings of the program (QSettings, organisation
// and application "Zelmor"):
//   app/webSite          the web site of the program
//   tables/updateAddress where the index table is downloaded from
//   tools/form6111Folder the folder of the form 6111 program
//   tools/form6111Program its program file in that folder

#include <QString>
#include <QStringList>

class QWidget;

namespace zelmor::shell::tools {

// The setting, or the default when it is not set.
QString webSiteAddress();
QString updateAddress();  // empty until someone sets it
// Default: the folder "T6111ME" in the data folder.
QString form6111Folder(const QString& dataDir);
QString form6111Program();  // default "T611111.EXE"

// Asks the desktop to open the web site. False when there is no address or the
// desktop refused.
bool openWebSite();

// The desktop calculators looked for, in the order of preference.
const QStringList& calculatorCandidates();
// The first of the candidates found on PATH, as a full path; empty when none is.
QString findCalculator();
bool calculatorAvailable();
// Starts the first calculator found that starts. False when none did: the
// caller hides the menu entry for the rest of the run.
bool startCalculator();

// Starts the form 6111 program from its folder with the report's id as its one
// argument. When it cannot be started the message "בעיה בהפעלת טופס 6111." is
// shown (parent of the box: `parent`) and the result is false.
bool startForm6111(QWidget* parent, const QString& dataDir, const QString& nishumId);

}  // namespace zelmor::shell::tools
