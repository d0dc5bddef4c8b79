#include "pictures.h"

#include <QCoreApplication>
#include <QDir>
#include <QImageWriter>
#include <QSaveFile>

namespace Viewer {
namespace Pictures {

namespace {

QString failed(const QString &fileName, const QString &reason)
{
    return QCoreApplication::translate("Viewer::Pictures", "The picture %1 cannot be written: %2")
        .arg(QDir::toNativeSeparators(fileName), reason);
}

} // namespace

QString writePng(const QImage &image, const QString &fileName)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return failed(fileName, file.errorString());
    QImageWriter writer(&file, "png");
    if (!writer.write(image)) {
        file.cancelWriting();
        return failed(fileName, writer.errorString());
    }
    return file.commit() ? QString() : failed(fileName, file.errorString());
}

} // namespace Pictures
} // namespace Viewer
