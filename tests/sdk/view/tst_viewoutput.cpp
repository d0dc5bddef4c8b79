#include "viewsupport.h"

#include <QtTest>

#include <cmath>

/// What becomes of cells: 8 bits, transforms, band lists, opacity, palettes, cell types.
class TestViewOutput : public QObject
{
    Q_OBJECT

private slots:
    void bytes_data();
    void bytes();
    void bandLists_data();
    void bandLists();
    void opacityIsScaledOnRequest_data();
    void opacityIsScaledOnRequest();
    void premultipliedOpacityIsDividedOut();
    void paletteIsInterpolatedAsColour();
    void paletteIsShownFromFullResolution();
    void hiddenColoursDoNotShineThrough();
    void cellsOfOtherTypesAreClamped();
};

namespace {

xrv::Jp2Structure boxesWithOpacity(std::uint16_t opacityChannel, std::uint16_t type)
{
    xrv::Jp2Structure boxes;
    boxes.colour = xrv::ColourSpecification{};
    boxes.colour->kind =
        opacityChannel == 1 ? xrv::ColourSpecification::Kind::Greyscale : xrv::ColourSpecification::Kind::SRgb;
    boxes.colour->enumeratedSpace = opacityChannel == 1 ? 17 : 16;
    for (std::uint16_t channel = 0; channel < opacityChannel; ++channel)
        boxes.definitions.push_back({channel, 0, static_cast<std::uint16_t>(channel + 1)});
    boxes.definitions.push_back({opacityChannel, type, 0});
    return boxes;
}

/// Entries 0 and 2 are dark red and bright red, entry 1 between their numbers is blue.
xrv::Jp2Structure boxesWithPalette()
{
    xrv::Jp2Structure boxes;
    boxes.colour = xrv::ColourSpecification{};
    boxes.colour->kind = xrv::ColourSpecification::Kind::SRgb;
    boxes.palette = xrv::Palette{3, {{8, false}, {8, false}, {8, false}}, {100, 0, 0, 0, 0, 255, 200, 0, 0}};
    boxes.mapping = {{0, true, 0}, {0, true, 1}, {0, true, 2}};
    return boxes;
}

/// First pixel of a view of one cell.
QByteArray firstPixel(BlockingView &image, const std::vector<int> &bands, bool autoscale = false)
{
    image.show(bands, 1, 1, {0, 0, 1, 1});
    return bytesOf(readBgra(image.engine, autoscale).bands[0][0]);
}

} // namespace

void TestViewOutput::bytes_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QVector<double>>("range"); // of a transform; empty: none
    QTest::addColumn<int>("cell");
    QTest::addColumn<int>("expected");
    const auto row = [](const char *name, int bits, bool isSigned, const QVector<double> &range, int cell,
                        int expected) { QTest::newRow(name) << bits << isSigned << range << cell << expected; };
    row("8 bits", 8, false, {}, 201, 201);
    row("1 bit set is white", 1, false, {}, 1, 255);
    row("1 bit clear is black", 1, false, {}, 0, 0);
    row("4 bits", 4, false, {}, 7, 119);
    row("12 bits", 12, false, {}, 0xabc, 0xab);
    row("16 bits", 16, false, {}, 0xfedc, 0xfe);
    row("8 bits signed, middle", 8, true, {}, 0, 128);
    row("8 bits signed, lowest", 8, true, {}, -128, 0);
    row("16 bits signed, highest", 16, true, {}, 32767, 255);
    row("12 bits signed, below the middle", 12, true, {}, -1, 127);
    row("24 bits", 24, false, {}, 0x7f1234, 0x7f);
    row("20 bits signed", 20, true, {}, -524288, 0);
    row("at the minimum", 16, false, {1000, 3000}, 1000, 0);
    row("at the maximum", 16, false, {1000, 3000}, 3000, 255);
    row("between", 16, false, {1000, 3000}, 1800, 102);
    row("below", 16, false, {1000, 3000}, 7, 0);
    row("above", 16, false, {1000, 3000}, 65535, 255);
    row("signed, between", 16, true, {-100, 155}, -50, 50);
    row("8 bits, between", 8, false, {100, 110}, 105, 128);
    row("deep, between", 28, false, {0, 255e6}, 77000000, 77);
    row("no range, above", 16, false, {500, 500}, 501, 255);
    row("no range, on it", 16, false, {500, 500}, 500, 0);
}

void TestViewOutput::bytes()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(QVector<double>, range);
    QFETCH(int, cell);
    QFETCH(int, expected);
    FakeReader reader(1, 1, 1, static_cast<std::uint8_t>(bits), isSigned);
    reader.cell = [=](int, int, std::int64_t, std::int64_t) { return cell; };
    BlockingView image(reader);
    if (!range.isEmpty())
        image.tables.setRange(0, range[0], range[1]);
    QCOMPARE(firstPixel(image, {0}), grey(expected));
}

void TestViewOutput::bandLists_data()
{
    QTest::addColumn<std::vector<int>>("bands");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("one band is grey") << std::vector<int>{2} << bgra(30, 30, 30, 255);
    QTest::newRow("one band is opacity's cells as grey") << std::vector<int>{3} << bgra(40, 40, 40, 255);
    QTest::newRow("grey and opacity") << std::vector<int>{1, 3} << bgra(20, 20, 20, 40);
    QTest::newRow("red, green, blue") << std::vector<int>{0, 1, 2} << bgra(30, 20, 10, 255);
    QTest::newRow("in another order") << std::vector<int>{2, 0, 1} << bgra(20, 10, 30, 255);
    QTest::newRow("the same three times") << std::vector<int>{1, 1, 1} << bgra(20, 20, 20, 255);
    QTest::newRow("with opacity") << std::vector<int>{0, 1, 2, 3} << bgra(30, 20, 10, 40);
    QTest::newRow("another band as opacity") << std::vector<int>{0, 0, 0, 2} << bgra(10, 10, 10, 30);
}

void TestViewOutput::bandLists()
{
    QFETCH(std::vector<int>, bands);
    FakeReader reader(4, 4, 4);
    reader.cell = [](int component, int, std::int64_t, std::int64_t) { return 10 * (component + 1); };
    BlockingView image(reader, boxesWithOpacity(3, 1));
    QTEST(firstPixel(image, bands), "expected");
    // The pixels beside the image, before and behind it in a line, and above it.
    xrv::ViewEngine &engine = image.engine;
    image.show(bands, 6, 6, {-1, -1, 5, 5});
    const auto lines = readBgra(engine);
    for (int x = 0; x < 6; ++x)
        QCOMPARE(bytesOf(lines.at(x, 0)), bgra(0, 0, 0, 0));
    QCOMPARE(bytesOf(lines.at(0, 3)), bgra(0, 0, 0, 0));
    QCOMPARE(bytesOf(lines.at(5, 3)), bgra(0, 0, 0, 0));
    QTEST(bytesOf(lines.at(4, 4)), "expected");
    // Band by band they are what they are in the pixels.
    image.show(bands, 1, 1, {0, 0, 1, 1});
    const auto planar = readBil<std::uint8_t>(engine, PLKCT_UINT8, bands.size());
    for (std::size_t i = 0; i < bands.size(); ++i)
        QCOMPARE(int(planar.at(0, 0, i)), 10 * (bands[i] + 1));
}

void TestViewOutput::opacityIsScaledOnRequest_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("cell");
    QTest::addColumn<bool>("autoscale");
    QTest::addColumn<int>("expected");
    QTest::newRow("1 bit, off") << 1 << 1 << false << 1;
    QTest::newRow("1 bit, on") << 1 << 1 << true << 255;
    QTest::newRow("2 bits, on") << 2 << 2 << true << 170;
    QTest::newRow("8 bits stay") << 8 << 99 << true << 99;
    QTest::newRow("16 bits are shifted either way") << 16 << 0x8000 << false << 0x80;
}

void TestViewOutput::opacityIsScaledOnRequest()
{
    QFETCH(int, bits);
    QFETCH(int, cell);
    QFETCH(bool, autoscale);
    QFETCH(int, expected);
    FakeReader reader(1, 1, 2);
    reader.raster.components[1].bits = static_cast<std::uint8_t>(bits);
    reader.raster.components[1].sampleType = bits > 8 ? xrv::SampleType::UInt16 : xrv::SampleType::UInt8;
    reader.cell = [=](int component, int, std::int64_t, std::int64_t) { return component == 1 ? cell : 77; };
    BlockingView image(reader, boxesWithOpacity(1, 1));
    QVERIFY(image.map.bands()[1].isOpacity);
    QCOMPARE(firstPixel(image, {0, 0, 0, 1}, autoscale), bgra(77, 77, 77, expected));
}

void TestViewOutput::premultipliedOpacityIsDividedOut()
{
    FakeReader reader(3, 1, 4);
    // Columns: half, nothing, more colour than there can be.
    const int cells[3][4] = {{60, 30, 10, 128}, {90, 90, 90, 0}, {200, 100, 50, 100}};
    reader.cell = [&](int component, int, std::int64_t u, std::int64_t) { return cells[u][component]; };
    BlockingView image(reader, boxesWithOpacity(3, 2));
    QVERIFY(image.map.bands()[3].isPremultiplied);
    xrv::ViewEngine &engine = image.engine;
    image.show({0, 1, 2, 3}, 3, 1, {0, 0, 3, 1});
    const auto lines = readBgra(engine);
    QCOMPARE(bytesOf(lines.at(0, 0)), bgra(20, 60, 120, 128)); // 10, 30, 60 of 255 / 128
    QCOMPARE(bytesOf(lines.at(1, 0)), bgra(0, 0, 0, 0));
    QCOMPARE(bytesOf(lines.at(2, 0)), bgra(128, 255, 255, 100));
    // A band that is shown as a colour, too, is no opacity of it.
    image.show({3, 0, 1, 3}, 1, 1, {0, 0, 1, 1});
    QCOMPARE(bytesOf(readBgra(engine).at(0, 0)), bgra(30, 60, 128, 128));
}

void TestViewOutput::paletteIsInterpolatedAsColour()
{
    FakeReader reader(2, 1);
    reader.cell = [](int, int, std::int64_t u, std::int64_t) { return u == 0 ? 0 : 2; };
    BlockingView image(reader, boxesWithPalette());
    QVERIFY(image.map.hasPalette());
    xrv::ViewEngine &engine = image.engine;
    image.show({0, 1, 2}, 8, 1, {0, 0, 2, 1});
    const auto near = readBgra(engine);
    QCOMPARE(bytesOf(near.at(3, 0)), bgra(0, 0, 100, 255));
    QCOMPARE(bytesOf(near.at(4, 0)), bgra(0, 0, 200, 255));
    image.showSmoothly({0, 1, 2}, 8, 1, {0, 0, 2, 1});
    const auto smooth = readBgra(engine);
    // Centres of pixels at 1/8, 3/8 ... cells, of cells at 1/2 and 3/2.
    const int reds[8] = {100, 100, 113, 138, 163, 188, 200, 200};
    for (int x = 0; x < 8; ++x)
        QCOMPARE(bytesOf(smooth.at(x, 0)), bgra(0, 0, reds[x], 255));
}

/// The numbers of a palette's entries have no mean, so the coarser levels of their component show nothing.
void TestViewOutput::paletteIsShownFromFullResolution()
{
    FakeReader reader(640, 640);
    reader.cell = [](int, int level, std::int64_t, std::int64_t) { return level == 0 ? 2 : 1; };
    BlockingView image(reader, boxesWithPalette());
    xrv::ViewEngine &engine = image.engine;
    image.show({0, 1, 2}, 40, 40, {0, 0, 640, 640});
    QCOMPARE(bytesOf(readBgra(engine).at(20, 20)), bgra(0, 0, 200, 255));
}

void TestViewOutput::hiddenColoursDoNotShineThrough()
{
    FakeReader reader(2, 1, 2);
    // A white cell that shows beside a black one that does not.
    reader.cell = [](int component, int, std::int64_t u, std::int64_t) {
        return u == 0 ? (component == 0 ? 240 : 200) : 0;
    };
    BlockingView image(reader, boxesWithOpacity(1, 1));
    xrv::ViewEngine &engine = image.engine;
    image.showSmoothly({0, 0, 0, 1}, 4, 1, {0, 0, 2, 1});
    const auto lines = readBgra(engine);
    QCOMPARE(bytesOf(lines.at(0, 0)), bgra(240, 240, 240, 200));
    QCOMPARE(bytesOf(lines.at(1, 0)), bgra(240, 240, 240, 150));
    QCOMPARE(bytesOf(lines.at(2, 0)), bgra(240, 240, 240, 50));
    QCOMPARE(bytesOf(lines.at(3, 0)), bgra(0, 0, 0, 0));
}

void TestViewOutput::cellsOfOtherTypesAreClamped()
{
    FakeReader reader(3, 1, 1, 16, true);
    reader.cell = [](int, int, std::int64_t u, std::int64_t) { return u == 0 ? -30000 : u == 1 ? 5 : 30000; };
    BlockingView image(reader);
    image.tables.setRange(0, 0.0, 10.0); // which only bytes go through
    xrv::ViewEngine &engine = image.engine;
    image.show({0}, 5, 1, {-1, 0, 4, 1});
    const auto expect = [&](auto cell, PLKCellType type, double low, double middle, double high) {
        const auto lines = readBil<decltype(cell)>(engine, type, 1);
        const double expected[5] = {0, low, middle, high, 0};
        for (int x = 0; x < 5; ++x)
            QCOMPARE(static_cast<double>(lines.at(x, 0)), expected[x]);
    };
    expect(std::uint8_t(), PLKCT_UINT8, 0, 128, 255);
    expect(std::int8_t(), PLKCT_INT8, -128, 5, 127);
    expect(std::uint16_t(), PLKCT_UINT16, 0, 5, 30000);
    expect(std::int16_t(), PLKCT_INT16, -30000, 5, 30000);
    expect(std::uint32_t(), PLKCT_UINT32, 0, 5, 30000);
    expect(std::int32_t(), PLKCT_INT32, -30000, 5, 30000);
    expect(std::uint64_t(), PLKCT_UINT64, 0, 5, 30000);
    expect(std::int64_t(), PLKCT_INT64, -30000, 5, 30000);
    expect(float(), PLKCT_FLOAT, -30000, 5, 30000);
    expect(double(), PLKCT_DOUBLE, -30000, 5, 30000);
}

QTEST_APPLESS_MAIN(TestViewOutput)
#include "tst_viewoutput.moc"
