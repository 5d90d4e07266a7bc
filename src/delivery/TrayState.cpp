#include "TrayState.h"

#include "ErrorReport.h"
#include "Globals.h"
#include "TrayPort.h"

namespace osprel {

namespace {
enum Image { Normal = 1, Sent = 2, Failed = 3 };
enum FlashMode : qint16 { NoFlash = 0, FlashSent = 1, FlashFailed = 2 };
} // namespace

void TrayState::IconUpdate()
{
    guarded(QStringLiteral("IconUpdate"), [&] {
        const qint16 e = g.gintEmailSendState, f = g.gintFaxSendState;
        // Each later match overrides an earlier one: failed outranks sent, which outranks sending.
        if (e == 0 && f == 0)
            m_state = 0;
        if (e == 1 || f == 1)
            m_state = 1;
        if (e == 3 || f == 3)
            m_state = 3;
        if (e == 4 || f == 4)
            m_state = 4;

        qint16 &mode = g.gintFlashMode;
        switch (m_state) {
        case 0:
            if (mode == FlashSent || mode == FlashFailed)
                Flash(mode);
            break;
        case 1:
            if (mode == NoFlash) {
                m_port.setWindowImage(Normal);
                m_port.setCaption(QStringLiteral("Sending Message"));
            } else if (mode == FlashSent) {
                m_port.setCaption(QStringLiteral("Messages Sent: Sending New"));
                Flash(FlashSent);
            } else if (mode == FlashFailed) {
                m_port.setCaption(QStringLiteral("Send Failed: Sending New"));
                Flash(FlashFailed);
            }
            break;
        case 3:
            if (mode == NoFlash) {
                m_port.setCaption(QStringLiteral("Messages Sent"));
                mode = FlashSent;
            }
            if (mode == FlashSent)
                m_port.setCaption(QStringLiteral("Messages Sent"));
            else if (mode == FlashFailed)
                m_port.setCaption(QStringLiteral("Send Failed: Other Messages Sent"));
            break;
        case 4:
            // A failure while the sent flashing runs does not switch it to failed.
            if (mode == NoFlash) {
                m_port.setCaption(QStringLiteral("Send Failed"));
                mode = FlashFailed;
            }
            if (mode == FlashFailed)
                m_port.setCaption(QStringLiteral("Send Failed"));
            break;
        default:
            break;
        }
        if (m_state != m_shown) {
            m_port.SysTrayUpdate();
            m_shown = m_state;
        }
    });
}

void TrayState::Flash(qint16 mode)
{
    guarded(QStringLiteral("Flash"), [&] {
        if (m_toggle == 0) {
            m_port.setWindowImage(Normal);
            m_toggle = 1;
        } else if (m_toggle == 1) {
            m_port.setWindowImage(mode == FlashSent ? Sent : Failed);
            m_toggle = 0;
        }
        m_port.SysTrayUpdate();
    });
}

} // namespace osprel
