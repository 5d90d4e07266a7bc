#include "AlarmSetupPage.h"

#include "Conversions.h"

#include <QGridLayout>
#include <QLabel>

namespace osprel {

AlarmSetupPage::AlarmSetupPage(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(4)"));
    auto *layout = new QGridLayout(this);
    auto *category = new QLabel(tr("<b>Alarm category</b>"), this);
    auto *queued = new QLabel(tr("<b>Queued</b>"), this);
    layout->addWidget(category, 0, 0);
    layout->addWidget(queued, 0, 1);
    for (int i = 0; i < 8; ++i) {
        lblErrCata[i] = new QLabel(GetCatName(i), this);
        lblErrCata[i]->setObjectName(QStringLiteral("lblErrCata(%1)").arg(i));
        lblQueuedAlarms[i] = new QLabel(QStringLiteral("0"), this);
        lblQueuedAlarms[i]->setObjectName(QStringLiteral("lblQueuedAlarms(%1)").arg(i));
        lblQueuedAlarms[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        layout->addWidget(lblErrCata[i], i + 1, 0);
        layout->addWidget(lblQueuedAlarms[i], i + 1, 1);
    }
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(9, 1);
}

} // namespace osprel
