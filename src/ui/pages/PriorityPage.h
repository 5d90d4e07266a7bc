#pragma once
// Frame1(5): the definition of each sending level, one frame per level, with Accept and Cancel.

#include "PriorityPagePort.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace osprel {

class LevelFrame;

class PriorityPage : public QFrame, public PriorityPagePort
{
    Q_OBJECT
public:
    explicit PriorityPage(QWidget *parent = nullptr);

    // PriorityPagePort
    void showLevelDefinitions(const LevelRecord (&levels)[3]) override;
    void showTicketRules(const TicketRule (&rules)[3]) override;
    LevelFrameValues levelFrame(int level) const override;
    void setPrioritySetupChanged(bool changed) override;

    // The page's controls, by the names the system knows them by.
    struct Controls
    {
        LevelFrame *fraPriorityDef[3];
        QPushButton *cmdAcceptPriority, *cmdCancelPriority;
        QLabel *lblChangeWarning;
    } ui;
};

} // namespace osprel
