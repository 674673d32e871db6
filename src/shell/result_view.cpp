#include "shell/result_view.h"

#include <QApplication>
#include <algorithm>
#include <QCalendarWidget>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/values.h"
#include "print/paper.h"
#include "shell/messages.h"
#include "shell/sheet_canvas.h"

namespace zelmor::shell {

ResultView::ResultView(const ConstDoch& c, const MadadLookup& madad, Date today, QWidget* parent)
    : QWidget(parent), c_(c), madad_(madad), today_(today), params_(sheetParams(c)) {
    setFont(QFont(QStringLiteral("DejaVu Sans"), 8));
    setFocusPolicy(Qt::StrongFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    scroll_ = new QScrollArea(this);
    scroll_->setObjectName(QStringLiteral("sheetScroll"));
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->installEventFilter(this);
    layout->addWidget(scroll_);

    picker_ = new QCalendarWidget(this);
    picker_->setObjectName(QStringLiteral("dtRibitDatePicker"));
    picker_->setWindowFlags(Qt::Popup);
    picker_->hide();
    auto pick = [this](QDate d) {
        picker_->hide();
        if (!canvas_ || !canvas_->dateField()) return;
        canvas_->dateField()->setText(d.toString(QStringLiteral("dd/MM/yyyy")));
        runDateRule();
    };
    connect(picker_, &QCalendarWidget::clicked, this, pick);
    connect(picker_, &QCalendarWidget::activated, this, pick);
}

ResultView::~ResultView() = default;

void ResultView::setResult(const CalcResult& r) {
    result_ = r;
    goSheet(1);
}

const CalcResult& ResultView::result() const { return result_; }

int ResultView::sheet() const { return sheet_; }

void ResultView::goSheet(int sheet) {
    // Always rebuilt, even for the sheet on show, so the screen follows the figures.
    sheet_ = std::clamp(sheet, 1, 8);
    showSheet();
    emit sheetChanged(sheet_);
}

void ResultView::showSheet() {
    // The old canvas leaves the view at once, so nothing answers for the new
    // sheet but the new one; it is deleted later, since the key or the button
    // that asked for the change may be one of its own widgets.
    if (QWidget* old = scroll_->takeWidget()) {
        old->hide();
        old->setParent(nullptr);
        old->deleteLater();
    }
    canvas_ = new SheetCanvas(static_cast<SheetId>(sheet_), result_, params_);
    canvas_->setFont(font());
    connect(canvas_, &SheetCanvas::detailsRequested, this, &ResultView::goSheet);
    scroll_->setWidget(canvas_);
    for (QWidget* w : canvas_->findChildren<QWidget*>())
        if (w->focusPolicy() != Qt::NoFocus) w->installEventFilter(this);
    if (QLineEdit* date = canvas_->dateField()) {
        connect(date, &QLineEdit::returnPressed, this, &ResultView::runDateRule);
        connect(canvas_->dateButton(), &QToolButton::clicked, this, &ResultView::openPicker);
        date->setFocus();
        date->selectAll();
    } else {
        setFocus();
    }
}

void ResultView::runDateRule() {
    QLineEdit* field = canvas_ ? canvas_->dateField() : nullptr;
    if (!field) return;
    const std::string text = field->displayText().toStdString();
    if (IsBlankValue(text)) return;  // the empty mask: nothing to do
    if (!IsValidDateText(text)) {
        showMessage(this, MsgIcon::Exclamation, QStringLiteral("חישוב ריבית"), QStringLiteral("תאריך לא חוקי"));
        field->setFocus();
        return;
    }
    CalcRibit(result_.out.Main, ParseDate(text), c_, madad_, today_);
    showSheet();
}

void ResultView::openPicker() {
    QToolButton* button = canvas_ ? canvas_->dateButton() : nullptr;
    if (!button) return;
    const Date d = result_.out.Main.RibitDate;
    if (!d.isNull()) picker_->setSelectedDate(QDate(d.year(), d.month(), d.day()));
    picker_->adjustSize();
    QPoint at = button->mapToGlobal(QPoint(button->width(), button->height()));
    at.rx() -= picker_->width();
    picker_->move(at);
    picker_->show();
    picker_->setFocus();
}

void ResultView::copySheet() const {
    if (canvas_) QApplication::clipboard()->setText(canvas_->sheetText());
}

QString ResultView::cellForKey(QObject* from) const {
    if (!canvas_) return {};
    const QString field = canvas_->cellField(from);
    return field.isEmpty() ? canvas_->cellField(QApplication::widgetAt(QCursor::pos())) : field;
}

void ResultView::cellMenu(QWidget* cell, const QPoint& at) {
    const QString field = canvas_->cellField(cell);
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("mnuCell"));
    QAction* explain = menu.addAction(QStringLiteral("הסבר"));
    explain->setObjectName(QStringLiteral("mnuExplain"));
    explain->setShortcut(QKeySequence(Qt::Key_F1));
    QAction* copy = menu.addAction(QStringLiteral("העתק"));
    copy->setObjectName(QStringLiteral("mnuCopy"));
    QAction* chosen = menu.exec(at);
    if (chosen == explain) {
        emit explainRequested(static_cast<SheetId>(sheet_), field);
    } else if (chosen == copy) {
        auto* label = qobject_cast<QLabel*>(cell);
        const QString text = label ? (label->hasSelectedText() ? label->selectedText() : label->text()) : QString();
        QApplication::clipboard()->setText(text);
    }
}

bool ResultView::handleKey(QObject* from, QKeyEvent* e) {
    if (e->matches(QKeySequence::Copy)) {
        // A selected amount copies itself; otherwise the whole sheet.
        if (auto* label = qobject_cast<QLabel*>(from); label && label->hasSelectedText()) return false;
        copySheet();
        return true;
    }
    if (e->modifiers() & ~Qt::KeypadModifier) return false;
    switch (e->key()) {
        case Qt::Key_PageDown:
            if (sheet_ < 8) goSheet(sheet_ + 1);
            return true;
        case Qt::Key_PageUp:
            if (sheet_ > 1) goSheet(sheet_ - 1);
            return true;
        case Qt::Key_Escape:  // nothing to do on the summary itself
            if (sheet_ != 1) goSheet(1);
            return true;
        case Qt::Key_F1:
            if (const QString field = cellForKey(from); !field.isEmpty())
                emit explainRequested(static_cast<SheetId>(sheet_), field);
            return true;
        default: return false;
    }
}

bool ResultView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched != picker_ && handleKey(watched, static_cast<QKeyEvent*>(event)))
        return true;
    if (canvas_ && !canvas_->cellField(watched).isEmpty()) {
        auto* cell = static_cast<QWidget*>(watched);
        switch (event->type()) {
            case QEvent::ContextMenu: {
                // From the mouse at the pointer, from the keyboard under the amount.
                const auto* menu = static_cast<QContextMenuEvent*>(event);
                cellMenu(cell, menu->reason() == QContextMenuEvent::Mouse ? menu->globalPos()
                                                                         : cell->mapToGlobal(cell->rect().bottomLeft()));
                return true;
            }
            // The amount with the focus is framed: it is the one F1 explains.
            case QEvent::FocusIn: static_cast<QLabel*>(cell)->setFrameShape(QFrame::Box); break;
            case QEvent::FocusOut: static_cast<QLabel*>(cell)->setFrameShape(QFrame::NoFrame); break;
            default: break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ResultView::keyPressEvent(QKeyEvent* e) {
    if (!handleKey(this, e)) QWidget::keyPressEvent(e);
}

}  // namespace zelmor::shell
