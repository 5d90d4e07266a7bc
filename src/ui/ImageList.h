#pragma once
// ImageList1: the window and tray pictures. 1 normal, 2 a notification was sent, 3 a send failed.

#include <QIcon>

namespace osprel {

QIcon imageListIcon(int image);
// One picture of the list at any size (the installed application icons are painted from it).
QPixmap imageListPixmap(int image, int size);

} // namespace osprel
