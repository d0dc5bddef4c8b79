#include "data/files.h"

#include "io/filesource.h"
#include "io/memorysource.h"
#include "stream/opensource.h"

#include <QtTest>

#include <thread>

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
    void rangesInAnyOrder_data();
    void rangesInAnyOrder();
    void rangesPastTheEnd_data();
    void rangesPastTheEnd();
    void cancelledBeforeReading();
    void manyThreadsReadAtOnce();
    void whatCannotBeOpened_data();
    void whatCannotBeOpened();

private:
    std::shared_ptr<ByteSource> opened(std::uint64_t size) const;

    FileFolder folder;
};

/// A file of \a size bytes of the pattern.
std::shared_ptr<ByteSource> TestFileSource::opened(std::uint64_t size) const
{
    std::shared_ptr<ByteSource> source;
    if (PLK::CError error = xrv::FileSource::open(folder.write("file.bin", pattern(0, size)), &source))
        qFatal("%s", error.GetErrorMessage());
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
        inMemory ? std::make_shared<xrv::MemorySource>(pattern(0, 300000)) : opened(300000);
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
    const std::shared_ptr<ByteSource> sources[] = {opened(1000), std::make_shared<xrv::MemorySource>(pattern(0, 1000))};
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
    QCOMPARE(opened(1000)->read(ByteRange{0, 1000}, &bytes, copy).GetErrorNumber(), int(PLK_ERR_CANCELLED));
}

void TestFileSource::manyThreadsReadAtOnce()
{
    constexpr std::uint64_t kSize = 200000;
    const std::shared_ptr<ByteSource> source = opened(kSize);
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

void TestFileSource::whatCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    QTest::newRow("empty name") << QString() << int(PLK_ERR_NOT_FOUND) << "name";
    QTest::newRow("jpip") << "jpip://server/a.jp2" << int(PLK_ERR_PROTOCOL) << "JPIP";
}

void TestFileSource::whatCannotBeOpened()
{
    QFETCH(QString, name);
    QFETCH(int, code);
    QFETCH(QString, word);
    std::shared_ptr<ByteSource> source;
    const PLK::CError error = xrv::openSource(xrv::SourceName(name.toStdString()), &source);
    QCOMPARE(error.GetErrorNumber(), code);
    QVERIFY2(QString::fromUtf8(error.GetErrorMessage()).contains(word), error.GetErrorMessage());
    QVERIFY(!source);
}

QTEST_APPLESS_MAIN(TestFileSource)
#include "tst_filesource.moc"
