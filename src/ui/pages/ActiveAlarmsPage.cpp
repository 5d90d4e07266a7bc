#include "ActiveAlarmsPage.h"

#include "FormLists.h"
#include "ListView.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace osprel {

ActiveAlarmsPage::ActiveAlarmsPage(FormLists &lists, QWidget *parent) : QFrame(parent), m_lists(lists)
{
    setObjectName(QStringLiteral("Frame1(6)"));
    auto *layout = new QVBoxLayout(this);
    ui.lvwActiveAlarms = new ListView(lists.lvwActiveAlarms, ListView::Refresh::Immediate, this);
    ui.lvwActiveAlarms->setSelectionBehavior(QAbstractItemView::SelectRows);
    ui.lvwActiveAlarms->setSelectionMode(QAbstractItemView::SingleSelection);
    layout->addWidget(ui.lvwActiveAlarms, 1);

    auto *form = new QFormLayout;
    ui.txtAckName = new QLineEdit(this);
    ui.txtAckName->setObjectName(QStringLiteral("txtAckName"));
    ui.txtAckName->setMaxLength(80);
    ui.txtAckComment = new QLineEdit(this);
    ui.txtAckComment->setObjectName(QStringLiteral("txtAckComment"));
    ui.txtAckComment->setMaxLength(500);
    form->addRow(tr("Name:"), ui.txtAckName);
    form->addRow(tr("Comment:"), ui.txtAckComment);
    layout->addLayout(form);

    auto *buttons = new QHBoxLayout;
    ui.cmdAcknowledge = new QPushButton(QStringLiteral("Acknowledge"), this);
    ui.cmdAcknowledge->setObjectName(QStringLiteral("cmdAcknowledge"));
    ui.cmdClearAlarm = new QPushButton(QStringLiteral("Clear"), this);
    ui.cmdClearAlarm->setObjectName(QStringLiteral("cmdClearAlarm"));
    buttons->addWidget(ui.cmdAcknowledge);
    buttons->addWidget(ui.cmdClearAlarm);
    buttons->addStretch(1);
    layout->addLayout(buttons);
}

QString ActiveAlarmsPage::selectedTicket() const
{
    const QModelIndex current = ui.lvwActiveAlarms->currentIndex();
    if (!current.isValid() || !ui.lvwActiveAlarms->selectionModel()->isRowSelected(current.row()))
        return QString();
    const int row = current.row() + 1;
    return row <= m_lists.lvwActiveAlarms.count() ? m_lists.lvwActiveAlarms.text(row, 1) : QString();
}

} // namespace osprel
