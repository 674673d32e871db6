#pragma once
// The one place where the desktop program turns what the report database
// answered into a message box.

#include "storage/report_db.h"

class QWidget;

namespace zelmor::shell {

// Shows the outcome's message, if it has one, with its title and icon.
void showStoreOutcome(QWidget* parent, const storage::StoreOutcome& outcome);

}  // namespace zelmor::shell
