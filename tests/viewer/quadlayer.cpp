#include "quadlayer.h"

#include <QDGui/application.h>
#include <QDGui/geoimage.h>
#include <QDGui/geopainter.h>

#include <QFile>
#include <QFileInfo>
#include <QTimer>

namespace {

constexpr int kSlowMs = 150;

} // namespace

QuadLayer::QuadLayer()
    : RasterLayer(nullptr)
{
}

bool QuadLayer::setDataSource(QString newSource)
{
    valid = false;
    QFile file(newSource);
    if (!file.open(QIODevice::ReadOnly)) {
        lastError = QStringLiteral("no such quad");
        return false;
    }
    const QList<QByteArray> words = file.readLine().simplified().split(' ');
    if (words.size() < 6 || words.at(0) != "QUAD") {
        lastError = QStringLiteral("not a quad");
        return false;
    }
    source = newSource;
    cells = QSize(words.at(1).toInt(), words.at(2).toInt());
    x = words.at(3).toDouble();
    y = words.at(4).toDouble();
    cellSize = words.at(5).toDouble();
    mode = QString::fromLatin1(words.value(6));
    setDescription(QFileInfo(newSource).fileName());
    setEpsgCode(32633);
    lastError.clear();
    valid = true;
    return true;
}

QRectF QuadLayer::getBounds() const
{
    return QRectF(x, y, cells.width() * cellSize, -cells.height() * cellSize);
}

void QuadLayer::setView(int, int, double, double, double, double)
{
    percent = 50;
    if (mode == QLatin1String("broken"))
        Korvane::Application::logMessage(QStringLiteral("The quad is broken."), Korvane::Application::LogError,
                                         QDateTime::currentDateTime());
    if (mode == QLatin1String("slow"))
        QTimer::singleShot(kSlowMs, this, &QuadLayer::complete);
    else if (mode != QLatin1String("never"))
        complete();
}

void QuadLayer::complete()
{
    percent = 100;
    refresh(0, 0, 0, 0);
}

void QuadLayer::paint(Korvane::GeoPainter &painter, const QRectF *world, const QRect *device)
{
    if (percent < 100)
        return;
    QImage quad(2, 2, QImage::Format_ARGB32);
    quad.setPixelColor(0, 0, Qt::red);
    quad.setPixelColor(1, 0, Qt::green);
    quad.setPixelColor(0, 1, Qt::blue);
    quad.setPixelColor(1, 1, tint);
    const QRectF bounds = getBounds();
    const Korvane::GeoImage image(quad, bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
    image.paint(painter, device->left(), device->top(), device->left() + device->width(),
                device->top() + device->height(), world->left(), world->top(), world->left() + world->width(),
                world->top() + world->height());
}
