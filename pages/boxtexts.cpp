#include "boxtexts.h"

#include <QtEndian>

#include <memory>
#include <new>
#include <optional>

namespace {

/// In bytes: the characters that a string of the toolkit can hold.
constexpr quint64 kMaxBoxBytes = (quint64(1) << 30) - 64;

/// What \a stream holds from where it stands; nothing when it cannot be read.
std::optional<QString> readText(PLK::CIOStream &stream, quint64 length)
{
    if (length > kMaxBoxBytes || length > stream.GetSize())
        return std::nullopt;
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[length + 1]);
    if (!buffer || !stream.Read(buffer.get(), length))
        return std::nullopt;
    buffer[length] = '\0';
    try {
        return QString::fromUtf8(buffer.get());
    } catch (const std::bad_alloc &) {
        return std::nullopt;
    }
}

} // namespace

BoxTexts::BoxTexts(PLK::CIOStream *stream)
    : stream(stream)
{
}

QString BoxTexts::read(const PLKXMLBox &box, const QString &unreadable)
{
    if (stream && stream->Seek(box.nContentOffset))
        text = readText(*stream, box.nContentLength).value_or(unreadable);
    return text;
}

QString BoxTexts::typeName(quint32 type)
{
    const quint32 bytes = qToBigEndian(type);
    return QString::fromLatin1(reinterpret_cast<const char *>(&bytes), sizeof bytes);
}
