#include "SetupButtons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace osprel {

QHBoxLayout *setupButtons(QWidget *parent, int page, const char *acceptName, const char *cancelName,
                          QPushButton **accept, QPushButton **cancel, QLabel **warning)
{
    auto *row = new QHBoxLayout;
    *warning = new QLabel(parent);
    (*warning)->setObjectName(QStringLiteral("lblChangeWarning(%1)").arg(page));
    (*warning)->setStyleSheet(QStringLiteral("color: #b06000"));
    *accept = new QPushButton(QStringLiteral("Accept"), parent);
    (*accept)->setObjectName(QLatin1String(acceptName));
    *cancel = new QPushButton(QStringLiteral("Cancel"), parent);
    (*cancel)->setObjectName(QLatin1String(cancelName));
    row->addWidget(*warning, 1);
    row->addWidget(*accept);
    row->addWidget(*cancel);
    showSetupChanged(*accept, *cancel, *warning, false);
    return row;
}

void showSetupChanged(QPushButton *accept, QPushButton *cancel, QLabel *warning, bool changed)
{
    accept->setEnabled(changed);
    cancel->setEnabled(changed);
    warning->setText(changed ? QObject::tr("Changes are not saved until you press Accept.") : QString());
}

} // namespace osprel
