#include "shell/messages.h"

#include <QApplication>

namespace zelmor::shell {
namespace {

MessageRecorder* gRecorder = nullptr;

QMessageBox::Icon boxIcon(MsgIcon icon) {
    switch (icon) {
        case MsgIcon::Information: return QMessageBox::Information;
        case MsgIcon::Question: return QMessageBox::Question;
        case MsgIcon::Exclamation: return QMessageBox::Warning;
        case MsgIcon::Stop: return QMessageBox::Critical;
        case MsgIcon::None: break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton runBox(QWidget* parent, MsgIcon icon, const QString& title, const QString& text,
                                   QMessageBox::StandardButtons buttons, QMessageBox::StandardButton def) {
    QMessageBox box(boxIcon(icon), title, text, buttons, parent);
    box.setLayoutDirection(Qt::RightToLeft);
    box.setDefaultButton(def);
    box.setTextFormat(Qt::PlainText);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace

void showMessage(QWidget* parent, MsgIcon icon, const QString& title, const QString& text) {
    if (gRecorder) {
        gRecorder->shown.push_back({icon, title, text});
        return;
    }
    runBox(parent, icon, title, text, QMessageBox::Ok, QMessageBox::Ok);
}

QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton, MsgIcon icon) {
    if (gRecorder) {
        gRecorder->shown.push_back({icon, title, text});
        if (gRecorder->answers.empty()) return QMessageBox::Yes;
        auto answer = gRecorder->answers.front();
        gRecorder->answers.erase(gRecorder->answers.begin());
        return answer;
    }
    return runBox(parent, icon, title, text, buttons, defaultButton);
}

MessageRecorder::MessageRecorder() { gRecorder = this; }
MessageRecorder::~MessageRecorder() { gRecorder = nullptr; }

}  // namespace zelmor::shell
