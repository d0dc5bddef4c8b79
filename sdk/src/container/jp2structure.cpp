#include "jp2structure.h"

#include "structurereader.h"

#include <algorithm>
#include <array>

namespace xrv {

namespace {

// ISO/IEC 15444-1 I.5.1.
constexpr std::array<std::uint8_t, 12> kSignature{0, 0, 0, 12, 'j', 'P', ' ', ' ', 0x0d, 0x0a, 0x87, 0x0a};
// Start of codestream, then image and tile size: ISO/IEC 15444-1 A.4.1, A.5.1.
constexpr std::array<std::uint8_t, 4> kCodestreamStart{0xff, 0x4f, 0xff, 0x51};

template <std::size_t Size> bool startsWith(const Bytes &bytes, const std::array<std::uint8_t, Size> &start)
{
    return bytes.size() >= Size && std::equal(start.begin(), start.end(), bytes.begin());
}

} // namespace

PLK::CError readJp2Structure(ByteSource &source, Jp2Structure *structure, std::vector<std::string> *warnings)
{
    *structure = {};
    if (source.size() == 0)
        return {PLK_ERR_UNKNOWN_FORMAT, "The file is empty."};
    Bytes start;
    if (PLK::CError error = source.read({0, std::min<std::uint64_t>(source.size(), kSignature.size())}, &start))
        return error;
    if (startsWith(start, kCodestreamStart)) {
        structure->isBareCodestream = true;
        structure->codestream = {0, source.size()};
        return {};
    }
    if (!startsWith(start, kSignature))
        return {PLK_ERR_UNKNOWN_FORMAT, "The file is not a JPEG 2000 file."};
    return StructureReader(source, warnings).read(structure);
}

} // namespace xrv
