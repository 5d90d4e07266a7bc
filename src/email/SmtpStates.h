#pragma once
// The states of an SMTP session, each named after the reply it awaits, with the reply code each state expects and
// the time-out that bounds the wait.

#include <QtGlobal>
#include <array>

namespace osprel {

enum SmtpStateValue : qint16 {
    SmtpIdle = 0,
    SMTP_CONNECTING = 1,   // awaits the connection, then the greeting
    SMTP_SENT_HELO = 2,    // awaits the answer to HELO
    SMTP_SENT_FROM = 3,    // awaits the answer to MAIL FROM
    SMTP_SENDING_RCPT = 4, // awaits the answer to one RCPT TO
    SmtpRcptsDone = 5,     // every recipient announced; DATA goes out in the same step
    SMTP_SENT_DATA = 6,    // awaits the go-ahead for the message text
    SMTP_SENT_DONE = 7,    // awaits the answer to the end mark
    SMTP_SENT_QUIT = 8,    // awaits the answer to QUIT
    SMTP_SENT_EHLO = 9,    // awaits the answer to EHLO (the server's extensions)
    SMTP_SENT_STARTTLS = 10,
    SMTP_TLS_HANDSHAKE = 11,   // awaits the end of the TLS handshake, no reply
    SMTP_SENT_AUTH = 12,       // awaits the verdict on AUTH
    SMTP_SENT_AUTH_LOGIN = 13, // awaits the prompt for the user name
    SMTP_SENT_AUTH_USER = 14,  // awaits the prompt for the password
    SMTP_GETTING_TOKEN = 15,   // awaits an OAuth2 access token, no reply
};

constexpr int kSmtpStateCount = 16;

enum class SmtpWait { None, Reply, Dot };

// Per-state facts, indexed by the state. The names are written to the log in error lines; the two states without a
// system name never appear there.
struct SmtpStateFacts
{
    const char *name;
    qint16 expectedCode; // 0: no reply is awaited in this state
    SmtpWait wait;       // which time-out bounds the state
};

constexpr std::array<SmtpStateFacts, kSmtpStateCount> kSmtpStates = {{
    {"idle", 0, SmtpWait::None},
    {"SMTP_CONNECTING", 220, SmtpWait::Reply},
    {"SMTP_SENT_HELO", 250, SmtpWait::Reply},
    {"SMTP_SENT_FROM", 250, SmtpWait::Reply},
    {"SMTP_SENDING_RCPT", 250, SmtpWait::Reply},
    {"recipients done", 0, SmtpWait::Reply},
    {"SMTP_SENT_DATA", 354, SmtpWait::Reply},
    {"SMTP_SENT_DONE", 250, SmtpWait::Dot},
    {"SMTP_SENT_QUIT", 221, SmtpWait::Reply},
    {"SMTP_SENT_EHLO", 250, SmtpWait::Reply},
    {"SMTP_SENT_STARTTLS", 220, SmtpWait::Reply},
    {"SMTP_TLS_HANDSHAKE", 0, SmtpWait::Reply},
    {"SMTP_SENT_AUTH", 235, SmtpWait::Reply},
    {"SMTP_SENT_AUTH_LOGIN", 334, SmtpWait::Reply},
    {"SMTP_SENT_AUTH_USER", 334, SmtpWait::Reply},
    {"SMTP_GETTING_TOKEN", 0, SmtpWait::Reply},
}};
static_assert(kSmtpStates.size() == kSmtpStateCount && SMTP_GETTING_TOKEN + 1 == kSmtpStateCount,
              "one row of facts per SMTP state");

} // namespace osprel
