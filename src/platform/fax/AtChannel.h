#pragma once
// The modem's command/response layer: one exchange at a time (a command, a data reception or a data transmission),
// run asynchronously on the event loop and answered with one AtReply.

#include "AtResponse.h"

#include <QObject>
#include <QTimer>

namespace osprel {

class SerialLine;

class AtChannel : public QObject
{
    Q_OBJECT
public:
    static constexpr char kDle = 0x10, kEtx = 0x03, kSub = 0x1a, kXon = 0x11, kCan = 0x18;

    explicit AtChannel(SerialLine *line, QObject *parent = nullptr);

    // Sends cmd and CR. The exchange ends at the response expect, at any final result code, or after timeoutMs with
    // Timeout. With abortOnTimeout a timeout first cancels the modem's operation (V.250 / T.31: any
    // character aborts a dial or a reception) and takes its answer, so that it cannot be mistaken for the next one.
    void atCmd(const QByteArray &cmd, AtResponse expect, int timeoutMs, bool abortOnTimeout = false);
    // After CONNECT of a reception (+FRH, +FRM, a Class 1 dial): takes DLE-stuffed data up to DLE ETX, then the
    // final result code (T.31: OK for a good frame check sequence, ERROR for a bad one).
    void receiveData(int timeoutMs);
    // After CONNECT of a transmission (+FTH, +FTM, +FDT): writes data with every DLE doubled, then terminator, then
    // waits for expect or any final result code. With xonXoff the modem's XOFF stops the data until its XON, for as
    // long as the exchange lasts.
    void sendData(const QByteArray &data, const QByteArray &terminator, AtResponse expect, int timeoutMs,
                  bool xonXoff = false);
    // Waits for XON, by which an EIA-592 / T.32 modem says it is ready for page data after CONNECT.
    void waitForXon(int timeoutMs);
    // Discards whatever the modem says until it has been quiet for quietMs: ends with Nothing, or with Timeout when
    // it keeps talking for maxMs.
    void waitForQuiet(int quietMs, int maxMs);
    // Drops the exchange in progress without a reply.
    void cancel();
    // Drops the exchange in progress and writes bytes as they are (an abort sequence), logged as description.
    void writeRaw(const QByteArray &bytes, const QString &description);
    bool busy() const { return m_mode != Mode::Idle; }

    static QByteArray dleStuff(const QByteArray &data);

Q_SIGNALS:
    void reply(const osprel::AtReply &reply);
    // One line of the modem dialogue for the detail log, with its direction ("-->" to the modem, "<--" from it).
    void message(const QString &text);

private:
    enum class Mode { Idle, Lines, Data, Xon, Drain, Quiet };

    void start(Mode mode, AtResponse expect, int timeoutMs);
    void onReadyRead();
    void process();
    bool takeLine(QByteArray *line);
    bool processLines();
    bool processData();
    bool processXon();
    void onTimeout();
    void finish(AtResponse result);
    void log(const char *direction, const QString &text);
    void endXonXoff();

    SerialLine *m_line;
    QTimer m_timer;
    QTimer m_quietTimer;
    QByteArray m_in;
    Mode m_mode = Mode::Idle;
    AtResponse m_expect = AtResponse::Ok;
    QByteArray m_echo;
    bool m_abortOnTimeout = false;
    bool m_dataDle = false;
    bool m_xonXoff = false;
    quint64 m_serial = 0;
    AtReply m_reply;
};

} // namespace osprel

Q_DECLARE_METATYPE(osprel::AtReply)
