#include "print/cls_print.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPen>
#include <QTextOption>
#include <cmath>

#include "core/values.h"
#include "core/version.h"

namespace zelmor {
namespace {


constexpr double kTwipsPerInch = 1440;
constexpr double kColumnTwips = 120;
constexpr double kLineTwips = 240;
// A rule's width is given in printer pixels; the pages keep the look of a
// 300 dpi office printer on every device.
constexpr double kPrinterDpi = 300;

}  // namespace

QString VersionCaptionShort() { return QString::fromLatin1(kVersionShort); }

QString ClsPrint::printFamily(QString* warning) {
    const QStringList families = QFontDatabase::families();
    for (const char* name : {"Miriam", "Miriam CLM"})
        if (families.contains(QLatin1String(name), Qt::CaseInsensitive)) return QString::fromLatin1(name);
    const QString fallback = families.contains(QStringLiteral("DejaVu Sans")) ? QStringLiteral("DejaVu Sans")
                                                                              : QStringLiteral("Sans Serif");
    if (warning)
        *warning = QStringLiteral("The font \"Miriam\" (or \"Miriam CLM\" of the culmus fonts) is not installed; "
                                  "printing in \"%1\".")
                       .arg(fallback);
    return fallback;
}

ClsPrint::ClsPrint(PrintTarget& target, PageHead head, PrintErrorSink onError)
    : target_(target), head_(std::move(head)), onError_(std::move(onError)) {}

ClsPrint::~ClsPrint() {
    // A job that was left without its end still closes its device.
    if (painter_) target_.endJob();
}

double ClsPrint::colToX(double col) const { return (scaleWidth_ - col) * colW_; }
double ClsPrint::lineToY(double line) const { return line * lineH_; }

void ClsPrint::applyFont() {
    font_.setPointSizeF(fontSize_);
    font_.setBold(bold_);
    font_.setUnderline(underline_);
    font_.setItalic(false);
    if (painter_) painter_->setFont(font_);
}

float ClsPrint::PrintHeader() {
    QString error;
    painter_ = target_.beginJob(&error);
    if (!painter_) {
        lastError_ = error;
        if (onError_)
            onError_(QStringLiteral("שגיאת הדפסה"),
                     QStringLiteral("לא נמצאה מדפסת,\nוודא שהמדפסת מחוברת ויש נייר להדפסה\nהודעת שגיאה: ") + error);
        return kFailed;
    }
    QPaintDevice* dev = painter_->device();
    colW_ = dev->logicalDpiX() * kColumnTwips / kTwipsPerInch;
    lineH_ = dev->logicalDpiY() * kLineTwips / kTwipsPerInch;
    pixel_ = dev->logicalDpiX() / kPrinterDpi;
    scaleWidth_ = dev->width() / colW_;
    scaleHeight_ = dev->height() / lineH_;
    page_ = 1;

    // A printer is no widget: the direction of the text is set for the job.
    painter_->setLayoutDirection(Qt::RightToLeft);
    painter_->setRenderHint(QPainter::Antialiasing, true);
    painter_->setPen(Qt::black);
    font_ = QFont(printFamily());
    font_.setStyleStrategy(QFont::PreferAntialias);
    fontSize_ = 10;
    bold_ = underline_ = false;
    applyFont();
    LinePos = 1;

    PrintString(7, head_.userName, false);
    const QString dateText = QStringLiteral("תאריך הדפסה : ") + QString::fromStdString(FormatDate(head_.printDate));
    PrintString(90 - TextWidth(dateText), dateText, false);
    LinePos += 1.5f;

    PrintString(7,
                QStringLiteral("תדפיס מOrvanta ") + QString::number(head_.yearDoch) + QStringLiteral(" (") +
                    VersionCaptionShort() + QStringLiteral(")"),
                true);
    const QString maker = QStringLiteral("הופק באמצעות Zelmor  -  ") + QLatin1String(kMakerPhone);
    PrintString(90 - TextWidth(maker), maker, true);
    LinePos += 1.5f;

    // A letter too long for the page is cut where the rule and the taxpayer's
    // name still fit above the page number: no text is printed over another.
    const double lastLetterLine = scaleHeight_ - 6;
    for (const QString& line : head_.letterLines) {
        if (LinePos > lastLetterLine) break;
        PrintString(7, line, true);
        LinePos += 1;
    }
    PrintLine(5, LinePos, 92, LinePos, 3);
    LinePos += 1;

    fontSize_ = 13;
    bold_ = underline_ = true;
    applyFont();
    const QString name = head_.taxpayerName.trimmed();
    PrintString((scaleWidth_ - TextWidth(name)) / 2, name, true);
    fontSize_ = 10;
    underline_ = bold_ = false;
    applyFont();
    LinePos += 2;
    return LinePos;
}

void ClsPrint::PrintString(double x, const QString& text, bool bold) {
    if (!painter_) return;
    if (bold != bold_) {
        bold_ = bold;
        applyFont();
    }
    const double right = colToX(x);
    const double top = lineToY(LinePos);
    QTextOption opt(Qt::AlignAbsolute | Qt::AlignRight | Qt::AlignTop);
    opt.setTextDirection(Qt::RightToLeft);
    opt.setWrapMode(QTextOption::NoWrap);
    // The box reaches from the left edge of the paper to the column; the text
    // ends at its right side and is never cut, even when it runs past the box.
    painter_->drawText(QRectF(-colToX(0), top, right + colToX(0), lineH_ * 2), text, opt);
}

void ClsPrint::PrintLine(float x1, float y1, float x2, float y2, int width) {
    if (!painter_) return;
    QPen pen(Qt::black);
    pen.setWidthF(std::max(1.0, width * pixel_));
    pen.setCapStyle(Qt::SquareCap);
    painter_->setPen(pen);
    painter_->drawLine(QPointF((scaleWidth_ - x2) * colW_, lineToY(y1)), QPointF((scaleWidth_ - x1) * colW_, lineToY(y2)));
}

void ClsPrint::NextLine(float lines) {
    LinePos += lines;
    if (LinePos > scaleHeight_ - 5) LinePos = PrintEndPage(false);
}

void ClsPrint::KeepLines(float lines) {
    if (painter_ && LinePos + lines > scaleHeight_ - 5) LinePos = PrintEndPage(false);
}

float ClsPrint::PrintEndPage(bool bEndDoc) {
    if (!painter_) return 0;
    const float line = LinePos;
    LinePos = static_cast<float>(scaleHeight_ - 2);
    const QString number = QStringLiteral("- ") + QString::number(page_) + QStringLiteral(" -");
    PrintString((scaleWidth_ - TextWidth(number)) / 2, number, bold_);
    LinePos = line;
    if (bEndDoc) {
        target_.endJob();
        painter_ = nullptr;
        return 0;
    }
    target_.newPage();
    ++page_;
    return 2;
}

double ClsPrint::TextWidth(const QString& text) const {
    if (!painter_ || colW_ <= 0) return 0;
    return QFontMetricsF(font_, painter_->device()).horizontalAdvance(text) / colW_;
}

double ClsPrint::TextWidth(const QString& text, bool bold) const {
    if (!painter_ || colW_ <= 0) return 0;
    QFont f = font_;
    f.setBold(bold);
    return QFontMetricsF(f, painter_->device()).horizontalAdvance(text) / colW_;
}

void ClsPrint::SetFontSize(int points) {
    fontSize_ = points;
    applyFont();
}

void ClsPrint::SetFontUnderline(bool on) {
    underline_ = on;
    applyFont();
}

}  // namespace zelmor
