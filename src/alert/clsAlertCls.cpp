#include "clsAlertCls.h"

#include "ErrorReport.h"
#include "FormLists.h"
#include "Globals.h"
#include "ServerForm.h"
#include "Log.h"
#include "Values.h"

namespace osprel {

namespace {
enum Command : qint16 { Link = 1, UnlinkWhenIdle, UnlinkNow, HeadingWord, CategoryCaptions, RawAlerts, AlertLabels };

// Commands that change the link or the settings come from the linked program only.
bool fromLinked(const clsAlertCls *obj, const QString &formName)
{
    return !g.gstrLinkedForm.isEmpty() && formName == g.gstrLinkedForm && g.gfrmServerForm &&
           g.gfrmServerForm->isLinkedObject(obj);
}

void unlink()
{
    g.gblnServerLinked = false;
    g.gstrLinkedForm.clear();
}

ServerForm &serverForm()
{
    if (!g.gfrmServerForm)
        raise(Err::ObjectNotSet);
    return *g.gfrmServerForm;
}
} // namespace

clsAlertCls::clsAlertCls()
{
    guarded(QStringLiteral("Class_Initialize"), [] { g.gintAlertClsCount = addInt(g.gintAlertClsCount, 1); });
}

clsAlertCls::~clsAlertCls()
{
    guarded(QStringLiteral("Class_Terminate"), [] { g.gintAlertClsCount = addInt(g.gintAlertClsCount, -1); });
}

void clsAlertCls::Release()
{
    if (--m_refs <= 0)
        deleteLater();
}

bool clsAlertCls::SendAlert(const QString &strAlertString)
{
    bool result = false;
    guarded(QStringLiteral("SendAlert"), [&] {
        if (strAlertString.isEmpty())
            return;
        // UTF-8 never takes fewer bytes than characters, nor more than three per UTF-16 unit.
        const qint64 limit = maxAlertBytes();
        if (strAlertString.size() * 3 > limit) {
            const qint64 bytes = strAlertString.toUtf8().size();
            if (bytes > limit) {
                DumpStr(QStringLiteral("Alert of ") + QString::number(bytes) +
                        QStringLiteral(" bytes refused: the limit is ") + QString::number(limit) +
                        QStringLiteral(" bytes."));
                return;
            }
        }
        ServerForm &form = serverForm();
        // An object that is not linked has nobody to deliver for: its alert is refused, not dropped.
        if (!form.isLinkedObject(this) || !form.takeAlert(strAlertString))
            return;
        Q_EMIT AlertReady(strAlertString);
        result = true;
    });
    return result;
}

void clsAlertCls::whenStored(std::function<void(bool)> callback)
{
    if (!g.gfrmServerForm) {
        callback(false);
        return;
    }
    g.gfrmServerForm->whenStored(std::move(callback));
}

bool clsAlertCls::Heartbeat(quint32 seconds)
{
    bool result = false;
    guarded(QStringLiteral("Heartbeat"), [&] {
        if (seconds == 0 || !serverForm().isLinkedObject(this))
            return;
        Q_EMIT HeartbeatPromised(seconds);
        result = true;
    });
    return result;
}

qint64 maxAlertBytes()
{
    bool ok = false;
    const qint64 limit = qEnvironmentVariable("OSPREL_MAX_ALERT_BYTES").toLongLong(&ok);
    return ok && limit > 0 ? limit : 65536;
}

bool clsAlertCls::ServerCmd(const QString &strFormName, qint16 intCmd, const QVariant &CustomStr)
{
    bool result = false;
    guarded(QStringLiteral("ServerCmd"), QStringLiteral(", Form = ") + strFormName, [&] {
        switch (intCmd) {
        case Link:
            if (g.gstrLinkedForm.isEmpty() && serverForm().Open_Link(this)) {
                g.gstrLinkedForm = strFormName;
                result = true;
            }
            break;
        case UnlinkWhenIdle:
            // Work still waiting in a queue counts as being sent: an idle unlink never strands an alert.
            if (fromLinked(this, strFormName) && !IsSendInProgress() && !serverForm().queuesBusy()) {
                unlink();
                result = true;
            }
            break;
        case UnlinkNow:
            if (fromLinked(this, strFormName)) {
                unlink();
                result = true;
            }
            break;
        default:
            if (fromLinked(this, strFormName))
                result = setting(intCmd, CustomStr);
            break;
        }
    });
    return result;
}

bool clsAlertCls::setting(qint16 intCmd, const QVariant &CustomStr)
{
    bool result = false;
    {
        switch (intCmd) {
        case HeadingWord: {
            g.gstrHeaderWord = Trim(customString(CustomStr));
            if (!g.gstrHeaderWord.isEmpty()) {
                FormLists &lists = serverForm().lists();
                const QString name = g.gstrHeaderWord + QStringLiteral(" Name");
                lists.lvwSendEmailQue.setHeader(4, name);
                lists.lvwSendFaxQue.setHeader(4, name);
                for (ListStore &history : lists.lvwHist) {
                    history.setHeader(4, name);
                    history.setHeader(6, g.gstrHeaderWord + QStringLiteral(" Error"));
                }
            }
            result = true;
            break;
        }
        case CategoryCaptions: {
            const QStringList pieces = Split(Trim(customString(CustomStr)), QStringLiteral(","));
            for (int i = 0; i < 8; ++i)
                serverForm().setCategoryCaption(i, element(pieces, i));
            result = true;
            break;
        }
        case RawAlerts:
            g.gblnRawAlerts = true;
            result = true;
            break;
        case AlertLabels: {
            const QStringList pieces = Split(Trim(customString(CustomStr)), QStringLiteral(","));
            for (int i = 0; i <= 20; ++i)
                g.gstrAlertLabels[i] = element(pieces, i);
            result = true;
            break;
        }
        default:
            break;
        }
    }
    return result;
}

void clsAlertCls::SendAlertStatus(qint32 lngAlertID, qint16 intEmailFax, bool blnStatus)
{
    guarded(QStringLiteral("SendAlertStatus"), [&] { Q_EMIT AlertStatus(lngAlertID, intEmailFax, blnStatus); });
}

void clsAlertCls::SendServerStatus(bool blnBusy, qint16 intEmailStatus, qint16 intFaxStatus)
{
    guarded(QStringLiteral("SendServerStatus"), [&] { Q_EMIT ServerStatus(blnBusy, intEmailStatus, intFaxStatus); });
}

void clsAlertCls::SendServerClosing()
{
    guarded(QStringLiteral("SendServerClosing"), [&] { Q_EMIT ServerClosing(); });
}

void clsAlertCls::SendAlarmAcknowledged(const QString &ticket, const QString &who)
{
    guarded(QStringLiteral("SendAlarmAcknowledged"), [&] { Q_EMIT AlarmAcknowledged(ticket, who); });
}

bool clsAlertCls::Acknowledge(const QString &ticket, const QString &who, const QString &comment, const QString &how)
{
    bool result = false;
    guarded(QStringLiteral("Acknowledge"), [&] { result = serverForm().acknowledgeTicket(ticket, who, comment, how); });
    return result;
}

bool clsAlertCls::Clear(const QString &ticket, const QString &how)
{
    bool result = false;
    guarded(QStringLiteral("Clear"), [&] {
        // The bus call names nobody: the linked chamber program is named by its form, anyone else not at all.
        ServerForm &form = serverForm();
        const QString who = form.isLinkedObject(this) ? g.gstrLinkedForm : QString();
        result = form.clearTicket(ticket, who, how);
    });
    return result;
}

QString customString(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return QString();
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
    case QMetaType::Double:
        return value.toString();
    default:
        raise(Err::TypeMismatch);
    }
}

} // namespace osprel
