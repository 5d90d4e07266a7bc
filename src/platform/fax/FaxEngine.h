#pragma once
// The fax engine the server sends faxes with: one fax at a time through a Class 1, 2 or 2.0 fax modem on a serial
// port, progress reported as FaxEvent signals, and the conversion of a text page into a fax image.

#include "FaxEvent.h"
#include "ModemProfile.h"

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

namespace osprel {

class FaxDocument;
class GlyphCache;
class FaxSession;
class SerialLine;

class FaxEngine : public QObject
{
    Q_OBJECT
public:
    enum State { Idle = 1, InCall = 2, Finished = 3 };
    enum FaxClass { Class1 = 1, Class2 = 2, Class20 = 3 };
    // Makes the serial line of a call; tests put a scripted line here. The default opens a QSerialPort.
    using LineFactory = std::function<SerialLine *(QObject *parent)>;

    explicit FaxEngine(QObject *parent = nullptr);
    ~FaxEngine() override;

    void setInitString(const QString &s) { m_initString = s; }
    QString initString() const { return m_initString; }
    void setFaxClass(int c) { m_faxClass = c; }
    int faxClass() const { return m_faxClass; }
    void setPort(const QString &p) { m_port = p; }
    QString port() const { return m_port; }
    // The fax station as typed ("+1 555 0100 Osprel Lab"): its number goes out as TSI / +FLID, all of it in the
    // header line on each page.
    void setStationId(const QString &id) { m_stationId = id; }
    QString stationId() const { return m_stationId; }
    void setNumber(const QString &n) { m_number = n; }
    QString number() const { return m_number; }
    void setFileToSend(const QString &f) { m_file = f; }
    QString fileToSend() const { return m_file; }
    void setProfile(const ModemProfile &profile) { m_profile = profile; }
    const ModemProfile &profile() const { return m_profile; }
    void setLineFactory(LineFactory factory);

    // 1 idle, 2 in a call (from send() until the completion), 3 finished while the completion is delivered, then
    // idle again; 1 and 3 are free for a new fax.
    int state() const { return m_state; }
    // Starts the fax on the event loop and returns at once; false (and no events) when a fax is in progress.
    // Whatever goes wrong afterwards ends in CompletionStatus with a non-zero error code.
    bool send();
    // Abandons the fax in progress: the modem is told to hang up, the port closed, CompletionStatus reports
    // error 2 (call aborted), and the engine is idle again.
    void stop();

    // Renders a plain text file (CR LF lines, 60 to a page) into a TIFF of 1728-pel G3 pages at 204 x 196 dpi.
    static bool convertText(const QString &textPath, const QString &imagePath, QString *error);
    // The texts of FaxEvent status and error codes.
    static QString statusText(int statusCode);
    static QString errorText(int errorCode);

Q_SIGNALS:
    void Status(const osprel::FaxEvent &event); // kinds 1 (status), 7 (file name), 8 (engine notice)
    void NegotiatedParms(const osprel::FaxEvent &event);
    void Pages(const osprel::FaxEvent &event);
    void StartTime(const osprel::FaxEvent &event);
    void EndTime(const osprel::FaxEvent &event);
    void CompletionStatus(const osprel::FaxEvent &event);
    // The modem dialogue, one line at a time, for the detail log.
    void Message(const QString &text, bool endOfMessage);

private:
    void begin();
    void startCall();
    void stampHeaders();
    void complete(int errorCode, const QString &detail);
    void finishCall(int errorCode, const QString &detail, State after);
    void closeLine();
    FaxEvent event(int kind) const;

    QString m_initString = QStringLiteral("AT&FE0V1&C1&D2S0=0");
    int m_faxClass = Class1;
    QString m_port, m_stationId, m_number, m_file;
    LineFactory m_lineFactory;
    ModemProfile m_profile;

    int m_state = Idle;
    quint64 m_call = 0;
    SerialLine *m_line = nullptr;
    FaxSession *m_session = nullptr;
    std::unique_ptr<FaxDocument> m_document;
    std::unique_ptr<GlyphCache> m_headerGlyphs;
    FaxEvent m_current; // the fields gathered during the call
};

} // namespace osprel
