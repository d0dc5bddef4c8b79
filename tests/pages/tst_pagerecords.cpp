#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pages/xrvjp2klayerstatistics.h"
#include "pagetest.h"

#include <xrv60/plkview.h>

#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

#include <cstring>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

// What no file of a test brings about: these definitions take the place of the SDK's in this program.
namespace {

struct Record
{
    std::vector<PLKBandInfo> bands = {{8, false, "Greyscale"}, {8, false, nullptr}, {8, false, "AllOpacity"}};
    PLKFileMetaData authoring{};
    PLKFileInfo info{};
    PLKFileType type = PLK_FILE_XRV;
    bool isRemote = false;
    quint32 statisticsBands = 1; // 0: none
    bool hasRpc = true;
    QStringList freed;
    std::vector<PLKXMLBox> boxes;
    QByteArray bytes;
    quint64 unreadableFrom = ~quint64(0);
} sdk;

class RecordFile : public PLK::SDK::CFileBase
{
public:
    const char *GetName() const override { return "record.xrv"; }
    PLKFileType GetType() const override { return sdk.type; }
    bool IsRemote() const override { return sdk.isRemote; }
};

/// Cannot be positioned beyond its bytes, nor read beyond unreadableFrom.
class RecordStream : public PLK::CIOStream
{
public:
    bool IsRemote() const override { return false; }
    std::uint64_t GetSize() const override { return 1u << 30; }
    bool Seek(std::uint64_t offset) override
    {
        position = offset;
        return offset <= static_cast<quint64>(sdk.bytes.size());
    }
    bool Read(void *buffer, std::uint64_t length) override
    {
        if (position + length > static_cast<quint64>(sdk.bytes.size()) || position + length > sdk.unreadableFrom)
            return false;
        std::memcpy(buffer, sdk.bytes.constData() + position, static_cast<size_t>(length));
        return true;
    }

private:
    quint64 position = 0;
};

std::uint64_t counts[3][4] = {{0, 3, 7, 0}, {1, 0, 0, 9}, {0, 0, 5, 5}};

} // namespace

namespace PLK::SDK {

const PLKFileInfo *CFileClient::GetFileInfo() const
{
    return &sdk.info;
}

PLKFileType CFileClient::GetFileType() const
{
    return sdk.type;
}

const CFileBase *CFileClient::GetFile() const
{
    static const RecordFile file;
    return &file;
}

CError CFileClient::GetClientStatistics(PLKFileStatistics **statistics)
{
    if (sdk.statisticsBands == 0)
        return {PLK_ERR_READ, "none"};
    auto *bands = new PLKBandStatistics[sdk.statisticsBands];
    for (quint32 band = 0; band < sdk.statisticsBands; ++band)
        bands[band] = {float(band), 1.0F, 2.0F, 12.5F, 3.0F, 0.00005F, 4, counts[band % 3]};
    *statistics = new PLKFileStatistics{bands, sdk.statisticsBands};
    return {};
}

CError CFileClient::GetRPCData(PLKRPCData **rpcData) const
{
    if (!sdk.hasRpc)
        return {PLK_ERR_NOT_AVAILABLE, "none"};
    *rpcData = new PLKRPCData();
    return {};
}

const PLKXMLBox *CFileClient::GetXMLBox(const PLKXMLBox *previous) const
{
    const auto index = previous ? static_cast<size_t>(previous - sdk.boxes.data()) + 1 : 0;
    return index < sdk.boxes.size() ? &sdk.boxes[index] : nullptr;
}

CIOStream *CFileClient::GetStream() const
{
    static RecordStream stream;
    return &stream;
}

} // namespace PLK::SDK

void PLKFreeStatistics(PLKFileStatistics *statistics)
{
    if (!statistics)
        return;
    sdk.freed.append(QStringLiteral("statistics"));
    delete[] statistics->pBandStats;
    delete statistics;
}

void PLKFreeRPCData(PLKRPCData *rpcData)
{
    if (!rpcData)
        return;
    sdk.freed.append(QStringLiteral("rpc"));
    delete rpcData;
}

class TestPageRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void stream();
    void xrvWithoutTexts();
    void units_data();
    void units();
    void hugeImage();
    void blockSizeOfLayersInTurn();
    void bandWithoutDescription();
    void fewerStatisticsThanBands();
    void manyBands();
    void statisticsReleased();
    void rpcReleased();
    void unreachableBoxes();

private:
    TestFolder folder;
    std::unique_ptr<XRVJP2kLayer> layer;
};

void TestPageRecords::init()
{
    sdk = Record();
    sdk.info = {};
    sdk.info.nSizeX = 100;
    sdk.info.nSizeY = 50;
    sdk.info.nBands = 1;
    sdk.info.pBands = sdk.bands.data();
    sdk.info.fCellIncrementX = 1;
    sdk.info.fCellIncrementY = -1;
    sdk.info.szDatum = sdk.info.szProjection = sdk.info.szCompressionDate = "";
    layer = openLayer(folder.makeImage(QStringLiteral("record.xrv"), jp2maker::Options()));
    sdk.freed.clear();
}

void TestPageRecords::stream()
{
    sdk.isRemote = true;
    sdk.info.nFormatVersion = 7;
    sdk.info.nCompressionRate = 20;
    sdk.info.fActualCompressionRate = 18.456F;
    sdk.info.eCellSizeUnits = PLK_UNITS_METERS;
    sdk.info.szDatum = "WGS84";
    sdk.info.szProjection = "NUTM33";
    sdk.info.szCompressionDate = "2021-05-01";
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "xrvpVersion"), QStringLiteral("3"));
    QCOMPARE(textOf(page, "targetCompress"), QStringLiteral("20 : 1"));
    QCOMPARE(textOf(page, "actualCompress"), QStringLiteral("Unknown"));
    QCOMPARE(textOf(page, "compressDate"), QStringLiteral("2021-05-01"));
    const QString text = copiedText(page);
    QVERIFY(text.startsWith(QStringLiteral("XRVP Version = \u0003\rFormat Version = 7\rGDT Datum = WGS84\r"
                                           "GDT Projection = NUTM33\rGDT Units = Meters\r")));
    QVERIFY(text.endsWith(QStringLiteral("\rTarget Compression Rate = 20:1\rActual Compression Ratio = 18.46:1\r"
                                         "Compression Date = 2021-05-01\r")));
}

void TestPageRecords::xrvWithoutTexts()
{
    sdk.info.szDatum = sdk.info.szProjection = sdk.info.szCompressionDate = nullptr;
    sdk.info.pFileMetaData = &sdk.authoring; // all null
    XRVJP2kLayerFileInfo page;
    page.findChild<QLineEdit *>(QStringLiteral("author"))->setText(QStringLiteral("kept"));
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "gdtDatum"), QString());
    QCOMPARE(textOf(page, "author"), QStringLiteral("kept"));
    QVERIFY(copiedText(page).endsWith(QStringLiteral("\rAuthor = \rCopyright = \rCompany = \rEmail = \rAddress = \r"
                                                     "Telephone = \r")));
}

void TestPageRecords::units_data()
{
    QTest::addColumn<int>("units");
    QTest::addColumn<QString>("text");
    int units = 0;
    for (const char *text : {"Invalid", "Meters", "Degrees", "Feet", "Unknown"})
        QTest::newRow(text) << units++ << QString::fromLatin1(text);
}

void TestPageRecords::units()
{
    QFETCH(int, units);
    sdk.info.eCellSizeUnits = static_cast<PLKCellSizeUnits>(units);
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    QTEST(textOf(page, "gdtUnits"), "text");
}

void TestPageRecords::hugeImage()
{
    sdk.info.nSizeX = sdk.info.nSizeY = 1u << 21;
    sdk.info.nBands = 3;
    sdk.info.eCellType = PLKCT_DOUBLE;
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "uncompressedSize"), QStringLiteral("96.00 TB")); // 3 x 8 bytes x 2^42
}

void TestPageRecords::blockSizeOfLayersInTurn()
{
    XRVJP2kLayerFileInfo page;
    const auto *field = page.findChild<QLineEdit *>(QStringLiteral("blockSize"));
    page.setLayer(layer.get());
    QCOMPARE(field->text(), QStringLiteral("0 , 0"));
    sdk.type = PLK_FILE_JPEG2000;
    page.setLayer(layer.get());
    QCOMPARE(field->text(), QString());
    QCOMPARE(field->placeholderText(), QStringLiteral("Not valid for .jp2 files"));
}

void TestPageRecords::bandWithoutDescription()
{
    sdk.info.nBands = 3;
    sdk.statisticsBands = 3;
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    const auto *combo = page.findChild<QComboBox *>(QStringLiteral("bandComboBox"));
    QCOMPARE(combo->count(), 2);
    QCOMPARE(combo->itemText(1), QString());
    page.onBandChange(1);
    QCOMPARE(textOf(page, "mode"), QStringLiteral("1.0000"));
    QCOMPARE(textOf(page, "histogramText"), QStringLiteral("1,0,0,9\n"));
}

void TestPageRecords::fewerStatisticsThanBands()
{
    sdk.info.nBands = 3;
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    page.onBandChange(1);
    QCOMPARE(textOf(page, "mean"), QStringLiteral("12.5000"));
    QCOMPARE(textOf(page, "mode"), QStringLiteral("0.0000"));
    QCOMPARE(copiedText(page),
             withReturns({QStringLiteral("Band #0"), QStringLiteral("mode = 0.0000"), QStringLiteral("median = 3.0000"),
                          QStringLiteral("mean = 12.5000"), QStringLiteral("stddev = 0.0000"),
                          QStringLiteral("min = 1.0000"), QStringLiteral("max = 2.0000"),
                          QStringLiteral("Histogram Band #0 = 0,3,7,0")}));
}

void TestPageRecords::manyBands()
{
    constexpr quint16 kBands = 2000;
    sdk.bands.assign(kBands, {8, false, "many"});
    sdk.info.pBands = sdk.bands.data();
    sdk.info.nBands = kBands;
    sdk.statisticsBands = kBands;
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    // With each histogram 2000 times this would be a text of 130 million characters.
    const QString text = copiedText(page);
    QCOMPARE(text.count(QLatin1Char('\r')), 8 * kBands);
    QVERIFY(text.contains(QStringLiteral("\rBand #1999\r")));
}

void TestPageRecords::statisticsReleased()
{
    auto page = std::make_unique<XRVJP2kLayerStatistics>();
    page->setLayer(layer.get());
    QCOMPARE(sdk.freed.size(), 0);
    page->setLayer(layer.get());
    QCOMPARE(sdk.freed.size(), 1);
    sdk.statisticsBands = 0;
    page->setLayer(layer.get());
    QCOMPARE(sdk.freed.size(), 2);
    QCOMPARE(copiedText(*page), kUntouched);
    sdk.statisticsBands = 1;
    page->setLayer(layer.get());
    page.reset();
    QCOMPARE(sdk.freed,
             QStringList({QStringLiteral("statistics"), QStringLiteral("statistics"), QStringLiteral("statistics")}));
}

void TestPageRecords::rpcReleased()
{
    auto page = std::make_unique<XRVJP2kLayerRPCInfo>();
    page->setLayer(layer.get());
    QCOMPARE(sdk.freed.size(), 0);
    page->setLayer(layer.get());
    QCOMPARE(sdk.freed.size(), 1);
    page.reset();
    QCOMPARE(sdk.freed, QStringList({QStringLiteral("rpc"), QStringLiteral("rpc")}));
}

void TestPageRecords::unreachableBoxes()
{
    constexpr quint32 kXml = 0x786d6c20; // "xml "
    sdk.bytes = "<one/><two/><three/>";
    sdk.unreadableFrom = 12;
    constexpr quint64 kBeyond = 5000;
    sdk.boxes = {{kXml, kBeyond, 3}, {kXml, 0, 6},       {kXml, kBeyond, 9},    {0x75756964, 6, 6},
                 {kXml, 12, 8},      {kXml, kBeyond, 1}, {kXml, 0, ~quint64(0)}};
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    const auto *combo = page.findChild<QComboBox *>(QStringLiteral("comboBoxMetaBox"));
    const QString unread = QStringLiteral("Found an XML box, but failed to parse the content.");
    const QStringList expected = {QString(),
                                  QStringLiteral("<one/>"),
                                  QStringLiteral("<one/>"), // out of reach: that of the box before
                                  QStringLiteral("<two/>"),
                                  unread,
                                  unread,
                                  unread};
    QCOMPARE(combo->count(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(combo->itemData(i).toString(), expected[i]);
    QCOMPARE(combo->itemText(3), QStringLiteral("'uuid' Box #4:"));
    QCOMPARE(combo->itemText(6), QStringLiteral("'xml ' Box #7:"));
}

QTEST_MAIN(TestPageRecords)
#include "tst_pagerecords.moc"
