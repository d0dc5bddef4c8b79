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

QString failed(const QString &fileName, const QString &reason)
{
    return QCoreApplication::translate("Viewer::Pictures", "The picture %1 cannot be written: %2")
        .arg(QDir::toNativeSeparators(fileName), reason);
}

bool writeAll(QFileDevice *file, const QByteArray &bytes)
{
    return file->open(QIODevice::WriteOnly) && file->write(bytes) == bytes.size() && file->flush();
}

} // namespace

QString writePng(const QImage &image, const QString &fileName)
{
    QBuffer png; // only a file can say why it cannot be written
    png.open(QIODevice::WriteOnly);
    QImageWriter writer(&png, "png");
    if (!writer.write(image))
        return failed(fileName, writer.errorString());
    const QFileInfo info(fileName);
    if (info.exists() && !info.isFile() && !info.isDir()) {
        QFile device(fileName); // or a pipe, whose place must not be taken
        return writeAll(&device, png.data()) ? QString() : failed(fileName, device.errorString());
    }
    QSaveFile file(fileName);
    return writeAll(&file, png.data()) && file.commit() ? QString() : failed(fileName, file.errorString());
}

} // namespace Viewer::Pictures
