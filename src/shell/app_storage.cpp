#include "shell/app_storage.h"

namespace zelmor::shell {

void showStoreOutcome(QWidget* parent, StoreAction action, const storage::StoreOutcome& outcome) {
    const ShownMessage m = storeMessage(action, outcome);
    if (!m.text.isEmpty()) showMessage(parent, m.icon, m.title, m.text);
}

}  // namespace zelmor::shell
