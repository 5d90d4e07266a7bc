#include "LevelFrame.h"

#include "PrioritySetup.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <vector>

namespace osprel {

namespace {
QString indexed(const char *name, int level)
{
    return QString::fromLatin1(name) + QStringLiteral("(%1)").arg(level);
}

QComboBox *combo(QWidget *parent, const char *name, int level, const QStringList &items, const QString &initial)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(indexed(name, level));
    box->setEditable(true); // a value may be typed as well as chosen
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(items);
    box->setCurrentText(initial);
    return box;
}

QStringList numbers(int from, int to, const QString &suffix = QString())
{
    QStringList items;
    for (int i = from; i <= to; ++i)
        items << QString::number(i) + suffix;
    return items;
}

QStringList weekdays(bool withDaily)
{
    QStringList items;
    for (int day = 0; day < (withDaily ? 8 : 7); ++day)
        items << weekdayName(day);
    return items;
}

template <typename T> T *named(T *widget, const char *name, int level)
{
    widget->setObjectName(indexed(name, level));
    return widget;
}
} // namespace

LevelFrame::LevelFrame(int level, const QString &caption, QWidget *parent) : QGroupBox(caption, parent), m_level(level)
{
    setObjectName(indexed("fraPriorityDef", level));
    auto *layout = new QVBoxLayout(this);
    chkImmediate = named(new QCheckBox(QStringLiteral("Immediate"), this), "chkImmediate", level);
    layout->addWidget(chkImmediate);

    chkOnceEvery = named(new QCheckBox(QStringLiteral("Once Every"), this), "chkOnceEvery", level);
    layout->addWidget(chkOnceEvery);
    auto *options = new QHBoxLayout;
    auto *group = new QButtonGroup(this);
    optMinute = named(new QRadioButton(QStringLiteral("Minute"), this), "optMinute", level);
    optHour = named(new QRadioButton(QStringLiteral("Hour"), this), "optHour", level);
    optDay = named(new QRadioButton(QStringLiteral("Day"), this), "optDay", level);
    optWeek = named(new QRadioButton(QStringLiteral("Week"), this), "optWeek", level);
    for (QRadioButton *option : {optMinute, optHour, optDay, optWeek}) {
        group->addButton(option);
        options->addWidget(option);
    }
    options->addStretch(1);
    layout->addLayout(options);

    // Set Time: [hour] [minute] Minutes | H/M, [weekday] Day; which show depends on the interval.
    auto *time = new QHBoxLayout;
    time->addWidget(lblSetTime = named(new QLabel(QStringLiteral("Set Time:"), this), "lblSetTime", level));
    time->addWidget(cboHours = combo(this, "cboHours", level, numbers(0, 23), QStringLiteral("1")));
    time->addWidget(cboMinutes = combo(this, "cboMinutes", level, numbers(0, 59), QStringLiteral("59")));
    time->addWidget(lblMinutes = named(new QLabel(QStringLiteral("Minutes"), this), "lblMinutes", level));
    time->addWidget(lblHM = named(new QLabel(QStringLiteral("H/M"), this), "lblHM", level));
    time->addWidget(cboWeekday = combo(this, "cboWeekday", level, weekdays(false), QStringLiteral("Sunday")));
    time->addWidget(lblDay = named(new QLabel(QStringLiteral("Day"), this), "lblDay", level));
    time->addStretch(1);
    layout->addLayout(time);

    auto *occurrences = new QGroupBox(QStringLiteral("Occurrences / Catagory"), this);
    auto *grid = new QGridLayout(occurrences);
    grid->addWidget(chkFirstXTimes = named(new QCheckBox(QStringLiteral("Send First"), this), "chkFirstXTimes", level),
                    0, 0);
    grid->addWidget(cboFirstXTimes = combo(occurrences, "cboFirstXTimes", level, numbers(1, 20), QStringLiteral("1")),
                    0, 1);
    grid->addWidget(chkAfterXTimes = named(new QCheckBox(QStringLiteral("Send After"), this), "chkAfterXTimes", level),
                    1, 0);
    grid->addWidget(cboAfterXTimes = combo(occurrences, "cboAfterXTimes", level, numbers(1, 20), QStringLiteral("1")),
                    1, 1);
    grid->addWidget(lblResetAt = named(new QLabel(QStringLiteral("Reset at:"), occurrences), "lblResetAt", level), 2,
                    0);
    grid->addWidget(cboResetHours = combo(occurrences, "cboResetHours", level, numbers(1, 24, QStringLiteral(":00")),
                                          QStringLiteral("12:00")),
                    2, 1);
    grid->addWidget(cboResetWeekday =
                        combo(occurrences, "cboResetWeekday", level, weekdays(true), QStringLiteral("Wednesday")),
                    3, 1);
    grid->setColumnStretch(2, 1);
    layout->addWidget(occurrences);
    layout->addWidget(ticketControls(level));
    layout->addStretch(1);

    connect(chkOnceEvery, &QCheckBox::clicked, this, &LevelFrame::chkOnceEvery_Click);
    for (QRadioButton *option : {optHour, optDay, optWeek})
        connect(option, &QRadioButton::clicked, this, [this, option] { optionClick(option); });
    // Minute marks nothing and changes no layout.
    for (QCheckBox *check : {chkImmediate, chkFirstXTimes, chkAfterXTimes})
        connect(check, &QCheckBox::clicked, this, &LevelFrame::changed);
    for (QComboBox *box :
         {cboHours, cboMinutes, cboWeekday, cboFirstXTimes, cboAfterXTimes, cboResetHours, cboResetWeekday})
        connect(box, &QComboBox::currentTextChanged, this, &LevelFrame::changed);
    setIntervalControlsEnabled(false);
}

// Acknowledgement: required or not; repeated every N minutes up to K times; escalated after M minutes (0: never).
QWidget *LevelFrame::ticketControls(int level)
{
    auto *box = new QGroupBox(QStringLiteral("Acknowledgement"), this);
    auto *grid = new QGridLayout(box);
    chkAckRequired = named(new QCheckBox(QStringLiteral("Acknowledgement required"), box), "chkAckRequired", level);
    grid->addWidget(chkAckRequired, 0, 0, 1, 3);
    auto spin = [&](const char *name, int maximum, const QString &suffix) {
        auto *s = named(new QSpinBox(box), name, level);
        s->setRange(0, maximum);
        s->setSuffix(suffix);
        s->setSpecialValueText(QStringLiteral("never"));
        return s;
    };
    spnRepeatMinutes = spin("spnRepeatMinutes", TicketRule::kMaxMinutes, QStringLiteral(" min"));
    spnRepeatTimes = spin("spnRepeatTimes", TicketRule::kMaxTimes, QStringLiteral(" times"));
    spnRepeatTimes->setSpecialValueText(QString());
    spnEscalateMinutes = spin("spnEscalateMinutes", TicketRule::kMaxMinutes, QStringLiteral(" min"));
    grid->addWidget(new QLabel(QStringLiteral("Repeat every"), box), 1, 0);
    grid->addWidget(spnRepeatMinutes, 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("up to"), box), 2, 0);
    grid->addWidget(spnRepeatTimes, 2, 1);
    grid->addWidget(new QLabel(QStringLiteral("Escalate after"), box), 3, 0);
    grid->addWidget(spnEscalateMinutes, 3, 1);
    grid->setColumnStretch(2, 1);
    connect(chkAckRequired, &QCheckBox::clicked, this, [this](bool on) {
        setTicketControlsEnabled(on);
        Q_EMIT changed();
    });
    for (QSpinBox *s : {spnRepeatMinutes, spnRepeatTimes, spnEscalateMinutes})
        connect(s, &QSpinBox::valueChanged, this, &LevelFrame::changed);
    setTicketControlsEnabled(false);
    return box;
}

void LevelFrame::setTicketControlsEnabled(bool enabled)
{
    for (QSpinBox *s : {spnRepeatMinutes, spnRepeatTimes, spnEscalateMinutes})
        s->setEnabled(enabled);
}

void LevelFrame::showTicketRule(const TicketRule &rule)
{
    std::vector<QSignalBlocker> blockers;
    for (QObject *w :
         std::initializer_list<QObject *>{this, chkAckRequired, spnRepeatMinutes, spnRepeatTimes, spnEscalateMinutes})
        blockers.emplace_back(w);
    const TicketRule r = rule.bounded();
    chkAckRequired->setChecked(r.AckRequired);
    spnRepeatMinutes->setValue(r.RepeatMinutes);
    spnRepeatTimes->setValue(r.RepeatTimes);
    spnEscalateMinutes->setValue(r.EscalateMinutes);
    setTicketControlsEnabled(r.AckRequired);
}

void LevelFrame::setIntervalControlsEnabled(bool enabled)
{
    for (QWidget *w :
         std::initializer_list<QWidget *>{optMinute, optHour, optDay, optWeek, cboHours, cboMinutes, cboWeekday})
        w->setEnabled(enabled);
    if (!enabled) {
        for (QWidget *w :
             std::initializer_list<QWidget *>{lblSetTime, cboHours, cboMinutes, cboWeekday, lblMinutes, lblHM, lblDay})
            w->hide();
    }
}

void LevelFrame::chkOnceEvery_Click()
{
    if (chkOnceEvery->isChecked()) {
        setIntervalControlsEnabled(true);
        for (QRadioButton *option : {optMinute, optHour, optDay, optWeek}) {
            if (option->isChecked()) {
                if (option != optMinute)
                    applyLayout(option);
                break;
            }
        }
    } else {
        setIntervalControlsEnabled(false);
    }
    Q_EMIT changed();
}

void LevelFrame::optionClick(QRadioButton *option)
{
    Q_EMIT changed();
    if (option->isChecked())
        applyLayout(option);
}

void LevelFrame::applyLayout(QRadioButton *option)
{
    const bool hour = option == optHour, week = option == optWeek;
    lblSetTime->show();
    cboHours->setVisible(!hour);
    cboMinutes->show();
    cboWeekday->setVisible(week);
    lblMinutes->setVisible(hour);
    lblHM->setVisible(!hour);
    lblDay->setVisible(week);
}

LevelFrameValues LevelFrame::values() const
{
    LevelFrameValues v;
    v.chkImmediate = chkImmediate->isChecked();
    v.chkOnceEvery = chkOnceEvery->isChecked();
    v.optMinute = optMinute->isChecked();
    v.optHour = optHour->isChecked();
    v.optDay = optDay->isChecked();
    v.optWeek = optWeek->isChecked();
    v.cboMinutes = cboMinutes->currentText();
    v.cboHours = cboHours->currentText();
    v.cboWeekday = cboWeekday->currentText();
    v.chkFirstXTimes = chkFirstXTimes->isChecked();
    v.cboFirstXTimes = cboFirstXTimes->currentText();
    v.chkAfterXTimes = chkAfterXTimes->isChecked();
    v.cboAfterXTimes = cboAfterXTimes->currentText();
    v.cboResetHours = cboResetHours->currentText();
    v.cboResetWeekday = cboResetWeekday->currentText();
    v.ticket.AckRequired = chkAckRequired->isChecked();
    v.ticket.RepeatMinutes = qint16(spnRepeatMinutes->value());
    v.ticket.RepeatTimes = qint16(spnRepeatTimes->value());
    v.ticket.EscalateMinutes = qint16(spnEscalateMinutes->value());
    return v;
}

void LevelFrame::showRecord(const LevelRecord &r)
{
    const QSignalBlocker blocker(this);
    std::vector<QSignalBlocker> blockers;
    for (QObject *child : findChildren<QWidget *>())
        blockers.emplace_back(child);
    chkImmediate->setChecked(r.Immediate);
    const bool interval = r.OnceEvery >= IntervalMinute && r.OnceEvery <= IntervalWeekly;
    chkOnceEvery->setChecked(interval);
    QRadioButton *option = r.OnceEvery == IntervalHourly   ? optHour
                           : r.OnceEvery == IntervalDaily  ? optDay
                           : r.OnceEvery == IntervalWeekly ? optWeek
                           : r.OnceEvery == IntervalMinute ? optMinute
                                                           : nullptr;
    if (option)
        option->setChecked(true);
    cboMinutes->setCurrentText(QString::number(r.OnceEveryHourMin));
    cboHours->setCurrentText(QString::number(r.OnceEveryDayHour));
    cboWeekday->setCurrentText(weekdayName(r.OnceEveryWeekDay));
    chkFirstXTimes->setChecked(r.SendFirstEnabled);
    cboFirstXTimes->setCurrentText(QString::number(r.SendFirst));
    chkAfterXTimes->setChecked(r.SendAfterEnabled);
    cboAfterXTimes->setCurrentText(QString::number(r.SendAfter));
    cboResetHours->setCurrentText(QString::number(r.ResetHour) + QStringLiteral(":00"));
    cboResetWeekday->setCurrentText(weekdayName(r.ResetDay));
    setIntervalControlsEnabled(interval);
    if (interval && option != optMinute)
        applyLayout(option);
}

} // namespace osprel
