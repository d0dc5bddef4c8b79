#include "nginxserver.h"
#include "streamreading.h"

#include "data/logrecorder.h"

#include "stream/http/servertraits.h"
#include "stream/segmentstore.h"

#include <xrv60/plkview.h>

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <climits>
#include <mutex>
#include <thread>

using xrv::ByteRange;

using Handler = FaultServer::Handler;
using Request = FaultServer::Request;
using Connection = FaultServer::Connection;
Q_DECLARE_METATYPE(Handler)

/// What servers do that they should not, or need not.
class TestStreamFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void bytesArriveAllTheSame_data();
    void bytesArriveAllTheSame();
    void severalRangesAreNotAskedForAgain_data();
    void severalRangesAreNotAskedForAgain();
    void openingFails_data();
    void openingFails();
    void readingFails_data();
    void readingFails();
    void largeFileWithoutRanges();
    void serverStopsServingRanges();
    void shortAnswersCostNoPause();
    void lostConnectionIsTakenUpAgain();
    void lostServersAreNotWaitedForAgain();
    void saysWhoItIs();
    void passwordsAreNotLogged();
    void redirectsKeepThePassword();
    void cancelReturnsAtOnce();
    void cancelledRequestsGoOn();
    void requestsAtATime_data();
    void requestsAtATime();
    void prefetchedBytesNeedNoRequest();
    void threadsShareRequests();
};

namespace {

constexpr std::size_t kSize = 200000;
const std::vector<ByteRange> kRanges{{0, 100}, {900, 300}, {50000, 1000}, {50500, 2000}, {120000, 40000}, {199990, 10}};

const WebFile &plainFile()
{
    static const WebFile file = WebFile::make(kSize, 1);
    return file;
}

/// Spoils the first \a times answers after that.
Handler spoilt(const WebFile &file, int times, const Handler &spoil)
{
    const auto left = std::make_shared<std::atomic<int>>(times);
    return afterOpening(file, [=](const Request &request, const Connection &connection) {
        return left->fetch_sub(1) > 0 ? spoil(request, connection) : connection.send(file.answer(request));
    });
}

std::string firstRangeOnly(const WebFile &file, const Request &request)
{
    const auto [first, last] = request.ranges.front();
    return file.singleRange(first, std::min(last, file.bytes.size() - 1));
}

/// Single ranges as they should be, several by \a several.
Handler unlessSeveral(const WebFile &file, const Handler &several)
{
    return [=](const Request &request, const Connection &connection) {
        return request.ranges.size() > 1 ? several(request, connection) : connection.send(file.answer(request));
    };
}

/// The answer to several ranges with \a before put in the place of each \a after.
Handler severalWith(const WebFile &file, const std::string &before, const std::string &after)
{
    return answering([=](const Request &request) {
        const std::string answer = file.answer(request);
        const std::size_t end = answer.find("\r\n\r\n") + 4;
        std::string head = answer.substr(0, end), body = answer.substr(end);
        for (std::string *part : {&head, &body}) {
            const std::size_t at = part->find(before);
            if (at != std::string::npos)
                part->replace(at, before.size(), after);
        }
        head.replace(head.find("Content-Length"),
                     head.find("\r\n", head.find("Content-Length")) - head.find("Content-Length"),
                     "Content-Length: " + std::to_string(body.size()));
        return head + body;
    });
}

} // namespace

void TestStreamFaults::init()
{
    xrv::ServerTraits::instance().forget();
}

void TestStreamFaults::bytesArriveAllTheSame_data()
{
    QTest::addColumn<Handler>("handler");
    WebFile file = plainFile();
    QTest::newRow("parts in one answer") << file.handler();
    QTest::newRow("parts in another order") << answering([file](const Request &request) {
        auto ranges = request.ranges;
        std::reverse(ranges.begin(), ranges.end());
        return ranges.size() > 1 ? file.severalRanges(ranges) : file.answer(request);
    });
    QTest::newRow("first range only") << answering(
        [file](const Request &request) { return firstRangeOnly(file, request); });
    QTest::newRow("span of all ranges") << answering([file](const Request &request) {
        return file.singleRange(request.ranges.front().first, request.ranges.back().second);
    });
    QTest::newRow("file for several ranges") << [file]() mutable {
        file.takesSeveral = false;
        return file.handler();
    }();
    QTest::newRow("file for any range") << [file]() mutable {
        file.takesRanges = false;
        return file.handler();
    }();
    QTest::newRow("ranges at first, then the file") << afterOpening(file, always(file.whole()));
    QTest::newRow("nothing to tell versions by") << [file]() mutable {
        file.tag.clear();
        return file.handler();
    }();
    QTest::newRow("weak tag that becomes strong") << [file]() mutable {
        file.tag = "W/\"v1\"";
        return afterOpening(file, plainFile().handler());
    }();
    QTest::newRow("body broken off") << spoilt(file, 5, [file](const Request &request, const Connection &connection) {
        const std::string answer = file.answer(request);
        connection.send(answer.substr(0, answer.size() / 2));
        return false;
    });
    QTest::newRow("reset in mid-body") << spoilt(file, 5, [file](const Request &request, const Connection &connection) {
        const std::string answer = file.answer(request);
        connection.send(answer.substr(0, answer.size() * 3 / 4));
        connection.reset();
        return false;
    });
    QTest::newRow("closed without a word")
        << spoilt(file, 2, [](const Request &, const Connection &) { return false; });
    QTest::newRow("more than asked for") << answering([file](const Request &request) {
        const auto [first, last] = request.ranges.front();
        return httpAnswer("206 Partial Content", file.versionHeaders() + file.contentRange(first, last),
                          file.slice(first, last) + std::string(30000, 'x'));
    });
    QTest::newRow("out of service once") << spoilt(file, 1, always(httpAnswer("503 Service Unavailable")));
    QTest::newRow("asks for a pause") << spoilt(file, 1,
                                                always(httpAnswer("429 Too Many Requests", "Retry-After: 1\r\n")));
    QTest::newRow("error page in between") << spoilt(file, 2, always(httpAnswer("500 Oops", "", "<html>Oops</html>")));
    QTest::newRow("interim answer") << answering([file](const Request &request) {
        return "HTTP/1.1 103 Early Hints\r\nContent-Range: bytes 7-8/9\r\n\r\n" + file.answer(request);
    });
    QTest::newRow("redirects") << answering([file](const Request &request) {
        if (request.target == "/a.jp2")
            return httpAnswer("302 Found", "Location: b%20c/../d\r\n");
        if (request.target == "/d")
            return httpAnswer("308 Permanent Redirect", "Location: /e?x=1\r\n");
        return request.target == "/e?x=1" ? file.answer(request) : httpAnswer("404 Not Found");
    });
    QTest::newRow("redirect that expires") << [file] {
        const auto count = std::make_shared<std::atomic<int>>(0);
        return answering([=](const Request &request) {
            if (request.target == "/a.jp2")
                return httpAnswer("307 Temporary Redirect", "Location: /" + std::to_string(++*count) + "\r\n");
            const bool isValid = request.target == "/" + std::to_string(*count) &&
                                 request.headers.count("if-match") + std::size_t(*count) != 2;
            return isValid ? file.answer(request) : httpAnswer("403 Expired");
        });
    }();
}

void TestStreamFaults::bytesArriveAllTheSame()
{
    QFETCH(Handler, handler);
    FaultServer server(handler);
    const auto source = opened(server.address("/a.jp2"));
    QCOMPARE(source->size(), std::uint64_t(kSize));
    QVERIFY(readsRight(*source, plainFile(), kRanges));
    // And once more what neither came yet nor is close to it.
    QVERIFY(readsRight(*source, plainFile(), {{90000, 5000}, {190000, 3}}));
    QVERIFY(!source->condition());
}

void TestStreamFaults::severalRangesAreNotAskedForAgain_data()
{
    QTest::addColumn<Handler>("several");
    QTest::addColumn<int>("requestsForSeveral"); // until the server is known not to answer them
    const WebFile file = plainFile();
    for (const char *status : {"400", "403", "404", "405", "413", "416", "431", "501"})
        QTest::newRow(status) << always(httpAnswer(std::string(status) + " No")) << 1;
    for (const char *status : {"408", "500", "502", "503"}) // may be chance
        QTest::newRow(status) << always(httpAnswer(std::string(status) + " No")) << 2;
    QTest::newRow("reset within the head") << Handler([](const Request &, const Connection &connection) {
        connection.send("HTTP/1.1 206 Partial Content\r\nContent-Type: ");
        connection.reset();
        return false;
    }) << 2;
    QTest::newRow("whole file") << always(file.whole()) << 1;
    QTest::newRow("compressed") << severalWith(file, "ETag", "Content-Encoding: gzip\r\nETag") << 1;
    QTest::newRow("of no type") << severalWith(file, "multipart/byteranges; boundary=\"cut here\"", "image/jp2") << 1;
    QTest::newRow("another boundary") << severalWith(file, "boundary=\"cut here\"", "boundary=\"cut there\"") << 1;
    QTest::newRow("no version") << severalWith(file, "ETag", "X-Tag") << 1;
    // These can be read.
    QTest::newRow("preamble") << severalWith(file, "\r\n--cut here", "This is a message in parts.\r\n\r\n--cut here")
                              << INT_MAX;
    QTest::newRow("old type") << severalWith(file, "multipart/byteranges", "Multipart/X-ByteRanges; x-boundary=no")
                              << INT_MAX;
    QTest::newRow("quoted pair") << severalWith(file, "\"cut here\"", "\"c\\ut\\ here\"; a=b") << INT_MAX;
    QTest::newRow("one cut within the parts") << [file] {
        const auto count = std::make_shared<std::atomic<int>>(0);
        return Handler([=](const Request &request, const Connection &connection) {
            const std::string answer = file.answer(request);
            if (++*count > 1)
                return connection.send(answer);
            connection.send(answer.substr(0, answer.size() - 30000)); // one part and some of the next
            return false;
        });
    }() << INT_MAX;
}

void TestStreamFaults::severalRangesAreNotAskedForAgain()
{
    QFETCH(Handler, several);
    QFETCH(int, requestsForSeveral);
    FaultServer server(unlessSeveral(plainFile(), several));
    const auto source = opened(server.address("/a.jp2"));
    for (std::uint64_t i = 0; i < 4; ++i) {
        QVERIFY(readsRight(*source, plainFile(), {{10000 + i * 50000, 10}, {30000 + i * 50000, 16000}}));
        QVERIFY(!source->condition());
    }
    std::vector<Request> requests = server.takeRequests();
    const auto isForSeveral = [](const Request &request) { return request.ranges.size() > 1; };
    const auto count = std::count_if(requests.begin(), requests.end(), isForSeveral);
    if (requestsForSeveral == INT_MAX)
        QVERIFY2(count >= 4 && requests.size() <= 7, qPrintable(QString::number(requests.size())));
    else
        QCOMPARE(int(count), requestsForSeveral);
}

void TestStreamFaults::openingFails_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<int>("code");
    const WebFile file = plainFile();
    const auto range = [file](const std::string &contentRange, const std::string &more = {}) {
        return always(httpAnswer("206 Partial Content", contentRange + more, file.slice(0, 999)));
    };
    const auto redirect = [](const std::string &to) {
        return always(httpAnswer("302 Found", "Location: " + to + "\r\n"));
    };
    QTest::newRow("no such file") << always(httpAnswer("404 Not Found")) << int(PLK_ERR_NOT_FOUND);
    QTest::newRow("gone") << always(httpAnswer("410 Gone")) << int(PLK_ERR_NOT_FOUND);
    QTest::newRow("forbidden") << always(httpAnswer("403 Forbidden")) << int(PLK_ERR_NO_ACCESS);
    QTest::newRow("password wanted") << always(httpAnswer("401 Unauthorized", "WWW-Authenticate: Basic\r\n"))
                                     << int(PLK_ERR_NO_ACCESS);
    QTest::newRow("range refused") << always(httpAnswer("416 No", "Content-Range: bytes */77\r\n"))
                                   << int(PLK_ERR_SERVER);
    QTest::newRow("always out of service") << always(httpAnswer("503 No")) << int(PLK_ERR_UNREACHABLE);
    QTest::newRow("long pause") << always(httpAnswer("429 No", "Retry-After: 3600\r\n")) << int(PLK_ERR_UNREACHABLE);
    QTest::newRow("pause until a date") << always(
                                               httpAnswer("503 No", "Retry-After: Fri, 31 Dec 2100 23:59:59 GMT\r\n"))
                                        << int(PLK_ERR_UNREACHABLE);
    QTest::newRow("redirect to a file") << redirect("file:///etc/passwd") << int(PLK_ERR_SERVER);
    QTest::newRow("redirect to ftp") << redirect("ftp://127.0.0.1/a.jp2") << int(PLK_ERR_SERVER);
    QTest::newRow("redirect to nowhere") << redirect("") << int(PLK_ERR_SERVER);
    QTest::newRow("redirect in a circle") << redirect("/a.jp2") << int(PLK_ERR_SERVER);
    QTest::newRow("compressed, asked for once") << [=] {
        const auto count = std::make_shared<std::atomic<int>>(0);
        const Handler gzip = range(file.contentRange(0, 999), "Content-Encoding: gzip\r\n");
        return Handler([=](const Request &request, const Connection &connection) {
            return ++*count > 1 ? connection.send(file.answer(request)) : gzip(request, connection);
        });
    }() << int(PLK_ERR_SERVER);
    QTest::newRow("no Content-Range") << range("") << int(PLK_ERR_SERVER);
    QTest::newRow("other bytes") << range(file.contentRange(500, 1499)) << int(PLK_ERR_SERVER);
    QTest::newRow("length unknown") << range("Content-Range: bytes 0-999/*\r\n") << int(PLK_ERR_SERVER);
    QTest::newRow("range beyond the length") << range("Content-Range: bytes 0-999/500\r\n") << int(PLK_ERR_SERVER);
    QTest::newRow("number beyond all bounds")
        << range("Content-Range: bytes 0-999/99999999999999999999999\r\n") << int(PLK_ERR_SERVER);
    QTest::newRow("endless headers") << Handler([](const Request &, const Connection &connection) {
        connection.send("HTTP/1.1 206 Partial Content\r\n");
        while (connection.send("X-More: " + std::string(1000, 'x') + "\r\n")) {
        }
        return false;
    }) << int(PLK_ERR_SERVER);
    QTest::newRow("endless body") << Handler([](const Request &, const Connection &connection) {
        connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        while (connection.send("1000\r\n" + std::string(4096, 'x') + "\r\n")) {
        }
        return false;
    }) << int(PLK_ERR_TOO_LARGE);
    QTest::newRow("no HTTP at all") << Handler([](const Request &, const Connection &connection) {
        connection.send("SSH-2.0-OpenSSH_9.2\r\n");
        return false;
    }) << int(PLK_ERR_SERVER);
    QTest::newRow("silence") << silence() << int(PLK_ERR_UNREACHABLE);
    QTest::newRow("drops") << Handler([file](const Request &request, const Connection &connection) {
        for (const char drop : file.answer(request)) {
            if (!connection.send(std::string(1, drop)))
                break;
            connection.linger(20);
        }
        return false;
    }) << int(PLK_ERR_UNREACHABLE);
}

void TestStreamFaults::openingFails()
{
    QFETCH(Handler, handler);
    QFETCH(int, code);
    FaultServer server(handler);
    std::shared_ptr<xrv::ByteSource> source;
    QElapsedTimer timer;
    timer.start();
    const PLK::CError error = openStream(server.address("/a.jp2", "me:secret"), quickOptions(), &source);
    QCOMPARE(error.GetErrorNumber(), code);
    QVERIFY(!source);
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    const QString message = QString::fromUtf8(error.GetErrorMessage());
    QVERIFY2(message.endsWith(QLatin1Char('.')) && message.size() > 20, error.GetErrorMessage());
    QVERIFY2(!message.contains(QLatin1String("secret")), error.GetErrorMessage());
}

void TestStreamFaults::readingFails_data()
{
    QTest::addColumn<Handler>("handler");
    QTest::addColumn<int>("code");
    const WebFile file = plainFile();
    WebFile other = WebFile::make(kSize, 2);
    other.tag = "\"v2\"";
    const auto become = [file](const WebFile &next) { return afterOpening(file, next.handler()); };
    QTest::newRow("changed, server compares") << become(other) << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("changed, server ignores conditions")
        << afterOpening(file,
                        answering([other](const Request &request) { return other.severalRanges(request.ranges); }))
        << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("changed, whole file comes")
        << afterOpening(file, always(other.whole())) << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("changed half-way") << [file, other] {
        const auto count = std::make_shared<std::atomic<int>>(0);
        return afterOpening(file, answering([=](const Request &request) {
                                return firstRangeOnly(++*count < 3 ? file : other, request);
                            }));
    }() << int(PLK_ERR_FILE_CHANGED);
    WebFile longer = WebFile::make(kSize + 1, 1);
    longer.tag.clear();
    QTest::newRow("longer, nothing else to tell it by") << become(longer) << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("shorter than what is wanted") << become([&] {
        WebFile shorter = WebFile::make(100, 1);
        shorter.tag.clear();
        return shorter;
    }()) << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("vanished") << afterOpening(file, always(httpAnswer("404 Not Found"))) << int(PLK_ERR_FILE_CHANGED);
    QTest::newRow("forbidden") << afterOpening(file, always(httpAnswer("403 Forbidden"))) << int(PLK_ERR_NO_ACCESS);
    QTest::newRow("out of service") << afterOpening(file, always(httpAnswer("502 Bad Gateway")))
                                    << int(PLK_ERR_CONNECTION_LOST);
    QTest::newRow("silence") << afterOpening(file, silence()) << int(PLK_ERR_CONNECTION_LOST);
    QTest::newRow("always other bytes") << afterOpening(file, always(file.singleRange(70000, 71000)))
                                        << int(PLK_ERR_SERVER);
    QTest::newRow("parts of nonsense")
        << afterOpening(file,
                        always(httpAnswer("206 Partial Content", "Content-Type: multipart/byteranges; boundary=cut\r\n",
                                          "--cut\r\nContent-Range: bytes 5-1/7\r\n\r\nabc\r\n--cut--\r\n" +
                                              std::string(9000, '-'))))
        << int(PLK_ERR_SERVER);
}

void TestStreamFaults::readingFails()
{
    QFETCH(Handler, handler);
    QFETCH(int, code);
    FaultServer server(handler);
    const auto source = opened(server.address("/a.jp2"));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(readError(*source, kRanges), code);
    QVERIFY(timer.elapsed() < 5000);
    const bool isLasting = code == PLK_ERR_FILE_CHANGED || code == PLK_ERR_CONNECTION_LOST;
    QCOMPARE(source->condition().GetErrorNumber(), isLasting ? code : 0);
    if (!isLasting)
        return;
    // What was there before: gone with a version that is no more, at hand without a connection.
    server.takeRequests();
    QCOMPARE(readError(*source, {{0, 100}}), code == PLK_ERR_FILE_CHANGED ? code : 0);
    QVERIFY(server.takeRequests().empty());
}

void TestStreamFaults::largeFileWithoutRanges()
{
    WebFile file = plainFile();
    file.takesRanges = false;
    FaultServer server(file.handler());
    xrv::StreamOptions options = quickOptions();
    options.wholeInMemory = kSize - 1;
    std::shared_ptr<xrv::ByteSource> tooLarge;
    const PLK::CError error = openStream(server.address("/a.jp2"), options, &tooLarge);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_TOO_LARGE));
    QCOMPARE(server.takeRequests().size(), std::size_t(1));
    options.wholeInMemory = kSize;
    const auto source = opened(server.address("/a.jp2"), options);
    server.takeRequests();
    QVERIFY(!source->prefetch({{100, 10}}, {}));
    QVERIFY(readsRight(*source, file, kRanges));
    QVERIFY(server.takeRequests().empty()); // it came with the first answer
}

/// The length is known: what cannot be taken is not asked for, and what was not taken not again.
void TestStreamFaults::serverStopsServingRanges()
{
    const WebFile file = plainFile();
    FaultServer server(afterOpening(file, always(file.whole())));
    xrv::StreamOptions options = quickOptions();
    options.wholeInMemory = kSize - 1;
    const auto source = opened(server.address("/a.jp2"), options);
    for (int i = 0; i < 3; ++i) {
        std::vector<xrv::Bytes> out;
        const PLK::CError error = source->read(kRanges, {}, &out);
        QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_TOO_LARGE));
        QVERIFY2(QByteArray(error.GetErrorMessage()).contains("switched off"), error.GetErrorMessage());
    }
    for (const Request &request : server.takeRequests())
        QVERIFY(!request.ranges.empty());
    // One that fits comes once, however many want it.
    server.setHandler(afterOpening(file, [file](const Request &request, const Connection &connection) {
        connection.linger(request.ranges.empty() ? 50 : 0);
        return connection.send(file.whole());
    }));
    const auto smaller = opened(server.address("/b.jp2"));
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < 6; ++i)
        threads.emplace_back([&, i] { right += readsRight(*smaller, file, {{5000 + i * 30000, 1000}}) ? 1 : 0; });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(right.load(), 6);
    const std::vector<Request> requests = server.takeRequests();
    QCOMPARE(std::count_if(requests.begin(), requests.end(), [](const Request &one) { return one.ranges.empty(); }), 1);
}

void TestStreamFaults::shortAnswersCostNoPause()
{
    const WebFile file = plainFile();
    FaultServer server(answering([file](const Request &request) {
        const auto [first, last] = request.ranges.front();
        return file.singleRange(first, std::min(last, first + 7999));
    }));
    xrv::StreamOptions options = quickOptions();
    options.firstBackOff = 20000;
    const auto source = opened(server.address("/short.jp2"), options);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(readsRight(*source, file, {{20000, 90000}}));
    QVERIFY(timer.elapsed() < 15000);
}

void TestStreamFaults::lostConnectionIsTakenUpAgain()
{
    FaultServer server(plainFile().handler());
    const auto source = opened(server.address("/lost.jp2"));
    const std::vector<ByteRange> some{{500, 90000}};
    QCOMPARE(readError(*source, {{1000, 50000}}), 0);
    server.stop();
    QCOMPARE(readError(*source, some), int(PLK_ERR_CONNECTION_LOST));
    server.start();
    // At once, without asking, until told to.
    QCOMPARE(readError(*source, some), int(PLK_ERR_CONNECTION_LOST));
    server.takeRequests();
    source->reconnect(true);
    QVERIFY(!source->condition());
    QVERIFY(readsRight(*source, plainFile(), some));
    const std::vector<Request> requests = server.takeRequests();
    QCOMPARE(requests.size(), std::size_t(1));
    QCOMPARE(requests[0].header("range"), std::string("bytes=51000-90499"));
}

void TestStreamFaults::lostServersAreNotWaitedForAgain()
{
    FaultServer server(plainFile().handler());
    xrv::StreamOptions options = quickOptions();
    options.stallTimeout = 20000;
    options.trialTimeout = 400;
    const auto source = opened(server.address("/lost.jp2"), options);
    server.stop();
    const std::vector<ByteRange> some{{500, 90000}};
    QCOMPARE(readError(*source, some), int(PLK_ERR_CONNECTION_LOST));
    server.setHandler(silence());
    server.start();
    QElapsedTimer timer;
    timer.start();
    source->reconnect(false);
    QCOMPARE(readError(*source, some), int(PLK_ERR_CONNECTION_LOST));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));

    // One that is there again is given the time it takes.
    server.setHandler(afterOpening(plainFile(), [](const Request &request, const Connection &connection) {
        connection.linger(1200);
        return connection.send(plainFile().answer(request));
    }));
    source->reconnect(false);
    QVERIFY(readsRight(*source, plainFile(), some));
    QVERIFY(readsRight(*source, plainFile(), {{120000, 4000}}));
}

void TestStreamFaults::saysWhoItIs()
{
    FaultServer server(plainFile().handler());
    xrv::StreamOptions options = quickOptions();
    options.userAgent = "A viewer/6.0";
    qputenv("http_proxy", server.url().c_str());
    std::shared_ptr<xrv::ByteSource> source;
    const PLK::CError error = openStream("xrvp://images.invalid/a.jp2", options, &source);
    qunsetenv("http_proxy");
    QVERIFY2(!error, error.GetErrorMessage());
    const std::vector<Request> requests = server.takeRequests();
    QCOMPARE(requests.size(), std::size_t(1));
    QVERIFY(requests[0].target.find("http://images.invalid") == 0);
    QCOMPARE(requests[0].method, std::string("GET"));
    QCOMPARE(requests[0].header("user-agent"), std::string("A viewer/6.0"));
    QCOMPARE(requests[0].header("accept-encoding"), std::string("identity"));
    QCOMPARE(requests[0].header("range"), std::string("bytes=0-999"));
}

void TestStreamFaults::passwordsAreNotLogged()
{
    FaultServer server(plainFile().handler());
    LogRecorder<char> log;
    PLK::CView view;
    for (const char *path : {"/a.jp2", "/b.jp2"}) {
        // No picture, and then no server.
        const PLK::CError error = view.Open(PLK::CString(server.address(path, "me:secret").c_str()), false, false);
        QVERIFY(error);
        QVERIFY(std::string(error.GetErrorMessage()).find("secret") == std::string::npos);
        server.stop();
        QVERIFY(log.count(PLK_LOG_ERROR, path) > 0);
    }
    for (const auto &[level, text] : log.lines)
        QVERIFY2(text.find("secret") == std::string::npos, text.c_str());
}

void TestStreamFaults::redirectsKeepThePassword()
{
    const WebFile file = plainFile();
    FaultServer elsewhere(file.handler());
    const std::string away = elsewhere.url() + "/a.jp2";
    FaultServer server(answering([=](const Request &request) {
        return request.header("authorization") != "Basic bWU6c2VjcmV0" // me:secret
                   ? httpAnswer("401 Unauthorized")
                   : httpAnswer("302 Found", "Location: " + away + "\r\n");
    }));
    std::shared_ptr<xrv::ByteSource> refused;
    QCOMPARE(openStream(server.address("/a.jp2"), quickOptions(), &refused).GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
    const auto source = opened(server.address("/a.jp2", "me:secret"));
    QCOMPARE(source->name(), server.address("/a.jp2"));
    QVERIFY(source->identity().find("secret") == std::string::npos);
    QVERIFY(readsRight(*source, file, kRanges));
    const std::vector<Request> requests = elsewhere.takeRequests();
    QVERIFY(!requests.empty());
    for (const Request &request : requests)
        QCOMPARE(request.header("authorization"), std::string());
    // The name that it goes by opens it again.
    QVERIFY(opened(source->name()));
}

void TestStreamFaults::cancelReturnsAtOnce()
{
    const xrv::CancelFlag cancel;
    QElapsedTimer timer;
    FaultServer server(afterOpening(plainFile(), [&](const Request &request, const Connection &connection) {
        timer.start();
        xrv::CancelFlag(cancel).raise();
        return silence()(request, connection);
    }));
    xrv::StreamOptions options = quickOptions();
    options.stallTimeout = 20000;
    const auto source = opened(server.address("/slow.jp2"), options);
    QCOMPARE(readError(*source, kRanges, cancel), int(PLK_ERR_CANCELLED));
    QVERIFY(timer.elapsed() < 200);
    QVERIFY(!source->condition());
}

void TestStreamFaults::cancelledRequestsGoOn()
{
    constexpr std::uint64_t kFrom = 20000, kLength = 90000;
    const WebFile file = plainFile();
    xrv::CancelFlag cancel;
    std::atomic<bool> mayGoOn{true}, isBrokenOff{false};
    FaultServer server(answering([](const Request &) { return std::string(); }));
    const Handler slow = [&](const Request &request, const Connection &connection) {
        const std::string answer = file.answer(request);
        if (request.ranges.front().first != kFrom)
            return connection.send(answer);
        connection.send(answer.substr(0, answer.size() / 2));
        connection.linger(50); // some of it came
        cancel.raise();
        while (!mayGoOn)
            if (!connection.linger(10))
                return !(isBrokenOff = true);
        connection.linger(50); // it was cancelled
        return connection.send(answer.substr(answer.size() / 2));
    };
    server.setHandler(afterOpening(file, slow));
    const auto source = opened(server.address("/on.jp2"));
    QCOMPARE(readError(*source, {{kFrom, kLength}}, cancel), int(PLK_ERR_CANCELLED));
    server.takeRequests();
    QVERIFY(readsRight(*source, file, {{kFrom, kLength}}));
    QVERIFY(server.takeRequests().empty());

    // What nobody comes back to is broken off; what came of it is not asked for again.
    mayGoOn = false;
    cancel = xrv::CancelFlag();
    server.setHandler(afterOpening(file, slow));
    const auto elsewhere = opened(server.address("/elsewhere.jp2"));
    QCOMPARE(readError(*elsewhere, {{kFrom, kLength}}, cancel), int(PLK_ERR_CANCELLED));
    for (std::uint64_t i = 0; i < 10; ++i)
        QVERIFY(!elsewhere->prefetch({{150000 + i * 4000, 10}}, {}));
    QTRY_VERIFY(isBrokenOff);
    server.takeRequests();
    QVERIFY(readsRight(*elsewhere, file, {{kFrom, kLength}}));
    const std::vector<Request> requests = server.takeRequests();
    QCOMPARE(requests.size(), std::size_t(1));
    QVERIFY(requests[0].ranges.front().first > kFrom + kLength / 4);
}

void TestStreamFaults::requestsAtATime_data()
{
    QTest::addColumn<bool>("isMultiplexed");
    QTest::newRow("HTTP/1.1, a few") << false;
    QTest::newRow("HTTP/2, many") << true;
}

void TestStreamFaults::requestsAtATime()
{
    QFETCH(bool, isMultiplexed);
    WebFile file = WebFile::make(3000000, 3);
    file.takesSeveral = false;
    std::mutex mutex; // guards the numbers
    int underWay = 0, most = 0;
    FaultServer server([&](const Request &request, const Connection &connection) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            most = std::max(most, ++underWay);
        }
        connection.linger(60);
        {
            const std::lock_guard<std::mutex> lock(mutex); // before the answer makes room for another
            --underWay;
        }
        return connection.send(file.answer(request));
    });
    NginxServer front; // speaks HTTP/2 for it
    front.configure(QStringLiteral("location / { proxy_pass %1; proxy_http_version 1.1; }")
                        .arg(QString::fromStdString(server.url())));
    if (isMultiplexed && (!NginxServer::isInstalled() || !front.makeSecure() || !front.start(QStringLiteral("/"))))
        QSKIP("nginx or openssl are not installed");
    xrv::StreamOptions options = quickOptions();
    options.caFile = front.certificateFile().toStdString();
    const auto source =
        opened(isMultiplexed ? front.address(QStringLiteral("many.jp2")) : server.address("/many.jp2"), options);
    std::vector<ByteRange> ranges;
    for (std::uint64_t i = 0; i < 25; ++i)
        ranges.push_back({i * 100000 + 20000, 100});
    QVERIFY(readsRight(*source, file, ranges));
    for (const Request &request : server.takeRequests()) // a whole file would hold up the others
        QVERIFY(!isMultiplexed || request.ranges.size() < 2 || request.header("range").find("bytes=0-0,") == 0);
    const std::lock_guard<std::mutex> lock(mutex);
    QVERIFY2(isMultiplexed ? most > 12 : most > 1 && most <= 6, qPrintable(QString::number(most)));
}

void TestStreamFaults::prefetchedBytesNeedNoRequest()
{
    const WebFile file = plainFile();
    FaultServer server(file.handler());
    const auto source = opened(server.address("/ahead.jp2"));
    QVERIFY(!source->prefetch(kRanges, {}));
    std::vector<Request> requests = server.takeRequests();
    QCOMPARE(requests.size(), std::size_t(2)); // one opened the file
    QCOMPARE(requests[1].header("range"), std::string("bytes=1000-1199,50000-52499,120000-159999,199990-199999"));
    for (const ByteRange &range : kRanges)
        QVERIFY(readsRight(*source, file, {{range.offset + 3, range.length - 5}}));
    QVERIFY(server.takeRequests().empty());
}

void TestStreamFaults::threadsShareRequests()
{
    const WebFile file = plainFile();
    FaultServer server([file](const Request &request, const Connection &connection) {
        connection.linger(20);
        return connection.send(file.answer(request));
    });
    const auto source = opened(server.address("/shared.jp2"));
    server.takeRequests();
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { right += readsRight(*source, file, kRanges) ? 1 : 0; });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(right.load(), 8);
    QCOMPARE(server.takeRequests().size(), std::size_t(1));
}

QTEST_GUILESS_MAIN(TestStreamFaults)
#include "tst_streamfaults.moc"
