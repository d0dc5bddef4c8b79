#include "httpclient.h"

#include "httptransfer.h"

#include <algorithm>
#include <new>
#include <set>
#include <utility>

namespace xrv {

namespace {

constexpr auto kCancelPoll = std::chrono::milliseconds(5);
constexpr int kMaxWait = 200;       // milliseconds, while something is on its way
constexpr int kMaxIdleWait = 60000; // until somebody wakes it
constexpr long kConnectionsKept = 24;
constexpr std::size_t kMaxServersKnown = 1000;

struct MultiDeleter
{
    void operator()(CURLM *multi) const { curl_multi_cleanup(multi); }
};

void initialiseLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

} // namespace

/// A request with its answer, shared by the thread that waits and the one that works.
struct HttpClient::Exchange
{
    explicit Exchange(HttpRequest asked)
        : request(std::move(asked))
    {
    }
    const HttpRequest request;
    std::atomic<bool> abandoned{false};  ///< to be broken off
    std::atomic<bool> isStarted{false};  ///< it is on its way
    std::atomic<bool> unattended{false}; ///< it goes on by itself
    bool isDone = false;                 ///< under the loop's mutex, as is the answer
    HttpAnswer answer;
};

/// What the thread does. Shared with those who wait, so that it outlives a stop.
class HttpClient::Loop
{
public:
    Loop();
    ~Loop();
    void run();
    void requestStop();
    bool add(const std::vector<ExchangePtr> &exchanges);
    void await(const std::vector<ExchangePtr> &exchanges, const CancelFlag &cancel);

private:
    struct Active
    {
        ExchangePtr exchange;
        std::unique_ptr<HttpTransfer> transfer;
    };
    using ActiveList = std::list<Active>;

    bool takeIn();
    void startQueued();
    int limitFor(const std::string &server) const;
    void learnProtocol(const std::string &server, const HttpAnswer &answer);
    void start(const ExchangePtr &exchange);
    bool makeRoom(const std::string &server);
    void dropUseless();
    void collectFinished();
    void endStalled();
    ActiveList::iterator remove(ActiveList::iterator it, HttpAnswer answer);
    void finish(const ExchangePtr &exchange, HttpAnswer answer);
    void cancelEverything();

    std::mutex mutex; ///< guards arrivals, stopping and the answers
    std::condition_variable answered;
    std::vector<ExchangePtr> arrivals;
    bool stopping = false;

    // Of the loop's thread.
    std::deque<ExchangePtr> queue;
    ActiveList active;
    std::map<std::string, int> load;    ///< requests on their way, by server
    std::set<std::string> multiplexing; ///< servers whose last answer came by HTTP/2
    std::unique_ptr<CURLM, MultiDeleter> multi;
};

HttpClient::Loop::Loop()
{
    initialiseLibrary();
    multi.reset(curl_multi_init());
    if (!multi)
        throw std::bad_alloc();
    curl_multi_setopt(multi.get(), CURLMOPT_PIPELINING, long(CURLPIPE_MULTIPLEX));
    curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, kConnectionsKept);
    curl_multi_setopt(multi.get(), CURLMOPT_MAX_CONCURRENT_STREAMS, long(kMaxMultiplexed));
}

HttpClient::Loop::~Loop() = default;

void HttpClient::Loop::requestStop()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
    }
    curl_multi_wakeup(multi.get());
}

bool HttpClient::Loop::add(const std::vector<ExchangePtr> &exchanges)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (stopping)
            return false;
        arrivals.insert(arrivals.end(), exchanges.begin(), exchanges.end());
    }
    curl_multi_wakeup(multi.get());
    return true;
}

void HttpClient::Loop::await(const std::vector<ExchangePtr> &exchanges, const CancelFlag &cancel)
{
    std::unique_lock<std::mutex> lock(mutex);
    const auto allDone = [&] {
        return std::all_of(exchanges.begin(), exchanges.end(), [](const ExchangePtr &one) { return one->isDone; });
    };
    while (!allDone() && !cancel.isRaised())
        answered.wait_for(lock, kCancelPoll); // the flag tells nobody when it is raised
    bool isAbandoned = false;
    for (const ExchangePtr &exchange : exchanges) {
        if (exchange->isDone)
            continue;
        const bool goesOn = exchange->isStarted && exchange->request.afterlife;
        if (goesOn)
            exchange->request.afterlife->begin();
        (goesOn ? exchange->unattended : exchange->abandoned) = true;
        exchange->isDone = true;
        exchange->answer.outcome = HttpOutcome::Cancelled;
        isAbandoned = true;
    }
    lock.unlock();
    if (isAbandoned)
        curl_multi_wakeup(multi.get());
}

void HttpClient::Loop::run()
{
    while (takeIn()) {
        dropUseless();
        startQueued();
        int running = 0;
        curl_multi_perform(multi.get(), &running);
        collectFinished();
        endStalled();
        startQueued();
        curl_multi_poll(multi.get(), nullptr, 0, active.empty() ? kMaxIdleWait : kMaxWait, nullptr);
    }
    cancelEverything();
}

bool HttpClient::Loop::takeIn()
{
    const std::lock_guard<std::mutex> lock(mutex);
    queue.insert(queue.end(), arrivals.begin(), arrivals.end());
    arrivals.clear();
    return !stopping;
}

void HttpClient::Loop::startQueued()
{
    for (auto it = queue.begin(); it != queue.end();) {
        if (!(*it)->abandoned && !makeRoom((*it)->request.server)) {
            ++it;
            continue;
        }
        if (!(*it)->abandoned)
            start(*it);
        it = queue.erase(it);
    }
}

/// Whether one more may be on its way to \a server. Those that nobody waits for take no place of those that are waited
/// for: beyond what there may be of both, the oldest is broken off.
bool HttpClient::Loop::makeRoom(const std::string &server)
{
    const auto isUnattended = [&](const Active &one) {
        return one.exchange->unattended && one.exchange->request.server == server;
    };
    const int limit = limitFor(server);
    const auto unattended = static_cast<int>(std::count_if(active.begin(), active.end(), isUnattended));
    if (load[server] - unattended >= limit)
        return false;
    const auto oldest = std::find_if(active.begin(), active.end(), isUnattended);
    if (load[server] >= std::max(limit, kMaxPerServer + kMaxUnattended) && oldest != active.end())
        remove(oldest, oldest->transfer->finishUseless());
    return true;
}

int HttpClient::Loop::limitFor(const std::string &server) const
{
    return multiplexing.count(server) > 0 ? kMaxMultiplexed : kMaxPerServer;
}

void HttpClient::Loop::learnProtocol(const std::string &server, const HttpAnswer &answer)
{
    if (multiplexing.size() >= kMaxServersKnown)
        multiplexing.clear();
    if (answer.isMultiplexed)
        multiplexing.insert(server);
    else if (answer.status != 0)
        multiplexing.erase(server);
}

void HttpClient::Loop::start(const ExchangePtr &exchange)
{
    try {
        auto transfer = std::make_unique<HttpTransfer>(exchange->request);
        // A new connection may turn out to carry several requests, but only where that is negotiated.
        const bool mayMultiplex = exchange->request.url.compare(0, 6, "https:") == 0;
        curl_easy_setopt(transfer->handle(), CURLOPT_PIPEWAIT, long(mayMultiplex));
        if (curl_multi_add_handle(multi.get(), transfer->handle()) != CURLM_OK)
            throw std::bad_alloc();
        active.push_back({exchange, std::move(transfer)});
        exchange->isStarted = true;
        ++load[exchange->request.server];
    } catch (const std::bad_alloc &) {
        HttpAnswer answer;
        answer.failure = "there is not enough memory";
        finish(exchange, std::move(answer));
    }
}

HttpClient::Loop::ActiveList::iterator HttpClient::Loop::remove(ActiveList::iterator it, HttpAnswer answer)
{
    const auto counted = load.find(it->exchange->request.server);
    if (--counted->second == 0)
        load.erase(counted);
    curl_multi_remove_handle(multi.get(), it->transfer->handle());
    const ExchangePtr exchange = it->exchange;
    it = active.erase(it);
    finish(exchange, std::move(answer));
    return it;
}

void HttpClient::Loop::finish(const ExchangePtr &exchange, HttpAnswer answer)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!exchange->isDone) {
            exchange->answer = std::move(answer);
            exchange->isDone = true;
            answered.notify_all();
            return;
        }
    }
    if (exchange->unattended)
        exchange->request.afterlife->end(answer);
}

void HttpClient::Loop::dropUseless()
{
    for (auto it = active.begin(); it != active.end();) {
        const Exchange &exchange = *it->exchange;
        const bool isUseless = exchange.abandoned || (exchange.unattended && !exchange.request.afterlife->goesOn());
        it = isUseless ? remove(it, it->transfer->finishUseless()) : std::next(it);
    }
}

void HttpClient::Loop::collectFinished()
{
    int left = 0;
    while (CURLMsg *message = curl_multi_info_read(multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL *const handle = message->easy_handle;
        const CURLcode code = message->data.result;
        const auto it = std::find_if(active.begin(), active.end(),
                                     [&](const Active &one) { return one.transfer->handle() == handle; });
        if (it == active.end())
            continue;
        HttpAnswer answer = it->transfer->finish(code);
        learnProtocol(it->exchange->request.server, answer);
        remove(it, std::move(answer));
    }
}

void HttpClient::Loop::endStalled()
{
    const HttpTransfer::Clock::time_point now = HttpTransfer::Clock::now();
    for (auto it = active.begin(); it != active.end();)
        it = it->transfer->isStalled(now) ? remove(it, it->transfer->finishStalled()) : std::next(it);
}

void HttpClient::Loop::cancelEverything()
{
    HttpAnswer cancelled;
    cancelled.outcome = HttpOutcome::Cancelled;
    for (auto it = active.begin(); it != active.end();)
        it = remove(it, it->transfer->finishUseless());
    takeIn();
    for (const ExchangePtr &exchange : queue)
        finish(exchange, cancelled);
    queue.clear();
}

HttpClient &HttpClient::instance()
{
    static auto *client = new HttpClient;
    return *client;
}

HttpClient::HttpClient() = default;

HttpClient::~HttpClient()
{
    stop();
}

std::shared_ptr<HttpClient::Loop> HttpClient::startedLoop()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!loop) {
        loop = std::make_shared<Loop>();
        thread = std::thread([running = loop] { running->run(); });
    }
    return loop;
}

std::vector<HttpAnswer> HttpClient::perform(const std::vector<HttpRequest> &requests, const CancelFlag &cancel)
{
    std::vector<ExchangePtr> exchanges;
    for (const HttpRequest &request : requests)
        exchanges.push_back(std::make_shared<Exchange>(request));
    const std::shared_ptr<Loop> used = startedLoop();
    std::vector<HttpAnswer> answers(requests.size());
    if (!used->add(exchanges)) {
        for (HttpAnswer &answer : answers)
            answer.outcome = HttpOutcome::Cancelled;
        return answers;
    }
    used->await(exchanges, cancel);
    for (std::size_t i = 0; i < exchanges.size(); ++i)
        answers[i] = std::move(exchanges[i]->answer);
    return answers;
}

void HttpClient::send(const HttpRequest &request)
{
    auto exchange = std::make_shared<Exchange>(request);
    exchange->isDone = true;
    exchange->unattended = true;
    startedLoop()->add({exchange});
}

void HttpClient::stop()
{
    std::thread ending;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (loop)
            loop->requestStop();
        loop.reset();
        ending.swap(thread);
    }
    if (ending.joinable())
        ending.join();
}

} // namespace xrv
