#pragma once
// The alert a chamber program hands in, as the benches send it: all 21 values, with its own number and category.

#include <QString>

// Category numbers as a chamber program sends them.
enum AlertCategory {
    CommError = 0,
    ControllerError = 1,
    ApplicationError = 2,
    CommandResponseError = 3,
    CommandParseError = 4,
    ChamberAlarm = 5,
    ProgramAlarm = 6,
    GeneralStatus = 7,
};

// A walk-in chamber's high-temperature alarm text with the given alert number and category.
QString chamberAlert(int number, int category);
