#pragma once
// The Class 1 driver: the host runs the whole ITU-T T.30 session (phases A to E) itself over the T.31 commands of
// the modem (+FTH/+FRH for V.21 HDLC frames, +FTM for training and page data, +FTS for the pauses between them).

#include "FaxSession.h"
#include "T30Frame.h"
#include "T30Params.h"

#include <QElapsedTimer>

namespace osprel {

class Class1Session : public FaxSession
{
    Q_OBJECT
public:
    // Each state is named after the reply it waits for.
    enum class State {
        Idle,
        Reset,            // the init string -> OK
        FlowControl,      // AT+IFC (or the profile's command) -> OK
        SetClass,         // AT+FCLASS=1 -> OK
        QueryModulations, // AT+FTM=? -> carrier list, OK
        Dial,             // ATDT -> CONNECT (the answerer's V.21 flags)
        PhaseBConnect,    // AT+FRH=3 -> CONNECT (more phase B frames)
        PhaseBFrame,      // NSF / CSI / DIS -> OK
        TsiSilence,       // AT+FRS=<n>: the called station's frame has ended -> OK
        TsiConnect,       // AT+FTH=3 -> CONNECT
        TsiSent,          // TSI -> CONNECT (a frame follows)
        DcsSent,          // DCS -> OK
        TcfPause,         // AT+FTS=<n> (none by default) -> OK
        TcfConnect,       // AT+FTM=<training> -> CONNECT
        TcfSent,          // 1.5 s of zeros -> OK
        TrainingConnect,  // AT+FRH=3 -> CONNECT
        TrainingFrame,    // CFR / FTT -> OK
        PagePause,        // AT+FTS=<n> -> OK
        PageConnect,      // AT+FTM=<page> -> CONNECT
        PageSent,         // the coded page -> OK
        PostPagePause,    // AT+FTS=<n> -> OK
        PostPageConnect,  // AT+FTH=3 -> CONNECT
        PostPageSent,     // MPS / EOP -> OK
        ResponseConnect,  // AT+FRH=3 -> CONNECT
        ResponseFrame,    // MCF / RTP / RTN -> OK
        DcnConnect,       // AT+FTH=3 -> CONNECT
        DcnSent,          // DCN -> OK
        Hangup,           // ATH0 -> OK
        Done,
    };
    static const char *stateName(State s);

    Class1Session(SerialLine *line, FaxJob job, QObject *parent = nullptr);
    State state() const { return m_state; }

protected:
    void begin() override;
    void onReply(const AtReply &reply) override;

private:
    void enter(State s);
    void onPhaseBFrame(const AtReply &reply);
    void onTrainingFrame(const AtReply &reply);
    void onResponseFrame(const AtReply &reply);
    void afterDis();
    void retrain(bool fallBack);
    void startPage();
    void noPostPageResponse();
    // Ends the session: with DCN while the remote is still there, else straight to the hang-up.
    void fail(int code, const QString &detail, bool sendDcn = true);
    void sendFrame(quint8 fcf, const QByteArray &info, bool final, AtResponse expect);
    QString rateText() const;
    // Sends AT+FTS=delay, or goes straight on to next when the delay is 0.
    void pause(int delay, State next);

    State m_state = State::Idle;
    QList<int> m_modemCodes;
    RemoteCapabilities m_remote;
    QString m_remoteId;
    const FaxModulation *m_mod = nullptr;
    bool m_fine = true;
    bool m_twoD = false;      // T.4 MR coding, when the called station's DIS offers it
    bool m_longTrain = false; // V.17 page data with long training, once a page was lost after the short one
    int m_minScanMs = 0;
    int m_page = 0;
    int m_dcsTries = 0;
    int m_disCount = 0;
    int m_postTries = 0;
    int m_pageRetries = 0;
    bool m_negotiated = false;
    int m_negotiatedRate = 0;
    QByteArray m_pageData;
    QElapsedTimer m_t1;
};

} // namespace osprel
