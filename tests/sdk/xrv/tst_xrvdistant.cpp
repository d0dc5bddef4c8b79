#include "data/files.h"
#include "data/syntheticimage.h"
#include "sdk/distantfile.h"

#include "codestream/mainheader.h"
#include "decode/rasterreader.h"
#include "xrv/xrvstructure.h"

#include <QtTest>

using namespace xrv;

namespace {

constexpr std::uint64_t kPage = 4096;

} // namespace

/// What reading XRV files from a distance costs.
class TestXrvDistant : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void openingTakesTwoRequests();
    void readingTakesOneMore_data();
    void readingTakesOneMore();

private:
    std::unique_ptr<RasterReader> open(const std::shared_ptr<DistantFile> &file)
    {
        std::unique_ptr<RasterReader> reader;
        if (readXrvStructure(*file, &structure, nullptr).IsSuccess())
            RasterReader::open(file, structure.boxes.codestream, &reader, structure.packetIndex);
        return reader;
    }
    Bytes bytes;
    XrvStructure structure;
};

void TestXrvDistant::initTestCase()
{
    SyntheticImage image(2100, 1900, 3, 8);
    image.image.colourSpace = PLK_COLORSPACE_SRGB;
    image.image.xmls = {std::string(200000, ' '), std::string(50000, ' ')};
    WriteOptions options;
    options.tileSize = 256;
    const FileFolder folder;
    QVERIFY(writeImage(image, options, folder.path("distant.xrv")).IsSuccess());
    const QByteArray content = folder.read("distant.xrv");
    bytes.assign(content.begin(), content.end());
}

/// The start of the file, and what its table of contents names; not what lies between.
void TestXrvDistant::openingTakesTwoRequests()
{
    const auto file = std::make_shared<DistantFile>(bytes, kPage);
    QVERIFY(open(file));
    QCOMPARE(file->requests, 2);
    QVERIFY2(file->fetched < structure.packetIndex.length + 48 * 1024, qPrintable(QString::number(file->fetched)));
}

void TestXrvDistant::readingTakesOneMore_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("level");
    QTest::newRow("overview") << QRect(0, 0, 2100, 1900) << 3;
    QTest::newRow("window") << QRect(900, 700, 300, 300) << 0;
}

void TestXrvDistant::readingTakesOneMore()
{
    QFETCH(QRect, rect);
    QFETCH(int, level);
    const auto file = std::make_shared<DistantFile>(bytes, kPage);
    const auto reader = open(file);
    QVERIFY(reader);
    const std::uint64_t opening = file->fetched;
    ReadRequest request;
    request.datasetRect = {rect.left(), rect.top(), rect.right() + 1, rect.bottom() + 1};
    request.level = level;
    request.components = {0, 1, 2};
    ReadResult result;
    QVERIFY(reader->read(request, &result).IsSuccess() && !result.damaged);
    QCOMPARE(file->requests, 3);
    // The packets of the two lowest of five resolutions; nine of 72 blocks at the finest resolutions.
    const PacketIndex &index = *reader->mainHeader().packetIndex;
    QCOMPARE(index.parts().size(), std::size_t(5 * 72));
    const std::uint64_t most = level == 0 ? bytes.size() / 5 : index.parts()[2 * 72].offset * 5 / 4 + 2 * kPage;
    QVERIFY2(file->fetched - opening < most, qPrintable(QString::number(file->fetched - opening)));
}

QTEST_GUILESS_MAIN(TestXrvDistant)
#include "tst_xrvdistant.moc"
