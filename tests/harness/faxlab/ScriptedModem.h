#pragma once
// A scripted Class 2 / Class 2.0 fax modem for tests, behind a pseudo-terminal: it answers the EIA-592 / T.32
// dialogue a sending host drives (dial, +FDT, page data, +FET) as a modem does after a good call, or hangs up with
// a given code at a chosen step. It can also play a modem of other classes for the device search.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>

namespace osprel::faxlab {

class ScriptedModem
{
public:
    enum class HangupAt { Never, Dial, PageStart, PageEnd };

    struct Options
    {
        QString linkPath;
        QByteArray classes = "0,2,2.0"; // the answer to AT+FCLASS=?; empty: the modem says nothing at all
        QString remoteId = QStringLiteral("SCRIPTED FAX");
        HangupAt hangupAt = HangupAt::Never;
        int hangupCode = 0;
        bool sendXon = true;
        QByteArray session = "1,5,0,2,0,0,0,0"; // what +FCS / +FDCS reports as negotiated
        // Like T.32 modems: +FIS, +FCS and +FCI are reported only once AT+FNR has asked for them.
        bool reportsOnlyAfterFnr = false;
        // Like a modem with a small buffer on XON/XOFF: after this many page bytes it sends XOFF, takes what was
        // already on the wire, drops whatever else comes until it sends XON again. 0: never.
        int xoffAfter = 0;
    };

    struct Result
    {
        QStringList commands;       // every command line, as typed
        QString localId;            // from +FLID / +FLI
        QList<QByteArray> pages;    // page data, DLE-unstuffed
        QList<QByteArray> pageEnds; // the in-band terminator of each page ("\x10\x03", "\x10,", "\x10.")
        int xoffs = 0;              // XOFFs sent
        int dropped = 0;            // bytes that came while the modem had said XOFF, lost as on a real modem
    };

    explicit ScriptedModem(Options options);
    ~ScriptedModem();
    bool start(QString *error = nullptr);
    void stop();
    const QString &linkPath() const;
    Result result() const;

    // Scan lines in T.4 MH data whose first bit is the lowest bit of each octet, with or without RTC at the end.
    static int countLines(const QByteArray &t4);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace osprel::faxlab
