#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerstatistics.h"
#include "pagetest.h"
#include "xrvsample.h"

#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QProcess>
#include <QtTest>

#include <algorithm>
#include <cmath>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

/// The pages of a real XRV file.
class TestXrvPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileInformation();
    void fileInformationCopied();
    void headerStaysEmpty();
    void storedStatistics_data();
    void storedStatistics();
    void statisticsCopied();
    void metadata();

private:
    double fileSize() const { return double(QFileInfo(file).size()); }

    TestFolder folder;
    QString file;
    std::unique_ptr<XRVJP2kLayer> layer;
};

namespace {

constexpr int kCells = XrvSample::kWidth * XrvSample::kHeight;

/// What the statistics page says of a band, from the cells before they were compressed.
struct BandTexts
{
    QString mode, median, mean, stddev, min, max, histogram;
};

BandTexts textsOf(int band)
{
    std::vector<int> cells;
    std::vector<int> counts(256);
    for (int y = 0; y < XrvSample::kHeight; ++y) {
        for (int x = 0; x < XrvSample::kWidth; ++x) {
            cells.push_back(XrvSample::cell(band, x, y));
            ++counts[size_t(cells.back())];
        }
    }
    std::sort(cells.begin(), cells.end());
    double sum = 0;
    double squares = 0;
    for (const int cell : cells)
        sum += cell;
    const double mean = sum / kCells;
    for (const int cell : cells)
        squares += (cell - mean) * (cell - mean);
    // The file keeps single-precision numbers.
    const auto text = [](double value) { return QString::number(double(float(value)), 'f', 4); };
    QStringList buckets;
    for (const int count : counts)
        buckets.append(QString::number(count));
    return {text(double(std::max_element(counts.begin(), counts.end()) - counts.begin())),
            text((cells[kCells / 2 - 1] + cells[kCells / 2]) / 2.0),
            text(mean),
            text(std::sqrt(squares / kCells)),
            text(cells.front()),
            text(cells.back()),
            buckets.join(QLatin1Char(','))};
}

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
    const double uncompressed = kCells * XrvSample::kBands;
    const QMap<QString, QString> expected = {
        {QStringLiteral("xrvpVersion"), QStringLiteral("Local file")},
        {QStringLiteral("fileFormatVersion"), QStringLiteral("1")},
        {QStringLiteral("gdtDatum"), QString::fromUtf8(XrvSample::kDatum)},
        {QStringLiteral("gdtProjection"), QString::fromUtf8(XrvSample::kProjection)},
        {QStringLiteral("gdtUnits"), QStringLiteral("Meters")},
        {QStringLiteral("compressedSize"), kilobytes(fileSize())},
        {QStringLiteral("uncompressedSize"), kilobytes(uncompressed)},
        {QStringLiteral("targetCompress"), QStringLiteral("20 : 1")},
        {QStringLiteral("actualCompress"), QStringLiteral("%1 : 1").arg(int(uncompressed / fileSize()))},
        {QStringLiteral("blockSize"), QStringLiteral("128 , 128")},
        {QStringLiteral("compressDate"), QString::fromUtf8(XrvSample::kDate)},
        {QStringLiteral("classification"), QString::fromUtf8(XrvSample::kTexts[0])},
        {QStringLiteral("acquisitionDate"), QString::fromUtf8(XrvSample::kTexts[1])},
        {QStringLiteral("acquisitionSensorName"), QString::fromUtf8(XrvSample::kTexts[2])},
        {QStringLiteral("compressionSoftware"), QString::fromUtf8(XrvSample::kTexts[3])},
        {QStringLiteral("author"), QString::fromUtf8(XrvSample::kTexts[4])},
        {QStringLiteral("copyright"), QString::fromUtf8(XrvSample::kTexts[5])},
        {QStringLiteral("company"), QString::fromUtf8(XrvSample::kTexts[6])},
        {QStringLiteral("email"), QString::fromUtf8(XrvSample::kTexts[7])},
        {QStringLiteral("address"), QString::fromUtf8(XrvSample::kTexts[8])},
        {QStringLiteral("telephone"), QString::fromUtf8(XrvSample::kTexts[9])},
    };
    const QList<QLineEdit *> fields = page.findChildren<QLineEdit *>();
    QCOMPARE(fields.size(), expected.size());
    for (const QLineEdit *field : fields)
        QCOMPARE(field->text(), expected.value(field->objectName()));
    QCOMPARE(page.findChild<QLineEdit *>(QStringLiteral("blockSize"))->placeholderText(), QString());
}

void TestXrvPages::fileInformationCopied()
{
    XRVJP2kLayerFileInfo page;
    page.setLayer(layer.get());
    const double uncompressed = kCells * XrvSample::kBands;
    QStringList lines = {QStringLiteral("XRVP Version = Local file"),
                         QStringLiteral("Format Version = 1"),
                         QStringLiteral("GDT Datum = ") + QString::fromUtf8(XrvSample::kDatum),
                         QStringLiteral("GDT Projection = ") + QString::fromUtf8(XrvSample::kProjection),
                         QStringLiteral("GDT Units = Meters"),
                         QStringLiteral("Compressed Size = ") + kilobytes(fileSize()),
                         QStringLiteral("Uncompressed Size = ") + kilobytes(uncompressed),
                         QStringLiteral("Target Compression Rate = 20:1"),
                         QStringLiteral("Actual Compression Ratio = %1:1").arg(uncompressed / fileSize(), 0, 'f', 2),
                         QStringLiteral("Compression Date = ") + QString::fromUtf8(XrvSample::kDate)};
    const QStringList names = {QStringLiteral("Classification"),
                               QStringLiteral("Acquisition Date"),
                               QStringLiteral("Acquisition Sensor Name"),
                               QStringLiteral("Compression Software"),
                               QStringLiteral("Author"),
                               QStringLiteral("Copyright"),
                               QStringLiteral("Company"),
                               QStringLiteral("Email"),
                               QStringLiteral("Address"),
                               QStringLiteral("Telephone")};
    for (int i = 0; i < names.size(); ++i)
        lines.append(names[i] + QStringLiteral(" = ") + QString::fromUtf8(XrvSample::kTexts[i]));
    QCOMPARE(lines.size(), 20);
    QCOMPARE(copiedText(page), withReturns(lines));
}

void TestXrvPages::headerStaysEmpty()
{
    XRVJP2kLayerJP2FileInfo page;
    page.setLayer(layer.get());
    QCOMPARE(filledFields(page), QStringList());
    QCOMPARE(copiedText(page), QString());
}

void TestXrvPages::storedStatistics_data()
{
    QTest::addColumn<int>("band");
    QTest::newRow("first band") << 0;
    QTest::newRow("second band") << 1;
}

/// Those of the cells that decoding gives would differ in every number.
void TestXrvPages::storedStatistics()
{
    QFETCH(int, band);
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    auto *combo = page.findChild<QComboBox *>(QStringLiteral("bandComboBox"));
    QCOMPARE(combo->count(), XrvSample::kBands);
    QCOMPARE(combo->itemText(band), QString::fromUtf8(XrvSample::kBandNames[band]));
    combo->setCurrentIndex(band);
    const BandTexts texts = textsOf(band);
    QCOMPARE(textOf(page, "mode"), texts.mode);
    QCOMPARE(textOf(page, "median"), texts.median);
    QCOMPARE(textOf(page, "mean"), texts.mean);
    QCOMPARE(textOf(page, "stddev"), texts.stddev);
    QCOMPARE(textOf(page, "min"), texts.min);
    QCOMPARE(textOf(page, "max"), texts.max);
    QCOMPARE(textOf(page, "histogramText"), texts.histogram + QLatin1Char('\n'));
}

void TestXrvPages::statisticsCopied()
{
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    QStringList lines;
    for (int band = 0; band < XrvSample::kBands; ++band) {
        const BandTexts texts = textsOf(band);
        lines << QStringLiteral("Band #%1").arg(band) << QStringLiteral("mode = ") + texts.mode
              << QStringLiteral("median = ") + texts.median << QStringLiteral("mean = ") + texts.mean
              << QStringLiteral("stddev = ") + texts.stddev << QStringLiteral("min = ") + texts.min
              << QStringLiteral("max = ") + texts.max << QStringLiteral("Histogram Band #0 = ") + texts.histogram
              << QStringLiteral("Histogram Band #1 = ") + texts.histogram;
    }
    QCOMPARE(copiedText(page), withReturns(lines));
}

void TestXrvPages::metadata()
{
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "comboBoxMetaBox"), QStringLiteral("'xml ' Box #1:"));
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QString::fromUtf8(XrvSample::kXml));
}

QTEST_MAIN(TestXrvPages)
#include "tst_xrvpages.moc"
