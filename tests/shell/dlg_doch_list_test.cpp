// The taxpayer list over a temporary database with a few stored reports.
#include "shell/dlg_doch_list.h"
#include "shell/dlg_test_support.h"

using namespace zelmor;
using namespace zelmor::shell;
using namespace zelmor::shell::testing;

namespace {

class DochListTest : public ::testing::Test {
protected:
    void SetUp() override { saveGoldenReports(db); }
    static QStringList column(DochListDialog& dlg, int col) {
        QStringList out;
        const QAbstractItemModel* m = child<QTableView>(&dlg, "dbdochlist")->model();
        for (int r = 0; r < m->rowCount(); ++r) out << m->index(r, col).data().toString();
        return out;
    }
    QStringList stored(storage::ListOrder order) {
        QStringList out;
        for (const auto& r : db.listNames(order)) out << QString::fromStdString(r.dID);
        return out;
    }
    static void click(DochListDialog& dlg, const char* name) { child<QAbstractButton>(&dlg, name)->click(); }
    static QLineEdit* search(DochListDialog& dlg) { return child<QLineEdit>(&dlg, "txtSearch"); }

    QTemporaryDir dir;
    storage::ReportDb db{dir.filePath(QStringLiteral("D2015.BRK")).toStdString()};
    MessageRecorder recorder;
};

TEST_F(DochListTest, SortsByNameOrIdAndOpensTheFirstRow) {
    DochListDialog dlg(db);
    EXPECT_EQ(column(dlg, 0), stored(storage::ListOrder::ByName));
    click(dlg, "IDSort");
    EXPECT_EQ(column(dlg, 0), stored(storage::ListOrder::ById));
    click(dlg, "IDSort");  // the same key again changes nothing
    EXPECT_EQ(column(dlg, 0), stored(storage::ListOrder::ById));
    click(dlg, "NameSort");
    EXPECT_EQ(column(dlg, 0), stored(storage::ListOrder::ByName));

    // After a sort the first row is the current one.
    click(dlg, "btnOpen");
    EXPECT_TRUE(recorder.shown.empty()) << recorder.lastText().toStdString();
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    EXPECT_EQ(dlg.chosenId(), column(dlg, 0).front());
    EXPECT_EQ(dlg.chosenName(), column(dlg, 1).front());
}

TEST_F(DochListTest, SearchNarrowsTheGridAndEnterOpensTheMatch) {
    DochListDialog dlg(db);
    dlg.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dlg));
    QLineEdit* box = search(dlg);
    EXPECT_EQ(dlg.focusWidget(), box);
    EXPECT_EQ(dlg.visibleRows(), 4);

    typeText(box, QStringLiteral("0345"));
    EXPECT_EQ(column(dlg, 0), QStringList{QStringLiteral("034567818")});
    box->clear();
    typeText(box, QStringLiteral("חדד"));  // by name
    EXPECT_EQ(column(dlg, 0), QStringList{QStringLiteral("022334452")});
    box->clear();
    typeText(box, QStringLiteral("no such client"));
    EXPECT_EQ(dlg.visibleRows(), 0);
    QTest::keyClick(box, Qt::Key_Return);
    expectLastMessage(recorder, MsgIcon::Exclamation, QStringLiteral("רשימת נישומים"),
                      QStringLiteral("לא נבחר אף נישום לפתיחה"));
    EXPECT_TRUE(dlg.isVisible());
    EXPECT_TRUE(dlg.chosenId().isEmpty());

    box->clear();
    EXPECT_EQ(dlg.visibleRows(), 4);
    QTest::keyClick(box, Qt::Key_Down);  // the arrows move the current row from the search box
    EXPECT_EQ(child<QTableView>(&dlg, "dbdochlist")->currentIndex().row(), 1);
    typeText(box, QStringLiteral("054321096"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(dlg.result(), QDialog::Accepted);
    EXPECT_EQ(dlg.chosenId(), QStringLiteral("054321096"));
}

TEST_F(DochListTest, DeleteAsksFirst) {
    DochListDialog dlg(db);
    typeText(search(dlg), QStringLiteral("034567818"));
    recorder.answers = {QMessageBox::No};
    click(dlg, "btnDelete");
    ASSERT_EQ(recorder.shown.size(), 1u);
    EXPECT_EQ(recorder.shown[0].text, QStringLiteral("האם את/ה בטוח/ה שברצונך למחוק את הדו\"ח ?"));
    EXPECT_EQ(db.countStored(), 4u);
    EXPECT_EQ(dlg.visibleRows(), 1);

    recorder.answers = {QMessageBox::Yes};
    click(dlg, "btnDelete");
    EXPECT_EQ(db.countStored(), 3u);
    EXPECT_EQ(dlg.visibleRows(), 0);  // the search stays; its one match is gone
    search(dlg)->clear();
    EXPECT_EQ(dlg.visibleRows(), 3);
    EXPECT_FALSE(column(dlg, 0).contains(QStringLiteral("034567818")));

    // With no row to delete a Yes deletes nothing.
    typeText(search(dlg), QStringLiteral("no such client"));
    click(dlg, "btnDelete");
    EXPECT_EQ(db.countStored(), 3u);
}

}  // namespace
