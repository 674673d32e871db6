#pragma once
// The one place where the desktop program turns what the report database
// answered into a message box.

#include "storage/report_db.h"

class QWidget;

namespace zelmor::shell {

enum class StoreStep { Open, Save };

// Shows the outcome's message, if it has one.
void showStoreOutcome(QWidget* parent, StoreStep step, const storage::StoreOutcome& outcome);

}  // namespace zelmor::shell
