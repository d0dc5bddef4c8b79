#include "bandcells.h"

#include <QElapsedTimer>
#include <QtTest>

#include <numeric>

using namespace xrv;
using Kind = ColourSpecification::Kind;

Q_DECLARE_METATYPE(xrv::RasterInfo)
Q_DECLARE_METATYPE(xrv::Jp2Structure)

namespace {

RasterInfo raster(const std::vector<ComponentInfo> &components)
{
    RasterInfo info;
    info.components = components;
    return info;
}

RasterInfo raster(int count, int bits)
{
    return raster(std::vector<ComponentInfo>(static_cast<std::size_t>(count), component(bits)));
}

Jp2Structure boxes(Kind kind, std::uint32_t space, const std::vector<ChannelDefinition> &definitions = {})
{
    Jp2Structure structure;
    structure.colour = ColourSpecification{kind, space, {}, {}};
    structure.definitions = definitions;
    return structure;
}

Jp2Structure undefinedColour(const std::vector<ChannelDefinition> &definitions = {})
{
    Jp2Structure structure;
    structure.definitions = definitions;
    return structure;
}

/// Two entries: (10, 20, 30) and (40, 50, 60).
Jp2Structure palette(const std::vector<ChannelMapping> &mapping)
{
    Jp2Structure structure = boxes(Kind::SRgb, 16);
    structure.palette = Palette{2, {{8, false}, {8, false}, {8, false}}, {10, 20, 30, 40, 50, 60}};
    structure.mapping = mapping;
    return structure;
}

/// Name, depth with a sign, source component, and "*" for a band that is its component: "Red:8<0*".
QString describe(const BandMap &map)
{
    QStringList bands;
    for (const Band &band : map.bands()) {
        const bool isDirect = map.isDirect(static_cast<int>(&band - map.bands().data()));
        bands << QStringLiteral("%1:%2<%3%4")
                     .arg(QString::fromStdString(band.description))
                     .arg(band.isSigned ? -band.bits : band.bits)
                     .arg(band.component)
                     .arg(isDirect ? QStringLiteral("*") : QString());
    }
    return bands.join(QLatin1Char(' '));
}

} // namespace

class TestBandMap : public QObject
{
    Q_OBJECT

private slots:
    void layout_data();
    void layout();
    void cellTypes_data();
    void cellTypes();
    void paletteCells();
    void selectedBands();
    void longRows();
    void manyComponents();
};

void TestBandMap::layout_data()
{
    QTest::addColumn<RasterInfo>("image");
    QTest::addColumn<Jp2Structure>("structure");
    QTest::addColumn<QString>("bands");
    QTest::addColumn<int>("space");
    QTest::addColumn<bool>("warned");
    const auto row = [](const char *name, const RasterInfo &image, const Jp2Structure &structure, const char *bands,
                        int space, bool warned = false) {
        QTest::newRow(name) << image << structure << QString::fromLatin1(bands) << space << warned;
    };
    const int grey = PLK_COLORSPACE_GREYSCALE, rgb = PLK_COLORSPACE_SRGB, multi = PLK_COLORSPACE_MULTIBAND;
    const Jp2Structure none = undefinedColour(), sRgb = boxes(Kind::SRgb, 16), sYcc = boxes(Kind::SYcc, 18);

    row("bare, one", raster(1, 16), none, "Greyscale:16<0*", grey);
    row("bare, two", raster(2, 8), none, "Band #1:8<0* Band #2:8<1*", multi);
    row("bare, three of 8 bits", raster(3, 8), none, "Red:8<0* Green:8<1* Blue:8<2*", rgb);
    row("bare, three of 12 bits", raster(3, 12), none, "Band #1:12<0* Band #2:12<1* Band #3:12<2*", multi);
    row("bare, three signed", raster({component(8, true), component(8, true), component(8, true)}), none,
        "Band #1:-8<0* Band #2:-8<1* Band #3:-8<2*", multi);
    row("bare, coarse chroma", raster({component(8), component(8, false, 2), component(8, false, 2)}), none,
        "Red:8<0 Green:8<1 Blue:8<2", rgb);
    row("bare, four", raster(4, 8), none, "Band #1:8<0* Band #2:8<1* Band #3:8<2* Band #4:8<3*", multi);
    row("sRGB with near infrared", raster(4, 16), sRgb, "Red:16<0* Green:16<1* Blue:16<2* Band #4:16<3*", rgb);
    row("sRGB of unequal depths", raster({component(5), component(6), component(5)}), sRgb,
        "Red:5<0* Green:6<1* Blue:5<2*", rgb);
    row("sRGB on one component", raster(1, 8), sRgb, "Greyscale:8<0*", grey, true);
    row("grey with more bands", raster(3, 8), boxes(Kind::Greyscale, 17), "Greyscale:8<0* Band #2:8<1* Band #3:8<2*",
        multi);
    row("grey and opacity", raster(2, 8), boxes(Kind::Greyscale, 17, {{0, 0, 1}, {1, 1, 0}}),
        "Greyscale:8<0* AllOpacity:8<1*", grey);
    row("bi-level, 0 is white", raster(1, 1), boxes(Kind::Greyscale, 0), "Greyscale:1<0", grey);
    row("called bi-level, but of 8 bits", raster(2, 8), boxes(Kind::Greyscale, 0), "Greyscale:8<0* Band #2:8<1*",
        multi);
    row("sYCC", raster(3, 8), sYcc, "Red:8<0 Green:8<1 Blue:8<2", rgb);
    row("sYCC of 12 bits and opacity", raster(4, 12),
        boxes(Kind::SYcc, 18, {{3, 1, 0}, {0, 0, 1}, {1, 0, 2}, {2, 0, 3}}),
        "Red:12<0 Green:12<1 Blue:12<2 AllOpacity:12<3*", rgb);
    row("CMYK", raster(4, 8), boxes(Kind::Cmyk, 12), "Red:8<0 Green:8<1 Blue:8<2", rgb);
    row("unknown colour, defined", raster(4, 16),
        boxes(Kind::Unknown, 99, {{0, 0, 3}, {1, 0, 2}, {2, 0, 1}, {3, 2, 0}}),
        "Red:16<2* Green:16<1* Blue:16<0* AllOpacity:16<3*", rgb);
    row("opacity first, colours reversed", raster(4, 8),
        boxes(Kind::SRgb, 16, {{0, 1, 0}, {1, 0, 3}, {2, 0, 2}, {3, 0, 1}}),
        "Red:8<3* Green:8<2* Blue:8<1* AllOpacity:8<0*", rgb);
    row("unspecified channel between", raster(5, 8),
        boxes(Kind::SRgb, 16, {{0, 1, 0}, {1, 65535, 65535}, {2, 0, 1}, {3, 0, 2}, {4, 0, 3}}),
        "Red:8<2* Green:8<3* Blue:8<4* Band #4:8<1* AllOpacity:8<0*", rgb);
    row("channels without definition", raster(5, 8),
        boxes(Kind::SRgb, 16, {{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {4, 1, 0}}),
        "Red:8<0* Green:8<1* Blue:8<2* Band #4:8<3* AllOpacity:8<4*", rgb);
    row("opacity of one colour and of all", raster(5, 8),
        boxes(Kind::SRgb, 16, {{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}, {4, 1, 1}}),
        "Red:8<0* Green:8<1* Blue:8<2* Band #4:8<4* AllOpacity:8<3*", rgb);
    row("two reds", raster(4, 8), boxes(Kind::SRgb, 16, {{0, 0, 1}, {1, 0, 1}, {2, 0, 2}, {3, 0, 3}}),
        "Red:8<0* Green:8<2* Blue:8<3* Band #4:8<1*", rgb, true);
    row("definition of a channel that is not there", raster(1, 8), boxes(Kind::Greyscale, 17, {{0, 0, 1}, {7, 1, 0}}),
        "Greyscale:8<0*", grey, true);
    row("nothing but opacity", raster(1, 8), boxes(Kind::Greyscale, 17, {{0, 1, 0}}), "Greyscale:8<0*", grey, true);
    row("damaged profile", raster(3, 16), boxes(Kind::Icc, 0), "Band #1:16<0* Band #2:16<1* Band #3:16<2*", multi,
        true);

    const ChannelMapping red{0, true, 0}, green{0, true, 1}, blue{0, true, 2};
    row("palette", raster(1, 8), palette({red, green, blue}), "Red:8<0 Green:8<0 Blue:8<0", rgb);
    row("palette and a plain component", raster({component(1), component(8)}),
        palette({red, green, blue, {1, false, 0}}), "Red:8<0 Green:8<0 Blue:8<0 Band #4:8<1*", rgb);
    row("palette without mapping", raster(1, 8), palette({}), "Red:8<0 Green:8<0 Blue:8<0", rgb, true);
    row("mapping to no column", raster(1, 8), palette({red, green, {0, true, 3}}), "Greyscale:8<0*", grey, true);
    row("mapping to no component", raster(1, 8), palette({red, green, {1, true, 2}}), "Greyscale:8<0*", grey, true);
    Jp2Structure swapped = boxes(Kind::SRgb, 16);
    swapped.mapping = {{2, false, 0}, {1, false, 0}, {0, false, 0}};
    row("mapping without palette", raster(3, 8), swapped, "Red:8<2* Green:8<1* Blue:8<0*", rgb);
}

void TestBandMap::layout()
{
    QFETCH(RasterInfo, image);
    QFETCH(Jp2Structure, structure);
    QFETCH(bool, warned);
    std::vector<std::string> warnings;
    const BandMap map = BandMap::make(image, structure, &warnings);
    QTEST(describe(map), "bands");
    QTEST(int(map.colourSpace()), "space");
    QCOMPARE(!warnings.empty(), warned);
    const bool goesThroughPalette =
        std::any_of(map.bands().begin(), map.bands().end(), [](const Band &band) { return band.paletteColumn >= 0; });
    QCOMPARE(map.hasPalette(), goesThroughPalette);
}

void TestBandMap::cellTypes_data()
{
    QTest::addColumn<RasterInfo>("image");
    QTest::addColumn<int>("type");
    QTest::newRow("1 bit") << raster(1, 1) << int(PLKCT_UINT8);
    QTest::newRow("8 and 9 bits") << raster({component(8), component(9)}) << int(PLKCT_UINT16);
    QTest::newRow("17 bits") << raster(1, 17) << int(PLKCT_UINT32);
    QTest::newRow("8 bits signed") << raster({component(8, true)}) << int(PLKCT_INT8);
    QTest::newRow("8 bits of both kinds") << raster({component(8, true), component(8)}) << int(PLKCT_INT16);
    QTest::newRow("7 bits beside signed 8") << raster({component(8, true), component(7)}) << int(PLKCT_INT8);
    QTest::newRow("38 bits") << raster({component(38, true)}) << int(PLKCT_INT32);
}

void TestBandMap::cellTypes()
{
    QFETCH(RasterInfo, image);
    QTEST(int(BandMap::make(image, undefinedColour(), nullptr).cellType()), "type");
}

void TestBandMap::paletteCells()
{
    Jp2Structure structure = palette({{0, true, 2}, {0, true, 0}, {1, false, 0}});
    structure.palette->columns[2] = {12, true};
    structure.palette->values = {10, 20, -2048, 40, 50, 2047};
    const BandMap map = BandMap::make(raster(2, 8), structure, nullptr);
    QCOMPARE(map.componentsFor({0, 1}), (std::vector<int>{0}));
    // Beyond the last entry means the last entry.
    const Rows rows = convert(map, {1, 0, 2}, {{0, 1, 2, 255, -1}, {5, 6, 7, 8, 9}});
    QCOMPARE(rows[0], (std::vector<std::int32_t>{10, 40, 40, 40, 10}));
    QCOMPARE(rows[1], (std::vector<std::int32_t>{-2048, 2047, 2047, 2047, -2048}));
    QCOMPARE(rows[2], (std::vector<std::int32_t>{5, 6, 7, 8, 9}));
}

void TestBandMap::selectedBands()
{
    const BandMap plain = BandMap::make(raster(6, 8), undefinedColour(), nullptr);
    QCOMPARE(plain.componentsFor({5, 0, 5}), (std::vector<int>{5, 0}));
    const Rows components{{1}, {2}, {3}, {4}, {5}, {6}};
    QCOMPARE(convert(plain, {5, 0, 5}, components), (Rows{{6}, {1}, {6}}));

    // Luma last, an opacity in front: every colour needs the three, the opacity only itself.
    const BandMap sYcc =
        BandMap::make(raster(4, 8), boxes(Kind::SYcc, 18, {{0, 1, 0}, {1, 0, 3}, {2, 0, 2}, {3, 0, 1}}), nullptr);
    QCOMPARE(sYcc.componentsFor({3}), (std::vector<int>{0}));
    std::vector<int> needed = sYcc.componentsFor({2});
    std::sort(needed.begin(), needed.end());
    QCOMPARE(needed, (std::vector<int>{1, 2, 3}));
    // Cr 255, Cb 128, Y 100: red is 100 + 1.402 * 127, green 100 - 0.714136 * 127, blue 100.
    const Rows ycc{{77}, {255}, {128}, {100}};
    QCOMPARE(convert(sYcc, {2}, ycc), (Rows{{100}}));
    QCOMPARE(convert(sYcc, {3, 1, 0, 1}, ycc), (Rows{{77}, {9}, {255}, {9}}));
}

// Rows are converted in pieces; the seams must not show.
void TestBandMap::longRows()
{
    constexpr int kWidth = 5000;
    Jp2Structure structure = palette({{0, true, 0}, {0, true, 1}, {0, true, 2}});
    structure.colour = ColourSpecification{Kind::SYcc, 18, {}, {}};
    structure.palette->entries = 256;
    structure.palette->values.clear();
    for (int entry = 0; entry < 256; ++entry)
        structure.palette->values.insert(structure.palette->values.end(), {entry, 128, 128});
    const BandMap map = BandMap::make(raster(1, 8), structure, nullptr);
    std::vector<std::int32_t> cells(kWidth);
    for (int x = 0; x < kWidth; ++x)
        cells[static_cast<std::size_t>(x)] = x % 251;
    QCOMPARE(convert(map, {0, 1, 2}, {cells}), (Rows{cells, cells, cells}));
}

void TestBandMap::manyComponents()
{
    constexpr int kCount = 16384;
    Jp2Structure structure = boxes(Kind::Unknown, 99);
    for (int channel = 0; channel < kCount; ++channel)
        structure.definitions.push_back(
            {static_cast<std::uint16_t>(channel), 0, static_cast<std::uint16_t>(kCount - channel)});
    QElapsedTimer timer;
    timer.start();
    const BandMap map = BandMap::make(raster(kCount, 8), structure, nullptr);
    QCOMPARE(map.bands().size(), std::size_t(kCount));
    QCOMPARE(map.bands()[0].component, kCount - 1);
    QCOMPARE(map.bands()[kCount - 1].description, std::string("Band #16384"));
    std::vector<int> all(kCount);
    std::iota(all.begin(), all.end(), 0);
    const Rows rows = convert(map, all, Rows(kCount, {1, 2, 3}));
    QCOMPARE(rows.back(), (std::vector<std::int32_t>{1, 2, 3}));
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
}

QTEST_GUILESS_MAIN(TestBandMap)
#include "tst_bandmap.moc"
