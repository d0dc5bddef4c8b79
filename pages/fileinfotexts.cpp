#include "fileinfotexts.h"

namespace FileInfoTexts {

namespace {

quint64 bytesPerCell(PLKCellType type)
{
    switch (type) {
    case PLKCT_UINT16:
    case PLKCT_INT16:
        return 2;
    case PLKCT_UINT32:
    case PLKCT_INT32:
    case PLKCT_FLOAT:
        return 4;
    case PLKCT_UINT64:
    case PLKCT_INT64:
    case PLKCT_DOUBLE:
        return 8;
    default:
        return 1;
    }
}

} // namespace

quint64 uncompressedBytes(const PLKFileInfo &info)
{
    return bytesPerCell(info.eCellType) * info.nBands * info.nSizeY * info.nSizeX;
}

QString unitsText(PLKCellSizeUnits units)
{
    switch (units) {
    case PLK_UNITS_INVALID:
        return QStringLiteral("Invalid");
    case PLK_UNITS_METERS:
        return QStringLiteral("Meters");
    case PLK_UNITS_DEGREES:
        return QStringLiteral("Degrees");
    case PLK_UNITS_FEET:
        return QStringLiteral("Feet");
    }
    return QStringLiteral("Unknown");
}

QString wideText(const wchar_t *text)
{
    return text ? QString::fromWCharArray(text) : QString();
}

} // namespace FileInfoTexts
