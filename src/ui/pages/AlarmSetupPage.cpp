#include "AlarmSetupPage.h"

#include "Conversions.h"
#include "SetupButtons.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace osprel {

AlarmSetupPage::AlarmSetupPage(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(4)"));
    auto *page = new QVBoxLayout(this);
    auto *layout = new QGridLayout;
    page->addLayout(layout);
    const QString headings[] = {tr("<b>Alarm category</b>"), tr("<b>High</b>"),  tr("<b>Mid</b>"), tr("<b>Low</b>"),
                                tr("<b>Ignore</b>"),         tr("<b>Queued</b>")};
    for (int column = 0; column < 6; ++column)
        layout->addWidget(new QLabel(headings[column], this), 0, column);
    for (int i = 0; i < 8; ++i) {
        lblErrCata[i] = new QLabel(GetCatName(i), this);
        lblErrCata[i]->setObjectName(QStringLiteral("lblErrCata(%1)").arg(i));
        lblQueuedAlarms[i] = new QLabel(QStringLiteral("0"), this);
        lblQueuedAlarms[i]->setObjectName(QStringLiteral("lblQueuedAlarms(%1)").arg(i));
        lblQueuedAlarms[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        layout->addWidget(lblErrCata[i], i + 1, 0);
        levelGroup[i] = new QButtonGroup(this);
        QRadioButton **rows[4] = {optHi, optMid, optLow, optIgnore};
        const char *names[4] = {"optHi(%1)", "optMid(%1)", "optLow(%1)", "optIgnore(%1)"};
        for (int level = 0; level < 4; ++level) {
            auto *option = new QRadioButton(this);
            option->setObjectName(QString::fromLatin1(names[level]).arg(i));
            option->setAccessibleName(GetCatName(i) + QStringLiteral(" ") + headings[level + 1]);
            rows[level][i] = option;
            levelGroup[i]->addButton(option, level);
            layout->addWidget(option, i + 1, level + 1, Qt::AlignCenter);
        }
        layout->addWidget(lblQueuedAlarms[i], i + 1, 5);
        cmdClearAlmCat[i] = new QPushButton(tr("Clear"), this);
        cmdClearAlmCat[i]->setObjectName(QStringLiteral("cmdClearAlmCat(%1)").arg(i));
        cmdClearAlmCat[i]->setAccessibleName(tr("Clear the queued %1 alarms").arg(GetCatName(i)));
        layout->addWidget(cmdClearAlmCat[i], i + 1, 6);
    }
    cmdClearAllAlmCat = new QPushButton(tr("Clear All"), this);
    cmdClearAllAlmCat->setObjectName(QStringLiteral("cmdClearAllAlmCat"));
    layout->addWidget(cmdClearAllAlmCat, 9, 6);
    layout->setColumnStretch(7, 1);
    page->addStretch(1);
    page->addLayout(setupButtons(this, 1, "cmdAcceptAlarmSetup", "cmdCancelAlarmSetup", &cmdAcceptAlarmSetup,
                                 &cmdCancelAlarmSetup, &lblChangeWarning));
}

void AlarmSetupPage::selectLevel(int index, int level)
{
    QRadioButton *option = level == 0   ? optHi[index]
                           : level == 1 ? optMid[index]
                           : level == 2 ? optLow[index]
                                        : optIgnore[index];
    option->setChecked(true);
}

} // namespace osprel
