#include "MailSetup.h"

#include "Database.h"
#include "EmailQueuePort.h"
#include "ErrorReport.h"
#include "Globals.h"
#include "MailAddress.h"
#include "MailServerAddress.h"
#include "Notices.h"

#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
const QString kColumns = QStringLiteral(
    "Security, Auth, UserName, AllowClearAuth, CaFile, PinnedSha256, TokenSource, TokenUrl, Tenant, ClientId, Scope, "
    "TokenCommand, ConnectTimeout, ReplyTimeout, DotTimeout, KillTimeMinutes");
}

MailSetup::MailSetup(const Database &database, EmailQueuePort &port, Notices &notices, SecretStore &secrets)
    : m_database(database), m_port(port), m_notices(notices), m_secrets(secrets)
{
}

QString MailSetup::problem(const QString &server, const QString &from)
{
    const QString serverProblem = MailServerAddress::problem(server);
    if (!serverProblem.isEmpty())
        return QStringLiteral("The mail server \"%1\" cannot be used: %2.").arg(server, serverProblem);
    const QString fromProblem = addressProblem(normalizeAddress(from));
    if (!fromProblem.isEmpty())
        return QStringLiteral("The From address \"%1\" cannot be used: %2.").arg(from, fromProblem);
    return QString();
}

MailSettings MailSetup::stored(const Database &database)
{
    MailSettings s;
    QSqlQuery row =
        database.run(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM MailServerSecurity ORDER BY rowid"));
    if (!row.next())
        return s;
    s.security = MailSecurity(qBound(0, row.value(0).toInt(), 3));
    s.auth = MailAuth(qBound(0, row.value(1).toInt(), 3));
    s.user = row.value(2).toString();
    s.allowClearAuth = row.value(3).toInt() != 0;
    s.caFile = row.value(4).toString();
    s.pinnedSha256 = row.value(5).toString();
    s.tokenSource = TokenSource(qBound(0, row.value(6).toInt(), 1));
    s.tokenUrl = row.value(7).toString();
    s.tenant = row.value(8).toString();
    s.clientId = row.value(9).toString();
    s.scope = row.value(10).toString();
    s.tokenCommand = row.value(11).toString();
    // A time-out of nothing would end every session at once: a stored zero keeps the default.
    const auto positive = [&row](int column, int fallback) {
        const int value = row.value(column).toInt();
        return value > 0 ? value : fallback;
    };
    s.connectTimeoutSec = positive(12, s.connectTimeoutSec);
    s.replyTimeoutSec = positive(13, s.replyTimeoutSec);
    s.dotTimeoutSec = positive(14, s.dotTimeoutSec);
    s.killTimeMinutes = positive(15, s.killTimeMinutes);
    return s;
}

void MailSetup::store(const Database &database, const MailSettings &s)
{
    const QVariantList values = {int(s.security),
                                 int(s.auth),
                                 s.user,
                                 s.allowClearAuth ? 1 : 0,
                                 s.caFile,
                                 s.pinnedSha256,
                                 int(s.tokenSource),
                                 s.tokenUrl,
                                 s.tenant,
                                 s.clientId,
                                 s.scope,
                                 s.tokenCommand,
                                 s.connectTimeoutSec,
                                 s.replyTimeoutSec,
                                 s.dotTimeoutSec,
                                 s.killTimeMinutes};
    QSqlQuery existing = database.run(QStringLiteral("SELECT rowid FROM MailServerSecurity ORDER BY rowid LIMIT 1"));
    if (existing.next()) {
        QVariantList withRow = values;
        withRow << existing.value(0);
        database.run(QStringLiteral("UPDATE MailServerSecurity SET Security = ?, Auth = ?, UserName = ?, "
                                    "AllowClearAuth = ?, CaFile = ?, PinnedSha256 = ?, TokenSource = ?, TokenUrl = ?, "
                                    "Tenant = ?, ClientId = ?, Scope = ?, TokenCommand = ?, ConnectTimeout = ?, "
                                    "ReplyTimeout = ?, DotTimeout = ?, KillTimeMinutes = ? WHERE rowid = ?"),
                     withRow);
    } else {
        database.run(QStringLiteral("INSERT INTO MailServerSecurity (") + kColumns +
                         QStringLiteral(") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                     values);
    }
}

void MailSetup::load()
{
    guarded(QStringLiteral("MailSetup_Load"), [&] {
        m_secrets.setFolder(g.gstrAppPath);
        const MailSettings settings = stored(m_database);
        m_port.setMailSettings(settings);
        // The secrets arrive later; each is put on the page as it comes, the rest as the page shows it then.
        m_secrets.read(QStringLiteral("password"), [this](const QString &password) {
            MailSettings now = m_port.mailSettings();
            now.password = password;
            m_port.setMailSettings(now);
        });
        m_secrets.read(QStringLiteral("client-secret"), [this](const QString &secret) {
            MailSettings now = m_port.mailSettings();
            now.clientSecret = secret;
            m_port.setMailSettings(now);
        });
    });
}

bool MailSetup::accept()
{
    bool accepted = false;
    guarded(QStringLiteral("cmdAcceptCommSetup_Click"), [&] {
        const QString why = problem(m_port.txtMailServer(), m_port.txtFrom());
        if (!why.isEmpty()) {
            m_notices.showMessage(QStringLiteral("Comm Setup"), why);
            return;
        }
        const MailSettings settings = m_port.mailSettings();
        store(m_database, settings);
        m_secrets.write(QStringLiteral("password"), settings.password);
        m_secrets.write(QStringLiteral("client-secret"), settings.clientSecret);
        accepted = true;
    });
    return accepted;
}

} // namespace osprel
