#pragma once
// fraPriorityDef(L): the definition of one sending level: sent at once, a summary report once every minute, hour,
// day or week at a set time, the send-first / send-after counts with their reset time, and whether its immediate
// notifications must be acknowledged, how often they are repeated until then and when they are escalated.

#include "LevelRecord.h"
#include "PriorityPagePort.h"

#include <QGroupBox>

class QCheckBox;
class QComboBox;
class QLabel;
class QRadioButton;
class QSpinBox;

namespace osprel {

class LevelFrame : public QGroupBox
{
    Q_OBJECT
public:
    LevelFrame(int level, const QString &caption, QWidget *parent = nullptr);

    LevelFrameValues values() const;
    // Fills the controls from a record without marking the page changed.
    void showRecord(const LevelRecord &record);
    void showTicketRule(const TicketRule &rule);

    QCheckBox *chkImmediate, *chkOnceEvery, *chkFirstXTimes, *chkAfterXTimes;
    QRadioButton *optMinute, *optHour, *optDay, *optWeek;
    QComboBox *cboHours, *cboMinutes, *cboWeekday, *cboFirstXTimes, *cboAfterXTimes, *cboResetHours, *cboResetWeekday;
    QLabel *lblSetTime, *lblMinutes, *lblHM, *lblDay, *lblResetAt;
    QCheckBox *chkAckRequired;
    QSpinBox *spnRepeatMinutes, *spnRepeatTimes, *spnEscalateMinutes;

Q_SIGNALS:
    // Something on the frame was edited.
    void changed();

private:
    void chkOnceEvery_Click();
    void optionClick(QRadioButton *option);
    void applyLayout(QRadioButton *option);
    void setIntervalControlsEnabled(bool enabled);
    QWidget *ticketControls(int level);
    void setTicketControlsEnabled(bool enabled);

    int m_level;
};

} // namespace osprel
