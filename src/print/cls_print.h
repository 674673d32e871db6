#pragma once
// The page printer of one print job. Positions are columns counted from the
// right edge of the printable area (a column is 120 twips) and lines counted
// from its top (a line is 240 twips); Hebrew text runs left from its column.
// A job is: PrintHeader, NextLine(1), any number of PrintString, PrintLine and
// NextLine, PrintEndPage(true).

#include <QFont>
#include <QString>
#include <QStringList>
#include <functional>

#include "core/date.h"
#include "print/print_target.h"

namespace zelmor {

// What the head of the first page shows.
struct PageHead {
    QString userName;          // the installation's user (USERZELW.NAM)
    QStringList letterLines;   // the covering letter (PNIA.TXT); empty when there is none
    QString taxpayerName;      // first and last name of the registered spouse
    Date printDate;            // today
    int yearDoch = 0;
};

// Reports a failure to the user: a title and a text (the desktop shows a
// message box with the stop icon, the command line writes it to standard error).
using PrintErrorSink = std::function<void(const QString& title, const QString& text)>;

class ClsPrint {
public:
    // The result of PrintHeader when the device can't be used.
    static constexpr float kFailed = -999;

    ClsPrint(PrintTarget& target, PageHead head, PrintErrorSink onError = {});
    ClsPrint(const ClsPrint&) = delete;
    ClsPrint& operator=(const ClsPrint&) = delete;
    ~ClsPrint();

    // The line of the next text, in lines from the top of the page.
    float LinePos = 0;

    // Starts the job and prints the head of the first page. The new LinePos,
    // or kFailed when printing isn't possible (the user has been told why).
    float PrintHeader();
    // Prints the page number at the foot and turns the page (returns the
    // LinePos of the new page), or ends the job.
    float PrintEndPage(bool bEndDoc);
    // A rule from column x1 at line y1 to column x2 at line y2, width printer pixels thick.
    void PrintLine(float x1, float y1, float x2, float y2, int width);
    // Text at column x on the line LinePos; LinePos doesn't move.
    void PrintString(double x, const QString& text, bool bold);
    // Moves LinePos; turns the page when it passes the last line of a page.
    void NextLine(float lines);
    // Turns the page now unless `lines` more lines fit on this one: a heading
    // starts where the lines that belong to it fit too.
    void KeepLines(float lines);

    // The width of a text in columns, in the present font.
    double TextWidth(const QString& text) const;
    // The same in the present size, bold or not.
    double TextWidth(const QString& text, bool bold) const;
    int FontSize() const { return fontSize_; }
    void SetFontSize(int points);
    void SetFontUnderline(bool on);
    double ScaleWidth() const { return scaleWidth_; }
    double ScaleHeight() const { return scaleHeight_; }
    int Page() const { return page_; }
    bool active() const { return painter_ != nullptr; }
    // The description of the last failure, or "".
    const QString& lastError() const { return lastError_; }

    // The family the pages are printed in: "Miriam", else its stand-in
    // "Miriam CLM", else a Hebrew-capable sans. *warning says when a stand-in
    // was taken for lack of the first two.
    static QString printFamily(QString* warning = nullptr);

private:
    void applyFont();
    double colToX(double col) const;  // device x of a column from the right edge
    double lineToY(double line) const;

    PrintTarget& target_;
    PageHead head_;
    PrintErrorSink onError_;
    QPainter* painter_ = nullptr;
    QFont font_;
    int fontSize_ = 10;
    bool bold_ = false;
    bool underline_ = false;
    double colW_ = 0;   // device units of one column
    double lineH_ = 0;  // device units of one line
    double pixel_ = 1;  // device units of one printer pixel
    double scaleWidth_ = 0;
    double scaleHeight_ = 0;
    int page_ = 0;
    QString lastError_;
};

// The short form of the program's version, as the page head shows it ("V16.1").
QString VersionCaptionShort();

}  // namespace zelmor
