#include "shell/sheet_canvas.h"

#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <map>

#include "core/values.h"

namespace zelmor::shell {
namespace {

// Where a widget stands across the sheet: inside a box, or against one of
// its edges, as wide as its text.
enum class Anchor { InBox, RightOf, LeftOf };

// The summary's interest row: the picker beside the date field, then the
// exemption and its amount.
constexpr Box kPickerBox{335, 365};
constexpr Box kPtorCaptionBox{368, 432};
constexpr Box kPtorBox{432, 495};
// The buttons to the detail sheets, at the far left of their rows.
constexpr Box kButtonBox{905, 995};

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

SheetCanvas::SheetCanvas(SheetId sheet, const CalcResult& result, const SheetParams& params, QWidget* parent)
    : QWidget(parent), sheet_(sheet), result_(result), params_(params) {
    const SheetLayout& layout = sheetLayout(sheet);
    const double row = rowPx();

    QFont titleFont = font();
    titleFont.setPointSizeF(font().pointSizeF() + 1.5);
    QLabel* title = addLabel(q(screenTitle(sheet, params)), Box{0, 1000}, 2, true, false, QStringLiteral("lblDetHead"));
    title->setFont(titleFont);
    title->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    items_.back().height = static_cast<int>(row * 1.4);
    textLines_ << title->text();

    const double headsTop = row * 1.6;
    addHeads(0, headsTop);
    int headLines = 0;
    for (const SheetHead& h : layout.blocks[0].heads) headLines = std::max(headLines, h.line + 1);
    // The first running position stands under the heads.
    const double origin = headsTop + headLines * row + row * 0.3;
    const double perTwip = row / 250.0;
    auto top = [&](int y) { return origin + (y - layout.startY) * perTwip; };

    double bottom = origin;
    for (const Placed& p : placeRows(result.out, sheet, params)) {
        const double t = top(p.y);
        switch (p.what) {
            case WalkStep::Row: addRow(*p.row, t); break;
            case WalkStep::Rules: addRules(p.block, t, p.ruleWidth); break;
            case WalkStep::Heads: addHeads(p.block, t); break;
            case WalkStep::Rows:
            case WalkStep::Gap: break;
        }
        bottom = std::max(bottom, t + row);
    }
    if (sheet == SheetId::CMain && result.compared) {
        // Both ways were worked out: the sums compared and the one taken.
        const QString text = QStringLiteral("הושוו שתי דרכי חישוב: מס מאוחד %1, מס נפרד %2. נבחר: %3")
                                 .arg(q(FormatAmount(result.MasMeuchad.value())), q(FormatAmount(result.MasNifrad.value())),
                                      QString::fromUtf8(ModeTitle(result.FilingMode)));
        addLabel(text, Box{0, 1000}, bottom + row * 0.5, false, false, QStringLiteral("lblCompared"));
        textLines_ << text;
        bottom += row * 1.5;
    }
    setMinimumHeight(static_cast<int>(std::ceil(bottom + row * 0.5)));
}

double SheetCanvas::rowPx() const { return QFontMetrics(font()).height() + 4; }

// A text of signs only ("% =", ")") would be laid out left to right; a
// right-to-left mark in front makes it read as the Hebrew around it.
static QString readRightToLeft(const QString& text) {
    for (QChar c : text)
        if (c.direction() == QChar::DirR || c.direction() == QChar::DirAL || c.direction() == QChar::DirL) return text;
    return QChar(0x200F) + text;
}

QLabel* SheetCanvas::addLabel(const QString& text, Box box, double top, bool bold, bool amount, const QString& name) {
    auto* label = new QLabel(amount ? text : readRightToLeft(text), this);
    if (!name.isEmpty()) label->setObjectName(name);
    if (bold) {
        QFont f = label->font();
        f.setBold(true);
        label->setFont(f);
    }
    if (amount) {
        // Figures read left to right with the minus behind the digits, right-aligned.
        label->setLayoutDirection(Qt::LeftToRight);
        label->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        if (!name.isEmpty()) {
            label->setProperty("cell", true);
            label->setFocusPolicy(Qt::StrongFocus);
        }
    } else {
        label->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
    }
    label->setAccessibleName(text);
    items_.push_back({label, box, top});
    return label;
}

void SheetCanvas::addHeads(int block, double top) {
    const auto heads = sheetLayout(sheet_).blocks[static_cast<std::size_t>(block)].heads;
    std::map<int, std::vector<const SheetHead*>> lines;
    for (const SheetHead& h : heads) lines[h.line].push_back(&h);
    for (auto& [line, hs] : lines) {
        std::sort(hs.begin(), hs.end(), [](const SheetHead* a, const SheetHead* b) { return a->box.from < b->box.from; });
        QStringList texts;
        for (const SheetHead* h : hs) {
            QLabel* l = addLabel(QString::fromUtf8(h->text), h->box, top + line * rowPx(), true);
            l->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
            texts << QString::fromUtf8(h->text);
        }
        textLines_ << texts.join(QLatin1Char('\t'));
    }
}

void SheetCanvas::addRow(const SheetRow& row, double top) {
    const SheetLayout& layout = sheetLayout(sheet_);
    const BlockLayout& block = layout.blocks[static_cast<std::size_t>(row.block)];
    auto value = [&](int slot) {
        const char* f = row.fields[static_cast<std::size_t>(slot)];
        return f ? sheetValue(result_.out, sheet_, f) : 0.0;
    };
    auto slotShown = [&](int slot) {
        const SlotDecor& d = block.decor[static_cast<std::size_t>(slot)];
        return row.fields[static_cast<std::size_t>(slot)] && (d.onlyWithSlot < 0 || value(d.onlyWithSlot) != 0);
    };
    const bool summaryDate = sheet_ == SheetId::CMain;  // slot 3 of the summary is a date

    // The caption keeps clear of the row's first cell.
    Box captionBox = row.total && block.totalCaption.to > 0 ? block.totalCaption : block.caption;
    for (int slot = 0; slot < 8; ++slot) {
        const Box cell = block.cells[static_cast<std::size_t>(slot)];
        if (row.fields[static_cast<std::size_t>(slot)] && cell.from > captionBox.from && cell.from < captionBox.to)
            captionBox.to = static_cast<short>(cell.from - 5);
    }
    const QString caption = q(rowCaption(result_.out, sheet_, row, Medium::Screen, params_));
    QStringList line{caption};
    if (!caption.isEmpty()) {
        addLabel(caption, captionBox, top, row.total, false,
                 row.index >= 0 ? QStringLiteral("lblDet%1").arg(row.index) : QString());
        if (block.secondCaption.to > 0 && !row.total) addLabel(caption, block.secondCaption, top);
    }

    for (int slot = 0; slot < 8; ++slot) {
        const char* field = row.fields[static_cast<std::size_t>(slot)];
        if (!field || (row.screenOmits & (1u << slot))) continue;
        const Box box = block.cells[static_cast<std::size_t>(slot)];
        const QString name = QString::fromUtf8(field);
        if (summaryDate && slot == 3) {
            addSummaryExtras(row, top);
            line << q(FormatDate(Date::fromSerial(static_cast<std::int32_t>(value(slot)))));
            continue;
        }
        const QString text = q(cellText(result_.out, sheet_, row, slot));
        line << (slotShown(slot) ? text : QString());
        if (!slotShown(slot)) continue;
        addLabel(text, box, top, row.total, true, name);
        const SlotDecor& d = block.decor[static_cast<std::size_t>(slot)];
        QString before = QString::fromUtf8(d.before);
        if (d.pointWorth) before = q(FormatAmount(params_.pointWorth)) + QLatin1Char(' ') + before;
        const QFontMetrics fm(font());
        if (!before.isEmpty()) {
            QLabel* l = addLabel(before, box, top);
            l->setProperty("anchor", static_cast<int>(Anchor::RightOf));
            l->setProperty("pxWidth", fm.horizontalAdvance(before) + 4);
        }
        if (*d.after) {
            QLabel* l = addLabel(QString::fromUtf8(d.after), box, top);
            l->setProperty("anchor", static_cast<int>(Anchor::LeftOf));
            l->setProperty("pxWidth", fm.horizontalAdvance(l->text()) + 4);
        }
    }
    if (*row.closing) {
        // After the last amount of the row.
        int last = 7;
        while (last > 0 && !row.fields[static_cast<std::size_t>(last)]) --last;
        QLabel* l = addLabel(QString::fromUtf8(row.closing), block.cells[static_cast<std::size_t>(last)], top);
        l->setProperty("anchor", static_cast<int>(Anchor::LeftOf));
        l->setProperty("pxWidth", QFontMetrics(font()).horizontalAdvance(l->text()) + 4);
    }
    for (const DetailButton& b : layout.buttons) {
        if (std::string_view(b.rowKey) != row.key) continue;
        auto* button = new QPushButton(QStringLiteral("F%1").arg(detailKeyNumber(static_cast<SheetId>(b.page))), this);
        button->setObjectName(QStringLiteral("cmdDetails%1").arg(b.page));
        button->setFocusPolicy(Qt::TabFocus);
        const int page = b.page;
        connect(button, &QPushButton::clicked, this, [this, page] { emit detailsRequested(page); });
        items_.push_back({button, kButtonBox, top});
    }
    textLines_ << line.join(QLatin1Char('\t'));
}

void SheetCanvas::addSummaryExtras(const SheetRow& row, double top) {
    const sheets::CMain& main = result_.out.Main;
    const BlockLayout& block = sheetLayout(SheetId::CMain).blocks[0];
    const Box dateBox = block.cells[3];
    if (std::string_view(row.key) == "Ribit") {
        dateField_ = new QLineEdit(this);
        dateField_->setObjectName(QStringLiteral("RibitDate"));
        dateField_->setAccessibleName(QString::fromUtf8(row.screenCaption));
        dateField_->setLayoutDirection(Qt::LeftToRight);
        dateField_->setInputMask(QStringLiteral("99/99/9999; "));
        dateField_->setText(q(FormatDate(main.RibitDate)));
        items_.push_back({dateField_, dateBox, top - 1});
        dateButton_ = new QToolButton(this);
        dateButton_->setObjectName(QStringLiteral("dtRibitDate"));
        dateButton_->setText(QStringLiteral("..."));
        dateButton_->setToolTip(QStringLiteral("בחירת תאריך"));
        dateButton_->setFocusPolicy(Qt::TabFocus);
        items_.push_back({dateButton_, kPickerBox, top - 1});
        // The exemption shows only when there is one.
        if (main.PtorRibit.value() != 0) {
            addLabel(QStringLiteral("בניכוי פטור"), kPtorCaptionBox, top, false, false, QStringLiteral("lblPtor"));
            addLabel(q(FormatAmount(main.PtorRibit.value())), kPtorBox, top, false, true, QStringLiteral("PtorRibit"));
        }
    } else {
        addLabel(q(FormatDate(main.ItraDate)), dateBox, top, false, true, QString::fromUtf8(row.fields[3]));
    }
}

void SheetCanvas::addRules(int block, double top, int width) {
    const BlockLayout& b = sheetLayout(sheet_).blocks[static_cast<std::size_t>(block)];
    for (int slot = 0; slot < 8; ++slot) {
        if (!(b.ruleSlots & (1u << slot))) continue;
        auto* rule = new QWidget(this);
        rule->setAutoFillBackground(true);
        QPalette pal = rule->palette();
        pal.setColor(QPalette::Window, pal.color(QPalette::WindowText));
        rule->setPalette(pal);
        items_.push_back({rule, b.cells[static_cast<std::size_t>(slot)], top + 1, width});
    }
}

void SheetCanvas::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    relayout();
}

void SheetCanvas::relayout() {
    // The boxes share the width inside a small margin on either side.
    const int margin = static_cast<int>(rowPx() / 2);
    const double w = std::max(1, width() - 2 * margin);
    const int row = static_cast<int>(rowPx());
    for (const Item& item : items_) {
        const int right = margin + static_cast<int>(std::lround(w * (1000 - item.box.from) / 1000.0));
        const int left = margin + static_cast<int>(std::lround(w * (1000 - item.box.to) / 1000.0));
        const int h = item.height > 0 ? item.height : row;
        const int y = static_cast<int>(std::lround(item.top));
        const QVariant anchor = item.widget->property("anchor");
        const int px = item.widget->property("pxWidth").toInt();
        switch (anchor.isValid() ? static_cast<Anchor>(anchor.toInt()) : Anchor::InBox) {
            case Anchor::InBox: item.widget->setGeometry(left, y, std::max(1, right - left), h); break;
            case Anchor::RightOf: item.widget->setGeometry(right + 1, y, px, h); break;
            case Anchor::LeftOf: item.widget->setGeometry(left - px - 1, y, px, h); break;
        }
    }
}

QString SheetCanvas::cellField(const QObject* widget) const {
    if (!widget || widget->parent() != this || !widget->property("cell").toBool()) return {};
    return widget->objectName();
}

QString SheetCanvas::sheetText() const { return textLines_.join(QLatin1Char('\n')) + QLatin1Char('\n'); }

}  // namespace zelmor::shell
