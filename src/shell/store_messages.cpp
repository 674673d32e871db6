#include "shell/store_messages.h"

namespace zelmor::shell {
namespace {

using storage::StoreError;

const QString kSaveTitle = QStringLiteral("שמירת דו\"ח");
const QString kOpenTitle = QStringLiteral("פתיחת דו\"ח");
const QString kListTitle = QStringLiteral("רשימת נישומים");

QString q(const std::string& s) { return QString::fromStdString(s); }

// What is wrong with an id, in one line.
QString idFaultText(storage::IdFault fault) {
    switch (fault) {
        case storage::IdFault::Quote: return QStringLiteral("מספר ת.ז. אינו יכול להכיל מרכאות (\")");
        case storage::IdFault::Control: return QStringLiteral("מספר ת.ז. אינו יכול להכיל תווי בקרה");
        case storage::IdFault::Invisible:
            return QStringLiteral("מספר ת.ז. אינו יכול להכיל סימני כיוון, תווים בלתי נראים או רווח מיוחד");
        case storage::IdFault::Empty: return QStringLiteral("מספר ת.ז. ריק");
        case storage::IdFault::None: break;
    }
    return {};
}

ShownMessage saveMessage(const storage::StoreOutcome& out) {
    switch (out.error) {
        case StoreError::None:
            return {MsgIcon::Information, kSaveTitle, QStringLiteral("הדו\"ח נשמר בהצלחה")};
        case StoreError::NoId:
            return {MsgIcon::Exclamation, kSaveTitle,
                    QStringLiteral("לא ניתן לשמור ללא מספר ת.ז.\nנא להזין ת.ז. ולשמור לאחר מכן")};
        case StoreError::TemplateId:
            return {MsgIcon::Exclamation, kSaveTitle,
                    QStringLiteral("לא ניתן לשמור בת.ז. %1, השמורה לתבנית הדו\"ח החדש\n"
                                   "נא להזין ת.ז. אחרת ולשמור לאחר מכן")
                        .arg(QLatin1String(storage::kTemplateId))};
        case StoreError::BadId:
            return {MsgIcon::Exclamation, kSaveTitle,
                    idFaultText(out.idCheck.fault) + QStringLiteral("\nנא לתקן ת.ז. ולשמור לאחר מכן")};
        default:
            break;
    }
    return {MsgIcon::Stop, kSaveTitle,
            QStringLiteral("שגיאה בשמירת הדו\"ח: ") + q(out.detail) + QStringLiteral("\nנא ליצור קשר עם חברת Zelmor")};
}

ShownMessage openMessage(const storage::StoreOutcome& out) {
    switch (out.error) {
        case StoreError::None: return {MsgIcon::None, kOpenTitle, {}};
        case StoreError::NoId:
            return {MsgIcon::Exclamation, kListTitle, QStringLiteral("לא נבחר אף נישום לפתיחה")};
        case StoreError::BadId: return {MsgIcon::Exclamation, kOpenTitle, idFaultText(out.idCheck.fault)};
        case StoreError::NotFound:
            return {MsgIcon::Exclamation, kOpenTitle, QStringLiteral("לא נמצא דו\"ח שמור עם ת.ז. ") + q(out.id)};
        default: break;
    }
    return {MsgIcon::Stop, kOpenTitle,
            QStringLiteral("שגיאה בפתיחת הדו\"ח: ") + q(out.detail) + QStringLiteral("\nהדו\"ח הפתוח לא שונה.")};
}

ShownMessage deleteMessage(const storage::StoreOutcome& out) {
    switch (out.error) {
        case StoreError::None:
        case StoreError::NoId: return {MsgIcon::None, kListTitle, {}};  // nothing chosen, nothing deleted
        case StoreError::TemplateId:
            return {MsgIcon::Exclamation, kListTitle, QStringLiteral("לא ניתן למחוק את תבנית הדו\"ח החדש")};
        case StoreError::BadId: return {MsgIcon::Exclamation, kListTitle, idFaultText(out.idCheck.fault)};
        default: break;
    }
    return {MsgIcon::Stop, kListTitle, QStringLiteral("שגיאה במחיקת הדו\"ח: ") + q(out.detail)};
}

}  // namespace

ShownMessage storeMessage(StoreAction action, const storage::StoreOutcome& outcome) {
    switch (action) {
        case StoreAction::Open: return openMessage(outcome);
        case StoreAction::Save: return saveMessage(outcome);
        case StoreAction::Delete: return deleteMessage(outcome);
    }
    return {};
}

}  // namespace zelmor::shell
