// The Comm Setup page's mail fields: Accept refuses a mail server or sender that cannot be used and stores the rest
// in MailServerSecurity, the secrets outside the database; Cancel and the next start bring them back.

#include "Globals.h"
#include "HeadlessWindow.h"
#include "MailSetup.h"
#include "SecretStore.h"
#include "StoreFixture.h"

#include <QFile>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

using namespace osprel;

class TestMailSetup : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void unusableServerOrSenderIsRefusedAtAccept_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("named");
        QTest::newRow("no port") << "mail:"
                                 << "a@lab"
                                 << "the port after the \":\" is missing";
        QTest::newRow("port 0") << "host:0"
                                << "a@lab"
                                << "the port must be a number from 1 to 65535";
        QTest::newRow("open bracket") << "[::1"
                                      << "a@lab"
                                      << "the \"]\" that closes the address is missing";
        QTest::newRow("blank in host") << "mail host"
                                       << "a@lab"
                                       << "is no host name";
        QTest::newRow("sender with a line break") << "mail:587"
                                                  << "a@lab\r\nBcc: x@y"
                                                  << "holds a line break";
        QTest::newRow("sender with brackets inside") << "mail"
                                                     << "a@lab>x"
                                                     << "holds an angle bracket";
    }

    void unusableServerOrSenderIsRefusedAtAccept()
    {
        QFETCH(QString, server);
        QFETCH(QString, from);
        QFETCH(QString, named);
        StoreFixture f;
        HeadlessWindow window;
        SecretStore secrets(f.dir.path(), false);
        MailSetup setup(f.db, window, window, secrets);
        window.settings.txtMailServer = server;
        window.settings.txtFrom = from;
        window.mail.auth = MailAuth::Plain;
        QVERIFY(!setup.accept());
        QCOMPARE(window.messages.size(), 1);
        QVERIFY2(window.messages.first().contains(named), qPrintable(window.messages.first()));
        QCOMPARE(MailSetup::stored(f.db).auth, MailAuth::None); // nothing stored
    }

    void acceptedFieldsComeBack()
    {
        StoreFixture f;
        g.gstrAppPath = f.dir.path();
        HeadlessWindow window;
        SecretStore secrets(f.dir.path(), false);
        MailSetup setup(f.db, window, window, secrets);
        window.settings.txtMailServer = QStringLiteral("smtp.office365.com:587");
        window.settings.txtFrom = QStringLiteral("<alarms@lab.example>");
        window.mail.security = MailSecurity::StartTlsRequired;
        window.mail.auth = MailAuth::XOAuth2;
        window.mail.user = QStringLiteral("alarms@lab.example");
        window.mail.password = QStringLiteral("pw-not-in-db");
        window.mail.clientSecret = QStringLiteral("client-secret-not-in-db");
        window.mail.tenant = QStringLiteral("lab-tenant");
        window.mail.killTimeMinutes = 90;
        QVERIFY(setup.accept());
        QVERIFY(window.messages.isEmpty());

        // The secrets are in a file only the user may read, not in the database.
        QFile file(secrets.filePath());
        QVERIFY(file.exists());
        QCOMPARE(file.permissions() & (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup |
                                       QFileDevice::WriteOther),
                 QFileDevice::Permissions());
        QSqlQuery row = f.db.run(QStringLiteral("SELECT * FROM MailServerSecurity"));
        QVERIFY(row.next());
        for (int i = 0; i < row.record().count(); ++i)
            QVERIFY(!row.value(i).toString().contains(QStringLiteral("not-in-db")));
        QVERIFY(!row.next()); // one row, however often Accept is pressed
        QVERIFY(setup.accept());
        QCOMPARE(f.db.run(QStringLiteral("SELECT COUNT(*) FROM MailServerSecurity")).next(), true);

        // Cancel puts the stored values back, secrets included.
        window.mail = MailSettings();
        setup.cancel();
        QCOMPARE(window.mail.security, MailSecurity::StartTlsRequired);
        QCOMPARE(window.mail.tenant, QStringLiteral("lab-tenant"));
        QCOMPARE(window.mail.killTimeMinutes, 90);
        QTRY_COMPARE(window.mail.password, QStringLiteral("pw-not-in-db"));
        QTRY_COMPARE(window.mail.clientSecret, QStringLiteral("client-secret-not-in-db"));
    }
};

QTEST_GUILESS_MAIN(TestMailSetup)
#include "tst_email_setup.moc"
