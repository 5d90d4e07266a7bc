#include "clsAlertCls.h"

#include "ErrorReport.h"
#include "FormLists.h"
#include "Globals.h"
#include "ServerForm.h"
#include "Values.h"

namespace osprel {

namespace {
enum Command : qint16 { Link = 1, UnlinkWhenIdle, UnlinkNow, HeadingWord, CategoryCaptions, RawAlerts, AlertLabels };

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
        Q_EMIT AlertReady(strAlertString);
        result = true;
    });
    return result;
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
            if (strFormName == g.gstrLinkedForm && !IsSendInProgress()) {
                unlink();
                result = true;
            }
            break;
        case UnlinkNow:
            if (strFormName == g.gstrLinkedForm) {
                unlink();
                result = true;
            }
            break;
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
    });
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
