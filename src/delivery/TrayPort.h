#pragma once
// What the tray state changes on the window: its icon, its caption, and the tray icon that mirrors both.

#include <QString>

namespace osprel {

class TrayPort
{
public:
    virtual ~TrayPort() = default;
    virtual void setWindowImage(int image) = 0; // 1 normal, 2 sent, 3 failed
    virtual void setCaption(const QString &caption) = 0;
    virtual void SysTrayUpdate() = 0;
};

} // namespace osprel
