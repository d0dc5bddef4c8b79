#include "testfolder.h"

#include "files.h"

#include <QDGui/application.h>
#include <QDGui/geopainter.h>

#include <QSettings>

#include <memory>
#include <random>

using Korvane::Application;

static QString keyOf(const char *key)
{
    return QLatin1String("XRVJP2kLayer/") + QLatin1String(key);
}

TestFolder::TestFolder()
{
    Application::instance()->setSettingsFile(path(QStringLiteral("settings.ini")));
}

TestFolder::~TestFolder()
{
    Application::instance()->setSettingsFile(QString());
}

QString TestFolder::write(const QString &name, const jp2maker::FileBytes &bytes) const
{
    return writeText(name, asByteArray(bytes));
}

QString TestFolder::writeText(const QString &name, const QByteArray &text) const
{
    writeFile(path(name), text);
    return path(name);
}

QString TestFolder::makeImage(const QString &name, const jp2maker::Options &options) const
{
    return write(name, jp2maker::make(options));
}

QByteArray TestFolder::read(const QString &name) const
{
    return readFile(path(name));
}

void TestFolder::setSetting(const char *key, const QVariant &value)
{
    Application::instance()->settings()->setValue(keyOf(key), value);
}

QVariant TestFolder::storedSetting(const char *key)
{
    QSettings *settings = Application::instance()->settings();
    settings->sync();
    return QSettings(settings->fileName(), QSettings::IniFormat).value(keyOf(key));
}

jp2maker::Options colourImage(int width, int height)
{
    jp2maker::Options options;
    options.width = width;
    options.height = height;
    options.components.assign(3, jp2maker::Component());
    options.cell = [](int component, int x, int y) {
        const int cells[] = {x % 256, y % 256, 50};
        return cells[component];
    };
    return options;
}

QRgb colourOf(int column, int row)
{
    return qRgb(column % 256, row % 256, 50);
}

jp2maker::Options noiseImage()
{
    jp2maker::Options options = colourImage(1500, 1200);
    options.tileWidth = options.tileHeight = 256;
    const auto random = std::make_shared<std::mt19937>(1);
    options.cell = [random](int, int, int) { return int((*random)() & 255); };
    return options;
}

QImage paintedWhole(Korvane::Map::RasterLayer &layer, QColor background, int zoom)
{
    QImage picture(layer.getSize() * zoom, QImage::Format_ARGB32);
    picture.fill(background);
    const QRectF world = layer.getBounds();
    const QRect device = picture.rect();
    Korvane::GeoPainter painter(&picture, world, device);
    layer.paint(painter, &world, &device);
    painter.end();
    return picture;
}

void viewWhole(Korvane::Map::RasterLayer &layer, int zoom)
{
    const QRectF bounds = layer.getBounds();
    const QSize size = layer.getSize() * zoom;
    layer.setView(size.width(), size.height(), bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}
