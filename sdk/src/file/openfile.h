#pragma once

#include "fileinforecord.h"
#include "fileparts.h"
#include "filestatistics.h"

#include "io/bytesource.h"
#include "io/openwatch.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <memory>
#include <string>
#include <vector>

namespace xrv {

class FaultLog;

/// Everything known of one open file. Shared by the views' threads; immutable but for the statistics, which are found
/// when they are first asked for.
class OpenFile
{
public:
    /// Opens a local file or a stream by its UTF-8 name. How that went is logged, and so is damage that the file can be
    /// shown in spite of. PLK_ERR_CANCELLED when \a watch was cancelled; else the errors of openSource() and
    /// readFileParts().
    static PLK::CError open(const std::string &givenName, const std::shared_ptr<OpenWatch> &watch,
                            std::shared_ptr<OpenFile> *file);
    ~OpenFile();

    /// As given, but without the user and password of an address.
    const std::string &name() const { return printableName; }
    /// As it may be shown and logged: of an address, what follows "?" is left out too.
    const std::string &shownName() const { return nameToShow; }
    /// Name of the file in the file system, empty for streams.
    const std::string &localName() const { return filePath; }
    /// Told of damage that is met later, and of failures.
    const std::shared_ptr<FaultLog> &faults() const { return faultLog; }
    ByteSource &source() const { return *byteSource; }
    const std::shared_ptr<ByteSource> &sharedSource() const { return byteSource; }

    PLKFileType type() const { return parts.type(); }
    RasterReader &reader() const { return *parts.reader; }
    const Jp2Structure &structure() const { return parts.boxes; }
    const BandMap &bandMap() const { return parts.bandMap; }
    const GeoReference &geoReference() const { return parts.geo; }
    /// What the file says besides its boxes of JPEG 2000; null where it is no XRV file.
    const XrvStructure *xrv() const { return parts.xrv.get(); }
    /// An XRV file whose cells are not those of the original.
    bool canBeDithered() const;

    const PLKFileInfo &info() const { return infoRecord.record(); }
    /// In file order.
    const std::vector<PLKXMLBox> &xmlBoxes() const { return xmls; }
    FileStatistics &statistics() { return fileStatistics; }

private:
    OpenFile(const SourceName &name, std::shared_ptr<ByteSource> source, FileParts fileParts);
    static PLK::CError openNamed(const SourceName &name, std::shared_ptr<OpenWatch> watch,
                                 std::shared_ptr<OpenFile> *file, std::vector<std::string> *warnings);
    void logOpened() const;

    const std::string printableName, nameToShow, filePath;
    const std::shared_ptr<FaultLog> faultLog;
    const std::shared_ptr<ByteSource> byteSource;
    const FileParts parts;
    const FileInfoRecord infoRecord;
    const std::vector<PLKXMLBox> xmls;
    FileStatistics fileStatistics;
};

} // namespace xrv
