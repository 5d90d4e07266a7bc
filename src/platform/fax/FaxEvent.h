#pragma once
// What one progress event of the fax engine carries: its kind and the fields that kind fills in.

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace osprel {

struct FaxEvent
{
    enum Kind {
        StatusKind = 1,     // statusCode, statusText
        NegotiatedKind = 2, // speed, resolution, remoteId
        PagesKind = 3,      // page, pageCount
        StartTimeKind = 4,  // startTime
        EndTimeKind = 5,    // endTime
        CompletionKind = 6, // errorCode/errorText, completionCode/completionText and all of the above
        FileNameKind = 7,   // fileName
        MessageKind = 8,    // statusText: a notice of the engine (retraining, a page sent again)
    };

    int kind = StatusKind;
    int statusCode = 0;
    QString statusText;
    QString speed;
    QString resolution;
    QString remoteId;
    int page = 0, pageCount = 0;
    QDateTime startTime, endTime;
    QString fileName;
    int errorCode = 0;
    QString errorText;
    int completionCode = 0;
    QString completionText;
};

} // namespace osprel

Q_DECLARE_METATYPE(osprel::FaxEvent)
