#pragma once

#include "base/bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct tiff;

namespace xrv {

/// The first directory of a TIFF file in memory. What libtiff has to say stays with the handle, and its global handlers
/// and tag extender are left alone: it reads tags that it does not know in the type that the file gives them.
class TiffFile
{
public:
    /// Borrows \a content.
    explicit TiffFile(const Bytes &content);
    ~TiffFile();
    TiffFile(const TiffFile &) = delete;
    TiffFile &operator=(const TiffFile &) = delete;

    bool isOpen() const { return handle != nullptr; }
    /// The first thing that libtiff found wrong; empty if nothing.
    const std::string &firstError() const { return error; }
    /// The values of a tag; empty without it and where the file has it in another type.
    std::vector<double> doubles(std::uint32_t tag) const;
    std::vector<std::uint16_t> shorts(std::uint32_t tag) const;
    std::string text(std::uint32_t tag) const;

private:
    struct Callbacks;
    struct Values
    {
        const void *data = nullptr;
        std::size_t count = 0;
    };
    void open();
    Values values(std::uint32_t tag, int type) const;

    const Bytes &content;
    std::size_t position = 0;
    std::string error;
    struct tiff *handle = nullptr;
};

} // namespace xrv
