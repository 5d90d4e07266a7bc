#pragma once
// Frame1(5): the definition of each sending level, one frame per level.

#include <QFrame>

class QGroupBox;

namespace osprel {

class PriorityPage : public QFrame
{
    Q_OBJECT
public:
    explicit PriorityPage(QWidget *parent = nullptr);

    QGroupBox *fraPriorityDef[3];
};

} // namespace osprel
