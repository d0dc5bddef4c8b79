#pragma once

#include "colour/bandmap.h"
#include "container/jp2structure.h"
#include "decode/rasterreader.h"
#include "geo/georeference.h"
#include "io/bytesource.h"
#include "stream/values/sourcename.h"
#include "xrv/xrvstructure.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <memory>
#include <string>
#include <vector>

namespace xrv {

/// What the bytes of a file tell: its boxes, its raster, the bands of that and their place in the world.
struct FileParts
{
    Jp2Structure boxes;
    std::unique_ptr<XrvStructure> xrv; ///< null for other files; its boxes went to those above
    std::unique_ptr<RasterReader> reader;
    BandMap bandMap;
    GeoReference geo;

    PLKFileType type() const { return xrv ? PLK_FILE_XRV : PLK_FILE_JPEG2000; }
    /// For messages: "XRV file".
    std::string typeName() const;
    /// Bands that callers are told of: PLKFileInfo counts them in 16 bits.
    std::size_t bandCount() const;
};

/// Reads the parts of the image in \a source. The content decides what it is, not \a name, which helps to find side
/// files and words. What the file can be shown in spite of is put into \a warnings as sentences. Errors are those of
/// readXrvStructure(), readJp2Structure(), RasterReader::open() and of the source; \a parts is undefined then.
PLK::CError readFileParts(const std::shared_ptr<ByteSource> &source, const SourceName &name, FileParts *parts,
                          std::vector<std::string> *warnings);

} // namespace xrv
