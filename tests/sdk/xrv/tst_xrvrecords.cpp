#include "data/boxbuilder.h"

#include "codestream/packetindex.h"
#include "geo/rpc.h"
#include "xrv/xrvrecords.h"

#include <xrv60/plkinit.h>

#include <QtTest>

#include <cstring>
#include <numeric>

using namespace xrv;
using boxbuilder::join;
using boxbuilder::number;
using boxbuilder::text;

/// The contents of the boxes that only XRV files have. What is expected of damaged ones: nothing, never half of it.
class TestXrvRecords : public QObject
{
    Q_OBJECT

private slots:
    void fileInfoByTheByte();
    void everyCutIsNoticed_data();
    void everyCutIsNoticed();
    void laterFieldsAreLeftAlone();
    void contradictions_data();
    void contradictions();
    void textsOfAllKinds();
    void histogramsOfAllKinds();
    void packetIndexFits();
};

namespace {

Bytes doubleBytes(double value)
{
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return number(bits, 8);
}

/// As docs/xrv-format.md has it.
Bytes fileInfoBytes()
{
    Bytes place;
    for (const double value : {500000.0, 10.0, 0.0, 5000000.0, 0.0, -10.0})
        boxbuilder::append(place, doubleBytes(value));
    return join({{1, 4, 1, 2},
                 number(4, 2),
                 number(15, 2),
                 number(0x41700000, 4),
                 number(512, 4),
                 number(512, 4),
                 place,
                 number(32633, 4),
                 number(5, 2),
                 text("WGS84"),
                 number(12, 2),
                 text("UTM zone 33N"),
                 number(20, 2),
                 text("2024-05-17T08:30:00Z")});
}

PLKFileStatistics *statisticsOf(const std::vector<std::vector<std::uint64_t>> &histograms)
{
    auto *statistics = new PLKFileStatistics{new PLKBandStatistics[histograms.size()](), 0};
    for (const std::vector<std::uint64_t> &histogram : histograms) {
        PLKBandStatistics &band = statistics->pBandStats[statistics->nBands++];
        band = {3.0f,
                -1.5f,
                250.25f,
                7.0f,
                6.0f,
                0.125f,
                static_cast<std::uint32_t>(histogram.size()),
                new std::uint64_t[histogram.size()]};
        std::copy(histogram.begin(), histogram.end(), band.pHistogram);
    }
    return statistics;
}

StatisticsPtr owned(PLKFileStatistics *statistics)
{
    return StatisticsPtr(statistics);
}

std::vector<std::uint64_t> histogramOf(const PLKBandStatistics &band)
{
    return {band.pHistogram, band.pHistogram + band.nHistBucketCount};
}

Bytes indexBytes()
{
    PacketIndex index;
    index.append(0, 20, {100, 1, 300});
    index.append(1, 18, {70000});
    index.append(0, 16, {});
    return index.content();
}

constexpr std::uint64_t kIndexedBytes = 20 + 401 + 18 + 70000 + 16;

/// Whether a content can be read at all; \a kind is the box type.
bool isRead(const QByteArray &kind, const Bytes &content)
{
    if (kind == "finf")
        return parseFileInfo(content).has_value();
    if (kind == "band")
        return parseBands(content).has_value();
    if (kind == "auth")
        return parseTexts(content).has_value();
    if (kind == "stat")
        return parseStatistics(content, 2) != nullptr;
    if (kind == "rpc ")
        return parseRpc(content).has_value();
    return PacketIndex::parse(content, 2, kIndexedBytes) != nullptr;
}

Bytes goodContent(const QByteArray &kind)
{
    if (kind == "finf")
        return fileInfoBytes();
    if (kind == "band")
        return makeBands({{8, false, "Red"}, {12, true, "近赤外"}});
    if (kind == "auth") {
        XrvTexts texts;
        texts.front() = "public";
        texts.back() = "123";
        return makeTexts(texts);
    }
    if (kind == "stat")
        return makeStatistics(*owned(statisticsOf({{0, 0, 5, 0}, {1, 2}})));
    if (kind == "rpc ")
        return makeRpc(PLKRPCData{});
    return indexBytes();
}

} // namespace

void TestXrvRecords::fileInfoByTheByte()
{
    const auto info = parseFileInfo(fileInfoBytes());
    QVERIFY(info);
    QCOMPARE(info->cellType, PLKCT_UINT16);
    QCOMPARE(info->colourSpace, PLK_COLORSPACE_SRGB);
    QCOMPARE(info->units, PLK_UNITS_METERS);
    QVERIFY(!info->isLossless && info->hasPlace);
    QCOMPARE(info->bands, std::uint16_t(4));
    QCOMPARE(info->targetRate, std::uint16_t(15));
    QCOMPARE(info->actualRate, 15.0f);
    QCOMPARE(info->tileWidth, 512u);
    QCOMPARE(info->transform[3], 5000000.0);
    QCOMPARE(info->epsg, 32633);
    QCOMPARE(info->projection, std::string("UTM zone 33N"));
    QCOMPARE(info->compressionDate, std::string("2024-05-17T08:30:00Z"));
    QVERIFY(makeFileInfo(*info) == fileInfoBytes());
}

void TestXrvRecords::everyCutIsNoticed_data()
{
    QTest::addColumn<QByteArray>("kind");
    for (const char *kind : {"finf", "band", "auth", "stat", "rpc ", "pidx"})
        QTest::newRow(kind) << QByteArray(kind);
}

void TestXrvRecords::everyCutIsNoticed()
{
    QFETCH(QByteArray, kind);
    const Bytes content = goodContent(kind);
    QVERIFY(isRead(kind, content));
    for (std::size_t length = 0; length < content.size(); ++length)
        QVERIFY2(!isRead(kind, Bytes(content.begin(), content.begin() + std::ptrdiff_t(length))),
                 qPrintable(QString::number(length)));
}

void TestXrvRecords::laterFieldsAreLeftAlone()
{
    for (const char *kind : {"finf", "band", "auth", "stat", "rpc "})
        QVERIFY2(isRead(kind, join({goodContent(kind), {1, 2, 3}})), kind);
    // An eleventh text, and fewer than ten.
    XrvTexts texts;
    texts[0] = "a";
    Bytes more = makeTexts(texts);
    more[0] = 11;
    boxbuilder::append(more, join({number(1, 4), text("x")}));
    QCOMPARE(parseTexts(more)->front(), texts.front());
    QCOMPARE(parseTexts(join({{1}, number(1, 4), text("a")}))->front(), texts.front());
}

void TestXrvRecords::contradictions_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("byte");
    QTest::newRow("unknown cell type") << QByteArray("finf") << 0 << 10;
    QTest::newRow("unknown colour space") << QByteArray("finf") << 1 << 6;
    QTest::newRow("unknown units") << QByteArray("finf") << 2 << 4;
    QTest::newRow("text longer than the box") << QByteArray("finf") << 72 << 0xff;
    QTest::newRow("text that is no UTF-8") << QByteArray("finf") << 75 << 0xff;
    QTest::newRow("band of no bits") << QByteArray("band") << 2 << 0;
    QTest::newRow("band of 39 bits") << QByteArray("band") << 2 << 39;
    QTest::newRow("more bands than there are") << QByteArray("band") << 0 << 0xff;
    QTest::newRow("text of 4 GB") << QByteArray("auth") << 1 << 0xfe;
    QTest::newRow("other number of bands") << QByteArray("stat") << 1 << 3;
    QTest::newRow("mode that is no number") << QByteArray("stat") << 2 << 0x7f;
    QTest::newRow("too many buckets") << QByteArray("stat") << 26 << 0xff;
    QTest::newRow("coefficient that is no number") << QByteArray("rpc ") << 0 << 0x7f;
    QTest::newRow("tile that is not there") << QByteArray("pidx") << 1 << 2;
    QTest::newRow("header shorter than its markers") << QByteArray("pidx") << 2 << 13;
    QTest::newRow("more packets than bytes") << QByteArray("pidx") << 3 << 0x7f;
    QTest::newRow("packet of no bytes") << QByteArray("pidx") << 5 << 0;
    QTest::newRow("sum that does not fit") << QByteArray("pidx") << 4 << 101;
}

void TestXrvRecords::contradictions()
{
    QFETCH(QByteArray, kind);
    QFETCH(int, place);
    QFETCH(int, byte);
    Bytes content = goodContent(kind);
    QVERIFY(content[std::size_t(place)] != byte);
    content[std::size_t(place)] = static_cast<std::uint8_t>(byte);
    if (byte == 0x7f && kind != "pidx") // the rest of the exponent
        content[std::size_t(place) + 1] = 0xff;
    QVERIFY(!isRead(kind, content));
}

void TestXrvRecords::textsOfAllKinds()
{
    XrvTexts texts;
    texts[0] = "";
    texts[4] = "山田太郎 😀";
    texts[6] = "شركة الخرائط";
    texts[8] = std::string(100000, 'x');
    const auto read = parseTexts(makeTexts(texts));
    QVERIFY(read && *read == texts);
    QVERIFY(!(*read)[1]);
    // Callers get C strings: nothing hides behind a zero.
    texts[0] = std::string("a\0b", 3);
    QCOMPARE(*parseTexts(makeTexts(texts))->front(), std::string("a"));
}

void TestXrvRecords::histogramsOfAllKinds()
{
    std::vector<std::uint64_t> full(65536);
    std::iota(full.begin(), full.end(), std::uint64_t(1) << 40);
    std::vector<std::uint64_t> empty(65536, 0), ends(256, 0), mixed{0, 1, 0, 0, 7, 0};
    ends.front() = ends.back() = ~std::uint64_t(0);
    const auto written = owned(statisticsOf({full, empty, ends, mixed}));
    const auto read = parseStatistics(makeStatistics(*written), 4);
    QVERIFY(read);
    for (std::uint32_t band = 0; band < 4; ++band) {
        QVERIFY(histogramOf(read->pBandStats[band]) == histogramOf(written->pBandStats[band]));
        QCOMPARE(read->pBandStats[band].fMin, -1.5f);
        QCOMPARE(read->pBandStats[band].fStandardDev, 0.125f);
    }
    QVERIFY(makeStatistics(*owned(statisticsOf({empty}))).size() < 64); // zeros take no room
}

void TestXrvRecords::packetIndexFits()
{
    const auto index = PacketIndex::parse(indexBytes(), 2, kIndexedBytes);
    QVERIFY(index);
    QVERIFY(!PacketIndex::parse(indexBytes(), 2, kIndexedBytes + 1));
    const auto parts = index->partsOf(0);
    QCOMPARE(parts.size(), std::size_t(2));
    QCOMPARE(parts[0].offset, std::uint64_t(0));
    QCOMPARE(parts[1].offset, kIndexedBytes - 16);
    QCOMPARE(index->packetLength(parts[0].firstPacket + 2), 300u);
    QCOMPARE(index->length(index->partsOf(1).front()), std::uint64_t(70018));
}

QTEST_GUILESS_MAIN(TestXrvRecords)
#include "tst_xrvrecords.moc"
