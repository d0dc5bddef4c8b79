#include "urlfile.h"

#include <QFile>
#include <QStringList>

namespace Korvane {

namespace {

/// No address is longer. What is beyond this in a line is skipped, so that a file that is no text at all costs no
/// memory.
constexpr qint64 kMaxLineLength = 65536;
/// Such files have some lines. What follows is not looked at, however long the file is.
constexpr qint64 kMaxFileLength = 4 * kMaxLineLength;

bool isAddressLine(const QByteArray &line)
{
    return line.startsWith("URL=") || line.startsWith("url=");
}

QByteArray withoutLineEnd(QByteArray line)
{
    if (line.endsWith('\n'))
        line.chop(1);
    if (line.endsWith('\r'))
        line.chop(1);
    return line;
}

bool isServed(const QString &address)
{
    const QString lowered = address.toLower();
    return lowered.startsWith(QLatin1String("xrvp")) || lowered.startsWith(QLatin1String("jpip"));
}

} // namespace

UrlFile readUrlFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {UrlFile::Status::CannotOpen, {}};
    UrlFile result;
    bool atLineStart = true;
    while (!file.atEnd() && file.pos() < kMaxFileLength) {
        const QByteArray line = file.readLine(kMaxLineLength);
        if (line.isEmpty()) // a read error; atEnd() might never come
            break;
        if (atLineStart && isAddressLine(line)) {
            result.address = QString::fromUtf8(withoutLineEnd(line)).split(QLatin1Char('=')).at(1);
            if (!isServed(result.address))
                return {UrlFile::Status::BadProtocol, {}};
        }
        atLineStart = line.endsWith('\n');
    }
    return result;
}

} // namespace Korvane
