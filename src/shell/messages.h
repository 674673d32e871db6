#pragma once
// Every message box of the program goes through these two calls, so that the
// wording stays in one style (right to left, right-aligned, a title and an
// icon) and so that tests can answer them without a modal loop.

#include <QMessageBox>
#include <QString>
#include <functional>
#include <vector>

namespace zelmor::shell {

enum class MsgIcon { None, Information, Question, Exclamation, Stop };

struct ShownMessage {
    MsgIcon icon = MsgIcon::None;
    QString title;
    QString text;
};

// Shows a message with an OK button and waits for it.
void showMessage(QWidget* parent, MsgIcon icon, const QString& title, const QString& text);

// Asks a question; buttons is a combination of QMessageBox::Yes, No, Cancel.
// Returns the button chosen (Cancel or No for Esc, as the box decides).
QMessageBox::StandardButton askQuestion(QWidget* parent, const QString& title, const QString& text,
                                        QMessageBox::StandardButtons buttons,
                                        QMessageBox::StandardButton defaultButton = QMessageBox::Yes,
                                        MsgIcon icon = MsgIcon::Question);

// For tests: while a recorder is installed no box opens; each message is
// appended to `shown` and each question gets the next of `answers` (Yes when
// they run out).
struct MessageRecorder {
    std::vector<ShownMessage> shown;
    std::vector<QMessageBox::StandardButton> answers;
    MessageRecorder();
    ~MessageRecorder();
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;
    // The text of the last message, or empty.
    QString lastText() const { return shown.empty() ? QString() : shown.back().text; }
};

}  // namespace zelmor::shell
