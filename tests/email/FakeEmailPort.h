#pragma once
// The main window's e-mail settings as plain fields, for driving the e-mail delivery without a window.

#include "EmailPort.h"

class FakeEmailPort : public osprel::EmailPort
{
public:
    QString from = QStringLiteral("osprel@chamber.test");
    QString server;
    bool smtp = true;
    osprel::MailSettings settings;

    QString txtFrom() const override { return from; }
    QString txtMailServer() const override { return server; }
    bool optSMTP() const override { return smtp; }
    osprel::MailSettings mailSettings() const override { return settings; }
};
