#include <xrv60/plkinit.h>

#include "base/utf8.h"
#include "config/configuration.h"
#include "decode/cache/tilecache.h"
#include "decode/threads/decodepool.h"
#include "geo/crsnames.h"
#include "log/logger.h"
#include "stream/http/httpclient.h"
#include "stream/segmentstore.h"

#include <xrv60/plklog.h>

#include <mutex>

namespace {

constexpr const char *kLibraryVersion = "6.0.0.1513";

/// How many calls of PLKInit() have no PLKShutdown() yet.
class StartCount
{
public:
    /// True for the outermost one.
    bool enter()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return ++count == 1;
    }
    bool leave()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (count == 0)
            return false;
        return --count == 0;
    }

private:
    std::mutex mutex; ///< guards count
    int count = 0;
};

StartCount &startCount()
{
    static StartCount count;
    return count;
}

} // namespace

void PLKInit()
{
    if (!startCount().enter())
        return;
    xrv::TileCache::instance().setBudget(xrv::configuration().cacheMaxmem);
    xrv::log(PLK_LOG_INFO, std::string("SDK started, version ") + kLibraryVersion + ".");
}

void PLKShutdown()
{
    if (!startCount().leave())
        return;
    xrv::TileCache::instance().clear();
    xrv::DecodePool::instance().stop();
    xrv::HttpClient::instance().stop();
    xrv::SegmentStore::instance().clear();
    xrv::log(PLK_LOG_INFO, std::string("SDK stopped."));
}

const char *PLKGetLibraryVersion()
{
    return kLibraryVersion;
}

void PLKWinHttpSetUseWinHttp(int useWinHttp)
{
    if (useWinHttp != 0)
        xrv::log(PLK_LOG_INFO, std::string("WinHTTP was asked for; streams use the library's own HTTP client."));
}

void PLKSetGDTPath(const char *folder)
{
    const std::string path = xrv::utf8FromLocal8Bit(folder ? folder : "");
    xrv::log(PLK_LOG_DEBUG, xrv::wideFromUtf8("Folder of geodetic data: \"" + path + "\"."));
    xrv::setGeodeticDataPath(path);
}
