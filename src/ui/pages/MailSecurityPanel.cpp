#include "MailSecurityPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>

namespace osprel {

namespace {
QLineEdit *lineEdit(QWidget *parent, const char *name, bool secret = false)
{
    auto *edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    if (secret)
        edit->setEchoMode(QLineEdit::Password);
    return edit;
}

QComboBox *comboBox(QWidget *parent, const char *name, const QStringList &items)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QLatin1String(name));
    box->addItems(items);
    return box;
}

QSpinBox *spinBox(QWidget *parent, const char *name, int maximum, const QString &suffix)
{
    auto *box = new QSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setRange(1, maximum);
    box->setSuffix(suffix);
    return box;
}
} // namespace

MailSecurityPanel::MailSecurityPanel(QWidget *parent) : QGroupBox(tr("Mail server security"), parent)
{
    setObjectName(QStringLiteral("fraMailSecurity"));
    auto *form = new QFormLayout(this);
    ui.cboMailSecurity = comboBox(this, "cboMailSecurity",
                                  {tr("None (port 25)"), tr("STARTTLS required (port 587)"),
                                   tr("STARTTLS when offered (port 587)"), tr("Implicit TLS (port 465)")});
    form->addRow(tr("Encryption:"), ui.cboMailSecurity);
    ui.cboMailAuth = comboBox(this, "cboMailAuth", {tr("None"), tr("PLAIN"), tr("LOGIN"), tr("XOAUTH2 (OAuth2)")});
    form->addRow(tr("Authentication:"), ui.cboMailAuth);
    form->addRow(tr("User name:"), ui.txtMailUser = lineEdit(this, "txtMailUser"));
    form->addRow(tr("Password:"), ui.txtMailPassword = lineEdit(this, "txtMailPassword", true));
    ui.chkAllowClearAuth = new QCheckBox(tr("Allow the password without encryption"), this);
    ui.chkAllowClearAuth->setObjectName(QStringLiteral("chkAllowClearAuth"));
    form->addRow(ui.chkAllowClearAuth);
    ui.cboTokenSource = comboBox(this, "cboTokenSource", {tr("Client credentials"), tr("Token command")});
    form->addRow(tr("OAuth2 token from:"), ui.cboTokenSource);
    form->addRow(tr("Token URL:"), ui.txtTokenUrl = lineEdit(this, "txtTokenUrl"));
    ui.txtTokenUrl->setPlaceholderText(tr("empty: Microsoft 365 for the tenant"));
    form->addRow(tr("Tenant:"), ui.txtTenant = lineEdit(this, "txtTenant"));
    form->addRow(tr("Client ID:"), ui.txtClientId = lineEdit(this, "txtClientId"));
    form->addRow(tr("Client secret:"), ui.txtClientSecret = lineEdit(this, "txtClientSecret", true));
    form->addRow(tr("Scope:"), ui.txtScope = lineEdit(this, "txtScope"));
    form->addRow(tr("Token command:"), ui.txtTokenCommand = lineEdit(this, "txtTokenCommand"));
    form->addRow(tr("CA file:"), ui.txtCaFile = lineEdit(this, "txtCaFile"));
    form->addRow(tr("Pinned certificate (SHA-256):"), ui.txtPinnedCert = lineEdit(this, "txtPinnedCert"));
    form->addRow(tr("Connect time-out:"), ui.txtConnectTimeout = spinBox(this, "txtConnectTimeout", 600, tr(" s")));
    form->addRow(tr("Reply time-out:"), ui.txtReplyTimeout = spinBox(this, "txtReplyTimeout", 1800, tr(" s")));
    form->addRow(tr("Message time-out:"), ui.txtDotTimeout = spinBox(this, "txtDotTimeout", 3600, tr(" s")));
    form->addRow(tr("Give up deferred mail after:"), ui.txtKillTime = spinBox(this, "txtKillTime", 10080, tr(" min")));

    for (QLineEdit *edit : findChildren<QLineEdit *>())
        connect(edit, &QLineEdit::textEdited, this, &MailSecurityPanel::edited);
    for (QComboBox *box : findChildren<QComboBox *>()) {
        connect(box, &QComboBox::activated, this, &MailSecurityPanel::edited);
        connect(box, &QComboBox::currentIndexChanged, this, &MailSecurityPanel::showRelevantFields);
    }
    for (QSpinBox *box : findChildren<QSpinBox *>())
        connect(box, &QSpinBox::valueChanged, this, [this] {
            if (!signalsBlocked())
                Q_EMIT edited();
        });
    connect(ui.chkAllowClearAuth, &QCheckBox::clicked, this, &MailSecurityPanel::edited);
    setSettings(MailSettings());
}

MailSettings MailSecurityPanel::settings() const
{
    MailSettings s;
    s.security = MailSecurity(ui.cboMailSecurity->currentIndex());
    s.auth = MailAuth(ui.cboMailAuth->currentIndex());
    s.user = ui.txtMailUser->text().trimmed();
    s.password = ui.txtMailPassword->text();
    s.allowClearAuth = ui.chkAllowClearAuth->isChecked();
    s.caFile = ui.txtCaFile->text().trimmed();
    s.pinnedSha256 = ui.txtPinnedCert->text().trimmed();
    s.tokenSource = TokenSource(ui.cboTokenSource->currentIndex());
    s.tokenUrl = ui.txtTokenUrl->text().trimmed();
    s.tenant = ui.txtTenant->text().trimmed();
    s.clientId = ui.txtClientId->text().trimmed();
    s.clientSecret = ui.txtClientSecret->text();
    s.scope = ui.txtScope->text().trimmed();
    s.tokenCommand = ui.txtTokenCommand->text();
    s.connectTimeoutSec = ui.txtConnectTimeout->value();
    s.replyTimeoutSec = ui.txtReplyTimeout->value();
    s.dotTimeoutSec = ui.txtDotTimeout->value();
    s.killTimeMinutes = ui.txtKillTime->value();
    return s;
}

void MailSecurityPanel::setSettings(const MailSettings &s)
{
    const QSignalBlocker blocker(this);
    ui.cboMailSecurity->setCurrentIndex(int(s.security));
    ui.cboMailAuth->setCurrentIndex(int(s.auth));
    ui.txtMailUser->setText(s.user);
    ui.txtMailPassword->setText(s.password);
    ui.chkAllowClearAuth->setChecked(s.allowClearAuth);
    ui.txtCaFile->setText(s.caFile);
    ui.txtPinnedCert->setText(s.pinnedSha256);
    ui.cboTokenSource->setCurrentIndex(int(s.tokenSource));
    ui.txtTokenUrl->setText(s.tokenUrl);
    ui.txtTenant->setText(s.tenant);
    ui.txtClientId->setText(s.clientId);
    ui.txtClientSecret->setText(s.clientSecret);
    ui.txtScope->setText(s.scope);
    ui.txtTokenCommand->setText(s.tokenCommand);
    ui.txtConnectTimeout->setValue(s.connectTimeoutSec);
    ui.txtReplyTimeout->setValue(s.replyTimeoutSec);
    ui.txtDotTimeout->setValue(s.dotTimeoutSec);
    ui.txtKillTime->setValue(s.killTimeMinutes);
    showRelevantFields();
}

// Only the fields the chosen authentication uses are enabled.
void MailSecurityPanel::showRelevantFields()
{
    const auto auth = MailAuth(ui.cboMailAuth->currentIndex());
    const bool password = auth == MailAuth::Plain || auth == MailAuth::Login;
    const bool oauth = auth == MailAuth::XOAuth2;
    const bool command = ui.cboTokenSource->currentIndex() == int(TokenSource::Command);
    ui.txtMailUser->setEnabled(auth != MailAuth::None);
    ui.txtMailPassword->setEnabled(password);
    ui.chkAllowClearAuth->setEnabled(password);
    ui.cboTokenSource->setEnabled(oauth);
    for (QLineEdit *edit : {ui.txtTokenUrl, ui.txtTenant, ui.txtClientId, ui.txtClientSecret, ui.txtScope})
        edit->setEnabled(oauth && !command);
    ui.txtTokenCommand->setEnabled(oauth && command);
    const bool tls = ui.cboMailSecurity->currentIndex() != int(MailSecurity::None);
    ui.txtCaFile->setEnabled(tls);
    ui.txtPinnedCert->setEnabled(tls);
}

} // namespace osprel
