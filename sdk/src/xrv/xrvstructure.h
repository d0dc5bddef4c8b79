#pragma once

#include "xrvrecords.h"

#include "container/jp2structure.h"

#include <xrv60/plkerror.h>

#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// What the boxes of an XRV file tell. The contents of large ones stay in the file.
struct XrvStructure
{
    std::uint8_t majorVersion = 0, minorVersion = 0;
    Jp2Structure boxes; ///< those that JP2 files have too, with the codestream's place
    XrvFileInfo info;
    std::vector<XrvBand> bands;        ///< empty without a readable box, else as many as info says
    std::vector<CellMapping> mappings; ///< one for each band, empty where none is mapped
    std::optional<XrvTexts> texts;
    std::optional<PLKRPCData> rpc;
    ByteRange statistics;  ///< content of the box, empty without
    ByteRange packetIndex; ///< content of the box, empty without
};

/// The content of the packet index box of an XRV or a JP2 file; empty without.
ByteRange packetIndexOf(const Jp2Structure &boxes);

/// Whether \a source begins as an XRV file does. Errors are those of the source.
PLK::CError isXrv(ByteSource &source, bool *result);

/// Reads the boxes of an XRV file. PLK_ERR_UNKNOWN_FORMAT where it is none; PLK_ERR_UNSUPPORTED for a newer major
/// version; PLK_ERR_MALFORMED or PLK_ERR_TRUNCATED without readable file information or codestream. Damage in boxes
/// that the picture can do without is put into \a warnings (sentences, may be null). Any thread.
PLK::CError readXrvStructure(ByteSource &source, XrvStructure *structure, std::vector<std::string> *warnings);

/// The contents of a box that readXrvStructure() left in the file. Nothing where it is empty or too large.
PLK::CError readXrvContent(ByteSource &source, ByteRange place, Bytes *content);

} // namespace xrv
