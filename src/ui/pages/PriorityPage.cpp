#include "PriorityPage.h"

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
        fraPriorityDef[level] = new LevelFrame(level, QString::fromLatin1(captions[level]), this);
        frames->addWidget(fraPriorityDef[level]);
    }
    layout->addLayout(frames, 1);
    layout->addLayout(setupButtons(this, 2, "cmdAcceptPriority", "cmdCancelPriority", &cmdAcceptPriority,
                                   &cmdCancelPriority, &lblChangeWarning));
}

} // namespace osprel
