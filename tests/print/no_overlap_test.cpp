// No text printed over text: the results and the report of many generated
// reports are printed and read back word by word with their boxes; no two
// words of a page may touch, no heading may stand alone at the foot of a page,
// and no rule may open a page above its text.
#include <gtest/gtest.h>

#include <QFile>
#include <QPaintEngine>
#include <QSet>
#include <QTemporaryDir>
#include <map>

#include "engine/calc.h"
#include "pdf_text.h"
#include "print/paper.h"
#include "print/print_nishum.h"
#include "support/fixed_madad.h"
#include "support/report_generator.h"

using namespace zelmor;
using namespace zelmor::test;

namespace {

const Date kToday = *Date::fromYmd(2016, 6, 30);

// The generator's reports, bent towards what crowds a page: degrees and
// settlements on both spouses, special-rate income under large deductions.
std::vector<NishumInput> crowdedReports(int count) {
    zelmor::testing::ReportGenerator gen(20151231);
    std::vector<NishumInput> reports;
    for (int i = 0; i < count; ++i) {
        NishumInput r = gen.next();
        if (i % 3 == 0) {
            r.Nekudot.N181 = static_cast<std::int16_t>(1 + i % 5);
            r.Nekudot.N182 = static_cast<std::int16_t>(5 - i % 5);
            r.Zikuim.N093 = 1 + i % 2;
            r.Zikuim.N193 = 2 - i % 2;
        }
        if (i % 4 == 1) {
            // Business losses are set off against the special-rate income,
            // which then prints its gross amount and the deduction.
            r.Yegia.N150 -= 400000;
            r.Yegia.TTLM -= 400000;
            r.Yegia.N170 -= 300000;
            r.Yegia.TTLF -= 300000;
            for (Amount* a : {&r.Rechush.N211, &r.Rechush.N212, &r.Rechush.N213, &r.Rechush.N217, &r.Rechush.N226,
                              &r.Rechush.N242, &r.Rechush.N257, &r.Rechush.N311, &r.Rechush.N312, &r.Rechush.N313,
                              &r.Rechush.N317, &r.Rechush.N326, &r.Rechush.N342, &r.Rechush.N357})
                *a += 123039 + 1111111 * (i % 3);
        }
        reports.push_back(r);
    }
    return reports;
}

// Two words of one line touch when less than a blank's width apart (the
// words of one text stand a blank apart); lines may share a sliver.
bool touch(const PdfWord& a, const PdfWord& b) {
    constexpr double kGap = 1.5, kSliver = 0.3;  // points
    return a.page == b.page && a.xMin < b.xMax + kGap && b.xMin < a.xMax + kGap && a.yMin < b.yMax - kSliver &&
           b.yMin < a.yMax - kSliver;
}

// Some texts come back from pdftotext a letter at a time. Letters that abut on
// one line are joined into the run they were printed as; texts that overlap
// or stand apart stay separate.
std::vector<PdfWord> runs(std::vector<PdfWord> words) {
    std::ranges::sort(words, [](const PdfWord& a, const PdfWord& b) {
        return std::tie(a.page, a.yMin, a.xMin) < std::tie(b.page, b.yMin, b.xMin);
    });
    std::vector<PdfWord> out;
    for (const PdfWord& w : words) {
        if (!out.empty()) {
            PdfWord& run = out.back();
            const double gap = w.xMin - run.xMax;
            if (run.page == w.page && std::abs(run.yMin - w.yMin) < 0.2 && gap > -0.3 && gap < 0.5) {
                run.xMax = std::max(run.xMax, w.xMax);
                run.yMax = std::max(run.yMax, w.yMax);
                run.text += w.text;
                continue;
            }
        }
        out.push_back(w);
    }
    return out;
}

void expectNoWordsTouch(const std::vector<PdfWord>& printed, const QString& what) {
    const std::vector<PdfWord> words = runs(printed);
    for (std::size_t i = 0; i < words.size(); ++i)
        for (std::size_t j = i + 1; j < words.size(); ++j)
            if (touch(words[i], words[j]))
                ADD_FAILURE() << what.toStdString() << " page " << words[i].page << ": \"" << words[i].text.toStdString()
                              << "\" touches \"" << words[j].text.toStdString() << "\"";
}

// The words that only head what follows them: the sheets' titles and column
// heads, and any word in a larger type than the body (the sections' titles).
QSet<QString> headingWords() {
    QSet<QString> words;
    SheetParams params;
    params.yearDoch = 2015;
    for (const SheetDef& s : allSheets()) {
        for (const QString& w : QString::fromStdString(paperTitle(s.id, params)).split(' ', Qt::SkipEmptyParts)) words << w;
        for (const BlockLayout& b : sheetLayout(s.id).blocks)
            for (const SheetHead& h : b.heads)
                for (const QString& w : QString::fromUtf8(h.text).split(' ', Qt::SkipEmptyParts)) words << w;
    }
    return words;
}

void expectNoHeadingAtTheFoot(const std::vector<PdfWord>& words, const QString& what) {
    static const QSet<QString> heads = headingWords();
    std::map<int, std::map<int, std::vector<const PdfWord*>>> lines;  // page -> line -> words
    for (const PdfWord& w : words) lines[w.page][static_cast<int>(std::lround(lineOf(w) * 2))].push_back(&w);
    const int lastPage = lines.empty() ? 0 : lines.rbegin()->first;
    for (auto& [page, pageLines] : lines) {
        if (page == lastPage || pageLines.size() < 2) continue;
        // The last line is the page number; the one above it ends the page's text.
        const auto& last = std::prev(pageLines.end(), 2)->second;
        const bool heading = std::ranges::all_of(last, [](const PdfWord* w) {
            return heads.contains(w->text) || w->yMax - w->yMin > 13.0 || w->text.contains(QRegularExpression("^[\\d.\"-]+$"));
        });
        const bool allNumbers = std::ranges::all_of(
            last, [](const PdfWord* w) { return w->text.contains(QRegularExpression("^[\\d.,%\"-]+$")); });
        if (heading && !allNumbers) {
            QStringList texts;
            for (const PdfWord* w : last) texts << w->text;
            ADD_FAILURE() << what.toStdString() << " page " << page << " ends with a heading: "
                          << texts.join(' ').toStdString();
        }
    }
}

// A4 at 300 dots an inch, recording page by page where texts and rules are drawn.
class RecordingTarget final : public PrintTarget, public QPaintDevice, public QPaintEngine {
public:
    struct Drawn {
        bool rule;
        double y;
    };
    struct Page {
        bool headed = false;  // the first page of a job, under the page head
        std::vector<Drawn> drawn;
    };
    std::vector<Page> pages{1};

    RecordingTarget() : QPaintEngine(QPaintEngine::AllFeatures) {}
    QPainter* beginJob(QString*) override {
        pages.back().headed = true;
        painter_.begin(this);
        return &painter_;
    }
    void newPage() override { pages.emplace_back(); }
    void endJob() override {
        painter_.end();
        pages.emplace_back();
    }
    QPaintEngine* paintEngine() const override { return const_cast<RecordingTarget*>(this); }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawLines(const QLineF* lines, int count) override {
        for (int i = 0; i < count; ++i) pages.back().drawn.push_back({true, std::min(lines[i].y1(), lines[i].y2())});
    }
    void drawTextItem(const QPointF& at, const QTextItem&) override { pages.back().drawn.push_back({false, at.y()}); }
    Type type() const override { return QPaintEngine::User; }

protected:
    int metric(PaintDeviceMetric m) const override {
        switch (m) {
            case PdmWidth: return 2300;
            case PdmHeight: return 3300;
            case PdmWidthMM: return 195;
            case PdmHeightMM: return 280;
            case PdmDepth: return 32;
            case PdmDevicePixelRatioScaled: return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
            case PdmDevicePixelRatio: return 1;
            default: return 300;  // the resolutions
        }
    }

private:
    QPainter painter_;
};

// The first thing of a page is text: a rule above every text of the page
// belongs to the page before. On the first page of a job that is under the
// page head (its rule, then the taxpayer's name, underlined, two lines deep).
void expectNoRuleOpensAPage(const RecordingTarget& e, const QString& what) {
    constexpr double kLine = 300.0 / 6;  // a line is a sixth of an inch
    for (std::size_t page = 0; page < e.pages.size(); ++page) {
        const auto& drawn = e.pages[page].drawn;
        if (drawn.empty()) continue;  // the page a job leaves after its end
        double top = -1;
        if (e.pages[page].headed) {
            const auto head = std::ranges::find_if(drawn, [](const RecordingTarget::Drawn& d) { return d.rule; });
            if (head == drawn.end()) continue;
            top = head->y + 2.5 * kLine;
        }
        double firstText = 1e9, firstRule = 1e9;
        for (const RecordingTarget::Drawn& d : drawn) {
            if (d.y < top) continue;
            double& first = d.rule ? firstRule : firstText;
            first = std::min(first, d.y);
        }
        EXPECT_GT(firstRule, firstText) << what.toStdString() << ": a rule opens page " << page + 1;
    }
}

}  // namespace

TEST(NoTextOverText, ResultsAndReportsOfGeneratedReports) {
    zelmor::testing::FixedMadad madad;
    const ConstDoch c;
    // Covering letters of different lengths move every block up and down the pages.
    QTemporaryDir dataDir;
    const PrintSetup setup{dataDir.path(), kToday, {}};
    int n = 0;
    for (const NishumInput& report : crowdedReports(36)) {
        QFile letter(dataDir.filePath(QStringLiteral("PNIA.TXT")));
        ASSERT_TRUE(letter.open(QIODevice::WriteOnly));
        for (int line = 0; line < n % 23; ++line) letter.write("שורה של מכתב\n");
        letter.close();
        const CalcResult r = CalcDoch(report, c, madad, kToday);
        const QString tag = QStringLiteral("report %1 (mode %2)").arg(n).arg(r.FilingMode);
        const struct {
            const char* what;
            std::function<bool(PrintTarget&)> job;
            bool headings;
        } jobs[] = {
            {"sheets", [&](PrintTarget& t) { return PrintNishum(t, setup, report, r.out, false, false); }, true},
            {"insurance", [&](PrintTarget& t) { return PrintNishum(t, setup, report, r.out, false, true); }, false},
            {"sections", [&](PrintTarget& t) { return PrintNishum(t, setup, report, false); }, true},
        };
        for (const auto& job : jobs) {
            const QString what = tag + ' ' + QLatin1String(job.what);
            const auto words = pdfWords(printedPdf(QStringLiteral("%1%2.pdf").arg(QLatin1String(job.what)).arg(n), job.job));
            expectNoWordsTouch(words, what);
            if (job.headings) expectNoHeadingAtTheFoot(words, what);
        }
        for (const bool bl : {false, true}) {
            RecordingTarget pages;
            ASSERT_TRUE(PrintNishum(pages, setup, report, r.out, false, bl));
            expectNoRuleOpensAPage(pages, tag + (bl ? " insurance" : " sheets"));
        }
        ++n;
    }
}
