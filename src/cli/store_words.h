#pragma once
// The command line's words for what the report database answered, and the exit
// status each kind of failure gives: 2 when the input is at fault (the id),
// 1 when the database is.

#include <string>

#include "storage/report_db.h"

namespace zelmor::cli {

// What went wrong, for standard error and error documents. Refusals of an id
// name the member: "Pratim.IDM: ...".
std::string storeFailureText(const storage::StoreOutcome& out);

int storeExitStatus(storage::StoreError error);

// Why a report cannot be imported under its id; "" when it can.
std::string importIdRefusal(const std::string& id);

}  // namespace zelmor::cli
