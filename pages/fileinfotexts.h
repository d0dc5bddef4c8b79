#pragma once

#include <xrv60/plktypes.h>

#include <QString>

/// How the page of the file information puts what the record says.
namespace FileInfoTexts {

/// Of the cells of all bands.
quint64 uncompressedBytes(const PLKFileInfo &info);
QString unitsText(PLKCellSizeUnits units);
/// Null gives an empty text.
QString wideText(const wchar_t *text);

} // namespace FileInfoTexts
