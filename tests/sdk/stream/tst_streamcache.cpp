#include "streamreading.h"

#include "data/files.h"
#include "data/logrecorder.h"

#include "stream/http/servertraits.h"
#include "stream/segmentstore.h"

#include <QDateTime>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <filesystem>
#include <numeric>
#include <random>

#include <csignal>
#include <sys/resource.h>

using xrv::ByteRange;

using Request = FaultServer::Request;

namespace {

constexpr std::size_t kSize = 600000;
const std::vector<ByteRange> kRanges{{0, 100}, {50000, 1000}, {120000, 90000}, {400000, 3}, {599000, 1000}};

std::uint64_t fileNumberOf(const xrv::ByteSource &source)
{
    return xrv::SegmentStore::instance().fileNumber(source.identity());
}

/// Opens \a address with nothing of it in memory: as another process would.
PLK::CError openCold(const std::string &address, const xrv::StreamOptions &options,
                     std::shared_ptr<xrv::ByteSource> *source)
{
    const PLK::CError error = openStream(address, options, source);
    if (!error)
        xrv::SegmentStore::instance().drop(fileNumberOf(**source));
    return error;
}

/// Lets writes beyond a size fail, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit tight{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit before{};
};

/// What a second process does: reads pieces of a file of make(kSize, seed) in random order, for ever or \a rounds
/// times.
int readPieces(const std::string &address, const std::string &folder, unsigned seed, int rounds)
{
    const WebFile file = WebFile::make(kSize, 1);
    xrv::StreamOptions options = quickOptions();
    options.cacheEnabled = true;
    options.cacheFolder = folder;
    options.cacheBytes = 100 << 20;
    std::mt19937 random(seed);
    for (int i = 0; rounds == 0 || i < rounds; ++i) {
        std::shared_ptr<xrv::ByteSource> source;
        if (openCold(address, options, &source))
            return 1;
        for (int k = 0; k < 20; ++k) {
            const std::uint64_t offset = random() % (kSize - 5000);
            if (!readsRight(*source, file, {{offset, random() % 5000}}))
                return 2;
            source->remember("numbers", xrv::Bytes(100, std::uint8_t(seed)));
        }
    }
    return 0;
}

} // namespace

/// The stream cache on disk.
class TestStreamCache : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void secondVisitAsksOnceOnly();
    void changedFileReplacesTheOld();
    void knowledgeIsKept();
    void holdsNoSecretsAndNoForeignNames();
    void wrongBytesAreNeverGivenOut_data();
    void wrongBytesAreNeverGivenOut();
    void filesRemovedWhileOpen();
    void goesOnWithoutFolder();
    void fullDiskIsHarmless();
    void leastRecentlyUsedGoesFirst();
    void fileLargerThanTheCache();
    void wholeDownloadIsKept_data();
    void wholeDownloadIsKept();
    void wholeDownloadThatTheDiskDoesNotTake();
    void unprovenBytesAreNotKept_data();
    void unprovenBytesAreNotKept();
    void severalProcesses();
    void killedWhileWriting();

private:
    std::shared_ptr<xrv::ByteSource> visit(FaultServer &server, const std::string &path = "/a.jp2");
    void startReader(QProcess *process, const FaultServer &server, int seed, int rounds) const;
    QStringList files(const char *ending) const;
    qint64 bytesOnDisk() const
    {
        const QStringList names = files("*");
        return std::accumulate(names.begin(), names.end(), qint64(0),
                               [](qint64 sum, const QString &name) { return sum + QFileInfo(name).size(); });
    }

    std::unique_ptr<QTemporaryDir> folder;
    xrv::StreamOptions options;
    const WebFile file = WebFile::make(kSize, 1);
};

void TestStreamCache::init()
{
    xrv::ServerTraits::instance().forget();
    folder = std::make_unique<QTemporaryDir>();
    options = quickOptions();
    options.cacheEnabled = true;
    options.cacheFolder = folder->path().toStdString() + "/made/by it";
    options.cacheBytes = 10 << 20;
}

QStringList TestStreamCache::files(const char *ending) const
{
    const QDir cache(QString::fromStdString(options.cacheFolder));
    QStringList paths;
    for (const QString &name : cache.entryList({QLatin1String("*.") + QLatin1String(ending)}, QDir::Files, QDir::Name))
        paths.append(cache.filePath(name));
    return paths;
}

/// Opens, reads and compares; null and a failed test when that goes wrong.
std::shared_ptr<xrv::ByteSource> TestStreamCache::visit(FaultServer &server, const std::string &path)
{
    std::shared_ptr<xrv::ByteSource> source;
    return !openCold(server.address(path), options, &source) && readsRight(*source, file, kRanges) ? source : nullptr;
}

void TestStreamCache::secondVisitAsksOnceOnly()
{
    FaultServer server(file.handler());
    QVERIFY(visit(server));
    server.takeRequests();
    QVERIFY(visit(server));
    const std::vector<Request> requests = server.takeRequests();
    QCOMPARE(requests.size(), std::size_t(1));
    QCOMPARE(requests[0].header("if-none-match"), file.tag);
    const std::shared_ptr<xrv::ByteSource> source = visit(server);
    xrv::SegmentStore::instance().drop(fileNumberOf(*source));
    server.takeRequests();
    QVERIFY(!source->prefetch(kRanges, {}));
    QVERIFY(server.takeRequests().empty());
}

void TestStreamCache::changedFileReplacesTheOld()
{
    FaultServer server(file.handler());
    QVERIFY(visit(server));
    const QStringList before = files("data");
    WebFile other = WebFile::make(kSize + 5, 2);
    other.tag = "\"v2\"";
    server.setHandler(other.handler());
    std::shared_ptr<xrv::ByteSource> source;
    QVERIFY(!openCold(server.address("/a.jp2"), options, &source));
    QVERIFY(readsRight(*source, other, kRanges));
    QCOMPARE(files("data").size(), 1);
    QVERIFY(files("data") != before);
    // Back to the first one, while the second is open.
    server.setHandler(file.handler());
    QCOMPARE(readError(*source, {{300000, 10}}), int(PLK_ERR_FILE_CHANGED));
    QVERIFY(files("data").isEmpty());
    QVERIFY(visit(server));
}

void TestStreamCache::knowledgeIsKept()
{
    FaultServer server(file.handler());
    const xrv::Bytes table{1, 2, 3}, newer{4, 5};
    xrv::Bytes recalled;
    {
        const std::shared_ptr<xrv::ByteSource> source = visit(server);
        QVERIFY(!source->recall("table", &recalled));
        source->remember("table", table);
        source->remember("other", {});
        source->remember("table", newer);
    }
    const std::shared_ptr<xrv::ByteSource> source = visit(server);
    QVERIFY(source->recall("table", &recalled));
    QCOMPARE(recalled, newer);
    QVERIFY(source->recall("other", &recalled));
    QVERIFY(recalled.empty());
    WebFile other = file;
    other.tag = "\"v2\"";
    server.setHandler(other.handler());
    QVERIFY(!visit(server)->recall("table", &recalled));
}

void TestStreamCache::holdsNoSecretsAndNoForeignNames()
{
    WebFile odd = file;
    odd.tag = "\"../../../tmp/x\"";
    FaultServer server(odd.handler());
    std::shared_ptr<xrv::ByteSource> source;
    QVERIFY(!openCold(server.address("/../..%2f..%2fetc/evil?token=geheim", "me:secret"), options, &source));
    const QStringList all = files("*");
    QCOMPARE(all.size(), 2);
    for (const QString &name : all) {
        QVERIFY(QRegularExpression(QStringLiteral("/xrvp-[0-9a-f]{32}-[0-9a-f]{16}\\.(cache|data)$"))
                    .match(name)
                    .hasMatch());
        for (const char *secret : {"secret", "bWU6c2VjcmV0", "geheim", "evil"})
            QVERIFY(!readFile(name).contains(secret));
        QCOMPARE(QFile::permissions(name) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    }
}

namespace {

using Damage =
    std::function<void(const QString &cache, const QString &data, const QString &otherCache, const QString &otherData)>;

void flip(const QString &name, qint64 every)
{
    QByteArray content = readFile(name);
    for (qint64 i = every / 2; i < content.size(); i += every)
        content[int(i)] = char(content[int(i)] ^ 0x40);
    writeFile(name, content);
}

void swapFiles(const QString &a, const QString &b)
{
    std::filesystem::rename(a.toStdString(), a.toStdString() + "x");
    std::filesystem::rename(b.toStdString(), a.toStdString());
    std::filesystem::rename(a.toStdString() + "x", b.toStdString());
}

} // namespace

Q_DECLARE_METATYPE(Damage)

void TestStreamCache::wrongBytesAreNeverGivenOut_data()
{
    QTest::addColumn<Damage>("damage");
    for (int cut = 0; cut < 16; ++cut) {
        QTest::addRow("index cut at %d/16", cut) << Damage([cut](const QString &cache, auto, auto, auto) {
            QFile::resize(cache, QFileInfo(cache).size() * cut / 16);
        });
        QTest::addRow("data cut at %d/16", cut) << Damage(
            [cut](auto, const QString &data, auto, auto) { QFile::resize(data, QFileInfo(data).size() * cut / 16); });
    }
    QTest::newRow("index flipped") << Damage([](const QString &cache, auto, auto, auto) { flip(cache, 300); });
    QTest::newRow("data flipped") << Damage([](auto, const QString &data, auto, auto) { flip(data, 30000); });
    QTest::newRow("data flipped throughout") << Damage([](auto, const QString &data, auto, auto) { flip(data, 2); });
    QTest::newRow("data swapped") << Damage([](auto, const QString &a, auto, const QString &b) { swapFiles(a, b); });
    QTest::newRow("index swapped") << Damage([](const QString &a, auto, const QString &b, auto) { swapFiles(a, b); });
    QTest::newRow("both swapped") << Damage([](const QString &a, const QString &b, const QString &c, const QString &d) {
        swapFiles(a, c);
        swapFiles(b, d);
    });
    QTest::newRow("index gone") << Damage([](const QString &cache, auto, auto, auto) { QFile::remove(cache); });
    QTest::newRow("data gone") << Damage([](auto, const QString &data, auto, auto) { QFile::remove(data); });
    QTest::newRow("index is a link") << Damage([](const QString &a, auto, const QString &b, auto) {
        QFile::remove(a);
        QFile::link(b, a);
    });
}

void TestStreamCache::wrongBytesAreNeverGivenOut()
{
    QFETCH(Damage, damage);
    const WebFile other = WebFile::make(kSize, 9);
    FaultServer server(answering(
        [this, other](const Request &request) { return (request.target == "/a.jp2" ? file : other).answer(request); }));
    QVERIFY(visit(server));
    const QString cache = files("cache").value(0), data = files("data").value(0);
    std::shared_ptr<xrv::ByteSource> source;
    QVERIFY(!openCold(server.address("/b.jp2"), options, &source) && readsRight(*source, other, kRanges));
    QStringList caches = files("cache"), datas = files("data");
    caches.removeOne(cache);
    datas.removeOne(data);
    damage(cache, data, caches.value(0), datas.value(0));
    server.takeRequests();
    QVERIFY(visit(server));
    QVERIFY(server.takeRequests().size() > 1); // the damage was noticed
    QVERIFY(!openCold(server.address("/b.jp2"), options, &source) && readsRight(*source, other, kRanges));
    // And it was made good.
    server.takeRequests();
    QVERIFY(visit(server));
    QCOMPARE(server.takeRequests().size(), std::size_t(1));
}

void TestStreamCache::filesRemovedWhileOpen()
{
    FaultServer server(file.handler());
    const std::shared_ptr<xrv::ByteSource> source = visit(server);
    for (const QString &name : files("*"))
        QVERIFY(QFile::remove(name));
    xrv::SegmentStore::instance().drop(fileNumberOf(*source));
    QVERIFY(readsRight(*source, file, {{0, 100000}}));
    QVERIFY(readsRight(*source, file, {{300000, 1000}}));
    QCOMPARE(files("*").size(), 2);
    server.takeRequests();
    QVERIFY(visit(server));
    QVERIFY(server.takeRequests().size() <= 3);
}

void TestStreamCache::goesOnWithoutFolder()
{
    writeFile(folder->filePath(QStringLiteral("made")), {}); // a file where the folder should be
    FaultServer server(file.handler());
    QVERIFY(visit(server));
    QVERIFY(visit(server));
}

void TestStreamCache::fullDiskIsHarmless()
{
    FaultServer server(file.handler());
    {
        const FileSizeLimit limit(30000);
        QVERIFY(visit(server));
        QVERIFY(visit(server));
    }
    QVERIFY(QFileInfo(files("data").value(0)).size() <= 30000);
    QVERIFY(visit(server));
}

void TestStreamCache::leastRecentlyUsedGoesFirst()
{
    FaultServer server(file.handler());
    options.cacheBytes = (1 << 20) + 230000; // room for three of some 95 KB, beside that asked for ahead
    for (const char *name : {"/1", "/2", "/3"})
        QVERIFY(visit(server, name));
    QCOMPARE(files("data").size(), 3);
    // The clock was ahead when the second was used.
    const QStringList names = files("cache");
    for (const QString &name : names)
        std::filesystem::last_write_time(name.toStdString(), std::filesystem::last_write_time(name.toStdString()) +
                                                                 std::chrono::hours(1000));
    QVERIFY(visit(server, "/1"));
    QVERIFY(visit(server, "/4"));
    server.takeRequests();
    QVERIFY(visit(server, "/1"));
    QVERIFY(visit(server, "/4"));
    QCOMPARE(server.takeRequests().size(), std::size_t(2));
    QVERIFY(visit(server, "/2"));
    QVERIFY(server.takeRequests().size() > 1); // that one had to go
    QVERIFY(bytesOnDisk() <= qint64(options.cacheBytes));
}

void TestStreamCache::fileLargerThanTheCache()
{
    FaultServer server(file.handler());
    options.cacheBytes = 80000;
    QVERIFY(visit(server));
    QVERIFY(visit(server));
    QVERIFY(bytesOnDisk() <= 80000);
}

void TestStreamCache::wholeDownloadIsKept_data()
{
    QTest::addColumn<int>("mostInMemory");
    QTest::newRow("fits into memory") << int(kSize);
    QTest::newRow("straight to disk") << 1000;
}

void TestStreamCache::wholeDownloadIsKept()
{
    QFETCH(int, mostInMemory);
    options.wholeInMemory = std::uint64_t(mostInMemory);
    WebFile rangeless = file;
    rangeless.takesRanges = false;
    FaultServer server(rangeless.handler());
    QVERIFY(visit(server));
    QVERIFY(visit(server));
    server.takeRequests();
    const std::shared_ptr<xrv::ByteSource> source = visit(server);
    QVERIFY(readsRight(*source, file, {{0, kSize}}));
    QCOMPARE(server.takeRequests().size(), std::size_t(1));
    options.cacheBytes = kSize - 1;
    std::shared_ptr<xrv::ByteSource> tooLarge;
    QCOMPARE(openCold(server.address("/b.jp2"), options, &tooLarge).GetErrorNumber(), int(PLK_ERR_TOO_LARGE));
}

void TestStreamCache::wholeDownloadThatTheDiskDoesNotTake()
{
    WebFile rangeless = file;
    rangeless.takesRanges = false;
    FaultServer server(rangeless.handler());
    options.wholeInMemory = 1000;
    const FileSizeLimit limit(200000);
    std::shared_ptr<xrv::ByteSource> source;
    QVERIFY(!openCold(server.address("/a.jp2"), options, &source));
    QCOMPARE(readError(*source, kRanges), int(PLK_ERR_TOO_LARGE));
    QVERIFY(server.takeRequests().size() <= 3);
}

void TestStreamCache::unprovenBytesAreNotKept_data()
{
    QTest::addColumn<QString>("opening"); // validators of the first answer
    QTest::addColumn<QString>("later");
    QTest::addColumn<bool>("isKept");
    const QString strong = QStringLiteral("ETag: \"v1\"\r\n"), weak = QStringLiteral("ETag: W/\"v1\"\r\n");
    const QString modified = QStringLiteral("Last-Modified: Sun, 06 Nov 1994 08:49:37 GMT\r\n");
    const QString date = QStringLiteral("Date: Sun, 06 Nov 1994 08:49:38 GMT\r\n");
    const QString sameSecond = QStringLiteral("Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n");
    QTest::newRow("strong tag") << strong << strong << true;
    QTest::newRow("old date") << modified + date << modified + date << true;
    QTest::newRow("weak tag, old date") << weak + modified + date << weak + modified + date << true;
    QTest::newRow("no tag any more") << strong << QString() << false;
    QTest::newRow("weak tag from then on") << strong << weak << false;
    QTest::newRow("date only from then on") << strong + modified + date << modified + date << false;
    QTest::newRow("no date any more") << modified + date << date << false;
    QTest::newRow("weak tag") << weak << weak << false;
    QTest::newRow("date of this second") << modified + sameSecond << modified + sameSecond << false;
}

/// What nothing proves to be of the version that was opened is shown, but neither this visit's disk nor the next
/// visit's memory has it.
void TestStreamCache::unprovenBytesAreNotKept()
{
    QFETCH(QString, opening);
    QFETCH(QString, later);
    QFETCH(bool, isKept);
    const auto serve = [](const WebFile &content, const QString &first, const QString &next) {
        WebFile tagless = content;
        tagless.tag.clear();
        const auto count = std::make_shared<std::atomic<int>>(0);
        return answering([=](const Request &request) {
            if (!request.header("if-none-match").empty() || !request.header("if-modified-since").empty())
                return std::string("HTTP/1.1 304 Not Modified\r\n\r\n");
            Request unconditional = request; // as not every server looks at conditions
            unconditional.headers.erase("if-match");
            std::string answer = tagless.answer(unconditional);
            return answer.insert(answer.find("\r\n") + 2, (++*count == 1 ? first : next).toStdString());
        });
    };
    FaultServer server(serve(file, opening, later));
    LogRecorder<char> log;
    {
        const std::shared_ptr<xrv::ByteSource> source = visit(server);
        QVERIFY(source && !source->condition());
        source->remember("table", {1, 2, 3});
    }
    QCOMPARE(log.count(PLK_LOG_WARNING, "not kept") > 0, !isKept);
    LogRecorder<char>::remove();
    const WebFile other = WebFile::make(kSize, 2);
    server.setHandler(serve(other, opening, opening));
    std::shared_ptr<xrv::ByteSource> source;
    QVERIFY(!openStream(server.address("/a.jp2"), options, &source));
    xrv::Bytes recalled;
    QCOMPARE(source->recall("table", &recalled), isKept);
    QVERIFY(readsRight(*source, isKept ? file : other, {{50000, 1000}, {120000, 90000}}));
}

void TestStreamCache::startReader(QProcess *process, const FaultServer &server, int seed, int rounds) const
{
    process->start(QCoreApplication::applicationFilePath(),
                   {QStringLiteral("--read"), QString::fromStdString(server.address("/a.jp2")),
                    QString::fromStdString(options.cacheFolder), QString::number(seed), QString::number(rounds)});
}

void TestStreamCache::severalProcesses()
{
    FaultServer server(file.handler());
    std::vector<std::unique_ptr<QProcess>> others;
    for (int i = 0; i < 3; ++i) {
        others.push_back(std::make_unique<QProcess>());
        startReader(others.back().get(), server, i, 8);
    }
    QCOMPARE(readPieces(server.address("/a.jp2"), options.cacheFolder, 77, 8), 0);
    for (const auto &other : others) {
        QVERIFY(other->waitForFinished(60000));
        QCOMPARE(other->exitStatus(), QProcess::NormalExit);
        QCOMPARE(other->exitCode(), 0);
    }
    QCOMPARE(files("data").size(), 1);
    QVERIFY(QFileInfo(files("data").value(0)).size() <= qint64(kSize)); // nothing was written twice
    QVERIFY(visit(server));
    server.takeRequests();
    QVERIFY(visit(server));
    QCOMPARE(server.takeRequests().size(), std::size_t(1));
}

void TestStreamCache::killedWhileWriting()
{
    FaultServer server(file.handler());
    std::mt19937 random(5);
    for (int i = 0; i < 15; ++i) {
        QProcess writer;
        startReader(&writer, server, i, 0);
        QVERIFY(writer.waitForStarted());
        writer.waitForFinished(20 + int(random() % 60));
        writer.kill();
        QVERIFY(writer.waitForFinished());
        QVERIFY(writer.exitStatus() == QProcess::CrashExit);
        QCOMPARE(readPieces(server.address("/a.jp2"), options.cacheFolder, unsigned(100 + i), 1), 0);
    }
    QVERIFY(visit(server));
}

int main(int argc, char **argv)
{
    if (argc == 6 && std::string(argv[1]) == "--read")
        return readPieces(argv[2], argv[3], unsigned(std::stoul(argv[4])), std::stoi(argv[5]));
    QCoreApplication application(argc, argv);
    TestStreamCache test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_streamcache.moc"
