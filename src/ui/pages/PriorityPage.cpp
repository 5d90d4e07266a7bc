#include "PriorityPage.h"

#include "ErrorReport.h"
#include "LevelFrame.h"
#include "SetupButtons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

PriorityPage::PriorityPage(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(5)"));
    auto *layout = new QVBoxLayout(this);
    auto *frames = new QHBoxLayout;
    const char *captions[3] = {"High Priority", "Mid Priority", "Low Priority"};
    for (int level = 0; level < 3; ++level) {
        ui.fraPriorityDef[level] = new LevelFrame(level, QString::fromLatin1(captions[level]), this);
        frames->addWidget(ui.fraPriorityDef[level]);
    }
    layout->addLayout(frames, 1);
    layout->addLayout(setupButtons(this, 2, "cmdAcceptPriority", "cmdCancelPriority", &ui.cmdAcceptPriority,
                                   &ui.cmdCancelPriority, &ui.lblChangeWarning));
}

void PriorityPage::showLevelDefinitions(const LevelRecord (&levels)[3])
{
    for (int level = 0; level < 3; ++level)
        ui.fraPriorityDef[level]->showRecord(levels[level]);
}

void PriorityPage::showTicketRules(const TicketRule (&rules)[3])
{
    for (int level = 0; level < 3; ++level)
        ui.fraPriorityDef[level]->showTicketRule(rules[level]);
}

LevelFrameValues PriorityPage::levelFrame(int level) const
{
    if (level < 0 || level > 2)
        osprel::raise(Err::IndexOutOfBounds);
    return ui.fraPriorityDef[level]->values();
}

void PriorityPage::setPrioritySetupChanged(bool changed)
{
    showSetupChanged(ui.cmdAcceptPriority, ui.cmdCancelPriority, ui.lblChangeWarning, changed);
}

} // namespace osprel
