// Checks the decoder against the reference pictures of ISO/IEC 15444-4, where a folder with them is at hand: the
// variable JP2K_CONFORMANCE_DIR names it. tolerances.tsv there gives the largest and the mean squared error of every
// component.

#include "referencefiles.h"

#include "data/views.h"
#include "sdk/decode/planecells.h"

#include "container/jp2structure.h"
#include "io/filesource.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <cmath>

using namespace xrv;

namespace {

/// A line of tolerances.tsv.
struct Tolerance
{
    QString codestream;
    int component = 0;
    QString reference;
    int reduction = 0;
    std::int64_t largest = 0;
    double meanSquare = 0.0;
};

QVector<Tolerance> readTolerances(const QString &path)
{
    QVector<Tolerance> result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    file.readLine(); // names of the columns
    while (!file.atEnd()) {
        const QStringList fields = QString::fromUtf8(file.readLine()).trimmed().split(QLatin1Char('\t'));
        if (fields.size() == 6)
            result.append({fields[0], fields[1].toInt(), fields[2], fields[3].toInt(), fields[4].toLongLong(),
                           fields[5].toDouble()});
    }
    return result;
}

/// What 8-bit output makes of \a cell without a transform: deep cells are shifted down, shallow ones fill the range.
std::int64_t toByte(std::int64_t cell, int bits, bool isSigned)
{
    const std::int64_t positive = isSigned ? cell + (std::int64_t{1} << (bits - 1)) : cell;
    const double highest = static_cast<double>((std::int64_t{1} << bits) - 1);
    return bits >= 8 ? positive >> (bits - 8) : std::llround(static_cast<double>(positive) / highest * 255.0);
}

} // namespace

class TestConformance : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void component_data();
    void component();
    void componentAtEightBits_data() { component_data(); }
    void componentAtEightBits();
    void picture_data();
    void picture();

private:
    std::string path(const QString &name) const { return folder.filePath(name).toStdString(); }

    QDir folder;
    QVector<Tolerance> tolerances;
};

void TestConformance::initTestCase()
{
    const QString name = qEnvironmentVariable("JP2K_CONFORMANCE_DIR");
    if (name.isEmpty())
        QSKIP("JP2K_CONFORMANCE_DIR is not set");
    folder.setPath(name);
    tolerances = readTolerances(folder.filePath(QStringLiteral("tolerances.tsv")));
    QVERIFY2(!tolerances.isEmpty(), "there is no tolerances.tsv");
}

void TestConformance::component_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < tolerances.size(); ++i)
        QTest::addRow("%s component %d", qPrintable(tolerances[i].codestream), tolerances[i].component) << i;
}

void TestConformance::component()
{
    QFETCH(int, index);
    const Tolerance &tolerance = tolerances[index];
    const PgxImage expected = readPgx(path(tolerance.reference));
    QVERIFY(!expected.cells.empty());

    std::shared_ptr<ByteSource> source;
    QVERIFY(FileSource::open(path(tolerance.codestream), &source).IsSuccess());
    Jp2Structure structure;
    std::vector<std::string> warnings;
    QVERIFY(readJp2Structure(*source, &structure, &warnings).IsSuccess());
    std::unique_ptr<RasterReader> reader;
    const PLK::CError opened = RasterReader::open(source, structure.codestream, &reader);
    QVERIFY2(opened.IsSuccess(), opened.GetErrorMessage());

    ReadRequest request;
    request.datasetRect = {0, 0, reader->info().width, reader->info().height};
    request.level = tolerance.reduction;
    request.components = {tolerance.component};
    request.resilient = false;
    ReadResult result;
    const PLK::CError read = reader->read(request, &result);
    QVERIFY2(read.IsSuccess(), read.GetErrorMessage());

    const IntRect rect = reader->info().levelRect(tolerance.component, tolerance.reduction);
    QCOMPARE(rect.width(), std::int64_t{expected.width});
    QCOMPARE(rect.height(), std::int64_t{expected.height});
    QVERIFY(result.planes.at(0).rect == rect);
    const Difference found = difference(result.planes[0], rect, expected.cells);
    QVERIFY2(found.largest <= tolerance.largest && found.meanSquare() <= tolerance.meanSquare, found.text());

    // Windows of all levels, of all layers and of half of them, are parts of the whole.
    reader->dropCached();
    request.isKept = false;
    for (int i = 0; i < 2 * reader->info().levels; ++i) {
        request.level = i / 2;
        request.qualityLayers = i % 2 ? (reader->info().qualityLayers + 1) / 2 : 0;
        request.datasetRect = {0, 0, reader->info().width, reader->info().height};
        ReadResult all, window;
        QVERIFY(reader->read(request, &all).IsSuccess());
        request.datasetRect = {request.datasetRect.x1 / 3, request.datasetRect.y1 / 5, request.datasetRect.x1 / 2 + 1,
                               request.datasetRect.y1 / 2 + 1};
        QVERIFY(reader->read(request, &window).IsSuccess());
        const Plane &part = window.planes.at(0);
        for (std::int64_t y = part.rect.y0; y < part.rect.y1; ++y)
            for (std::int64_t x = part.rect.x0; x < part.rect.x1; ++x)
                QCOMPARE(cellAt(part, x, y), cellAt(all.planes.at(0), x, y));
    }
}

void TestConformance::componentAtEightBits()
{
    QFETCH(int, index);
    const Tolerance &tolerance = tolerances[index];
    if (tolerance.reduction != 0)
        QSKIP("a view of this size is at full resolution, the reference is not");
    const PgxImage expected = readPgx(path(tolerance.reference));

    PLK::CView view;
    const PLK::CError opened = view.Open(PLK::CString(path(tolerance.codestream).c_str()), false, false);
    QVERIFY2(opened.IsSuccess(), opened.GetErrorMessage());
    const PLKFileInfo *info = view.GetFileInfo();
    const auto width = static_cast<std::size_t>(info->nSizeX);
    if (info->nSizeX != static_cast<unsigned>(expected.width) || info->nSizeY != static_cast<unsigned>(expected.height))
        QSKIP("a subsampled component has no cell of its own for each pixel");
    QVERIFY(!setView(view, wholeOf(view), {tolerance.component}));

    Difference found;
    std::vector<std::uint8_t> line(width);
    void *const lines[] = {line.data()};
    for (std::size_t y = 0; y < info->nSizeY; ++y) {
        QCOMPARE(view.ReadLineBIL(PLKCT_UINT8, lines), PLK_READ_SUCCESS);
        for (std::size_t x = 0; x < width; ++x)
            found.add(line[x], toByte(expected.cells[y * width + x], expected.bits, expected.isSigned));
    }
    // A cell that is a little off may fall into the next of the 256 steps.
    const std::int64_t allowed = tolerance.largest == 0 ? 0 : toByte(tolerance.largest, expected.bits, false) + 1;
    QVERIFY2(found.largest <= allowed, found.text());
}

void TestConformance::picture_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reference");
    QTest::addColumn<int>("largest");
    QTest::addColumn<double>("meanSquare");
    const auto row = [](int number, const char *what, int largest, double meanSquare) {
        QTest::addRow("file%d: %s", number, what)
            << QStringLiteral("file%1.jp2").arg(number) << QStringLiteral("reference/jp2_%1.tif").arg(number) << largest
            << meanSquare;
    };
    // Reversible data without conversion must match exactly.
    row(1, "sRGB", 0, 0.0);
    row(2, "sYCC, channels in another order", 1, 1.0);
    row(3, "sYCC, subsampled chroma", 1, 1.0);
    row(4, "grey", 0, 0.0);
    row(5, "wide-gamut RGB by a matrix profile", 4, 4.0);
    row(6, "12-bit grey", 0, 0.0);
    row(7, "16-bit extended sRGB by a profile", 4, 4.0);
    row(8, "grey by a profile", 4, 4.0);
    row(9, "palette", 0, 0.0);
}

void TestConformance::picture()
{
    QFETCH(QString, file);
    QFETCH(QString, reference);
    QFETCH(int, largest);
    QFETCH(double, meanSquare);
    if (!folder.exists(file))
        QSKIP("the folder does not have this file");
    const TiffPicture expected = readTiffPicture(path(reference));
    QVERIFY(!expected.rgb.empty());

    PLK::CView view;
    const PLK::CError opened = view.Open(PLK::CString(path(file).c_str()), false, false);
    QVERIFY2(opened.IsSuccess(), opened.GetErrorMessage());
    QCOMPARE(view.GetFileInfo()->nSizeX, static_cast<std::uint32_t>(expected.width));
    QCOMPARE(view.GetFileInfo()->nSizeY, static_cast<std::uint32_t>(expected.height));
    const bool isColour = view.GetFileInfo()->nBands >= 3;
    const auto pixels = readPicture(view, wholeOf(view), isColour ? std::vector<int>{0, 1, 2} : std::vector<int>{0});
    QCOMPARE(pixels.size() * 3, expected.rgb.size());
    Difference found;
    for (std::size_t i = 0; i < expected.rgb.size(); ++i)
        found.add(reinterpret_cast<const std::uint8_t *>(&pixels[i / 3])[2 - i % 3], expected.rgb[i]);
    QVERIFY2(found.largest <= largest && found.meanSquare() <= meanSquare, found.text());
}

QTEST_GUILESS_MAIN(TestConformance)
#include "tst_conformance.moc"
