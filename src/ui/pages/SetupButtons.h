#pragma once
// The foot of a setup page: its change warning, Accept and Cancel (disabled until something changes).

class QHBoxLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace osprel {

// page: the index of the page's lblChangeWarning (0 communication setup, 1 alarm setup, 2 priority).
QHBoxLayout *setupButtons(QWidget *parent, int page, const char *acceptName, const char *cancelName,
                          QPushButton **accept, QPushButton **cancel, QLabel **warning);
// Marks a page changed (warning shown, buttons enabled) or unchanged.
void showSetupChanged(QPushButton *accept, QPushButton *cancel, QLabel *warning, bool changed);

} // namespace osprel
