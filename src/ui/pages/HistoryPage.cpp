#include "HistoryPage.h"

#include "FormLists.h"
#include "ListView.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

HistoryPage::HistoryPage(int index, FormLists &lists, QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(%1)").arg(index));
    auto *layout = new QVBoxLayout(this);
    lvwHist = new ListView(lists.lvwHist[index], ListView::Refresh::Coalesced, this);
    layout->addWidget(lvwHist, 1);
    auto *buttons = new QHBoxLayout;
    cmdClear = new QPushButton(tr("Clear History"), this);
    cmdClear->setObjectName(QStringLiteral("cmdClear(%1)").arg(index));
    buttons->addWidget(cmdClear);
    buttons->addStretch(1);
    if (index == 0) {
        cmdViewLogFile = new QPushButton(tr("View Log File"), this);
        cmdViewLogFile->setObjectName(QStringLiteral("cmdViewLogFile"));
        cmdStatus = new QPushButton(QStringLiteral("Status Report"), this);
        cmdStatus->setObjectName(QStringLiteral("cmdStatus"));
        buttons->addWidget(cmdViewLogFile);
        buttons->addWidget(cmdStatus);
    }
    layout->addLayout(buttons);
}

} // namespace osprel
