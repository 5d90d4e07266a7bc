#pragma once
// ImageList1: the window and tray pictures. 1 normal, 2 a notification was sent, 3 a send failed.

#include <QIcon>

namespace osprel {

QIcon imageListIcon(int image);

} // namespace osprel
