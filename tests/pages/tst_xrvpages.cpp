#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerstatistics.h"
#include "pagetest.h"
#include "sdk/stream/webfile.h"
#include "xrvsample.h"

#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProcess>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

/// The pages of a real XRV file.
class TestXrvPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileInformation();
    void layersInTurn();
    void stream();
    void bandsAndMetadata();

private:
    double fileSize() const { return double(QFileInfo(file).size()); }

    TestFolder folder;
    QString file;
    std::unique_ptr<XRVJP2kLayer> layer;
};

namespace {

constexpr int kCells = XrvSample::kWidth * XrvSample::kHeight;

QString kilobytes(double bytes)
{
    return QString::number(bytes / 1024, 'f', 2) + QStringLiteral(" KB");
}

} // namespace

void TestXrvPages::initTestCase()
{
    const QString sample = folder.path(QStringLiteral("sample.xrv")); // a name that every system can hand to a program
    QCOMPARE(QProcess::execute(QStringLiteral(SAMPLE_MAKER), {sample}), 0);
    file = folder.path(QString::fromUtf8("空中写真.xrv"));
    QVERIFY(QFile::rename(sample, file));
    layer = openLayer(file);
}

void TestXrvPages::fileInformation()
{
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    const double ratio = kCells * XrvSample::kBands / fileSize();
    struct Row
    {
        const char *field;
        const char *copied; // its name in the text for the clipboard, where there is one
        QString value;
    };
    QVector<Row> rows = {
        {"xrvpVersion", "XRVP Version", QStringLiteral("Local file")},
        {"fileFormatVersion", "Format Version", QStringLiteral("1")},
        {"gdtDatum", "GDT Datum", QString::fromUtf8(XrvSample::kDatum)},
        {"gdtProjection", "GDT Projection", QString::fromUtf8(XrvSample::kProjection)},
        {"gdtUnits", "GDT Units", QStringLiteral("Meters")},
        {"compressedSize", "Compressed Size", kilobytes(fileSize())},
        {"uncompressedSize", "Uncompressed Size", kilobytes(kCells * XrvSample::kBands)},
        {"targetCompress", "Target Compression Rate", QStringLiteral("20 : 1")},
        {"actualCompress", "Actual Compression Ratio", QStringLiteral("%1 : 1").arg(int(ratio))},
        {"compressDate", "Compression Date", QString::fromUtf8(XrvSample::kDate)},
        {"blockSize", nullptr, QStringLiteral("128 , 128")},
    };
    const char *const texts[][2] = {{"classification", "Classification"},
                                    {"acquisitionDate", "Acquisition Date"},
                                    {"acquisitionSensorName", "Acquisition Sensor Name"},
                                    {"compressionSoftware", "Compression Software"},
                                    {"author", "Author"},
                                    {"copyright", "Copyright"},
                                    {"company", "Company"},
                                    {"email", "Email"},
                                    {"address", "Address"},
                                    {"telephone", "Telephone"}};
    for (int i = 0; i < 10; ++i)
        rows.append({texts[i][0], texts[i][1], QString::fromUtf8(XrvSample::kTexts[i])});
    QCOMPARE(page.findChildren<QLineEdit *>().size(), rows.size());
    QStringList lines;
    for (const Row &row : qAsConst(rows)) {
        QCOMPARE(textOf(page, row.field), row.value);
        if (row.copied)
            lines.append(QLatin1String(row.copied) + QStringLiteral(" = ") + row.value);
    }
    // The rates are written in another way there.
    lines.replace(7, QStringLiteral("Target Compression Rate = 20:1"));
    lines.replace(8, QStringLiteral("Actual Compression Ratio = %1:1").arg(ratio, 0, 'f', 2));
    QCOMPARE(copiedText(page), withReturns(lines));
    QCOMPARE(page.findChild<QLineEdit *>(QStringLiteral("blockSize"))->placeholderText(), QString());
}

void TestXrvPages::layersInTurn()
{
    XRVJP2kLayerJP2FileInfo header;
    header.setLayer(layer.get());
    QCOMPARE(filledFields(header), QStringList());
    QCOMPARE(copiedText(header), QString());

    const auto other = openLayer(folder.makeImage(QStringLiteral("other.jp2"), jp2maker::Options()));
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    page.setLayer(other.get());
    QCOMPARE(textOf(page, "blockSize"), QString());
    QCOMPARE(page.findChild<QLineEdit *>(QStringLiteral("blockSize"))->placeholderText(),
             QStringLiteral("Not valid for .jp2 files"));
    QCOMPARE(textOf(page, "author"), QString::fromUtf8(XrvSample::kTexts[4])); // texts that the file lacks stay
}

/// What is not known of a stream, and the version of its protocol as the character of that code.
void TestXrvPages::stream()
{
    WebFile served;
    served.bytes = folder.read(QFileInfo(file).fileName()).toStdString();
    const FaultServer server(served.handler());
    const auto streamed = openLayer(QString::fromStdString(server.address("/sample.xrv")));
    QCOMPARE(streamed->getXRVPVersion(), 3);
    QCOMPARE(streamed->getProtocol(), QStringLiteral("XRVP"));
    XRVJP2kLayerFileInfo page;
    page.setLayer(streamed.get());
    QCOMPARE(textOf(page, "xrvpVersion"), QStringLiteral("3"));
    QCOMPARE(textOf(page, "compressedSize"), QStringLiteral("Unknown"));
    QCOMPARE(textOf(page, "actualCompress"), QStringLiteral("Unknown"));
    QCOMPARE(textOf(page, "targetCompress"), QStringLiteral("20 : 1"));
    QVERIFY(copiedText(page).startsWith(QStringLiteral("XRVP Version = \u0003\rFormat Version = 1\r")));
}

void TestXrvPages::bandsAndMetadata()
{
    XRVJP2kLayerMetaDataBox boxes;
    boxes.setLayer(layer.get());
    QCOMPARE(itemsOf(boxes, "comboBoxMetaBox"), QStringList(QStringLiteral("'xml ' Box #1:")));
    QCOMPARE(textOf(boxes, "plainTextEditMetaData"), QString::fromUtf8(XrvSample::kXml));
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "bandComboBox"),
             QStringList({QString::fromUtf8(XrvSample::kBandNames[0]), QString::fromUtf8(XrvSample::kBandNames[1])}));
    // The least cell before the compression; one that decoding gives would differ.
    page.onBandChange(1);
    QCOMPARE(textOf(page, "mode"), QStringLiteral("18.0000"));
}

QTEST_MAIN(TestXrvPages)
#include "tst_xrvpages.moc"
