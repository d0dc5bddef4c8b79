#pragma once

#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>

namespace Viewer {

/// What the person asked for on the command line. Its texts are English everywhere: scripts read them too.
struct CommandLine
{
    enum class Outcome { Run, Help, Version, Error };

    Outcome outcome = Outcome::Run;
    /// With Outcome::Error one sentence, with Help and Version what to print.
    QString text;

    QStringList sources; ///< Files and addresses, as given.
    QString screenshotFile;
    QString windowFile;
    QString settingsFile;
    QSize pictureSize{1024, 768}; ///< Pixels.
    bool hasPictureSize = false;  ///< Whether the size was given.
    QRectF worldRect;             ///< From its top-left corner, negative height. Null when not given.
    bool describe = false;

    /// Whether the program does its work and ends, without waiting for a person.
    bool isBatch() const { return describe || !screenshotFile.isEmpty() || !windowFile.isEmpty(); }

    /// \a arguments as the system gave them, the program's name first.
    static CommandLine parse(const QStringList &arguments);

    /// "WxH", both 1 to kMaxSide. An invalid size otherwise.
    static QSize parseSize(const QString &text);
    /// "X1,Y1,X2,Y2", top left and bottom right: X1 < X2 and Y1 > Y2, all finite. A null rectangle otherwise.
    static QRectF parseWorldRect(const QString &text);

    /// Largest width or height of a picture, in pixels: the limit of the toolkit's raster painter.
    static constexpr int kMaxSide = 32767;
};

} // namespace Viewer
