#pragma once
// The mail password and the OAuth2 client secret, kept out of the database and the log: in the desktop's secret
// service through qtkeychain where a keyring answers, otherwise in a file in the data folder that only the user
// may read (mode 0600).

#include <QObject>
#include <QString>
#include <functional>

namespace osprel {

class SecretStore : public QObject
{
    Q_OBJECT
public:
    // folder: the data folder, for the fallback file. useKeyring false keeps everything in the file.
    explicit SecretStore(const QString &folder = QString(), bool useKeyring = true, QObject *parent = nullptr);
    void setFolder(const QString &folder) { m_folder = folder; }

    // Stores (an empty value removes) one secret under its name ("password", "client-secret").
    void write(const QString &name, const QString &value);
    // Reads one secret; done gets it (empty when there is none), from the event loop.
    void read(const QString &name, std::function<void(const QString &)> done);

    QString filePath() const;

private:
    QString readFile(const QString &name) const;
    void writeFile(const QString &name, const QString &value);

    QString m_folder;
    bool m_useKeyring;
};

} // namespace osprel
