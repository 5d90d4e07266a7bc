#pragma once
// The Class 2 driver (EIA-592): the modem runs the T.30 session; the host dials, hands over each page after
// +FDT and ends it with +FET. Class 2.0 (T.32) derives from it and overrides what it names differently.

#include "FaxSession.h"

namespace osprel {

class Class2Session : public FaxSession
{
    Q_OBJECT
public:
    // Each state is named after the reply it waits for.
    enum class State {
        Idle,
        Reset,       // the init string -> OK
        SetClass,    // +FCLASS -> OK
        Setup,       // flow control, +FNR, bit order, +FLID / +FLI, +FDIS / +FIS, one at a time -> OK
        Dial,        // ATD -> +FCON, +FCSI, +FDIS, OK
        PageConnect, // +FDT -> +FDCS, CONNECT
        PageXon,     // XON: the modem is ready for the data
        PageSent,    // data -> OK (Class 2.0: +FPS, OK)
        PostPage,    // +FET -> +FPTS, OK (Class 2 only)
        Hangup,      // ATH0 -> OK
        Done,
    };
    static const char *stateName(State s);

    Class2Session(SerialLine *line, FaxJob job, QObject *parent = nullptr);
    State state() const { return m_state; }

protected:
    // The response names of the class (EIA-592 / T.32).
    struct Names
    {
        const char *cls;        // +FCLASS value
        const char *localId;    // +FLID / +FLI
        const char *sessionCap; // +FDIS / +FIS (command and report)
        const char *connected;  // +FCON / +FCO
        const char *remoteId;   // +FCSI / +FCI
        const char *session;    // +FDCS / +FCS
        const char *hangup;     // +FHNG / +FHS
        const char *pageStatus; // +FPTS / +FPS
        const char *bitOrder;   // +FBOR / +FBO
    };
    virtual const Names &names() const;
    virtual QString className() const { return QStringLiteral("Class 2"); }
    // How the page data ends: DLE ETX, then +FET says what follows (EIA-592).
    virtual QByteArray pageTerminator(bool lastPage) const;
    // Whether the page is closed by a separate +FET command (Class 2) or in the data itself (Class 2.0).
    virtual bool usesPostPageCommand() const { return true; }
    // Class 2.0: the command that makes the modem report negotiated parameters and identifications (+FNR).
    virtual QByteArray reportCommand() const { return QByteArray(); }

protected:
    void begin() override;
    void onReply(const AtReply &reply) override;

private:
    void enter(State s);
    // A hang-up report (+FHNG:n / +FHS:n) in the reply: a non-zero code ends the call as a failure with that code.
    bool hungUp(const AtReply &reply);
    void onSessionParameters(const AtReply &reply);
    void onPageStatus(const AtReply &reply);
    void fail(int code, const QString &detail, bool hangUp = true);
    QList<QByteArray> setupCommands() const;

    State m_state = State::Idle;
    QString m_remoteId;
    bool m_negotiated = false;
    bool m_hangupSeen = false;
    bool m_fine = true;
    int m_bitRate = 0;
    int m_minScanMs = 0;
    int m_page = 0;
    int m_pageRetries = 0;
    QByteArray m_pageData;
    QList<QByteArray> m_setup; // the setup commands still to send; the first is in progress
};

} // namespace osprel
