#include "FaxPage.h"

#include "ErrorReport.h"
#include "FaxEngine.h"
#include "Globals.h"
#include "Values.h"

#include <QFile>
#include <QFileInfo>

namespace osprel {

QString faxTextPath()
{
    return g.gstrAppPath + QStringLiteral("/FaxText.txt");
}

QString faxImagePath()
{
    return g.gstrAppPath + QStringLiteral("/FaxImage.fmf");
}

void KillFile(const QString &path)
{
    guarded(QStringLiteral("KillFile"), [&] {
        const QFileInfo info(path);
        if (!info.exists())
            return; // File not found is no error here
        // A file its owner may not write is read-only for everybody: it stays, as it would on a locked file.
        if (!(info.permissions() & QFileDevice::WriteOwner) || !QFile::remove(path))
            raise(Err::PathFileAccessError);
    });
}

void WriteToFile(const QStringList &lines, const RecipientRec &recipient)
{
    guarded(QStringLiteral("WriteToFile"), [&] {
        const QString path = faxTextPath();
        KillFile(path);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            raise(Err::PathFileAccessError);
        QByteArray text = QStringLiteral("To: %1 %2\r\nFax Number: %3\r\n\r\n")
                              .arg(recipient.FirstName, recipient.LastName, recipient.FaxNumber)
                              .toUtf8();
        for (const QString &line : lines)
            text += Trim(line).toUtf8() + "\r\n";
        if (file.write(text) != text.size())
            raise(Err::DeviceIoError);
    });
}

void CreateFaxImage()
{
    guarded(QStringLiteral("CreateFaxImage"), [&] {
        KillFile(faxImagePath());
        QString error;
        if (!FaxEngine::convertText(faxTextPath(), faxImagePath(), &error))
            raise(Err::PathFileAccessError, error);
    });
}

} // namespace osprel
