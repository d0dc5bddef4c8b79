#pragma once

#include "data/jp2maker.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace Korvane {
class XRVJP2kLayer;
}

/// A folder of files that a test makes, with a settings file of the test's own in force while it exists.
class TestFolder
{
public:
    TestFolder();
    ~TestFolder();

    QString path(const QString &name) const { return folder.filePath(name); }
    /// Writes \a bytes and returns the full file name.
    QString write(const QString &name, const jp2maker::FileBytes &bytes) const;
    QString writeText(const QString &name, const QByteArray &text) const;
    /// A JPEG 2000 file made with \a options.
    QString makeImage(const QString &name, const jp2maker::Options &options) const;
    /// Stores "XRVJP2kLayer/<key>".
    static void setSetting(const char *key, const QVariant &value);
    static void removeSetting(const char *key);

private:
    QTemporaryDir folder;
};

/// 8-bit red, green and blue of \a width by \a height cells; the cell in column x and row y is red x, green y, blue 50.
jp2maker::Options colourImage(int width, int height);
QRgb colourOf(int column, int row);

/// The layer painted over \a background: as many pixels as the layer has cells, one cell each.
QImage paintedWhole(Korvane::XRVJP2kLayer &layer, QColor background = Qt::white);
/// Asks the layer for all of itself, one pixel per cell.
void viewWhole(Korvane::XRVJP2kLayer &layer);
