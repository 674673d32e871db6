#include "shell/app_storage.h"

#include <QString>

#include "shell/messages.h"

namespace zelmor::shell {

void showStoreOutcome(QWidget* parent, StoreStep, const storage::StoreOutcome& outcome) {
    if (outcome.text.empty()) return;
    MsgIcon icon = MsgIcon::None;
    switch (outcome.icon) {
        case storage::MessageIcon::Information: icon = MsgIcon::Information; break;
        case storage::MessageIcon::Exclamation: icon = MsgIcon::Exclamation; break;
        case storage::MessageIcon::Stop: icon = MsgIcon::Stop; break;
        case storage::MessageIcon::None: break;
    }
    showMessage(parent, icon, QString::fromStdString(outcome.title), QString::fromStdString(outcome.text));
}

}  // namespace zelmor::shell
