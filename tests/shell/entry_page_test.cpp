#include "shell/entry_page.h"

#include <algorithm>
#include <functional>
#include <memory>

#include "report/report_json.h"
#include "shell/dlg_test_support.h"
#include "support/report_generator.h"

inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace zelmor::shell {
namespace {

constexpr SectionId kAllSections[] = {SectionId::Pratim,  SectionId::Yegia,  SectionId::Rechush,
                                      SectionId::Pturot,  SectionId::Nikuim, SectionId::Nekudot,
                                      SectionId::Zikuim,  SectionId::Tashlumim, SectionId::Klaliim};

const char* nameOf(SectionId s) { return sectionDef(s).name; }

class EntryPageTest : public ::testing::Test {
protected:
    void open(SectionId section) {
        page = std::make_unique<EntryPage>(section, &report);
        page->var2Map(report);
        page->show();
        page->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(page.get()));
        page->focusFirst();
    }
    QWidget* field(const char* name) const {
        QWidget* w = page->fieldWidget(QString::fromLatin1(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    QLineEdit* edit(const char* name) const { return qobject_cast<QLineEdit*>(field(name)); }
    QComboBox* combo(const char* name) const { return qobject_cast<QComboBox*>(field(name)); }
    QAbstractButton* button(const char* name) const { return qobject_cast<QAbstractButton*>(field(name)); }
    static QString focused() { return testing::focusName(); }
    QString textOf(const char* name) const { return edit(name)->text(); }

    // Puts the focus in the field (leaving the one before it), replaces its text, then presses Enter.
    void enter(const char* name, const QString& text) {
        QWidget* w = field(name);
        w->setFocus(Qt::TabFocusReason);
        ASSERT_EQ(focused(), QString::fromLatin1(name));
        edit(name)->selectAll();
        if (text.isEmpty())
            QTest::keyClick(w, Qt::Key_Delete);
        else
            QTest::keyClicks(w, text);
        QTest::keyClick(w, Qt::Key_Return);
    }

    MessageRecorder messages;
    NishumInput report;
    std::unique_ptr<EntryPage> page;
};

// Each rule refuses a value beyond it with its message, keeping the focus and
// the value however the field is left (text that is no value is never read);
// the value at the limit is taken in its display form and the focus moves on.
TEST_F(EntryPageTest, ValuesBeyondTheirRulesAreRefused) {
    report.Yegia.N158 = 100000;  // the salaries that bound the insured income
    report.Yegia.N068 = 20000;
    const QString insured = QStringLiteral("הכנסה מבוטחת גבוהה מהמשכורת, נא להזין סכום נמוך מ ");
    const struct {
        SectionId section;
        const char* field;
        const char* bad;
        QString message;
        const char* good;
        const char* shown;
    } cases[] = {
        {SectionId::Yegia, "N150", "12x", QStringLiteral("סכום לא חוקי"), "2.5", "3"},
        {SectionId::Nekudot, "N023", "40000", QStringLiteral("מספר לא חוקי"), "2", "2"},
        {SectionId::Nekudot, "OleDateM", "31022015", QStringLiteral("תאריך לא חוקי"), "01022015", "01/02/2015"},
        {SectionId::Pturot, "N109", "614401", QStringLiteral("614,400"), "614400", "614,400"},
        {SectionId::Nikuim, "N244", "120001", insured + QStringLiteral("120,000"), "120000", "120,000"},
        {SectionId::Nikuim, "N245", "1", insured + QStringLiteral("0"), "", ""},  // the spouse has no salary
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.field);
        open(c.section);
        messages.shown.clear();
        enter(c.field, QString::fromLatin1(c.bad));
        ASSERT_EQ(messages.shown.size(), 1u);
        EXPECT_EQ(messages.shown[0].icon, MsgIcon::Exclamation);
        EXPECT_EQ(messages.shown[0].title, QStringLiteral("Orvanta"));
        EXPECT_TRUE(messages.lastText().contains(c.message)) << messages.lastText().toStdString();
        EXPECT_EQ(focused(), QString::fromLatin1(c.field));
        EXPECT_EQ(textOf(c.field).remove(QLatin1Char(',')).remove(QLatin1Char('/')), QString::fromLatin1(c.bad));
        QTest::keyClick(field(c.field), Qt::Key_Tab);
        EXPECT_EQ(focused(), QString::fromLatin1(c.field));
        EXPECT_FALSE(page->leaveCurrent());
        NishumInput n;
        if (std::string_view(c.bad) == "12x") { EXPECT_FALSE(page->map2Var(n)); }

        enter(c.field, QString::fromLatin1(c.good));
        EXPECT_EQ(messages.shown.size(), 3u);
        EXPECT_NE(focused(), QString::fromLatin1(c.field));
        EXPECT_EQ(textOf(c.field), QString::fromUtf8(c.shown));
        EXPECT_TRUE(page->map2Var(n));
    }
}

TEST_F(EntryPageTest, TotalsFollowTheirFields) {
    open(SectionId::Yegia);
    enter("N150", QStringLiteral("1000"));
    enter("N358", QStringLiteral("2,000"));
    enter("N172", QStringLiteral("5"));
    EXPECT_EQ(textOf("TTLM"), QStringLiteral("3,000"));
    EXPECT_EQ(textOf("TTLF"), QStringLiteral("5"));
    // A sum beyond the range blanks the first total of the page, and no stale total is stored.
    enter("N250", QStringLiteral("2147483647"));
    EXPECT_EQ(textOf("TTLM"), QString());
    EXPECT_TRUE(messages.shown.empty());
    NishumInput n;
    EXPECT_FALSE(page->map2Var(n));

    report = {};
    open(SectionId::Pturot);
    enter("Dira", QStringLiteral("700"));
    enter("Acherot", QStringLiteral("300"));
    EXPECT_EQ(textOf("N209"), QStringLiteral("1,000"));
    enter("N109", QStringLiteral("614401"));
    EXPECT_EQ(textOf("N209"), QStringLiteral("1,000"));  // not refreshed by a refused value
    enter("N109", QStringLiteral("614400"));
    EXPECT_EQ(textOf("N209"), QStringLiteral("615,400"));
    enter("N109", QString());  // clearing lowers the total at once
    EXPECT_EQ(textOf("N209"), QStringLiteral("1,000"));

    open(SectionId::Tashlumim);
    enter("TashlumimM", QStringLiteral("500"));
    enter("TashlumimF", QStringLiteral("700"));
    enter("N294M", QStringLiteral("9000"));
    enter("N042F", QStringLiteral("100"));
    QStringList totals;
    for (const char* name : {"Tashlumim", "TashTTLM", "TashTTLF", "TashTTL", "N294"}) totals << textOf(name);
    // The turnover is no payment.
    EXPECT_EQ(totals, (QStringList{"1,200", "500", "800", "1,300", "9,000"}));
    ASSERT_TRUE(page->map2Var(n));
    EXPECT_EQ(n.Tashlumim.TashTTL, Amount(1300));
}

TEST_F(EntryPageTest, RateListOfLine73FollowsTheSettlement) {
    open(SectionId::Zikuim);
    QComboBox* first = combo("N093");
    QComboBox* rates = combo("N093Rate");
    auto entries = [&] {
        QStringList l;
        for (int i = 0; i < rates->count(); ++i) l << rates->itemText(i);
        return l;
    };
    EXPECT_EQ(rates->count(), 0);
    first->setCurrentIndex(1);
    EXPECT_EQ(entries(), (QStringList{"13", "25"}));
    rates->setCurrentIndex(1);
    first->setCurrentIndex(2);
    EXPECT_EQ(entries(), (QStringList{"13", "16", "20", "25"}));
    EXPECT_EQ(rates->currentText(), QStringLiteral("13"));
    first->setCurrentIndex(0);
    EXPECT_EQ(rates->count(), 0);
    NishumInput n;
    n.Zikuim.N093Rate = 25;
    ASSERT_TRUE(page->map2Var(n));
    EXPECT_EQ(n.Zikuim.N093Rate, 0);
    EXPECT_EQ(n.Zikuim.N093Month, 12);

    // A stored rate that the list lacks shows its first entry.
    report.Zikuim.N193 = 1;
    report.Zikuim.N193Rate = 16;
    report.Zikuim.N193Month = 0;
    page->var2Map(report);
    EXPECT_EQ(combo("N193Rate")->currentText(), QStringLiteral("13"));
    EXPECT_EQ(combo("N193Month")->currentText(), QStringLiteral("12"));

    // Texts restored as typed fill the settlement before its rate.
    QMap<QString, QString> texts = page->rawTexts();
    texts[QStringLiteral("N093")] = QStringLiteral("2");
    texts[QStringLiteral("N093Rate")] = QStringLiteral("3");
    page->setRawTexts(texts);
    EXPECT_EQ(rates->currentText(), QStringLiteral("25"));
    EXPECT_EQ(page->rawTexts(), texts);
}

TEST_F(EntryPageTest, FemaleWordingOfTheMaritalOptions) {
    open(SectionId::Pratim);
    auto captions = [&] {
        QStringList l;
        for (const char* name : {"isRavak", "isNasuy", "isAlman", "isGarush"}) l << button(name)->text();
        return l;
    };
    const QStringList male{"רווק", "נשוי", "אלמן", "גרוש/פרוד"}, female{"רווקה", "נשואה", "אלמנה", "גרושה/פרודה"};
    EXPECT_EQ(captions(), male);
    button("isFemale")->click();
    EXPECT_EQ(captions(), female);
    button("isMale")->click();
    EXPECT_EQ(captions(), male);
    // Showing a report counts as choosing; with neither chosen the wording stays.
    report.Pratim.isFemale = true;
    page->var2Map(report);
    report.Pratim.isFemale = false;
    page->var2Map(report);
    EXPECT_EQ(captions(), female);
    EXPECT_FALSE(button("isFemale")->isChecked());
    report.Pratim.isMale = true;
    page->var2Map(report);
    EXPECT_EQ(captions(), male);
}

TEST_F(EntryPageTest, HowFieldsBehave) {
    report.Pratim.LastNameM = "כהן";
    report.Nekudot.N181 = 5;
    open(SectionId::Pratim);
    // The field Enter reaches has its text selected, ready to be typed over.
    QTest::keyClick(field("IDM"), Qt::Key_Return);
    EXPECT_EQ(focused(), QStringLiteral("LastNameM"));
    EXPECT_EQ(edit("LastNameM")->selectedText(), QStringLiteral("כהן"));
    // Options of one group exclude each other.
    button("isNasuy")->click();
    button("isRavak")->click();
    NishumInput n;
    ASSERT_TRUE(page->map2Var(n));
    EXPECT_TRUE(n.Pratim.isRavak);
    EXPECT_FALSE(n.Pratim.isNasuy);
    // The page keys are the window's from any kind of field.
    QSignalSpy spy(page.get(), &EntryPage::pageKey);
    QTest::keyClick(field("BirthDateM"), Qt::Key_PageDown);
    QTest::keyClick(field("isMale"), Qt::Key_PageUp);
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy[0][0].toInt(), int(Qt::Key_PageDown));
    EXPECT_EQ(spy[1][0].toInt(), int(Qt::Key_PageUp));

    open(SectionId::Nekudot);
    EXPECT_EQ(combo("N181")->currentText(), QStringLiteral("9 - 2 תארים שונים"));
}

// With a real message box (no recorder), the box's own focus changes must not
// run the check again, and the focus ends in the refused field.
TEST(EntryPageModal, RefusalThroughARealBoxKeepsTheFocus) {
    NishumInput report;
    EntryPage page(SectionId::Yegia, &report);
    page.show();
    page.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
    page.focusFirst();
    int boxes = 0;
    std::function<void()> closeBox = [&] {
        if (QWidget* box = QApplication::activeModalWidget()) {
            ++boxes;
            box->close();
        } else {
            QTimer::singleShot(0, closeBox);
        }
    };
    QTimer::singleShot(0, closeBox);
    QWidget* n150 = page.fieldWidget(QStringLiteral("N150"));
    QTest::keyClicks(n150, QStringLiteral("x"));
    QTest::keyClick(n150, Qt::Key_Return);
    EXPECT_EQ(boxes, 1);
    // The field is the page's focus, which it gets back as the window is active again.
    EXPECT_EQ(page.focusWidget(), n150);
    page.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
    EXPECT_EQ(QApplication::focusWidget(), n150);
    EXPECT_EQ(qobject_cast<QLineEdit*>(n150)->text(), QStringLiteral("x"));
}

// Every page of a generated report goes to the screen and back unchanged.
TEST_F(EntryPageTest, ScreenRoundTripOfGeneratedReports) {
    zelmor::testing::ReportGenerator gen(20151);
    for (int i = 0; i < 20; ++i) {
        const NishumInput r = gen.next();
        NishumInput expected = r, back;
        for (auto* z : {&expected.Zikuim.N093Month, &expected.Zikuim.N193Month})
            if (*z == 0) *z = 12;  // no months shows, and is kept as, the whole year
        for (SectionId s : kAllSections) {
            EntryPage p(s, &r);
            p.var2Map(r);
            ASSERT_TRUE(p.map2Var(back)) << nameOf(s);
        }
        EXPECT_EQ(writeReportDocument(back, true), writeReportDocument(expected, true)) << "report " << i;
    }
}

// Every page: Enter walks the entry fields in the order of their tab places
// and wraps; each field has a name of its own for the screen reader; nothing
// lies outside the page, covers something else or is cut short.
TEST_F(EntryPageTest, EveryPageWalksFitsAndNamesItsFields) {
    for (SectionId s : kAllSections) {
        SCOPED_TRACE(nameOf(s));
        open(s);
        std::vector<const FieldDef*> defs;
        for (const FieldDef& f : sectionFields(s))
            if (f.tab >= 0 && f.control != Control::Total) defs.push_back(&f);
        std::stable_sort(defs.begin(), defs.end(), [](auto* a, auto* b) { return a->tab < b->tab; });
        QStringList expected, visited, names;
        for (const FieldDef* f : defs) {
            expected << QString::fromLatin1(f->name);
            visited << focused();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        }
        EXPECT_EQ(visited, expected);
        EXPECT_EQ(focused(), expected.front());
        EXPECT_TRUE(messages.shown.empty());

        for (QWidget* w : page->tabOrder()) {
            EXPECT_FALSE(w->accessibleName().isEmpty()) << w->objectName().toStdString();
            names << w->accessibleName();
        }
        names.removeDuplicates();
        EXPECT_EQ(names.size(), static_cast<qsizetype>(page->tabOrder().size()));

        const QRect area = page->rect();
        EXPECT_EQ(area.size(), EntryPage::childSize());
        // The texts and fields (plain QWidgets only group them).
        std::vector<std::pair<QWidget*, QRect>> parts;
        for (QWidget* w : page->findChildren<QWidget*>()) {
            if (!w->isVisible() || w->isWindow() || w->metaObject() == &QWidget::staticMetaObject) continue;
            parts.emplace_back(w, QRect(w->mapTo(page.get(), QPoint(0, 0)), w->size()));
        }
        for (std::size_t i = 0; i < parts.size(); ++i) {
            auto [w, r] = parts[i];
            const std::string what = w->objectName().toStdString() + " " + w->metaObject()->className();
            EXPECT_TRUE(area.contains(r)) << what;
            EXPECT_TRUE(w->parentWidget()->rect().contains(w->geometry())) << what;  // nothing cut by its block
            for (std::size_t k = i + 1; k < parts.size(); ++k)
                EXPECT_FALSE(r.intersects(parts[k].second)) << what << " / " << parts[k].first->objectName().toStdString();
            if (auto* l = qobject_cast<QLabel*>(w)) {
                EXPECT_GE(l->width(), l->minimumWidth()) << what;
                EXPECT_GE(l->wordWrap() ? l->height() : l->width(),
                          l->wordWrap() ? l->heightForWidth(l->width()) : l->sizeHint().width()) << what;
            }
            if (auto* b = qobject_cast<QAbstractButton*>(w)) { EXPECT_GE(b->width(), b->sizeHint().width()) << what; }
        }
    }
}

}  // namespace
}  // namespace zelmor::shell
