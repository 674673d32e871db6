#include "shell/dlg_name.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "storage/install_files.h"

namespace zelmor::shell {

NameDialog::NameDialog(QString dataDir, QWidget* parent) : QDialog(parent), dataDir_(std::move(dataDir)) {
    setWindowTitle(QStringLiteral("Zelmor - שם משתמש"));
    setModal(true);
    setLayoutDirection(Qt::RightToLeft);

    auto* label = new QLabel(QStringLiteral("הכנס שם משתמש"), this);
    txtName_ = new QLineEdit(this);
    txtName_->setObjectName(QStringLiteral("txtName"));
    txtName_->setAccessibleName(label->text());
    txtName_->setMinimumWidth(280);
    label->setBuddy(txtName_);

    auto* cmdOK = new QPushButton(QStringLiteral("אישור"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    auto* cmdExit = new QPushButton(QStringLiteral("ביטול"), this);
    cmdExit->setObjectName(QStringLiteral("cmdExit"));
    cmdExit->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdExit);

    auto* main = new QVBoxLayout(this);
    main->addWidget(label);
    main->addWidget(txtName_);
    main->addSpacing(8);
    main->addLayout(buttons);

    setTabOrder(txtName_, cmdOK);
    setTabOrder(cmdOK, cmdExit);
    txtName_->setFocus(Qt::OtherFocusReason);

    connect(cmdOK, &QPushButton::clicked, this, [this] { save(); });
    connect(cmdExit, &QPushButton::clicked, this, &QDialog::reject);
}

// A failed write is passed over: the dialog closes all the same.
void NameDialog::save() {
    storage::SaveUserName(dataDir_.toStdString(), txtName_->text().toStdString());
    accept();
}

}  // namespace zelmor::shell
