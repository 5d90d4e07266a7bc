#pragma once
// The e-mail lines of the diagnostic log: every line goes to the e-mail status list, and each message is framed in
// 47-character star banners.

#include <QString>

namespace osprel {

// Logs one line in the e-mail status list (and the log file).
void emailLog(const QString &text);

// An empty line, then "Sending New EMail" between two star lines.
void logSendingBanner();

// "Completed EMail" between star lines, the outcome line ("*** E-Mail sent successfully." or
// "*** E-Mail send failed."), a star line and an empty line.
void logCompletedBanner(bool sent);

} // namespace osprel
