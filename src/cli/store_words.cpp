#include "cli/store_words.h"

#include <cstdio>

namespace zelmor::cli {

namespace {

std::string codePoint(char32_t ch) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "U+%04X", static_cast<unsigned>(ch));
    return buf;
}

std::string idFaultText(const storage::IdCheck& check) {
    switch (check.fault) {
        case storage::IdFault::None: break;
        case storage::IdFault::Empty: return "Pratim.IDM: לא ניתן לשמור ללא מספר ת.ז.";
        case storage::IdFault::Quote: return "Pratim.IDM: an id cannot hold a double quotation mark (\")";
        case storage::IdFault::Control:
            return "Pratim.IDM: an id cannot hold a control character (" + codePoint(check.ch) + ")";
        case storage::IdFault::Invisible:
            return "Pratim.IDM: an id cannot hold a direction mark, an invisible character or an unusual blank (" +
                   codePoint(check.ch) + "): it would look like another id";
    }
    return {};
}

}  // namespace

std::string storeFailureText(const storage::StoreOutcome& out) {
    using storage::StoreError;
    switch (out.error) {
        case StoreError::None: break;
        case StoreError::NoId: return "no id given";
        case StoreError::BadId: return idFaultText(out.idCheck);
        case StoreError::TemplateId:
            return std::string("Pratim.IDM: לא ניתן לשמור בת.ז. ") + storage::kTemplateId +
                   ", השמורה לתבנית הדו\"ח החדש";
        case StoreError::NotFound: return "no report is stored under the id " + out.id + " in " + out.database;
        case StoreError::Damaged:
        case StoreError::DatabaseFailure:
        case StoreError::ForeignDatabase:
        case StoreError::NewerDatabase: return out.detail;
    }
    return out.detail;
}

int storeExitStatus(storage::StoreError error) {
    using storage::StoreError;
    switch (error) {
        case StoreError::None: return 0;
        case StoreError::NoId:
        case StoreError::BadId:
        case StoreError::TemplateId:
        case StoreError::NotFound: return 2;
        case StoreError::Damaged:
        case StoreError::DatabaseFailure:
        case StoreError::ForeignDatabase:
        case StoreError::NewerDatabase: return 1;
    }
    return 1;
}

std::string importIdRefusal(const std::string& id) {
    const storage::IdCheck check = storage::checkId(id);
    if (!check.ok()) return idFaultText(check);
    if (id == storage::kTemplateId) {
        storage::StoreOutcome out;
        out.error = storage::StoreError::TemplateId;
        return storeFailureText(out);
    }
    return {};
}

}  // namespace zelmor::cli
