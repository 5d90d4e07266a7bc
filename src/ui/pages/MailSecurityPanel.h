#pragma once
// The mail fields of the Comm Setup page beyond the server and the sender: connection security, authentication,
// the XOAUTH2 token source, the certificate checks for internal relays, the time-outs and the kill time.

#include "MailSettings.h"

#include <QGroupBox>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace osprel {

class MailSecurityPanel : public QGroupBox
{
    Q_OBJECT
public:
    explicit MailSecurityPanel(QWidget *parent = nullptr);

    MailSettings settings() const;
    // Shows stored settings; emits nothing.
    void setSettings(const MailSettings &settings);

    struct Controls
    {
        QComboBox *cboMailSecurity, *cboMailAuth, *cboTokenSource;
        QLineEdit *txtMailUser, *txtMailPassword, *txtCaFile, *txtPinnedCert;
        QLineEdit *txtTokenUrl, *txtTenant, *txtClientId, *txtClientSecret, *txtScope, *txtTokenCommand;
        QCheckBox *chkAllowClearAuth;
        QSpinBox *txtConnectTimeout, *txtReplyTimeout, *txtDotTimeout, *txtKillTime;
    } ui;

Q_SIGNALS:
    // The user changed a field.
    void edited();

private:
    void showRelevantFields();
};

} // namespace osprel
