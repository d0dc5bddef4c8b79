#pragma once

#include "segmentstore.h"
#include "sideindex.h"
#include "unattendedrequests.h"

#include "io/bytesource.h"
#include "io/openwatch.h"
#include "stream/cache/streamcache.h"
#include "stream/http/rangefetcher.h"
#include "stream/http/serverlink.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>

namespace xrv {

/// A file on a web server, read by byte ranges. What came is kept in memory, within bounds, and shared by all sources
/// of the same version of the file, and in the stream cache on disk where there is one; with the file's beginning in
/// that, opening asks only whether the file is still the same. Answers are never mixed: once the file changed on the
/// server every read fails with PLK_ERR_FILE_CHANGED. After a connection was lost, reads of what is not at hand fail at
/// once with PLK_ERR_CONNECTION_LOST until reconnect().
class StreamSource : public ByteSource
{
public:
    /// Asks the server, with the user and password that are known of it where \a address has none; the errors of
    /// RangeFetcher::open(). Once the flag of \a watch is raised, neither this nor any read goes on.
    static PLK::CError open(StreamAddress address, const StreamOptions &options, std::shared_ptr<ByteSource> *source,
                            std::shared_ptr<OpenWatch> watch = nullptr);
    ~StreamSource() override;

    const std::string &name() const override { return shownAddress; }
    std::uint64_t size() const override { return version.length; }
    bool isRemote() const override { return true; }
    std::string identity() const override { return printableAddress + '|' + version.text() + uniqueMark; }
    using ByteSource::read;
    PLK::CError read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel, std::vector<Bytes> *out) override;
    PLK::CError prefetch(const std::vector<ByteRange> &ranges, const CancelFlag &cancel) override;
    void remember(const std::string &knowledgeName, const Bytes &knowledge) override;
    bool recall(const std::string &knowledgeName, Bytes *knowledge) override;
    bool recallPublished(const std::string &knowledgeName, Bytes *knowledge) override;
    PLK::CError condition() const override;
    void reconnect(bool mayTakeLong) override;

private:
    class Claim;

    StreamSource(const StreamAddress &address, const StreamOptions &options, std::shared_ptr<OpenWatch> openWatch);
    PLK::CError connect();
    FileVersion cachedVersion();
    void keepWhatIsCancelled();
    void askForSideIndex();
    PLK::CError keep(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length, std::uint64_t pin);
    void loadCached(const std::vector<ByteRange> &ranges, std::uint64_t pin, const RangeFetcher::Sink &sink) const;
    void collectHere(RangeAssembly *assembly, const RangeFetcher::Sink &take) const;
    std::shared_ptr<const Bytes> wholeFile() const;
    PLK::CError checkOnDisk(const ByteRangeSet &ranges) const;
    PLK::CError notOnDisk() const;
    PLK::CError wholeRefusal() const;
    bool isDoubtful();
    PLK::CError fetch(const ByteRangeSet &lacking, const CancelFlag &cancel, std::uint64_t pin,
                      const RangeFetcher::Sink &sink);
    void setCondition(const PLK::CError &error);
    PLK::CError waitForOthers(const CancelFlag &cancel);

    const std::string printableAddress, shownAddress;
    const std::shared_ptr<OpenWatch> watch;
    ServerLink link;
    RangeFetcher fetcher;
    const StreamCache cache;
    std::shared_ptr<CachedStream> cached; ///< null without a cache on disk
    FileVersion version;
    std::string uniqueMark; ///< tells apart what the server gives nothing to tell apart by
    std::uint64_t fileNumber = 0;
    std::atomic<bool> isKnownAsDoubted{false};
    std::shared_ptr<UnattendedRequests> unattended;

    std::once_flag sideIndexAsked;
    SideIndex sideIndex;

    mutable std::mutex mutex; ///< guards the members below
    std::condition_variable landed;
    ByteRangeSet underWay; ///< what some thread is fetching
    PLK::CError trouble;   ///< see condition()
    std::uint64_t newestPin = 0;
    PLK::CError notTaken;               ///< see wholeRefusal()
    std::shared_ptr<const Bytes> whole; ///< where the server gives nothing less and the disk does not take it
};

} // namespace xrv
