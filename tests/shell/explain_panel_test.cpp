// The explanation window of a result cell, driven from the result screens as
// a user drives it: F1 or the context menu on an amount, Enter on a report line.
#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <deque>
#include <memory>

#include "engine/calc.h"
#include "engine/explain.h"
#include "shell/dlg_test_support.h"
#include "shell/entry_page.h"
#include "shell/explain_panel.h"
#include "shell/main_window.h"
#include "shell/result_view.h"
#include "shell/sheet_canvas.h"
#include "tables/madad_table.h"

namespace zelmor::shell {
namespace {

const Date kToday = *Date::fromYmd(2016, 6, 30);

class ExplainPanelTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        window_ = std::make_unique<MainWindow>(AppOptions{dir_.path(), dir_.filePath("D2015.BRK"), kToday});
        window_->show();
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        report_ = testing::goldenReport(QStringLiteral("couple.json"));
        window_->loadReport(report_);
        window_->calculate(1);
        ASSERT_FALSE(window_->editMode());
    }

    QLabel* amount(const char* field) const {
        for (SheetCanvas* c : window_->resultView()->findChildren<SheetCanvas*>())
            if (c->isVisibleTo(window_->resultView())) return c->findChild<QLabel*>(QLatin1String(field));
        return nullptr;
    }
    QString rootText() const { return window_->explainPanel()->tree()->topLevelItem(0)->text(0); }

    QTemporaryDir dir_;
    MessageRecorder messages_;
    std::unique_ptr<MainWindow> window_;
    NishumInput report_;
};

// The field of a report line of the explanation, or null.
const FieldDef* fieldOf(const trace::Trace& t, const QTreeWidgetItem* item) {
    const trace::Node& n = t.at(item->data(0, ExplainPanel::kNodeRole).toInt());
    if (n.op != trace::Op::Line) return nullptr;
    const auto dot = n.source().find('.');
    return findField(n.source().substr(0, dot), n.source().substr(dot + 1));
}

TEST_F(ExplainPanelTest, F1OnAnAmountShowsItsTreeAndAReportLineLeadsToItsField) {
    QLabel* tax = amount("MasMagiaM");
    ASSERT_NE(tax, nullptr);
    tax->setFocus();
    QTest::keyClick(tax, Qt::Key_F1);
    ExplainPanel* panel = window_->explainPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_TRUE(panel->isWindow());
    EXPECT_EQ(panel->layoutDirection(), Qt::RightToLeft);

    // The root and its figures read as the command line's explanation does,
    // from the same calculation.
    trace::Trace t;
    CalcDoch(report_, ConstDoch(), MadadTable(dir_.path()), kToday, &t);
    const int node = t.cell("CMain.MasMagiaM");
    ASSERT_GE(node, 0);
    QTreeWidget* tree = panel->tree();
    QTreeWidgetItem* root = tree->topLevelItem(0);
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->text(0).contains(tax->text())) << root->text(0).toStdString();
    QStringList expected = QString::fromStdString(trace::explainText(t, node, 2)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QStringList shown{root->text(0)};
    for (int i = 0; i < root->childCount(); ++i) shown << QStringLiteral("  ") + root->child(i)->text(0);
    for (QString& line : expected) line.remove(QStringLiteral(" (ראו לעיל)"));
    EXPECT_EQ(shown, expected);
    // The filing-mode choice stands under the cell.
    if (t.filing >= 0) {
        ASSERT_EQ(tree->topLevelItemCount(), 2);
        EXPECT_EQ(tree->topLevelItem(1)->text(0).toStdString(), trace::formulaLine(t, t.filing));
    }

    // Enter on a report line of a page other than the first (opening the
    // items on the way): back to editing on its page, the focus in its field.
    QTreeWidgetItem* line = nullptr;
    const FieldDef* field = nullptr;
    for (std::deque<QTreeWidgetItem*> items{root}; !items.empty() && !line; items.pop_front()) {
        field = fieldOf(t, items.front());
        if (field && field->section != SectionId::Pratim) line = items.front();
        items.front()->setExpanded(true);
        for (int i = 0; i < items.front()->childCount(); ++i) items.push_back(items.front()->child(i));
    }
    ASSERT_NE(line, nullptr);
    tree->setCurrentItem(line);
    QTest::keyClick(tree, Qt::Key_Return);
    EXPECT_TRUE(window_->editMode());
    EXPECT_EQ(window_->currentPage(), static_cast<int>(field->section)) << field->name;
    QWidget* entry = window_->entryPage()->fieldWidget(QString::fromUtf8(field->name));
    ASSERT_NE(entry, nullptr) << field->name;
    EXPECT_EQ(window_->focusWidget(), entry) << field->name;
    EXPECT_TRUE(QTest::qWaitFor([&] { return entry->hasFocus(); })) << field->name;
}

TEST_F(ExplainPanelTest, TheContextMenuOfAnAmountExplainsIt) {
    window_->goSheet(6);
    QLabel* cell = nullptr;
    for (QLabel* l : window_->resultView()->findChildren<QLabel*>())
        if (l->isVisible() && l->property("cell").toBool() && l->text() != QStringLiteral("0")) cell = l;
    ASSERT_NE(cell, nullptr);
    QString entries;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* a : menu->actions()) entries += a->text() + QLatin1Char('|');
        menu->setActiveAction(menu->findChild<QAction*>(QStringLiteral("mnuExplain")));
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), cell->mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(cell, &event);
    EXPECT_EQ(entries, QStringLiteral("הסבר|העתק|"));
    ExplainPanel* panel = window_->explainPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->sheet(), SheetId::CZikuim);
    EXPECT_EQ(panel->field(), cell->objectName());
    EXPECT_TRUE(rootText().contains(cell->text()));
}

TEST_F(ExplainPanelTest, TheBalanceForAnotherInterestDateIsTheOneOnShow) {
    QLineEdit* date = window_->resultView()->findChild<QLineEdit*>(QStringLiteral("RibitDate"));
    ASSERT_NE(date, nullptr);
    const double before = sheetValue(window_->resultView()->result().out, SheetId::CMain, "Itra");
    date->setText(QStringLiteral("31/12/2017"));
    QTest::keyClick(date, Qt::Key_Return);
    const double onShow = sheetValue(window_->resultView()->result().out, SheetId::CMain, "Itra");
    ASSERT_NE(onShow, before);
    QLabel* balance = amount("Itra");
    ASSERT_NE(balance, nullptr);
    QTest::keyClick(balance, Qt::Key_F1);
    ASSERT_NE(window_->explainPanel(), nullptr);
    // The explanation is the one of the balance on show, carried to the date chosen.
    EXPECT_TRUE(rootText().endsWith(QStringLiteral(" = ") + QString::fromStdString(trace::formatNumber(onShow))))
        << rootText().toStdString();
    window_->explainCell(SheetId::CMain, QStringLiteral("ItraDate"));
    EXPECT_TRUE(rootText().endsWith(QStringLiteral("תאריך הריבית שנבחר = 31/12/2017"))) << rootText().toStdString();
}

TEST(ExplainPanelPlace, BesideItsOwnerWhereTheScreenHasRoom) {
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget owner;
    owner.setGeometry(room.left() + 10, room.top() + 10, 150, 200);
    owner.show();
    ExplainPanel panel(&owner);
    panel.placeBeside(&owner);
    EXPECT_GT(panel.x(), owner.frameGeometry().right());  // on its right
    EXPECT_EQ(panel.y(), owner.frameGeometry().top());
    owner.move(room.right() - 160, room.top() + 10);
    panel.placeBeside(&owner);
    EXPECT_LE(panel.frameGeometry().right(), owner.frameGeometry().left());  // no room there: on its left
}

}  // namespace
}  // namespace zelmor::shell
