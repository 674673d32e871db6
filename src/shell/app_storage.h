#pragma once
// The one place where the main window turns what the report database answered
// into a message box.

#include "shell/store_messages.h"

class QWidget;

namespace zelmor::shell {

// Shows the outcome's message, if it has one.
void showStoreOutcome(QWidget* parent, StoreAction action, const storage::StoreOutcome& outcome);

}  // namespace zelmor::shell
