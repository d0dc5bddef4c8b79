#include "pictures.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

namespace Viewer::Pictures {

namespace {

constexpr int kJpegQuality = 92; // per cent; no artefacts that a person sees

QString failed(const QString &fileName, const QString &reason)
{
    return QCoreApplication::translate("Viewer::Pictures", "The picture %1 cannot be written: %2")
        .arg(QDir::toNativeSeparators(fileName), reason);
}

/// Devices and pipes have no ending.
QByteArray formatOf(const QString &fileName)
{
    const QByteArray ending = QFileInfo(fileName).suffix().toLower().toLatin1();
    return ending.isEmpty() ? QByteArray("png") : ending;
}

bool writeAll(QFileDevice *file, const QByteArray &bytes)
{
    return file->open(QIODevice::WriteOnly) && file->write(bytes) == bytes.size() && file->flush();
}

} // namespace

QString checkName(const QString &fileName)
{
    if (QImageWriter::supportedImageFormats().contains(formatOf(fileName)))
        return QString();
    return failed(fileName, QCoreApplication::translate("Viewer::Pictures", "\"%1\" is no format for pictures; "
                                                                            "take png or jpg.")
                                .arg(QString::fromLatin1(formatOf(fileName))));
}

QString write(const QImage &image, const QString &fileName)
{
    QString wrongName = checkName(fileName);
    if (!wrongName.isEmpty())
        return wrongName;
    QBuffer bytes; // only a file can say why it cannot be written
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, formatOf(fileName));
    if (formatOf(fileName).startsWith("jp"))
        writer.setQuality(kJpegQuality);
    if (!writer.write(image))
        return failed(fileName, writer.errorString());
    const QFileInfo info(fileName);
    if (info.exists() && !info.isFile() && !info.isDir()) {
        QFile device(fileName); // or a pipe, whose place must not be taken
        return writeAll(&device, bytes.data()) ? QString() : failed(fileName, device.errorString());
    }
    QSaveFile file(fileName);
    return writeAll(&file, bytes.data()) && file.commit() ? QString() : failed(fileName, file.errorString());
}

} // namespace Viewer::Pictures
