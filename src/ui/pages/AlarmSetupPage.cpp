#include "AlarmSetupPage.h"

#include "Conversions.h"
#include "ErrorReport.h"
#include "SetupButtons.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace osprel {

namespace {
void checkCategory(int index)
{
    if (index < 0 || index > 7)
        osprel::raise(Err::IndexOutOfBounds);
}
} // namespace

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
        ui.lblErrCata[i] = new QLabel(GetCatName(i), this);
        ui.lblErrCata[i]->setObjectName(QStringLiteral("lblErrCata(%1)").arg(i));
        ui.lblQueuedAlarms[i] = new QLabel(QStringLiteral("0"), this);
        ui.lblQueuedAlarms[i]->setObjectName(QStringLiteral("lblQueuedAlarms(%1)").arg(i));
        ui.lblQueuedAlarms[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        layout->addWidget(ui.lblErrCata[i], i + 1, 0);
        ui.levelGroup[i] = new QButtonGroup(this);
        QRadioButton **rows[4] = {ui.optHi, ui.optMid, ui.optLow, ui.optIgnore};
        const char *names[4] = {"optHi(%1)", "optMid(%1)", "optLow(%1)", "optIgnore(%1)"};
        for (int level = 0; level < 4; ++level) {
            auto *option = new QRadioButton(this);
            option->setObjectName(QString::fromLatin1(names[level]).arg(i));
            option->setAccessibleName(GetCatName(i) + QStringLiteral(" ") + headings[level + 1]);
            rows[level][i] = option;
            ui.levelGroup[i]->addButton(option, level);
            layout->addWidget(option, i + 1, level + 1, Qt::AlignCenter);
        }
        layout->addWidget(ui.lblQueuedAlarms[i], i + 1, 5);
        ui.cmdClearAlmCat[i] = new QPushButton(tr("Clear"), this);
        ui.cmdClearAlmCat[i]->setObjectName(QStringLiteral("cmdClearAlmCat(%1)").arg(i));
        ui.cmdClearAlmCat[i]->setAccessibleName(tr("Clear the queued %1 alarms").arg(GetCatName(i)));
        layout->addWidget(ui.cmdClearAlmCat[i], i + 1, 6);
    }
    ui.cmdClearAllAlmCat = new QPushButton(tr("Clear All"), this);
    ui.cmdClearAllAlmCat->setObjectName(QStringLiteral("cmdClearAllAlmCat"));
    layout->addWidget(ui.cmdClearAllAlmCat, 9, 6);
    layout->setColumnStretch(7, 1);
    page->addStretch(1);
    page->addLayout(setupButtons(this, 1, "cmdAcceptAlarmSetup", "cmdCancelAlarmSetup", &ui.cmdAcceptAlarmSetup,
                                 &ui.cmdCancelAlarmSetup, &ui.lblChangeWarning));
}

void AlarmSetupPage::selectCategoryLevel(int index, int level)
{
    checkCategory(index);
    QRadioButton *option = level == 0   ? ui.optHi[index]
                           : level == 1 ? ui.optMid[index]
                           : level == 2 ? ui.optLow[index]
                                        : ui.optIgnore[index];
    option->setChecked(true);
}

int AlarmSetupPage::categoryOption(int index) const
{
    checkCategory(index);
    return ui.levelGroup[index]->checkedId();
}

void AlarmSetupPage::setAlarmSetupChanged(bool changed)
{
    showSetupChanged(ui.cmdAcceptAlarmSetup, ui.cmdCancelAlarmSetup, ui.lblChangeWarning, changed);
}

void AlarmSetupPage::setCategoryCaption(int index, const QString &caption)
{
    checkCategory(index);
    ui.lblErrCata[index]->setText(caption);
}

QString AlarmSetupPage::lblQueuedAlarms(int index) const
{
    checkCategory(index);
    return ui.lblQueuedAlarms[index]->text();
}

void AlarmSetupPage::setLblQueuedAlarms(int index, const QString &caption)
{
    checkCategory(index);
    ui.lblQueuedAlarms[index]->setText(caption);
}

} // namespace osprel
