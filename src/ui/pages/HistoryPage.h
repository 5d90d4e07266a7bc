#pragma once
// Frame1(0) and Frame1(1): the e-mail or fax history list and its buttons.

#include <QFrame>

class QPushButton;

namespace osprel {

class FormLists;
class ListView;

class HistoryPage : public QFrame
{
    Q_OBJECT
public:
    HistoryPage(int index, FormLists &lists, QWidget *parent = nullptr);

    ListView *lvwHist = nullptr; // lvwHist(index)
    QPushButton *cmdClear = nullptr;
    QPushButton *cmdStatus = nullptr;      // e-mail page only
    QPushButton *cmdViewLogFile = nullptr; // e-mail page only
};

} // namespace osprel
