#pragma once

#include "fileparts.h"

#include <xrv60/plktypes.h>

#include <array>
#include <string>
#include <vector>

namespace xrv {

/// The public record of an open file with everything that it points to. Stays where it is and as it is: callers hold on
/// to its pointers while the file is open.
class FileInfoRecord
{
public:
    /// Of a file of \a fileBytes bytes. Whether the reference system is named is up to the configuration.
    FileInfoRecord(const FileParts &parts, std::uint64_t fileBytes);
    FileInfoRecord(const FileInfoRecord &) = delete;
    FileInfoRecord &operator=(const FileInfoRecord &) = delete;

    const PLKFileInfo &record() const { return info; }

private:
    void fillBands(const FileParts &parts);
    void fillRaster(const FileParts &parts);
    void fillPlace(const GeoReference &geo);
    void fillCompression(const FileParts &parts, std::uint64_t fileBytes);
    void fillTexts(const XrvTexts &fileTexts);

    PLKFileInfo info{};
    // What it points to.
    std::vector<std::string> descriptions;
    std::vector<PLKBandInfo> bands;
    std::string datum, projection, compressionDate;
    std::array<std::wstring, kXrvTexts> texts;
    PLKFileMetaData textRecord{};
};

} // namespace xrv
