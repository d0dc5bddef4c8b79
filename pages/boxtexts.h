#pragma once

#include <xrv60/plkstream.h>
#include <xrv60/plktypes.h>

#include <QString>

/// The texts of a file's boxes, read one after the other.
class BoxTexts
{
public:
    /// \a stream is the file's, or null; it must outlive this.
    explicit BoxTexts(PLK::CIOStream *stream);

    /// The content of \a box up to a zero byte, or \a unreadable. A box that cannot be reached has that of the box
    /// before.
    QString read(const PLKXMLBox &box, const QString &unreadable);
    /// The four characters of a box type.
    static QString typeName(quint32 type);

private:
    PLK::CIOStream *const stream;
    QString text;
};
