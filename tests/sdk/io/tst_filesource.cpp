#include "io/filesource.h"
#include "io/memorysource.h"
#include "stream/opensource.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>
#endif

Q_DECLARE_METATYPE(std::vector<xrv::ByteRange>)

using xrv::ByteRange;
using xrv::Bytes;
using xrv::ByteSource;
using xrv::CancelFlag;

namespace {

std::uint8_t byteAt(std::uint64_t position)
{
    return static_cast<std::uint8_t>((position * 2654435761u) >> 13);
}

Bytes pattern(std::uint64_t begin, std::uint64_t length)
{
    Bytes bytes;
    for (std::uint64_t i = 0; i < length; ++i)
        bytes.push_back(byteAt(begin + i));
    return bytes;
}

} // namespace

class TestFileSource : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(folder.isValid()); }
    void rangesInAnyOrder_data();
    void rangesInAnyOrder();
    void rangesPastTheEnd_data();
    void rangesPastTheEnd();
    void cancelledBeforeReading();
    void manyThreadsReadAtOnce();
    void changeWhileOpenIsNoticed_data();
    void changeWhileOpenIsNoticed();
    void removedFileCanStillBeRead();
    void whatCannotBeOpened_data();
    void whatCannotBeOpened();
    void noPermission();
    void pipeDoesNotHang();

private:
    QString path(const char *name) const { return folder.filePath(QString::fromUtf8(name)); }
    std::string makeFile(const char *name, std::uint64_t size) const;
    static std::shared_ptr<ByteSource> opened(const std::string &name);

    QTemporaryDir folder;
};

std::string TestFileSource::makeFile(const char *name, std::uint64_t size) const
{
    const Bytes bytes = pattern(0, size);
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char *>(bytes.data()), qint64(size)) != qint64(size))
        qFatal("cannot write the test file");
    return path(name).toStdString();
}

std::shared_ptr<ByteSource> TestFileSource::opened(const std::string &name)
{
    std::shared_ptr<ByteSource> source;
    if (PLK::CError error = xrv::FileSource::open(name, &source))
        qWarning("%s", error.GetErrorMessage());
    return source;
}

void TestFileSource::rangesInAnyOrder_data()
{
    QTest::addColumn<bool>("inMemory");
    QTest::addColumn<std::vector<ByteRange>>("ranges");
    const std::vector<std::pair<const char *, std::vector<ByteRange>>> cases{
        {"none", {}},
        {"empty range at the end", {{300000, 0}}},
        {"all", {{0, 300000}}},
        {"touching, falling", {{200, 100}, {100, 100}, {0, 100}}},
        {"one inside the other", {{1000, 5000}, {2000, 10}, {1000, 5000}}},
        {"overlapping", {{50, 100}, {100, 100}}},
        {"gap that is joined, gap that is not", {{0, 10}, {2000, 10}, {9000, 10}, {299990, 10}}},
    };
    for (const auto &one : cases) {
        QTest::addRow("file: %s", one.first) << false << one.second;
        QTest::addRow("memory: %s", one.first) << true << one.second;
    }
}

void TestFileSource::rangesInAnyOrder()
{
    QFETCH(bool, inMemory);
    QFETCH(std::vector<ByteRange>, ranges);
    const std::shared_ptr<ByteSource> source =
        inMemory ? std::make_shared<xrv::MemorySource>(pattern(0, 300000)) : opened(makeFile("ranges.bin", 300000));
    QVERIFY(source);
    QCOMPARE(source->size(), std::uint64_t(300000));
    std::vector<Bytes> parts;
    const PLK::CError error = source->read(ranges, CancelFlag(), &parts);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    QCOMPARE(parts.size(), ranges.size());
    for (std::size_t i = 0; i < ranges.size(); ++i)
        QVERIFY(parts[i] == pattern(ranges[i].offset, ranges[i].length));
}

void TestFileSource::rangesPastTheEnd_data()
{
    QTest::addColumn<quint64>("offset");
    QTest::addColumn<quint64>("length");
    QTest::newRow("one byte too long") << quint64(0) << quint64(1001);
    QTest::newRow("begins past the end") << quint64(1001) << quint64(0);
    QTest::newRow("more than there is memory") << quint64(0) << (quint64(1) << 60);
    QTest::newRow("end wraps around") << quint64(500) << ~quint64(0);
}

void TestFileSource::rangesPastTheEnd()
{
    QFETCH(quint64, offset);
    QFETCH(quint64, length);
    const std::shared_ptr<ByteSource> sources[] = {opened(makeFile("short.bin", 1000)),
                                                   std::make_shared<xrv::MemorySource>(pattern(0, 1000))};
    for (const auto &source : sources) {
        Bytes bytes;
        QCOMPARE(source->read(ByteRange{offset, length}, &bytes).GetErrorNumber(), int(PLK_ERR_TRUNCATED));
    }
}

void TestFileSource::cancelledBeforeReading()
{
    CancelFlag cancel;
    const CancelFlag copy = cancel;
    cancel.raise();
    Bytes bytes;
    QCOMPARE(opened(makeFile("cancel.bin", 1000))->read(ByteRange{0, 1000}, &bytes, copy).GetErrorNumber(),
             int(PLK_ERR_CANCELLED));
}

void TestFileSource::manyThreadsReadAtOnce()
{
    constexpr std::uint64_t kSize = 200000;
    const std::shared_ptr<ByteSource> source = opened(makeFile("threads.bin", kSize));
    std::atomic<int> mistakes{0};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (std::uint64_t i = 0; i < 200; ++i) {
                const ByteRange range{(i * 7919 + t * 104729) % (kSize - 3000), 3000};
                Bytes bytes;
                if (source->read(range, &bytes) || bytes != pattern(range.offset, range.length))
                    ++mistakes;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(mistakes.load(), 0);
}

void TestFileSource::changeWhileOpenIsNoticed_data()
{
    QTest::addColumn<qint64>("newSize");
    QTest::newRow("cut short") << qint64(2000);
    QTest::newRow("emptied") << qint64(0);
    QTest::newRow("grown") << qint64(20000);
    QTest::newRow("overwritten in place") << qint64(10000);
}

void TestFileSource::changeWhileOpenIsNoticed()
{
    QFETCH(qint64, newSize);
    const std::string name = makeFile("changing.bin", 10000);
    const std::shared_ptr<ByteSource> source = opened(name);
    Bytes bytes;
    QVERIFY(source->read(ByteRange{5000, 5000}, &bytes).IsSuccess());

    QFile file(QString::fromStdString(name));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.resize(newSize));
    QVERIFY(file.seek(0) && file.write("x", newSize > 0 ? 1 : 0) >= 0);
    // Another second than that of the first version, whatever the file system's resolution.
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(5), QFileDevice::FileModificationTime));
    file.close();

    const PLK::CError error = source->read(ByteRange{5000, 5000}, &bytes);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_FILE_CHANGED));
    QVERIFY(QString::fromUtf8(error.GetErrorMessage()).contains(QStringLiteral("changing.bin")));
}

void TestFileSource::removedFileCanStillBeRead()
{
    const std::string name = makeFile("removed.bin", 1000);
    const std::shared_ptr<ByteSource> source = opened(name);
    QVERIFY(QFile::remove(QString::fromStdString(name)));
    makeFile("removed.bin", 500); // another file of that name is none of our business
    Bytes bytes;
    QVERIFY(source->read(ByteRange{0, 1000}, &bytes).IsSuccess());
    QVERIFY(bytes == pattern(0, 1000));
}

void TestFileSource::whatCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    const QString base = folder.path() + QLatin1Char('/');
    QTest::newRow("missing") << base + QStringLiteral("missing.jp2") << int(PLK_ERR_NOT_FOUND) << "does not exist";
    QTest::newRow("file as a folder") << base + QStringLiteral("a-file/x.jp2") << int(PLK_ERR_NOT_FOUND)
                                      << "does not exist";
    QTest::newRow("empty name") << QString() << int(PLK_ERR_NOT_FOUND) << "name";
    QTest::newRow("folder") << folder.path() << int(PLK_ERR_NO_ACCESS) << "folder";
    QTest::newRow("device") << "/dev/null" << int(PLK_ERR_NO_ACCESS) << "regular file";
    QTest::newRow("jpip") << "jpip://server/a.jp2" << int(PLK_ERR_PROTOCOL) << "JPIP";
    QTest::newRow("web") << "https://server/a.jp2" << int(PLK_ERR_PROTOCOL) << "xrvps://";
}

void TestFileSource::whatCannotBeOpened()
{
    QFETCH(QString, name);
    QFETCH(int, code);
    QFETCH(QString, word);
    makeFile("a-file", 10);
    std::shared_ptr<ByteSource> source;
    const PLK::CError error = xrv::openSource(xrv::SourceName(name.toStdString()), &source);
    QCOMPARE(error.GetErrorNumber(), code);
    QVERIFY2(QString::fromUtf8(error.GetErrorMessage()).contains(word), error.GetErrorMessage());
    QVERIFY(!source);
}

void TestFileSource::noPermission()
{
#ifdef Q_OS_WIN
    QSKIP("permissions are set in another way");
#else
    const std::string name = makeFile("locked.bin", 10);
    QCOMPARE(::chmod(name.c_str(), 0), 0);
    QCOMPARE(::chmod(folder.path().toUtf8().constData(), 0755), 0);
    const bool isRoot = ::geteuid() == 0;
    if (isRoot && ::seteuid(65534) != 0)
        QSKIP("cannot give up the privileges that ignore permissions");
    std::shared_ptr<ByteSource> source;
    const PLK::CError error = xrv::FileSource::open(name, &source);
    if (isRoot)
        QCOMPARE(::seteuid(0), 0);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
#endif
}

void TestFileSource::pipeDoesNotHang()
{
#ifdef Q_OS_WIN
    QSKIP("no named pipes among files");
#else
    const std::string name = path("pipe").toStdString();
    QCOMPARE(::mkfifo(name.c_str(), 0600), 0);
    std::shared_ptr<ByteSource> source;
    QCOMPARE(xrv::FileSource::open(name, &source).GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
#endif
}

QTEST_APPLESS_MAIN(TestFileSource)
#include "tst_filesource.moc"
