#include "streamsource.h"

#include "base/utf8.h"
#include "log/logger.h"
#include "stream/http/knowncredentials.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>
#include <set>

namespace xrv {

using PLK::CError;

namespace {

constexpr auto kCancelPoll = std::chrono::milliseconds(5);

std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

/// Versions of files of which bytes were shown that may be those of another one. What was made of them is still in
/// memory, here and elsewhere, under their identities; later visits go by others. Any thread.
class DoubtedVersions
{
public:
    static DoubtedVersions &instance()
    {
        static auto *versions = new DoubtedVersions;
        return *versions;
    }
    void add(const std::string &identity)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (identities.size() < kMaxDoubted)
            identities.insert(identity);
    }
    bool contains(const std::string &identity) const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return identities.size() >= kMaxDoubted || identities.count(identity) > 0;
    }

private:
    static constexpr std::size_t kMaxDoubted = 10000;
    mutable std::mutex mutex; ///< guards identities
    std::set<std::string> identities;
};

/// Takes a file that its server gives as a whole only into the cache on disk, and logs how far that is.
class WholeFileSink : public BodySink
{
public:
    WholeFileSink(std::shared_ptr<CachedStream> cachedStream, std::string shownName)
        : stream(std::move(cachedStream))
        , version(stream->version())
        , name(std::move(shownName))
    {
    }
    /// Of another version nothing is taken.
    bool take(const HttpAnswer &head, std::uint64_t offset, const std::uint8_t *data, std::size_t length) override
    {
        if (version.match(head) != FileVersion::Match::Same || length > version.length ||
            offset > version.length - length)
            return false;
        stream->put(offset, data, length);
        const std::uint64_t tenth = version.length / 10 + 1;
        if ((offset + length) / tenth != offset / tenth && logEnabled(PLK_LOG_INFO))
            log(PLK_LOG_INFO, wideFromUtf8("\"" + name + "\" comes as a whole: " + std::to_string(offset + length) +
                                           " of " + std::to_string(version.length) + " bytes are here."));
        return true;
    }

private:
    const std::shared_ptr<CachedStream> stream;
    const FileVersion version;
    const std::string name;
};

} // namespace

/// Bytes that one thread fetches and the others wait for. Ends with this object. Views and their threads
/// often want the same stretches at once; without claims each would ask the server for them.
class StreamSource::Claim
{
public:
    /// Claims what nobody else has of \a wanted.
    Claim(StreamSource *source, ByteRangeSet wanted)
        : source(source)
        , claimed(std::move(wanted))
    {
        const std::lock_guard<std::mutex> lock(source->mutex);
        claimed.remove(source->underWay);
        claimed.remove(source->unattended->underWay());
        for (const ByteRange &range : claimed.ranges())
            source->underWay.add(range);
    }
    ~Claim()
    {
        const std::lock_guard<std::mutex> lock(source->mutex);
        source->underWay.remove(claimed);
        source->landed.notify_all();
    }
    Claim(const Claim &) = delete;
    Claim &operator=(const Claim &) = delete;

    const ByteRangeSet &ranges() const { return claimed; }

private:
    StreamSource *const source;
    ByteRangeSet claimed;
};

StreamSource::StreamSource(const StreamAddress &address, const StreamOptions &options,
                           std::shared_ptr<OpenWatch> openWatch)
    : printableAddress(address.printable())
    , shownAddress(address.shown())
    , watch(openWatch ? std::move(openWatch) : std::make_shared<OpenWatch>())
    , link(address, options, watch)
    , fetcher(link)
    , cache(options)
{
}

StreamSource::~StreamSource()
{
    if (unattended)
        unattended->breakOff();
    SegmentStore::instance().release(fileNumber, newestPin);
}

CError StreamSource::open(StreamAddress address, const StreamOptions &options, std::shared_ptr<ByteSource> *source,
                          std::shared_ptr<OpenWatch> watch)
{
    KnownCredentials::instance().complete(&address);
    std::shared_ptr<StreamSource> opened(new StreamSource(address, options, std::move(watch)));
    if (CError error = opened->connect())
        return error;
    KnownCredentials::instance().remember(address);
    *source = std::move(opened);
    return {};
}

/// The version whose first bytes are on disk, so that nothing but its validity need be asked for. Without these bytes
/// it is of no use: a 304 carries none (RFC 9110 15.4.5), and opening would take a second request.
FileVersion StreamSource::cachedVersion()
{
    cached = cache.latest(printableAddress);
    if (!cached)
        return {};
    const FileVersion known = cached->version();
    const ByteRange first{0, std::min(known.length, link.options().firstBytes)};
    return cached->lacking({first}).isEmpty() ? known : FileVersion();
}

CError StreamSource::connect()
{
    const FileVersion known = cachedVersion();
    Bytes first;
    const RangeFetcher::Sink take = [&](std::uint64_t, const std::uint8_t *data, std::uint64_t length) {
        first.assign(data, data + length);
    };
    if (CError error = fetcher.open(known, watch->cancel, take, &version))
        return error;
    // Where the server gives neither a strong tag nor a strong date, nothing tells that a later visit finds the same
    // file: what came is kept for this source alone, and not on disk.
    if (!version.isTellable() || DoubtedVersions::instance().contains(identity()))
        uniqueMark = '|' + std::to_string(nextNumber());
    if (!version.isTellable() && logEnabled(PLK_LOG_WARNING))
        log(PLK_LOG_WARNING, wideFromUtf8("The server of \"" + name() +
                                          "\" gives nothing that tells one version of the file from the next for "
                                          "certain. What it sends is shown, but not kept."));
    if (!cached || cached->version().text() != version.text() || !version.isTellable())
        cached = version.isTellable() ? cache.stream(printableAddress, version) : nullptr;
    if (cached)
        fetcher.setWholeSink(std::make_shared<WholeFileSink>(cached, shownAddress));
    fileNumber = SegmentStore::instance().fileNumber(identity());
    newestPin = nextNumber();
    keepWhatIsCancelled();
    if (logEnabled(PLK_LOG_DEBUG))
        log(PLK_LOG_DEBUG,
            wideFromUtf8("\"" + name() + "\" has " + std::to_string(size()) + " bytes, " +
                         std::to_string(cached ? cached->heldBytes() : 0) + " of which are in the stream cache."));
    return keep(0, first.data(), first.size(), newestPin);
}

/// Requests that nobody waits for any more go on, and keep by themselves what they bring: this source may be gone then.
void StreamSource::keepWhatIsCancelled()
{
    const auto take = [stream = cached, file = fileNumber, expected = version](const RangeGroup &group,
                                                                               const HttpAnswer &answer) {
        RangeFetcher::takeLeftover(group, answer, expected, [&](auto offset, auto data, auto length) {
            if (stream && expected.isTellable())
                stream->put(offset, data, length);
            SegmentStore::instance().put(file, offset, data, length, 0);
        });
    };
    unattended = std::make_shared<UnattendedRequests>(take);
    fetcher.setAfterlife([this](const RangeGroup &group) { return unattended->afterlifeOf(group); });
}

/// Where bytes that came from the server go.
CError StreamSource::keep(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length, std::uint64_t pin)
{
    if (cached && !isDoubtful())
        cached->put(offset, data, length);
    if (offset > 0 || length < version.length) {
        SegmentStore::instance().put(fileNumber, offset, data, length, pin);
        return {};
    }
    // The whole file, as a rule because its server gives nothing less: it must not be asked for twice.
    if (cached && cached->lacking({ByteRange{0, length}}).isEmpty())
        return {};
    if (length > link.options().wholeInMemory)
        return notOnDisk();
    const std::lock_guard<std::mutex> lock(mutex);
    whole = std::make_shared<const Bytes>(data, data + length);
    return {};
}

/// From the first bytes on of which nothing proves that they are of this version, nothing is kept any more.
bool StreamSource::isDoubtful()
{
    if (!fetcher.isDoubtful())
        return false;
    if (!isKnownAsDoubted.exchange(true))
        DoubtedVersions::instance().add(identity());
    return true;
}

/// A file that came as a whole must not be asked for again for want of room.
CError StreamSource::checkOnDisk(const ByteRangeSet &ranges) const
{
    return cached->lacking(ranges.ranges()).isEmpty() ? CError() : notOnDisk();
}

CError StreamSource::notOnDisk() const
{
    return {PLK_ERR_TOO_LARGE, "The server of \"" + name() +
                                   "\" gives files as a whole only, and the stream cache does not take this one."};
}

/// Gives \a assembly what is at hand of what it lacks: of the whole file, else from memory, else from disk.
void StreamSource::collectHere(RangeAssembly *assembly, const RangeFetcher::Sink &take) const
{
    if (const std::shared_ptr<const Bytes> all = wholeFile()) {
        assembly->add(0, all->data(), all->size());
        return;
    }
    SegmentStore::instance().collect(fileNumber, assembly);
    loadCached(std::vector<ByteRange>(assembly->lacking().ranges()), 0, take);
}

std::shared_ptr<const Bytes> StreamSource::wholeFile() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return whole;
}

void StreamSource::loadCached(const std::vector<ByteRange> &ranges, std::uint64_t pin,
                              const RangeFetcher::Sink &sink) const
{
    if (!cached || ranges.empty())
        return;
    cached->load(ranges, [&](std::uint64_t offset, const std::uint8_t *data, std::uint64_t length) {
        SegmentStore::instance().put(fileNumber, offset, data, length, pin);
        sink(offset, data, length);
    });
}

void StreamSource::remember(const std::string &knowledgeName, const Bytes &knowledge)
{
    if (cached && !isDoubtful() && !condition())
        cached->remember(knowledgeName, knowledge);
}

bool StreamSource::recall(const std::string &knowledgeName, Bytes *knowledge)
{
    return cached && cached->recall(knowledgeName, knowledge);
}

bool StreamSource::recallPublished(const std::string &knowledgeName, Bytes *knowledge)
{
    std::call_once(sideIndexAsked, [this] { askForSideIndex(); });
    const Bytes *const found = sideIndex.find(knowledgeName);
    if (found)
        *knowledge = *found;
    return found != nullptr;
}

/// Most images have none beside them: that is no reason to wait for long, or to say anything.
void StreamSource::askForSideIndex()
{
    StreamOptions options = link.options();
    options.cacheEnabled = false;
    options.tries = 1;
    options.connectTimeout = options.stallTimeout = options.trialTimeout;
    options.wholeInMemory = SideIndex::kMaxBytes;
    std::shared_ptr<ByteSource> file;
    Bytes content, start;
    SideIndex found;
    if (StreamSource::open(link.address().withEnding(SideIndex::kEnding), options, &file, watch) ||
        file->size() > SideIndex::kMaxBytes || file->read({0, file->size()}, &content) ||
        read(ByteRange{0, std::min(version.length, SideIndex::kImageStart)}, &start))
        return;
    if (found.read(content, version.length, start))
        sideIndex = std::move(found);
    else if (logEnabled(PLK_LOG_WARNING))
        log(PLK_LOG_WARNING, wideFromUtf8("\"" + file->name() +
                                          "\" is damaged or belongs to another image than the one "
                                          "beside it. It is not used."));
}

CError StreamSource::condition() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return trouble;
}

void StreamSource::reconnect(bool mayTakeLong)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (trouble.GetErrorNumber() != PLK_ERR_CONNECTION_LOST)
        return;
    trouble = {};
    fetcher.setOnTrial(!mayTakeLong);
}

void StreamSource::setCondition(const CError &error)
{
    const int code = error.GetErrorNumber();
    if (code != PLK_ERR_CONNECTION_LOST && code != PLK_ERR_FILE_CHANGED)
        return;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        // Logged once. A file that changed stays so, whatever happens to the connection later.
        if (trouble.GetErrorNumber() == code || trouble.GetErrorNumber() == PLK_ERR_FILE_CHANGED)
            return;
        trouble = error;
    }
    if (code == PLK_ERR_FILE_CHANGED) { // reads do not look at what is held any more
        unattended->drop();
        SegmentStore::instance().drop(fileNumber);
        cache.remove(printableAddress, version);
    }
    if (logEnabled(PLK_LOG_WARNING))
        log(PLK_LOG_WARNING, wideFromUtf8(error.GetErrorMessage()));
}

CError StreamSource::fetch(const ByteRangeSet &lacking, const CancelFlag &cancel, std::uint64_t pin,
                           const RangeFetcher::Sink &sink)
{
    if (CError error = wholeRefusal())
        return error;
    CError notKept;
    const RangeFetcher::Sink take = [&](std::uint64_t offset, const std::uint8_t *data, std::uint64_t length) {
        notKept = keep(offset, data, length, pin);
        sink(offset, data, length);
    };
    const CError error = fetcher.fetch(lacking.ranges(), version, cancel, take);
    setCondition(error);
    if (error)
        return error;
    if (!notKept && cached && fetcher.getsWholeOnly() && !wholeFile())
        notKept = checkOnDisk(lacking);
    if (notKept) {
        const std::lock_guard<std::mutex> lock(mutex);
        notTaken = notKept;
    }
    return notKept;
}

/// Why the whole file, which came already, was not taken: it is not to come again.
CError StreamSource::wholeRefusal() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return notTaken;
}

/// Until some of what other threads fetch has come, or they gave up.
CError StreamSource::waitForOthers(const CancelFlag &cancel)
{
    std::unique_lock<std::mutex> lock(mutex);
    landed.wait_for(lock, kCancelPoll); // the flag tells nobody when it is raised
    if (cancel.isRaised())
        return {PLK_ERR_CANCELLED, "Reading was cancelled."};
    return {};
}

CError StreamSource::read(const std::vector<ByteRange> &ranges, const CancelFlag &readCancel, std::vector<Bytes> *out)
{
    const CancelFlag cancel = readCancel.joinedWith(watch->cancel);
    if (CError error = checkRanges(ranges))
        return error;
    try {
        RangeAssembly assembly(ranges, out);
        const RangeFetcher::Sink take = [&](std::uint64_t offset, const std::uint8_t *data, std::uint64_t length) {
            assembly.add(offset, data, length);
        };
        // What is at hand can be read while the connection is lost, but not after the file changed: the rest would be
        // of another version. What others fetch is waited for and looked up again, as they may fail or be cancelled.
        for (;;) {
            const CError state = condition();
            if (state.GetErrorNumber() == PLK_ERR_FILE_CHANGED)
                return state;
            collectHere(&assembly, take);
            if (assembly.lacking().isEmpty())
                return {};
            if (state)
                return state;
            const Claim claim(this, assembly.lacking());
            if (!claim.ranges().isEmpty())
                collectHere(&assembly, take); // it may have landed since
            const CError error = claim.ranges().isEmpty()
                                     ? waitForOthers(cancel)
                                     : fetch(claim.ranges().intersected(assembly.lacking()), cancel, 0, take);
            if (error)
                return error;
        }
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to read from \"" + name() + "\"."};
    }
}

CError StreamSource::prefetch(const std::vector<ByteRange> &ranges, const CancelFlag &readCancel)
{
    const CancelFlag cancel = readCancel.joinedWith(watch->cancel);
    if (CError error = checkRanges(ranges))
        return error;
    if (wholeFile())
        return {};
    // What is fetched ahead stays in memory until the next prefetch of this source has its own, so that what both want
    // is never let go in between.
    const std::uint64_t pin = nextNumber();
    std::uint64_t oldPin = pin;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        std::swap(oldPin, newestPin);
    }
    try {
        SegmentStore &store = SegmentStore::instance();
        ByteRangeSet lacking = store.missing(fileNumber, ranges, pin);
        loadCached(std::vector<ByteRange>(lacking.ranges()), pin,
                   [&](std::uint64_t offset, const std::uint8_t *, std::uint64_t length) {
                       lacking.remove(ByteRange{offset, length});
                   });
        store.release(fileNumber, oldPin);
        if (!lacking.isEmpty())
            unattended->noteWanted(lacking);
        while (!lacking.isEmpty()) {
            if (CError state = condition())
                return state;
            const Claim claim(this, lacking);
            const CError error = claim.ranges().isEmpty()
                                     ? waitForOthers(cancel)
                                     : fetch(store.missing(fileNumber, claim.ranges().ranges(), pin), cancel, pin,
                                             [](auto, auto, auto) {});
            if (error)
                return error;
            if (wholeFile())
                return {};
            lacking.remove(claim.ranges());
            if (claim.ranges().isEmpty())
                lacking = store.missing(fileNumber, lacking.ranges(), pin);
        }
        unattended->noteStepDone();
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to read from \"" + name() + "\"."};
    }
    return {};
}

} // namespace xrv
