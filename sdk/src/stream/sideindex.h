#pragma once

#include "io/bytesource.h"

#include <map>
#include <string>

namespace xrv {

/// What the publisher of an image found out about it and put into a file beside it, so that nobody has to find it out
/// over a network: knowledge by name (see ByteSource::remember()). It names the image by its length and its first
/// bytes, and is to be checked like the image itself.
class SideIndex
{
public:
    /// The index of "scene.jp2" is "scene.jp2.xrvi".
    static constexpr char kEnding[] = ".xrvi";
    static constexpr std::uint64_t kMaxBytes = std::uint64_t(4) << 20;
    /// So many of the image's first bytes tell it from another one.
    static constexpr std::uint64_t kImageStart = 4096;

    void set(const std::string &name, const Bytes &knowledge) { known[name] = knowledge; }
    bool isEmpty() const { return known.empty(); }
    /// Null where nothing is known.
    const Bytes *find(const std::string &name) const;

    /// The file, for the image of \a imageLength bytes that begins with \a imageStart.
    Bytes write(std::uint64_t imageLength, const Bytes &imageStart) const;
    /// False where \a file is damaged or of another image.
    bool read(const Bytes &file, std::uint64_t imageLength, const Bytes &imageStart);

private:
    std::map<std::string, Bytes> known;
};

} // namespace xrv
