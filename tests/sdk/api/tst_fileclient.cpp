#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/jp2maker.h"
#include "data/logrecorder.h"

#include <xrv60/plkfile.h>
#include <xrv60/plkinit.h>

#include <QtTest>

#include <thread>

namespace {

/// Opens what a view would open.
class Client : public PLK::SDK::CFileClient
{
public:
    PLK::CError open(const std::string &name) { return OpenFileNamed(name.c_str()); }
    void close() { CloseFile(true); }
};

} // namespace

class TestFileClient : public QObject
{
    Q_OBJECT

private slots:
    void fileInformation();
    void headerOfTheCodestream();
    void placeInTheWorld();
    void xmlBoxesInFileOrder();
    void streamIsTheFile();
    void nothingOpen();
    void codestreamIsBelieved();
    void opensAndClosesAreLogged();
    void queriesFromManyThreads();

private:
    FileFolder folder;
};

void TestFileClient::fileInformation()
{
    jp2maker::Options options;
    options.width = 120;
    options.height = 70;
    options.offsetX = 3;
    options.components.assign(4, {});
    options.opacityLast = true;
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    const std::string name = folder.write("Übersicht 東京.jp2", bytes);
    Client client;
    const PLK::CError error = client.open(name);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    QVERIFY(client.IsOpen());
    QCOMPARE(client.GetFileName(), name);
    QCOMPARE(client.GetFile()->GetName(), name.c_str());
    QCOMPARE(client.GetFile()->GetType(), PLK_FILE_JPEG2000);
    QVERIFY(!client.GetFile()->IsRemote());

    const PLKFileInfo *info = client.GetFileInfo();
    QCOMPARE(info->nSizeX, 120u);
    QCOMPARE(info->nSizeY, 70u);
    QCOMPARE(int(info->nBands), 4);
    QCOMPARE(info->eColorSpace, PLK_COLORSPACE_SRGB);
    QCOMPARE(info->pBands[0].szDesc, "Red");
    QCOMPARE(info->pBands[3].szDesc, "AllOpacity");
    QCOMPARE(info->szDatum, "RAW");
    QCOMPARE(info->szProjection, "RAW");
    QCOMPARE(info->fOriginX, 0.0);
    QCOMPARE(info->fOriginY, 0.0);
    QCOMPARE(info->fCellIncrementX, 1.0);
    QCOMPARE(info->fCellIncrementY, -1.0);
    QCOMPARE(info->szCompressionDate, "");
    QVERIFY(!info->pFileMetaData);
    QCOMPARE(double(info->fActualCompressionRate), double(float(120.0 * 70.0 * 4.0 / double(bytes.size()))));
    QCOMPARE(client.GetEPSGCode(), 0);
    PLKRPCData *rpc = nullptr;
    QCOMPARE(client.GetRPCData(&rpc).GetErrorNumber(), int(PLK_ERR_NOT_AVAILABLE));
    QVERIFY(!rpc);
}

void TestFileClient::headerOfTheCodestream()
{
    jp2maker::Options options;
    options.width = 200;
    options.height = 130;
    options.tileWidth = options.tileHeight = 64;
    options.components = {{12, true}, {8, false}};
    options.levels = 2;
    options.layerRates = {30, 10, 0};
    options.progression = "RPCL";
    options.precincts = {{64, 32}, {32, 32}};
    options.codeBlockWidth = 32;
    options.codeBlockHeight = 16;
    options.sop = true;
    options.comment = "made for a test";
    Client client;
    QVERIFY(client.open(folder.write("header.jp2", jp2maker::make(options))).IsSuccess());
    QCOMPARE(client.GetFileInfo()->eCellType, PLKCT_INT16);
    QCOMPARE(int(client.GetFileInfo()->pBands[0].nBits), 12);
    QVERIFY(client.GetFileInfo()->pBands[0].bSigned && !client.GetFileInfo()->pBands[1].bSigned);
    const auto &jp2 = client.MetadataJp2();
    using Size = std::pair<std::uint32_t, std::uint32_t>;
    QCOMPARE(jp2.ComplianceProfileType(), 0);
    QCOMPARE(jp2.Comments(), options.comment);
    QCOMPARE(jp2.NumberOfTiles(), Size(4, 3));
    QCOMPARE(jp2.TileSize(), Size(64, 64));
    QCOMPARE(jp2.PrecinctSize(), (std::vector<Size>{{16, 16}, {32, 32}, {64, 32}}));
    QCOMPARE(jp2.CodeBlock(), Size(32, 16));
    QCOMPARE(jp2.BitDepth(), (std::vector<std::uint8_t>{12, 8}));
    QCOMPARE(jp2.Levels(), 3);
    QCOMPARE(jp2.Layers(), 3);
    QCOMPARE(jp2.PrecinctProgressionOrder(), 2);
    QCOMPARE(jp2.TransformationType(), 1);
    QVERIFY(jp2.SOPExists());
    QVERIFY(!jp2.EPHExists());
    QVERIFY(!jp2.GMLJP2BoxExists());
    QCOMPARE(client.MetadataXRV().Blocksize(), Size(0, 0));
    client.close();
    QCOMPARE(jp2.Levels(), 0);
    QCOMPARE(jp2.Comments(), std::string());
}

void TestFileClient::placeInTheWorld()
{
    const std::string name = folder.write("placed.jp2", jp2maker::make({}));
    // Of the centre of the first cell, as world files are.
    folder.write("placed.j2w", QByteArray("2.5\n0\n0\n-4\n1001.25\n1998\n"));
    Client client;
    QVERIFY(client.open(name).IsSuccess());
    double transform[6] = {};
    QVERIFY(client.GetWorldTransform(transform).IsSuccess());
    const double expected[6] = {1000, 2.5, 0, 2000, 0, -4};
    for (int i = 0; i < 6; ++i)
        QCOMPARE(transform[i], expected[i]);
    double x = 0, y = 0;
    QVERIFY(client.ConvertDatasetToWorld(10, 20.5, &x, &y).IsSuccess());
    QCOMPARE(x, 1025.0);
    QCOMPARE(y, 1918.0);
    QVERIFY(client.ConvertWorldToDataset(x, y, &x, &y).IsSuccess());
    QCOMPARE(x, 10.0);
    QCOMPARE(y, 20.5);
    QCOMPARE(client.ConvertDatasetToWorld(0, 0, nullptr, &y).GetErrorNumber(), int(PLK_ERR_INVALID_ARGUMENT));
}

void TestFileClient::xmlBoxesInFileOrder()
{
    const std::string texts[] = {"<first/>", "<second>é</second>", ""};
    jp2maker::FileBytes bytes = jp2maker::make({});
    for (const std::string &text : texts)
        bytes = jp2maker::withBox(bytes, "xml ", text);
    Client client;
    QVERIFY(client.open(folder.write("xml.jp2", bytes)).IsSuccess());
    const PLKXMLBox *box = nullptr;
    for (const std::string &text : texts) {
        box = client.GetXMLBox(box);
        QVERIFY(box);
        QCOMPARE(box->nType, 0x786D6C20u);
        QCOMPARE(box->nContentLength, std::uint64_t(text.size()));
        std::string content(text.size(), ' ');
        QVERIFY(client.GetStream()->Seek(box->nContentOffset));
        QVERIFY(client.GetStream()->Read(content.data(), content.size()));
        QCOMPARE(content, text);
    }
    QVERIFY(!client.GetXMLBox(box));
    const PLKXMLBox foreign{};
    QVERIFY(!client.GetXMLBox(&foreign));
}

void TestFileClient::streamIsTheFile()
{
    const jp2maker::FileBytes bytes = jp2maker::make({});
    Client client;
    QVERIFY(client.open(folder.write("stream.jp2", bytes)).IsSuccess());
    PLK::CIOStream *stream = client.GetStream();
    QVERIFY(!stream->IsRemote());
    QCOMPARE(stream->GetSize(), std::uint64_t(bytes.size()));
    jp2maker::FileBytes read(bytes.size());
    QVERIFY(stream->Read(read.data(), 10));
    QVERIFY(stream->Read(read.data() + 10, read.size() - 10));
    QVERIFY(read == bytes);
    QVERIFY(!stream->Read(read.data(), 1));
    QVERIFY(!stream->Seek(bytes.size() + 1));
    QVERIFY(stream->Seek(bytes.size() - 1));
    QVERIFY(!stream->Read(read.data(), 2)); // and stays
    QVERIFY(stream->Read(read.data(), 1));
}

void TestFileClient::nothingOpen()
{
    Client client;
    QVERIFY(!client.IsOpen() && !client.GetFileInfo() && !client.GetStream() && !client.GetXMLBox(nullptr));
    QCOMPARE(client.GetFileName(), std::string());
    QCOMPARE(client.GetFileType(), PLK_FILE_UNKNOWN);
    QCOMPARE(client.MetadataJp2().Layers(), 0);
    PLKFileStatistics *statistics = nullptr;
    PLKRPCData *rpc = nullptr;
    double numbers[6];
    for (const PLK::CError &error :
         {client.GetClientStatistics(&statistics), client.GetRPCData(&rpc), client.GetWorldTransform(numbers),
          client.ConvertWorldToDataset(0, 0, numbers, numbers)})
        QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_NOT_OPEN));
    PLKFreeStatistics(nullptr);
    PLKFreeRPCData(nullptr);
    client.close();
}

void TestFileClient::codestreamIsBelieved()
{
    jp2maker::FileBytes bytes = jp2maker::make({});
    bytes[boxbuilder::findBox(bytes, "ihdr").start + 8] = 0x7F; // the height's highest byte
    LogRecorder<wchar_t> log;
    Client client;
    QVERIFY(client.open(folder.write("claims.jp2", bytes)).IsSuccess());
    QCOMPARE(client.GetFileInfo()->nSizeY, 64u);
    QCOMPARE(log.count(PLK_LOG_WARNING, L"the codestream is believed"), 1);
}

void TestFileClient::opensAndClosesAreLogged()
{
    const std::string name = folder.write("東京.jp2", jp2maker::make({}));
    LogRecorder<wchar_t> log;
    {
        Client client;
        QVERIFY(client.open(name).IsSuccess());
        QVERIFY(client.open(name + "x"));
    }
    const std::wstring shown = L'"' + QString::fromStdString(name).toStdWString();
    QCOMPARE(log.count(PLK_LOG_INFO, L"Opened " + shown + L"\": JPEG 2000 file, 64 x 64 cells, 1 bands, "), 1);
    QCOMPARE(log.count(PLK_LOG_INFO, L"Closed " + shown + L"\""), 1);
    QCOMPARE(log.count(PLK_LOG_ERROR, shown + L"x\" was not opened"), 1);
}

void TestFileClient::queriesFromManyThreads()
{
    jp2maker::Options options;
    options.width = options.height = 300;
    options.tileWidth = options.tileHeight = 100;
    Client client;
    QVERIFY(client.open(folder.write("threads.jp2", jp2maker::make(options))).IsSuccess());
    PLKFileStatistics *records[4] = {};
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (PLKFileStatistics *&record : records)
        threads.emplace_back([&] {
            const bool isRight = client.GetClientStatistics(&record).IsSuccess() &&
                                 client.GetFileInfo()->nSizeX == 300 && client.MetadataJp2().NumberOfTiles().first == 3;
            good += isRight ? 1 : 0;
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(good.load(), 4);
    client.close(); // the records are the callers'
    for (PLKFileStatistics *record : records) {
        QCOMPARE(double(record->pBandStats[0].fMax), 255.0);
        PLKFreeStatistics(record);
    }
}

QTEST_GUILESS_MAIN(TestFileClient)
#include "tst_fileclient.moc"
