#pragma once

#include <QString>

/// Folder of the SDK's geodetic data: two levels above the folder of the executable with the full file name \a
/// executable, whose parts \a separator divides.
QString geodeticDataPath(const QString &executable, QChar separator);
