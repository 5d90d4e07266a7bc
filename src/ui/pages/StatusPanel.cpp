#include "StatusPanel.h"

#include "Log.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

StatusPanel::StatusPanel(Log &log, QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("picStatus"));
    setFrameShape(QFrame::Panel);
    setFrameShadow(QFrame::Raised);
    setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("<b>Status Report</b>"), this));
    lstStatus = new QListView(this);
    lstStatus->setObjectName(QStringLiteral("lstStatus"));
    lstStatus->setModel(log.lstStatus());
    lstStatus->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstStatus->setUniformItemSizes(true);
    layout->addWidget(lstStatus, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    cmdStatusClear = new QPushButton(tr("Clear"), this);
    cmdStatusClear->setObjectName(QStringLiteral("cmdStatusClear"));
    cmdStatusClose = new QPushButton(tr("Close"), this);
    cmdStatusClose->setObjectName(QStringLiteral("cmdStatusClose"));
    buttons->addWidget(cmdStatusClear);
    buttons->addWidget(cmdStatusClose);
    layout->addLayout(buttons);
}

} // namespace osprel
