#include "shell/dlg_pnia.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "storage/install_files.h"

namespace zelmor::shell {
namespace {

// The clear button's picture: a red cross, drawn here so that it looks the
// same under every style and icon theme.
QIcon clearIcon() {
    QPixmap pixmap(20, 20);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0xc0, 0x20, 0x20), 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(4, 4, 16, 16);
    p.drawLine(16, 4, 4, 16);
    return QIcon(pixmap);
}

}  // namespace

PniaDialog::PniaDialog(QString dataDir, QWidget* parent) : QDialog(parent), dataDir_(std::move(dataDir)) {
    setWindowTitle(QStringLiteral("עדכון נוסח פניה"));
    setModal(true);
    setLayoutDirection(Qt::RightToLeft);

    auto* head = new QLabel(QStringLiteral("רשום נוסח פניה שיופיע בתחילת התדפיס"), this);
    txtPnia_ = new QPlainTextEdit(this);
    txtPnia_->setObjectName(QStringLiteral("txtPnia"));
    txtPnia_->setAccessibleName(head->text());
    txtPnia_->setTabChangesFocus(true);
    txtPnia_->setMinimumSize(420, 180);
    head->setBuddy(txtPnia_);
    QString text = QString::fromStdString(storage::Pnia(dataDir_.toStdString()));
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    txtPnia_->setPlainText(text);

    auto* foot = new QLabel(QStringLiteral("נוסח הפניה יישמר לתדפיסים הבאים וניתן לשנותו במסך זה"), this);

    auto* cmdSave = new QPushButton(QStringLiteral("שמור"), this);
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    cmdSave->setDefault(true);
    auto* cmdCancel = new QPushButton(QStringLiteral("ביטול"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    auto* cmdDelPnia = new QPushButton(this);
    cmdDelPnia->setObjectName(QStringLiteral("cmdDelPnia"));
    cmdDelPnia->setIcon(clearIcon());
    cmdDelPnia->setIconSize(QSize(20, 20));
    cmdDelPnia->setAutoDefault(false);
    cmdDelPnia->setToolTip(QStringLiteral("ניקוי נוסח הפניה"));
    cmdDelPnia->setAccessibleName(cmdDelPnia->toolTip());

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdDelPnia);
    buttons->addStretch(1);
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);

    auto* main = new QVBoxLayout(this);
    main->addWidget(head);
    main->addWidget(txtPnia_, 1);
    main->addWidget(foot);
    main->addSpacing(6);
    main->addLayout(buttons);

    setTabOrder(txtPnia_, cmdSave);
    setTabOrder(cmdSave, cmdCancel);
    setTabOrder(cmdCancel, cmdDelPnia);
    txtPnia_->setFocus(Qt::OtherFocusReason);

    connect(cmdSave, &QPushButton::clicked, this, [this] { save(); });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(cmdDelPnia, &QPushButton::clicked, this, [this] {
        txtPnia_->clear();
        txtPnia_->setFocus(Qt::OtherFocusReason);
    });
}

// A failed write leaves the old letter; the dialog closes all the same.
void PniaDialog::save() {
    storage::SavePnia(dataDir_.toStdString(), txtPnia_->toPlainText().toStdString());
    accept();
}

}  // namespace zelmor::shell
