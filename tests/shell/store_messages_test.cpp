#include <gtest/gtest.h>

#include "shell/store_messages.h"

namespace zelmor::shell {
namespace {

using storage::StoreError;
using storage::StoreOutcome;

StoreOutcome outcome(StoreError error, std::string id = {}, std::string detail = {}) {
    StoreOutcome out;
    out.ok = error == StoreError::None;
    out.error = error;
    out.id = std::move(id);
    out.detail = std::move(detail);
    return out;
}

// The boxes of the storage outcomes (those of a save that stores or lacks an
// id, and of opening with nothing chosen, are checked through the screens).
TEST(StoreMessages, EachOutcomeOfEachActionHasItsBox) {
    StoreOutcome invisible = outcome(StoreError::BadId, "123\u200F");
    invisible.idCheck = {storage::IdFault::Invisible, 0x200F};
    const struct {
        StoreAction action;
        StoreOutcome out;
        MsgIcon icon;
        const char* title;
        const char* text;
    } cases[] = {
        {StoreAction::Save, outcome(StoreError::TemplateId, "NewInit"), MsgIcon::Exclamation, "שמירת דו\"ח",
         "לא ניתן לשמור בת.ז. NewInit, השמורה לתבנית הדו\"ח החדש\nנא להזין ת.ז. אחרת ולשמור לאחר מכן"},
        {StoreAction::Save, invisible, MsgIcon::Exclamation, "שמירת דו\"ח",
         "מספר ת.ז. אינו יכול להכיל סימני כיוון, תווים בלתי נראים או רווח מיוחד\nנא לתקן ת.ז. ולשמור לאחר מכן"},
        {StoreAction::Save, outcome(StoreError::DatabaseFailure, "1", "disk I/O error"), MsgIcon::Stop,
         "שמירת דו\"ח", "שגיאה בשמירת הדו\"ח: disk I/O error\nנא ליצור קשר עם חברת Zelmor"},
        {StoreAction::Open, outcome(StoreError::None, "1"), MsgIcon::None, "פתיחת דו\"ח", ""},
        {StoreAction::Open, outcome(StoreError::NotFound, "404"), MsgIcon::Exclamation, "פתיחת דו\"ח",
         "לא נמצא דו\"ח שמור עם ת.ז. 404"},
        {StoreAction::Open, outcome(StoreError::Damaged, "5", "column isMale holds 2"), MsgIcon::Stop, "פתיחת דו\"ח",
         "שגיאה בפתיחת הדו\"ח: column isMale holds 2\nהדו\"ח הפתוח לא שונה."},
        {StoreAction::Delete, outcome(StoreError::NoId), MsgIcon::None, "רשימת נישומים", ""},
        {StoreAction::Delete, outcome(StoreError::TemplateId, "NewInit"), MsgIcon::Exclamation, "רשימת נישומים",
         "לא ניתן למחוק את תבנית הדו\"ח החדש"},
        {StoreAction::Delete, outcome(StoreError::DatabaseFailure, "1", "locked"), MsgIcon::Stop, "רשימת נישומים",
         "שגיאה במחיקת הדו\"ח: locked"},
    };
    for (const auto& c : cases) {
        const ShownMessage m = storeMessage(c.action, c.out);
        EXPECT_EQ(m.icon, c.icon) << c.text;
        EXPECT_EQ(m.title, QString::fromUtf8(c.title)) << c.text;
        EXPECT_EQ(m.text, QString::fromUtf8(c.text));
    }
}

}  // namespace
}  // namespace zelmor::shell
