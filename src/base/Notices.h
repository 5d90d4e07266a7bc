#pragma once
// How the logic tells the user something: the program's own message box (a title, a text, an OK button) and the
// message panel at the foot of the window. The main window shows both.

#include <QString>

namespace osprel {

class Notices
{
public:
    virtual ~Notices() = default;
    virtual void showMessage(const QString &title, const QString &text) = 0;
    virtual void showPanelMessage(const QString &text) = 0;
};

} // namespace osprel
