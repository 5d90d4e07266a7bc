#include "FaxEngine.h"

#include "Class1Session.h"
#include "Class20Session.h"
#include "Class2Session.h"
#include "Clock.h"
#include "ErrorReport.h"
#include "FaxCodes.h"
#include "FaxDocument.h"
#include "FaxHeader.h"
#include "FaxTextRenderer.h"
#include "GlyphCache.h"
#include "QtSerialLine.h"

#include <QFile>
#include <QGuiApplication>
#include <QTimer>

namespace osprel {

FaxEngine::FaxEngine(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<osprel::FaxEvent>();
    m_lineFactory = [](QObject *p) -> SerialLine * { return new QtSerialLine(p); };
}

FaxEngine::~FaxEngine()
{
    if (m_state == InCall && m_session)
        m_session->abort();
    closeLine();
}

void FaxEngine::setLineFactory(LineFactory factory)
{
    m_lineFactory = std::move(factory);
}

QString FaxEngine::statusText(int statusCode)
{
    return faxStatusText(statusCode);
}

QString FaxEngine::errorText(int errorCode)
{
    return faxErrorText(errorCode);
}

FaxEvent FaxEngine::event(int kind) const
{
    FaxEvent e = m_current;
    e.kind = kind;
    return e;
}

bool FaxEngine::send()
{
    if (m_state != Idle && m_state != Finished)
        return false;
    m_state = InCall;
    m_current = FaxEvent();
    m_current.fileName = m_file;
    const quint64 call = ++m_call;
    QTimer::singleShot(0, this, [this, call] {
        if (call == m_call && m_state == InCall)
            begin();
    });
    return true;
}

void FaxEngine::begin()
{
    // Nothing thrown (an allocation failing on a huge image) may reach the event loop: it ends the fax instead.
    if (!guarded(QStringLiteral("FaxEngine.send"), [this] { startCall(); }))
        complete(FaxError::EngineError, QStringLiteral("internal error"));
}

void FaxEngine::startCall()
{
    m_current.startTime = QDateTime::currentDateTime();
    Q_EMIT StartTime(event(FaxEvent::StartTimeKind));
    Q_EMIT Status(event(FaxEvent::FileNameKind));

    m_document = std::make_unique<FaxDocument>();
    QString error;
    if (!m_document->open(m_file, &error) || m_document->pageCount() == 0) {
        complete(FaxError::FileError, error);
        return;
    }
    m_current.pageCount = m_document->pageCount();
    stampHeaders();

    m_line = m_lineFactory(this);
    m_line->setHardwareFlow(m_profile.flowControl == ModemProfile::RtsCts);
    if (!m_line->open(m_port, &error)) {
        complete(FaxError::DeviceError, m_port + QStringLiteral(": ") + error);
        return;
    }
    connect(m_line, &SerialLine::failed, this,
            [this](const QString &why) { complete(FaxError::DeviceError, m_port + QStringLiteral(": ") + why); });

    FaxJob job;
    job.number = m_number;
    job.stationId = FaxHeader::number(m_stationId);
    job.initString = m_initString;
    job.profile = m_profile;
    job.document = m_document.get();
    switch (m_faxClass) {
    case Class1:
        m_session = new Class1Session(m_line, job, this);
        break;
    case Class2:
        m_session = new Class2Session(m_line, job, this);
        break;
    case Class20:
        m_session = new Class20Session(m_line, job, this);
        break;
    default:
        complete(FaxError::ModemError, QStringLiteral("no fax class %1").arg(m_faxClass));
        return;
    }
    connect(m_session, &FaxSession::message, this, [this](const QString &text) { Q_EMIT Message(text, true); });
    connect(m_session, &FaxSession::status, this, [this](int code, const QString &text) {
        m_current.statusCode = code;
        m_current.statusText = text;
        Q_EMIT Status(event(FaxEvent::StatusKind));
    });
    connect(m_session, &FaxSession::notice, this, [this](const QString &text) {
        FaxEvent e = event(FaxEvent::MessageKind);
        e.statusText = text;
        Q_EMIT Status(e);
    });
    connect(m_session, &FaxSession::negotiated, this,
            [this](const QString &speed, const QString &resolution, const QString &remoteId) {
                m_current.speed = speed;
                m_current.resolution = resolution;
                m_current.remoteId = remoteId;
                Q_EMIT NegotiatedParms(event(FaxEvent::NegotiatedKind));
            });
    connect(m_session, &FaxSession::pageStarted, this, [this](int page, int count) {
        m_current.page = page;
        m_current.pageCount = count;
        Q_EMIT Pages(event(FaxEvent::PagesKind));
    });
    connect(m_session, &FaxSession::finished, this, &FaxEngine::complete);
    m_session->start();
}

// Every page carries the date and time of sending, the station and "Page n of m" in its top band.
void FaxEngine::stampHeaders()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        Q_EMIT Message(QStringLiteral("Fax engine: no header line without the GUI application's fonts"), true);
        return;
    }
    if (!m_headerGlyphs)
        m_headerGlyphs = std::make_unique<GlyphCache>(FaxHeader::kFontPixels);
    const QDateTime sent = Clock::now();
    const int count = m_document->pageCount();
    for (int i = 0; i < count; ++i)
        FaxHeader::stamp(m_document->page(i), FaxHeader::text(m_stationId, sent, i + 1, count), *m_headerGlyphs);
}

void FaxEngine::complete(int errorCode, const QString &detail)
{
    finishCall(errorCode, detail, Finished);
}

void FaxEngine::finishCall(int errorCode, const QString &detail, State after)
{
    if (m_state != InCall)
        return;
    if (!detail.isEmpty())
        Q_EMIT Message(QStringLiteral("Fax engine: ") + faxErrorText(errorCode) + QStringLiteral(": ") + detail, true);
    closeLine();
    m_state = after;
    m_current.endTime = QDateTime::currentDateTime();
    m_current.errorCode = errorCode;
    m_current.errorText = faxErrorText(errorCode);
    m_current.completionCode = errorCode;
    m_current.completionText = errorCode == 0 ? QStringLiteral("Fax sent") : QStringLiteral("Fax failed");
    // Both events are made before either goes out: a handler may start the next fax at once.
    const FaxEvent end = event(FaxEvent::EndTimeKind);
    const FaxEvent done = event(FaxEvent::CompletionKind);
    Q_EMIT EndTime(end);
    Q_EMIT CompletionStatus(done);
    // Finished lasts while the outcome is handed over; then the device is free again, unless a handler has
    // already started the next fax.
    if (m_state == Finished)
        m_state = Idle;
}

void FaxEngine::stop()
{
    if (m_state != InCall)
        return;
    if (m_session)
        m_session->abort();
    finishCall(FaxError::CallAborted, QStringLiteral("stopped"), Idle);
}

void FaxEngine::closeLine()
{
    if (m_session) {
        m_session->disconnect(this);
        m_session->detach();
        m_session->deleteLater();
        m_session = nullptr;
    }
    if (m_line) {
        m_line->disconnect(this);
        m_line->flush(500);
        m_line->close();
        m_line->deleteLater();
        m_line = nullptr;
    }
    m_document.reset();
}

bool FaxEngine::convertText(const QString &textPath, const QString &imagePath, QString *error)
{
    // Fonts are drawn by Qt GUI: without its application object there is nothing to draw text with.
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        if (error)
            *error = QStringLiteral("text pages need the GUI application");
        return false;
    }
    QFile file(textPath);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("cannot read ") + textPath;
        return false;
    }
    const QByteArray bytes = file.readAll();
    // The page is written by this server in the local code page; text that is not valid UTF-8 is taken as Latin-1.
    QString text = QString::fromUtf8(bytes);
    if (text.contains(QChar::ReplacementCharacter))
        text = QString::fromLatin1(bytes);
    return FaxTextRenderer::write(imagePath, FaxTextRenderer::splitLines(text), error);
}

} // namespace osprel
