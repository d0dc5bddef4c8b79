#include "geodeticdata.h"

QString geodeticDataPath(const QString &executable, QChar separator)
{
    // A name without a separator stays whole: left() takes everything for -1.
    QString folder = executable.left(executable.lastIndexOf(separator));
    if (folder.endsWith(separator))
        folder.chop(1);
    const QString up = separator + QLatin1String("..");
    return folder + up + up;
}
