#pragma once

#include "jp2maker.h"

#include <QDGui/rasterlayer.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <QTemporaryDir>
#include <QVariant>

/// A folder of files that a test makes, with a settings file of the test's own in force while it exists.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();

    QString path(const QString &name = QString()) const { return folder.filePath(name); }
    /// Write a file and return its full name.
    QString write(const QString &name, const jp2maker::FileBytes &bytes) const;
    QString writeText(const QString &name, const QByteArray &text) const;
    /// A JPEG 2000 file made with \a options.
    QString makeImage(const QString &name, const jp2maker::Options &options) const;
    /// Nothing where it cannot be read.
    QByteArray read(const QString &name) const;
    /// Stores "XRVJP2kLayer/<key>".
    static void setSetting(const char *key, const QVariant &value);
    /// What the settings file, and no object in memory, has for it.
    static QVariant storedSetting(const char *key);

private:
    QTemporaryDir folder;
};

/// 8-bit red, green and blue of \a width by \a height cells; the cell in column x and row y is red x, green y, blue 50.
jp2maker::Options colourImage(int width, int height);
QRgb colourOf(int column, int row);
/// Colours that take long to decode, in tiles.
jp2maker::Options noiseImage();

/// The layer painted over \a background, \a zoom pixels wide for each cell.
QImage paintedWhole(Korvane::Map::RasterLayer &layer, QColor background = Qt::white, int zoom = 1);
/// Asks the layer for all of itself, \a zoom pixels per cell.
void viewWhole(Korvane::Map::RasterLayer &layer, int zoom = 1);
