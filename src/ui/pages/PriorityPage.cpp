#include "PriorityPage.h"

#include <QGroupBox>
#include <QHBoxLayout>

namespace osprel {

PriorityPage::PriorityPage(QWidget *parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("Frame1(5)"));
    auto *layout = new QHBoxLayout(this);
    const char *captions[3] = {"High Priority", "Mid Priority", "Low Priority"};
    for (int level = 0; level < 3; ++level) {
        fraPriorityDef[level] = new QGroupBox(QString::fromLatin1(captions[level]), this);
        fraPriorityDef[level]->setObjectName(QStringLiteral("fraPriorityDef(%1)").arg(level));
        layout->addWidget(fraPriorityDef[level]);
    }
}

} // namespace osprel
