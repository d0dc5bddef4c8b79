#include "indexfile.h"

#include "codestream/mainheader.h"
#include "codestream/tileparttable.h"
#include "container/jp2structure.h"
#include "io/filesource.h"
#include "stream/sideindex.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

using PLK::CError;

namespace {

/// A file whose reader's findings are taken down.
class Recorder : public xrv::ByteSource
{
public:
    explicit Recorder(std::shared_ptr<xrv::ByteSource> source)
        : file(std::move(source))
    {
    }
    const std::string &name() const override { return file->name(); }
    std::uint64_t size() const override { return file->size(); }
    bool isRemote() const override { return false; }
    using ByteSource::read;
    CError read(const std::vector<xrv::ByteRange> &ranges, const xrv::CancelFlag &cancel,
                std::vector<xrv::Bytes> *out) override
    {
        return file->read(ranges, cancel, out);
    }
    void remember(const std::string &name, const xrv::Bytes &knowledge) override { index.set(name, knowledge); }

    xrv::SideIndex index;

private:
    const std::shared_ptr<xrv::ByteSource> file;
};

/// Walks from the first tile-part to the last.
CError findTileParts(const std::shared_ptr<Recorder> &source)
{
    xrv::Jp2Structure boxes;
    std::vector<std::string> warnings;
    if (CError error = xrv::readJp2Structure(*source, &boxes, &warnings))
        return error;
    xrv::MainHeader header;
    if (CError error = xrv::readMainHeader(*source, boxes.codestream, &header))
        return error;
    xrv::TilePartTable table(source, boxes.codestream, header);
    std::vector<xrv::TilePart> ignored;
    for (std::uint32_t tile = 0; tile < header.tileCount(); ++tile)
        if (CError error = table.find(tile, 0, {}, &ignored))
            return error;
    return table.damage().empty() ? CError() : CError(PLK_ERR_MALFORMED, table.damage());
}

} // namespace

CError writeIndexFile(const std::string &path, std::string *indexPath)
{
    indexPath->clear();
    std::shared_ptr<xrv::ByteSource> file;
    if (CError error = xrv::FileSource::open(path, &file))
        return error;
    const auto source = std::make_shared<Recorder>(file);
    xrv::Bytes start;
    if (CError error = file->read({0, std::min(file->size(), xrv::SideIndex::kImageStart)}, &start))
        return error;
    if (CError error = findTileParts(source))
        return error;
    if (source->index.isEmpty())
        return {};
    const xrv::Bytes content = source->index.write(file->size(), start);
    *indexPath = path + xrv::SideIndex::kEnding;
    std::ofstream out(std::filesystem::u8path(*indexPath), std::ios::binary);
    out.write(reinterpret_cast<const char *>(content.data()), static_cast<std::streamsize>(content.size()));
    out.close();
    return out ? CError() : CError(PLK_ERR_NO_ACCESS, "The file \"" + *indexPath + "\" cannot be written.");
}
