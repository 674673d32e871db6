// The index table grid over the table shipped with the program (published up
// to 08/2026, so the grid ends with a row for 09/2026), and the update.
#include "shell/dlg_madadim.h"
#include "shell/dlg_test_support.h"

namespace zelmor::shell {
namespace {

constexpr const char* kLockMonth = "202608";
constexpr const char* kNewMonth = "202609";
const Date kNewMonthDay = *Date::fromYmd(2026, 9, 1);

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class MadadimDialogTest : public testing::DataFolderTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(madad.ok()) << madad.errorString().toStdString();
        ASSERT_EQ(madad.lockMonth(), kLockMonth);
        dialog_.show();
        QApplication::setActiveWindow(&dialog_);
    }

    QModelIndex cell(const char* month, int column = MadadimDialog::ColMadad) const {
        return dialog_.grid()->model()->index(dialog_.rowOfMonth(QString::fromLatin1(month)), column);
    }
    // Types a text into the index cell of the new month and presses Enter,
    // which commits the editor through the event queue.
    QLineEdit* type(const QString& text) {
        QTableView* grid = dialog_.grid();
        grid->setCurrentIndex(cell(kNewMonth));
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_F2);
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        EXPECT_NE(editor, nullptr) << "the month did not open for editing";
        if (!editor) return nullptr;
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::sendPostedEvents();
        return qobject_cast<QLineEdit*>(QApplication::focusWidget());
    }

    MadadimDialog dialog_{madad};
};

TEST_F(MadadimDialogTest, FormatsAndTheNewestMonthsInView) {
    QStringList march2015;
    for (int column : {MadadimDialog::ColBasis51, MadadimDialog::ColMadad, MadadimDialog::ColShowMonth, MadadimDialog::ColBasis})
        march2015 << cell("201503", column).data().toString();
    EXPECT_EQ(march2015, (QStringList{"33,569,107.8", "98.8", "03/2015", "ממוצע 2014 = 100"}));
    // The month after the last: no value yet, and its edit starts from "0".
    const QAbstractItemModel* m = dialog_.grid()->model();
    EXPECT_EQ(dialog_.rowOfMonth(kNewMonth), m->rowCount() - 1);
    EXPECT_EQ(cell(kNewMonth).data().toString(), "");
    EXPECT_EQ(cell(kNewMonth).data(Qt::EditRole).toString(), "0");

    // The cursor on the first month that takes a value, the last row in view.
    QTableView* grid = dialog_.grid();
    EXPECT_EQ(grid->currentIndex(), cell(kNewMonth));
    EXPECT_TRUE(grid->viewport()->rect().contains(grid->visualRect(cell(kNewMonth)).center()));
    EXPECT_EQ(QApplication::focusWidget(), grid);
}

TEST_F(MadadimDialogTest, PublishedMonthsAndOtherColumnsCannotBeEdited) {
    QTableView* grid = dialog_.grid();
    for (const QModelIndex& c : {cell(kLockMonth), cell("201201"), cell(kNewMonth, MadadimDialog::ColBasis51),
                                 cell(kNewMonth, MadadimDialog::ColShowMonth)}) {
        EXPECT_FALSE(c.flags() & Qt::ItemIsEditable) << c.row() << ',' << c.column();
        grid->setCurrentIndex(c);
        QTest::keyClick(grid, Qt::Key_5);
        EXPECT_EQ(QApplication::focusWidget(), grid) << "an editor opened on " << c.row() << ',' << c.column();
    }
    EXPECT_TRUE(cell(kNewMonth).flags() & Qt::ItemIsEditable);
}

// A text, or a value the table cannot hold, is refused with its message and
// the cursor stays on the cell with what was typed; a number is then taken,
// worked into the 9/51 base, written at once and used by the next calculation.
TEST_F(MadadimDialogTest, RefusedValuesHoldTheCellUntilANumberIsGiven) {
    const QByteArray before = readAll(madad.filePath());
    const double mekadem = madad.rows().back().mekadem;
    for (const auto& [text, message] : {std::pair{"abc", "מספר לא חוקי"}, std::pair{"1e20", "גדול מהמותר"}}) {
        SCOPED_TRACE(text);
        recorder.shown.clear();
        QLineEdit* editor = type(QString::fromLatin1(text));
        ASSERT_EQ(recorder.shown.size(), 1u);
        EXPECT_EQ(recorder.shown[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(recorder.shown[0].title, "Zelmor - מדדים");
        EXPECT_TRUE(recorder.lastText().contains(QString::fromUtf8(message))) << recorder.lastText().toStdString();
        EXPECT_TRUE(dialog_.badEntryPending());
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->text(), text);
        EXPECT_EQ(dialog_.grid()->currentIndex(), cell(kNewMonth));
        QTest::keyClick(editor, Qt::Key_Escape);  // gives the typing up
        EXPECT_FALSE(dialog_.badEntryPending());
    }
    EXPECT_EQ(readAll(madad.filePath()), before);

    QLineEdit* editor = type(QStringLiteral("abc"));
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("106.2"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(dialog_.badEntryPending());
    EXPECT_EQ(cell(kNewMonth).data().toString(), "106.2");
    EXPECT_EQ(cell(kNewMonth, MadadimDialog::ColBasis51).data().toString(),
              QLocale(QLocale::English).toString(106.2 * mekadem, 'f', 1));
    EXPECT_DOUBLE_EQ(madad.GetMadad(kNewMonthDay), 106.2 * mekadem);
    EXPECT_DOUBLE_EQ(MadadTable(dir.path()).GetMadad(kNewMonthDay), 106.2 * mekadem);
    // The month after it is offered next.
    EXPECT_EQ(dialog_.rowOfMonth("202610"), dialog_.grid()->model()->rowCount() - 1);
}

// The update replaces the table from a file:// address; a failure is named and
// keeps the old table byte for byte. The busy pointer is gone afterwards.
TEST(MadadUpdate, ReplacesTheTableOrKeepsIt) {
    QTemporaryDir dir, published;
    MadadTable table(dir.path());
    MadadTable source(published.path());
    QString error;
    ASSERT_TRUE(table.setMadad(kNewMonth, 150.0, &error)) << error.toStdString();
    ASSERT_TRUE(source.setMadad(kNewMonth, 107.0, &error)) << error.toStdString();
    MessageRecorder messages;
    const QString upToDate = QStringLiteral("טבלאות מדדים וסכומים מעודכנות לחודש 2026/08");

    const QByteArray before = readAll(table.filePath());
    EXPECT_FALSE(updateMadadTables(nullptr, table, QUrl::fromLocalFile(published.filePath("missing.brk"))));
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_EQ(messages.shown[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(messages.shown[0].title, "עדכון מדדים");
    EXPECT_TRUE(messages.shown[0].text.contains("נכשל")) << messages.lastText().toStdString();
    EXPECT_TRUE(messages.shown[0].text.endsWith(upToDate));
    EXPECT_EQ(readAll(table.filePath()), before);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    EXPECT_TRUE(updateMadadTables(nullptr, table, QUrl::fromLocalFile(source.filePath())));
    testing::expectLastMessage(messages, MsgIcon::Information, "עדכון מדדים", upToDate);
    EXPECT_EQ(table.GetMadad(kNewMonthDay), source.GetMadad(kNewMonthDay));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace zelmor::shell
