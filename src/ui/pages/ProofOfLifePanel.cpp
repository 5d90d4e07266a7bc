#include "ProofOfLifePanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTimeEdit>

namespace osprel {

ProofOfLifePanel::ProofOfLifePanel(QWidget *parent) : QGroupBox(tr("Proof of life"), parent)
{
    setObjectName(QStringLiteral("fraProofOfLife"));
    auto *form = new QFormLayout(this);
    ui.chkDailyStatus = new QCheckBox(tr("Send a daily status message"), this);
    ui.chkDailyStatus->setObjectName(QStringLiteral("chkDailyStatus"));
    form->addRow(ui.chkDailyStatus);
    ui.txtDailyAt = new QTimeEdit(this);
    ui.txtDailyAt->setObjectName(QStringLiteral("txtDailyAt"));
    ui.txtDailyAt->setDisplayFormat(QStringLiteral("HH:mm"));
    form->addRow(tr("At:"), ui.txtDailyAt);
    ui.cboDailyTo = new QComboBox(this);
    ui.cboDailyTo->setObjectName(QStringLiteral("cboDailyTo"));
    ui.cboDailyTo->addItems({tr("E-mail list"), tr("Fax list"), tr("E-mail and fax lists")});
    form->addRow(tr("To:"), ui.cboDailyTo);
    ui.txtPingUrl = new QLineEdit(this);
    ui.txtPingUrl->setObjectName(QStringLiteral("txtPingUrl"));
    ui.txtPingUrl->setPlaceholderText(tr("empty: none (e.g. https://checks.lab.example/ping/…)"));
    ui.txtPingUrl->setToolTip(tr("Fetched while the server is healthy; a dead man's switch there raises the alarm "
                                 "when the fetches stop."));
    form->addRow(tr("Check URL:"), ui.txtPingUrl);
    ui.txtPingMinutes = new QSpinBox(this);
    ui.txtPingMinutes->setObjectName(QStringLiteral("txtPingMinutes"));
    ui.txtPingMinutes->setRange(1, 24 * 60);
    ui.txtPingMinutes->setSuffix(tr(" min"));
    form->addRow(tr("Every:"), ui.txtPingMinutes);

    connect(ui.chkDailyStatus, &QCheckBox::clicked, this, &ProofOfLifePanel::edited);
    connect(ui.txtDailyAt, &QTimeEdit::timeChanged, this, &ProofOfLifePanel::edited);
    connect(ui.cboDailyTo, &QComboBox::activated, this, &ProofOfLifePanel::edited);
    connect(ui.txtPingUrl, &QLineEdit::textEdited, this, &ProofOfLifePanel::edited);
    connect(ui.txtPingMinutes, &QSpinBox::valueChanged, this, &ProofOfLifePanel::edited);
    setSettings(ProofOfLifeSettings());
}

ProofOfLifeSettings ProofOfLifePanel::settings() const
{
    ProofOfLifeSettings settings;
    settings.dailyStatus = ui.chkDailyStatus->isChecked();
    settings.dailyAt = ui.txtDailyAt->time();
    settings.dailyTo = ui.cboDailyTo->currentIndex();
    settings.pingUrl = ui.txtPingUrl->text().trimmed();
    settings.pingMinutes = ui.txtPingMinutes->value();
    return settings;
}

void ProofOfLifePanel::setSettings(const ProofOfLifeSettings &settings)
{
    const QSignalBlocker blockers[] = {QSignalBlocker(ui.chkDailyStatus), QSignalBlocker(ui.txtDailyAt),
                                       QSignalBlocker(ui.cboDailyTo), QSignalBlocker(ui.txtPingUrl),
                                       QSignalBlocker(ui.txtPingMinutes)};
    ui.chkDailyStatus->setChecked(settings.dailyStatus);
    ui.txtDailyAt->setTime(settings.dailyAt);
    ui.cboDailyTo->setCurrentIndex(settings.dailyTo);
    ui.txtPingUrl->setText(settings.pingUrl);
    ui.txtPingMinutes->setValue(settings.pingMinutes);
}

} // namespace osprel
