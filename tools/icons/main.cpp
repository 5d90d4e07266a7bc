// osprel-icons: paints the application icon (the window's normal picture) into a hicolor icon tree, one PNG per
// size, for data/icons. Usage: osprel-icons OUTPUT_DIR

#include "ImageList.h"

#include <QDir>
#include <QGuiApplication>
#include <QPixmap>
#include <cstdio>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: osprel-icons OUTPUT_DIR\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    bool ok = true;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString folder = QStringLiteral("%1/hicolor/%2x%2/apps").arg(out).arg(size);
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("/org.osprel.EmailFax.png");
        const bool saved = osprel::imageListPixmap(1, size).save(path);
        std::printf("%s %s\n", saved ? "wrote" : "FAILED", path.toLocal8Bit().constData());
        ok &= saved;
    }
    return ok ? 0 : 1;
}
