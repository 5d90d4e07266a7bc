#pragma once
// The Comm Setup page's proof of life: the daily status message (on or off, its time, its list) and the check URL
// of a dead man's switch with its interval.

#include "ProofOfLife.h"

#include <QGroupBox>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;
class QTimeEdit;

namespace osprel {

class ProofOfLifePanel : public QGroupBox
{
    Q_OBJECT
public:
    explicit ProofOfLifePanel(QWidget *parent = nullptr);

    ProofOfLifeSettings settings() const;
    // Shows stored settings; emits nothing.
    void setSettings(const ProofOfLifeSettings &settings);

    struct Controls
    {
        QCheckBox *chkDailyStatus;
        QTimeEdit *txtDailyAt;
        QComboBox *cboDailyTo;
        QLineEdit *txtPingUrl;
        QSpinBox *txtPingMinutes;
    } ui;

Q_SIGNALS:
    // The user changed a field.
    void edited();
};

} // namespace osprel
