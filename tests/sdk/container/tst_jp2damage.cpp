#include "container/jp2structure.h"
#include "data/boxbuilder.h"
#include "io/memorysource.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace boxbuilder;
using xrv::Jp2Structure;

Q_DECLARE_METATYPE(Bytes)

namespace {

const Bytes kCodestream{0xff, 0x4f, 0xff, 0x51, 1, 2, 3, 4, 5, 6, 7, 8};

/// Counts what is read; beyond the given bytes it has zeros up to its size. Fails on demand.
class MeteredSource : public xrv::ByteSource
{
public:
    MeteredSource(const std::vector<std::pair<std::uint64_t, Bytes>> &pieces, std::uint64_t size)
        : pieces(pieces)
        , totalSize(size)
    {
    }
    const std::string &name() const override { return sourceName; }
    std::uint64_t size() const override { return totalSize; }
    bool isRemote() const override { return false; }
    using ByteSource::read;
    PLK::CError read(const std::vector<xrv::ByteRange> &ranges, const xrv::CancelFlag &,
                     std::vector<Bytes> *out) override
    {
        if (++reads > failAfter)
            return {PLK_ERR_CONNECTION_LOST, "The connection is lost."};
        out->clear();
        for (const xrv::ByteRange &range : ranges) {
            bytesRead += range.length;
            out->push_back(bytesOf(range));
        }
        return {};
    }

    std::uint64_t bytesRead = 0;
    int reads = 0;
    int failAfter = 1000000;

private:
    Bytes bytesOf(xrv::ByteRange range) const
    {
        Bytes bytes(range.length, 0);
        for (const auto &[offset, piece] : pieces) {
            const std::uint64_t first = std::max(offset, range.offset);
            const std::uint64_t end = std::min(offset + piece.size(), range.end());
            if (first < end)
                std::copy(piece.begin() + int(first - offset), piece.begin() + int(end - offset),
                          bytes.begin() + int(first - range.offset));
        }
        return bytes;
    }

    std::vector<std::pair<std::uint64_t, Bytes>> pieces;
    std::uint64_t totalSize;
    std::string sourceName = "metered";
};

Bytes repeated(const Bytes &pattern, unsigned count)
{
    return join(std::vector<Bytes>(count, pattern));
}

Bytes start()
{
    return join({signature(), fileType()});
}

Bytes header()
{
    return jp2h({ihdr(2, 3, 1), colrEnumerated(17)});
}

} // namespace

class TestJp2Damage : public QObject
{
    Q_OBJECT

private slots:
    void wrongLengths_data();
    void wrongLengths();
    void hostile_data();
    void hostile();
    void hugeFileIsNotRead();
    void sourceFails();
};

void TestJp2Damage::wrongLengths_data()
{
    QTest::addColumn<Bytes>("file");
    QTest::addColumn<int>("codestreamLength"); // -1: to the end of the file
    QTest::addColumn<bool>("warned");
    const auto row = [](const char *name, const std::vector<Bytes> &boxes, int length, bool warned) {
        QTest::newRow(name) << join({start(), join(boxes)}) << length << warned;
    };
    row("64-bit codestream", {header(), longBox("jp2c", kCodestream), xml("<a/>")}, 12, false);
    row("64-bit header", {longBox("jp2h", join({ihdr(2, 3, 1), colrEnumerated(17)})), box("jp2c", kCodestream)}, 12,
        false);
    row("codestream to the end", {header(), openBox("jp2c", kCodestream)}, -1, false);
    row("codestream beyond the end", {header(), boxWithLength("jp2c", 5000, kCodestream)}, -1, true);
    row("codestream beyond 2^63", {header(), longBoxWithLength("jp2c", ~0ull - 7, kCodestream)}, -1, true);
    row("codestream length too small", {header(), boxWithLength("jp2c", 12, kCodestream)}, -1, true);
    row("codestream length impossible", {header(), boxWithLength("jp2c", 5, kCodestream)}, -1, true);
    row("codestream length only a header", {header(), longBoxWithLength("jp2c", 3, kCodestream)}, -1, true);
    row("rubbish after the codestream", {header(), box("jp2c", kCodestream), Bytes(32, 0)}, -1, true);
    row("header swallows the codestream",
        {boxWithLength("jp2h", 4000, join({ihdr(2, 3, 1), colrEnumerated(17)})), box("jp2c", kCodestream)}, 12, true);
    row("header too short",
        {boxWithLength("jp2h", 30, join({ihdr(2, 3, 1), colrEnumerated(17)})), box("jp2c", kCodestream)}, 12, true);
    row("uuid of 4 GiB before the codestream",
        {header(), boxWithLength("uuid", 0xffffffff, Bytes(16, 1)), box("jp2c", kCodestream)}, -1, true);
    row("no box in front of the codestream", {header(), Bytes(5, 0xee), box("jp2c", kCodestream)}, -1, true);
}

void TestJp2Damage::wrongLengths()
{
    QFETCH(Bytes, file);
    QFETCH(int, codestreamLength);
    QFETCH(bool, warned);
    xrv::MemorySource source(file, "damaged.jp2");
    Jp2Structure structure;
    std::vector<std::string> warnings;
    const PLK::CError error = xrv::readJp2Structure(source, &structure, &warnings);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    const auto at = std::search(file.begin(), file.end(), kCodestream.begin(), kCodestream.end());
    QCOMPARE(structure.codestream.offset, std::uint64_t(at - file.begin()));
    QCOMPARE(structure.codestream.length, std::uint64_t(codestreamLength < 0 ? file.end() - at : codestreamLength));
    QCOMPARE(structure.imageWidth, 2u);
    QVERIFY(structure.colour);
    QCOMPARE(!warnings.empty(), warned);
}

void TestJp2Damage::hostile_data()
{
    QTest::addColumn<Bytes>("boxes");
    QTest::addColumn<int>("code");
    constexpr unsigned kMillion = 1000000;
    Bytes nested = repeated(box("asoc", {}), kMillion);
    for (unsigned i = 0; i < kMillion; ++i) {
        const Bytes length = number(8 * (kMillion - i), 4);
        std::copy(length.begin(), length.end(), nested.begin() + 8 * int(i));
    }
    QTest::newRow("a million nested boxes") << nested << int(PLK_ERR_MALFORMED);
    QTest::newRow("a million nested open boxes") << repeated(openBox("jp2h", {}), kMillion) << int(PLK_ERR_MALFORMED);
    QTest::newRow("half a million boxes, then the codestream")
        << join({repeated(box("free", {}), kMillion / 2), box("jp2c", kCodestream)}) << int(PLK_SUCCESS);
    QTest::newRow("uuid boxes without end") << repeated(uuid(Bytes(16, 1), {}), 200000) << int(PLK_ERR_UNSUPPORTED);
    QTest::newRow("palette without values")
        << join({jp2h({box("pclr", {4, 0, 255})}), box("jp2c", kCodestream)}) << int(PLK_SUCCESS);
    QTest::newRow("65535 definitions in 2 bytes")
        << join({jp2h({box("cdef", {255, 255})}), box("jp2c", kCodestream)}) << int(PLK_SUCCESS);
    QTest::newRow("image of 2^32, 65535 components")
        << join({jp2h({ihdr(~0u, ~0u, 65535)}), box("jp2c", kCodestream)}) << int(PLK_SUCCESS);
}

void TestJp2Damage::hostile()
{
    QFETCH(Bytes, boxes);
    QFETCH(int, code);
    const Bytes file = join({start(), boxes});
    MeteredSource source({{0, file}}, file.size());
    Jp2Structure structure;
    std::vector<std::string> warnings;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(xrv::readJp2Structure(source, &structure, &warnings).GetErrorNumber(), code);
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!warnings.empty() && warnings.size() < 100);
    QVERIFY(structure.depths.empty() && !structure.palette && structure.definitions.empty());
}

void TestJp2Damage::hugeFileIsNotRead()
{
    constexpr std::uint64_t kCodestreamSize = 5ull << 40;
    const Bytes front = join({start(), header(), longBoxWithLength("jp2c", 16 + kCodestreamSize, kCodestream)});
    const std::uint64_t codestreamEnd = front.size() - kCodestream.size() + kCodestreamSize;
    const Bytes back = join({uuid(Bytes(16, 9), {1}), boxWithLength("free", 0, {})});
    MeteredSource source({{0, front}, {codestreamEnd, back}}, codestreamEnd + (1ull << 35));
    Jp2Structure structure;
    std::vector<std::string> warnings;
    QVERIFY(xrv::readJp2Structure(source, &structure, &warnings).IsSuccess());
    QCOMPARE(structure.codestream.length, kCodestreamSize);
    QCOMPARE(structure.uuidBoxes.size(), std::size_t(1));
    QVERIFY(warnings.empty());
    QVERIFY2(source.bytesRead < 20000, qPrintable(QString::number(source.bytesRead)));
    QVERIFY2(source.reads < 8, qPrintable(QString::number(source.reads)));
}

void TestJp2Damage::sourceFails()
{
    const Bytes file = join({start(), header(), uuid(Bytes(16, 3), Bytes(6000, 4)), box("jp2c", kCodestream)});
    int failures = 0;
    for (int reads = 0; reads < 20; ++reads) {
        MeteredSource source({{0, file}}, file.size());
        source.failAfter = reads;
        Jp2Structure structure;
        std::vector<std::string> warnings;
        const PLK::CError error = xrv::readJp2Structure(source, &structure, &warnings);
        QCOMPARE(error.GetErrorNumber(), int(source.reads > reads ? PLK_ERR_CONNECTION_LOST : PLK_SUCCESS));
        failures += error.IsSuccess() ? 0 : 1;
    }
    QVERIFY(failures >= 3 && failures < 20);
}

QTEST_GUILESS_MAIN(TestJp2Damage)
#include "tst_jp2damage.moc"
