#include "ImageList.h"

#include <QPainter>
#include <QPixmap>

namespace osprel {

namespace {
QPixmap draw(int size, const QColor &ring, const QColor &mark, int image)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal m = size * 0.08;
    painter.setPen(QPen(ring, size * 0.1));
    painter.setBrush(QColor(250, 250, 245));
    painter.drawEllipse(QRectF(m, m, size - 2 * m, size - 2 * m));
    painter.setPen(QPen(mark, size * 0.12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (image == 2) { // a tick
        painter.drawPolyline(QPolygonF(
            {QPointF(size * 0.3, size * 0.52), QPointF(size * 0.45, size * 0.68), QPointF(size * 0.72, size * 0.34)}));
    } else if (image == 3) { // a cross
        painter.drawLine(QPointF(size * 0.33, size * 0.33), QPointF(size * 0.67, size * 0.67));
        painter.drawLine(QPointF(size * 0.67, size * 0.33), QPointF(size * 0.33, size * 0.67));
    } else { // an envelope
        const QRectF body(size * 0.28, size * 0.35, size * 0.44, size * 0.3);
        painter.setPen(QPen(mark, size * 0.06));
        painter.drawRect(body);
        painter.drawPolyline(
            QPolygonF({body.topLeft(), QPointF(body.center().x(), body.center().y() + size * 0.02), body.topRight()}));
    }
    return pixmap;
}
} // namespace

QIcon imageListIcon(int image)
{
    // Painted once each: the tray flashes by switching between them on every status refresh.
    static QIcon cache[4];
    const int slot = image >= 1 && image <= 3 ? image : 1;
    if (!cache[slot].isNull())
        return cache[slot];
    QIcon icon;
    for (int size : {16, 22, 32, 48, 64})
        icon.addPixmap(imageListPixmap(slot, size));
    cache[slot] = icon;
    return icon;
}

QPixmap imageListPixmap(int image, int size)
{
    const QColor ring = image == 2 ? QColor(40, 140, 60) : image == 3 ? QColor(200, 40, 40) : QColor(40, 90, 160);
    return draw(size, ring, ring, image);
}

} // namespace osprel
