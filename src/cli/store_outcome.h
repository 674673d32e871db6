#pragma once
// The one place where the command-line tool reads a storage outcome.

#include <string>

#include "storage/report_db.h"

namespace zelmor::cli {

struct StoreFailure {
    std::string message;
    int status;  // 1: the database failed; 2: the request was refused (an unknown or bad id)
};

inline StoreFailure storeFailure(const storage::StoreOutcome& out) {
    return {out.text, out.icon == storage::MessageIcon::Stop ? 1 : 2};
}

}  // namespace zelmor::cli
