#pragma once
// Frame1(5): the definition of each sending level, one frame per level, with Accept and Cancel.

#include <QFrame>

class QLabel;
class QPushButton;

namespace osprel {

class LevelFrame;

class PriorityPage : public QFrame
{
    Q_OBJECT
public:
    explicit PriorityPage(QWidget *parent = nullptr);

    LevelFrame *fraPriorityDef[3];
    QPushButton *cmdAcceptPriority, *cmdCancelPriority;
    QLabel *lblChangeWarning;
};

} // namespace osprel
