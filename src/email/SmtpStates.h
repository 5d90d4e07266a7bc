#pragma once
// The states of an SMTP session, each named after the reply it awaits, with the reply code each state expects.

#include <QtGlobal>
#include <array>

namespace osprel {

enum SmtpStateValue : qint16 {
    SmtpIdle = 0,
    SMTP_CONNECTING = 1,   // awaits the greeting
    SMTP_SENT_HELO = 2,    // awaits the answer to HELO
    SMTP_SENT_FROM = 3,    // awaits the answer to MAIL FROM
    SMTP_SENDING_RCPT = 4, // awaits the answer to one RCPT TO
    SmtpRcptsDone = 5,     // every recipient announced; DATA goes out in the same step
    SMTP_SENT_DATA = 6,    // awaits the go-ahead for the message text
    SMTP_SENT_DONE = 7,    // awaits the answer to the end mark
    SMTP_SENT_QUIT = 8,    // awaits the answer to QUIT
};

constexpr int kSmtpStateCount = 9;

// Per-state facts, indexed by the state. The names are written to the log in error lines; the two states without a
// system name never appear there.
struct SmtpStateFacts
{
    const char *name;
    qint16 expectedCode; // 0: no reply is awaited in this state
};

constexpr std::array<SmtpStateFacts, 9> kSmtpStates = {{
    {"idle", 0},
    {"SMTP_CONNECTING", 220},
    {"SMTP_SENT_HELO", 250},
    {"SMTP_SENT_FROM", 250},
    {"SMTP_SENDING_RCPT", 250},
    {"recipients done", 0},
    {"SMTP_SENT_DATA", 354},
    {"SMTP_SENT_DONE", 250},
    {"SMTP_SENT_QUIT", 221},
}};
static_assert(kSmtpStates.size() == kSmtpStateCount && SMTP_SENT_QUIT + 1 == kSmtpStateCount,
              "one row of facts per SMTP state");

} // namespace osprel
