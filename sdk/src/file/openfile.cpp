#include "openfile.h"

#include "base/utf8.h"
#include "log/faultlog.h"
#include "log/logger.h"
#include "stream/opensource.h"

#include <xrv60/plklog.h>

#include <new>

namespace xrv {

using PLK::CError;

namespace {

void logNamed(int level, const std::string &text)
{
    if (logEnabled(level))
        log(level, wideFromUtf8(text));
}

std::vector<PLKXMLBox> publishedBoxes(const std::vector<BoxPlace> &places)
{
    std::vector<PLKXMLBox> boxes;
    for (const BoxPlace &place : places)
        boxes.push_back({place.type, place.content.offset, place.content.length});
    return boxes;
}

} // namespace

// What is kept of the name holds no password.
OpenFile::OpenFile(const SourceName &name, std::shared_ptr<ByteSource> source, FileParts fileParts)
    : printableName(name.printable())
    , nameToShow(name.shown())
    , filePath(name.path())
    , faultLog(std::make_shared<FaultLog>(nameToShow))
    , byteSource(std::move(source))
    , parts(std::move(fileParts))
    , infoRecord(parts, byteSource->size())
    , xmls(publishedBoxes(parts.boxes.xmlBoxes))
    , fileStatistics(*byteSource, parts, faultLog, nameToShow)
{
}

OpenFile::~OpenFile()
{
    logNamed(PLK_LOG_INFO, "Closed \"" + nameToShow + "\".");
}

CError OpenFile::open(const std::string &givenName, const std::shared_ptr<OpenWatch> &watch,
                      std::shared_ptr<OpenFile> *file)
{
    const SourceName name(givenName);
    const std::string quoted = '"' + name.shown() + '"';
    std::shared_ptr<OpenFile> opened;
    std::vector<std::string> warnings;
    CError error;
    try {
        error = openNamed(name, watch, &opened, &warnings);
    } catch (const std::bad_alloc &) {
        error = {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to open " + quoted + "."};
    } catch (const std::exception &exception) {
        error = {PLK_ERR_MALFORMED, quoted + " cannot be opened: " + exception.what() + "."};
    }
    // Whatever came of it: parts that could not be read may have been passed over.
    if (watch->cancel.isRaised()) {
        logNamed(PLK_LOG_INFO, "The opening of " + quoted + " was cancelled.");
        return {PLK_ERR_CANCELLED, "The opening was cancelled."};
    }
    for (const std::string &warning : warnings)
        logNamed(PLK_LOG_WARNING, std::string(quoted).append(": ").append(warning));
    if (error) {
        logNamed(PLK_LOG_ERROR, quoted + " was not opened: " + error.GetErrorMessage());
        return error;
    }
    *file = std::move(opened);
    return {};
}

CError OpenFile::openNamed(const SourceName &name, std::shared_ptr<OpenWatch> watch, std::shared_ptr<OpenFile> *file,
                           std::vector<std::string> *warnings)
{
    std::shared_ptr<ByteSource> source;
    if (CError error = openSource(name, &source, std::move(watch)))
        return error;
    FileParts fileParts;
    if (CError error = readFileParts(source, name, &fileParts, warnings))
        return error;
    file->reset(new OpenFile(name, std::move(source), std::move(fileParts)));
    (*file)->logOpened();
    return {};
}

void OpenFile::logOpened() const
{
    const RasterInfo &raster = parts.reader->info();
    logNamed(PLK_LOG_INFO, "Opened \"" + nameToShow + "\": " + parts.typeName() + ", " + std::to_string(raster.width) +
                               " x " + std::to_string(raster.height) + " cells, " + std::to_string(info().nBands) +
                               " bands, " + std::to_string(byteSource->size()) + " bytes.");
}

bool OpenFile::canBeDithered() const
{
    return parts.xrv && !parts.xrv->info.isLossless && !parts.reader->info().isLossless;
}

} // namespace xrv
