#pragma once
// The desktop's words for what the report database answered: the message box
// (icon, title, text) that an open, a save or a delete ends with. No widget is
// made here; the caller shows the message through showMessage().

#include "shell/messages.h"
#include "storage/report_db.h"

namespace zelmor::shell {

enum class StoreAction { Open, Save, Delete };

// The message for the outcome of the action. An empty text means that nothing
// is to be shown (a report opened or deleted).
ShownMessage storeMessage(StoreAction action, const storage::StoreOutcome& outcome);

}  // namespace zelmor::shell
