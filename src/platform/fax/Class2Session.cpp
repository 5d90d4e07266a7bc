#include "Class2Session.h"

#include "FaxCodes.h"
#include "FaxDocument.h"
#include "T30Params.h"

namespace osprel {

namespace {
constexpr int kPhaseBMs = 60000;     // +FDT: the modem negotiates and trains, falling back as it must
constexpr int kXonMs = 3000;         // modems that send no XON get the data after this
constexpr int kPageStatusMs = 30000; // +FET / the in-band page end: the post-page exchange, repeated if need be
constexpr int kMaxPageRetries = 2;

// The number after "+Fxxx:" and its list of values.
QList<int> values(const QByteArray &line)
{
    QList<int> out;
    const int colon = line.indexOf(':');
    for (const QByteArray &v : line.mid(colon + 1).split(',')) {
        bool ok = false;
        const int n = v.trimmed().toInt(&ok);
        out.append(ok ? n : -1);
    }
    return out;
}

QString quoted(const QByteArray &line)
{
    const int a = line.indexOf('"'), b = line.lastIndexOf('"');
    if (a >= 0 && b > a)
        return QString::fromLatin1(line.mid(a + 1, b - a - 1)).trimmed();
    return QString::fromLatin1(line.mid(line.indexOf(':') + 1)).trimmed();
}

// EIA-592 / T.32 session parameters: BR and ST values of the session parameters.
int bitRateOf(int br)
{
    static const int rates[] = {2400, 4800, 7200, 9600, 12000, 14400};
    return br >= 0 && br < 6 ? rates[br] : 9600;
}

int scanMsOf(int st, bool fine)
{
    static const int normal[] = {0, 5, 10, 10, 20, 20, 40, 40};
    static const int atFine[] = {0, 5, 5, 10, 10, 20, 20, 40};
    return st >= 0 && st < 8 ? (fine ? atFine[st] : normal[st]) : 20;
}
} // namespace

const char *Class2Session::stateName(State s)
{
    static const char *const n[] = {"Idle",    "Reset",    "SetClass", "Setup",  "Dial", "PageConnect",
                                    "PageXon", "PageSent", "PostPage", "Hangup", "Done"};
    static_assert(sizeof n / sizeof n[0] == int(State::Done) + 1, "one name per state");
    return n[int(s)];
}

Class2Session::Class2Session(SerialLine *line, FaxJob job, QObject *parent) : FaxSession(line, std::move(job), parent)
{
}

const Class2Session::Names &Class2Session::names() const
{
    static const Names n = {"2", "+FLID", "+FDIS", "+FCON", "+FCSI", "+FDCS", "+FHNG", "+FPTS", "+FBOR"};
    return n;
}

QByteArray Class2Session::pageTerminator(bool) const
{
    return QByteArray("\x10\x03", 2);
}

void Class2Session::begin()
{
    enter(job().initString.trimmed().isEmpty() ? State::SetClass : State::Reset);
}

void Class2Session::enter(State s)
{
    m_state = s;
    switch (s) {
    case State::Idle:
    case State::Done:
        return;
    case State::Reset:
        at().atCmd(job().initString.trimmed().toLatin1(), AtResponse::Ok, kCommandMs);
        return;
    case State::SetClass:
        at().atCmd(QByteArray("AT+FCLASS=") + names().cls, AtResponse::Ok, kCommandMs);
        return;
    case State::Setup:
        at().atCmd(m_setup.first(), AtResponse::Ok, kCommandMs);
        return;
    case State::Dial:
        Q_EMIT status(FaxStatus::Dialing, QStringLiteral("Dialing ") + job().number);
        at().atCmd(dialCommand(), AtResponse::Ok, kDialMs, true);
        return;
    case State::PageConnect:
        Q_EMIT pageStarted(m_page + 1, pageCount());
        Q_EMIT status(FaxStatus::SendingPage, QStringLiteral("Sending page %1 of %2").arg(m_page + 1).arg(pageCount()));
        at().atCmd("AT+FDT", AtResponse::Connect, kPhaseBMs);
        return;
    case State::PageXon:
        at().waitForXon(kXonMs);
        return;
    case State::PageSent: {
        const bool last = m_page + 1 >= pageCount();
        const int ms = int(qint64(m_pageData.size()) * 8000 / qMax(2400, m_bitRate)) + kPageStatusMs;
        at().sendData(m_pageData, pageTerminator(last), AtResponse::Ok, ms, job().profile.softwareFlow());
        return;
    }
    case State::PostPage:
        Q_EMIT status(FaxStatus::PageConfirm, QStringLiteral("Page %1 sent, waiting for confirmation").arg(m_page + 1));
        // EIA-592: +FET=0 another page follows (MPS), +FET=2 the last one (EOP).
        at().atCmd(m_page + 1 < pageCount() ? "AT+FET=0" : "AT+FET=2", AtResponse::Ok, kPageStatusMs);
        return;
    case State::Hangup:
        Q_EMIT status(FaxStatus::Disconnecting, QStringLiteral("Hanging up"));
        at().atCmd("ATH0", AtResponse::Ok, kCommandMs);
        return;
    }
}

QList<QByteArray> Class2Session::setupCommands() const
{
    const ModemProfile &profile = job().profile;
    QList<QByteArray> commands{profile.flowCommandFor(2)};
    if (!reportCommand().isEmpty())
        commands << reportCommand();
    commands << QByteArray("AT") + names().bitOrder + '=' + QByteArray::number(qBound(0, profile.bitOrder, 1));
    QByteArray id = job().stationId.trimmed().toLatin1().left(20);
    if (!id.isEmpty()) {
        id.replace('"', '\'');
        commands << QByteArray("AT") + names().localId + "=\"" + id + '"';
    }
    // VR fine as the pages are, BR 14400 (the modem keeps to what it has), 1728 pels, unlimited length, 1-D MH, no
    // ECM, no file transfer, 0 ms scan time: the modem negotiates down from here (EIA-592 / T.32 session
    // parameters).
    const bool fine = pageCount() > 0 && job().document->page(0).fine;
    commands << QByteArray("AT") + names().sessionCap + '=' + (fine ? '1' : '0') + ",5,0,2,0,0,0,0";
    return commands;
}

void Class2Session::fail(int code, const QString &detail, bool hangUp)
{
    setFailure(code, detail + QStringLiteral(" (") + QLatin1String(stateName(m_state)) + QStringLiteral(")"));
    if (hangUp) {
        enter(State::Hangup);
    } else {
        m_state = State::Done;
        finish();
    }
}

bool Class2Session::hungUp(const AtReply &r)
{
    const QByteArray line = r.line(names().hangup);
    if (line.isEmpty())
        return false;
    m_hangupSeen = true;
    const QList<int> v = values(line);
    const int code = v.isEmpty() ? -1 : v.first();
    if (code == 0)
        return false;
    fail(code > 0 ? code : FaxError::PhaseBError, QStringLiteral("the modem hung up: ") + QString::fromLatin1(line));
    return true;
}

void Class2Session::onReply(const AtReply &r)
{
    if (m_state != State::Hangup && m_state != State::Done && hungUp(r))
        return;
    const auto answered = [&r](const char *what) {
        return QLatin1String(what) + QStringLiteral(" answered ") + QLatin1String(atResponseName(r.result));
    };
    switch (m_state) {
    case State::Idle:
    case State::Done:
        return;
    case State::Reset:
        if (r.is(AtResponse::Ok))
            enter(State::SetClass);
        else
            fail(r.is(AtResponse::Timeout) ? FaxError::NoResponse : FaxError::ModemError, answered("init string"),
                 false);
        return;
    case State::SetClass:
        if (r.is(AtResponse::Ok)) {
            m_setup = setupCommands();
            enter(State::Setup);
        } else {
            fail(r.is(AtResponse::Timeout) ? FaxError::NoResponse : FaxError::ModemError,
                 QStringLiteral("the modem refuses ") + className(), false);
        }
        return;
    case State::Setup:
        // A modem that does not take one of these can still send the fax with its own setting.
        if (!r.is(AtResponse::Ok))
            Q_EMIT notice(QString::fromLatin1(m_setup.first()) + QStringLiteral(" not accepted"));
        m_setup.removeFirst();
        enter(m_setup.isEmpty() ? State::Dial : State::Setup);
        return;
    case State::Dial:
        if (!r.is(AtResponse::Ok)) {
            fail(dialFailure(r.result), answered("dial"), !r.is(AtResponse::Busy));
            return;
        }
        if (!r.line(names().remoteId).isEmpty())
            m_remoteId = quoted(r.line(names().remoteId));
        Q_EMIT status(FaxStatus::Negotiating, QStringLiteral("Connected to ") + m_remoteId);
        enter(State::PageConnect);
        return;
    case State::PageConnect:
        if (!r.is(AtResponse::Connect)) {
            fail(FaxError::PhaseBError, answered("+FDT"));
            return;
        }
        onSessionParameters(r);
        enter(State::PageXon);
        return;
    case State::PageXon:
        if (r.is(AtResponse::Xon) || r.is(AtResponse::Timeout))
            enter(State::PageSent);
        else
            fail(FaxError::PhaseCError, answered("+FDT"));
        return;
    case State::PageSent:
        if (!r.is(AtResponse::Ok)) {
            fail(FaxError::PhaseCError, answered("page data"));
            return;
        }
        if (usesPostPageCommand())
            enter(State::PostPage);
        else
            onPageStatus(r);
        return;
    case State::PostPage:
        if (!r.is(AtResponse::Ok)) {
            fail(FaxError::PhaseDError, answered("+FET"));
            return;
        }
        onPageStatus(r);
        return;
    case State::Hangup:
        m_state = State::Done;
        finish();
        return;
    }
}

void Class2Session::onSessionParameters(const AtReply &r)
{
    // VR, BR, WD, LN, DF, EC, BF, ST as the modem negotiated them. A modem that reports none (no +FNR) leaves them
    // unknown: the page goes at its own resolution and the log says the speed is not known rather than guess it.
    const QByteArray reported = r.line(names().session);
    const QList<int> v = values(reported);
    const bool pageFine = pageCount() > 0 && job().document->page(m_page).fine;
    m_fine = !reported.isEmpty() && v.size() > 0 && v.at(0) >= 0 ? v.at(0) != 0 : pageFine;
    m_bitRate = !reported.isEmpty() && v.size() > 1 ? bitRateOf(v.at(1)) : 0;
    m_minScanMs = !reported.isEmpty() && v.size() > 7 ? scanMsOf(v.at(7), m_fine) : 0;
    if (!m_negotiated) {
        m_negotiated = true;
        if (reported.isEmpty())
            Q_EMIT notice(QStringLiteral("The modem reported no session parameters (") +
                          QLatin1String(names().session) + QStringLiteral(")"));
        Q_EMIT negotiated(m_bitRate > 0 ? QString::number(m_bitRate) : QStringLiteral("unknown"),
                          m_fine ? QStringLiteral("Fine") : QStringLiteral("Normal"), m_remoteId);
    }
    const ModemProfile &profile = job().profile;
    m_pageData = job().document->encodePage(m_page, m_fine, T30Params::minBytesPerLine(m_bitRate, m_minScanMs),
                                            !profile.modemAppendsRtc);
    if (profile.bitOrder == 1)
        m_pageData = FaxDocument::reverseBits(m_pageData);
}

void Class2Session::onPageStatus(const AtReply &r)
{
    // Post-page response (EIA-592 / T.32 +FPTS / +FPS): 1 MCF, 2 RTN, 3 RTP, 4 PIN, 5 PIP.
    const QList<int> v = values(r.line(names().pageStatus));
    const int status = v.isEmpty() ? -1 : v.first();
    const bool last = m_page + 1 >= pageCount();
    Q_EMIT this->status(
        FaxStatus::PageConfirm,
        QStringLiteral("Page %1: %2 %3").arg(m_page + 1).arg(QLatin1String(names().pageStatus)).arg(status));
    switch (status) {
    case 1:
    case 3:
    case 5:
        m_pageRetries = 0;
        ++m_page;
        if (last)
            enter(State::Hangup);
        else
            enter(State::PageConnect);
        return;
    case 2:
    case 4:
        if (++m_pageRetries > kMaxPageRetries) {
            fail(FaxError::PageRejected, QStringLiteral("page %1 rejected").arg(m_page + 1));
            return;
        }
        Q_EMIT notice(QStringLiteral("Page %1 not accepted, sending it again").arg(m_page + 1));
        enter(State::PageConnect);
        return;
    default:
        fail(last ? FaxError::EopInvalidResponse : FaxError::MpsInvalidResponse,
             QStringLiteral("no page status from the modem"));
        return;
    }
}

} // namespace osprel
