#pragma once
// Frame1(6): the tickets not yet cleared, and what a person does with the selected one: acknowledge it with a name
// and a comment, or clear it.

#include <QFrame>

class QLineEdit;
class QPushButton;

namespace osprel {

class FormLists;
class ListView;

class ActiveAlarmsPage : public QFrame
{
    Q_OBJECT
public:
    ActiveAlarmsPage(FormLists &lists, QWidget *parent = nullptr);

    // The code of the selected ticket, or an empty text.
    QString selectedTicket() const;

    // The page's controls, by object name.
    struct Controls
    {
        ListView *lvwActiveAlarms;
        QLineEdit *txtAckName, *txtAckComment;
        QPushButton *cmdAcknowledge, *cmdClearAlarm;
    } ui;

private:
    FormLists &m_lists;
};

} // namespace osprel
