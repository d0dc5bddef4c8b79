#include "bandcells.h"

#include <lcms2.h>

#include <QtTest>

#include <cmath>
#include <numeric>
#include <thread>

using namespace xrv;
using Kind = ColourSpecification::Kind;
using Cells = QVector<int>;

namespace {

constexpr double kSRgbRed[] = {0.64, 0.33}, kSRgbGreen[] = {0.30, 0.60}, kSRgbBlue[] = {0.15, 0.06};

/// The transfer function of sRGB, IEC 61966-2-1.
double sRgbCode(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

Bytes bytesOf(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

/// Primaries and white of sRGB with a plain power as transfer function.
Bytes rgbProfile(double gamma)
{
    const cmsCIExyY white{0.3127, 0.3290, 1.0};
    const cmsCIExyYTRIPLE primaries{
        {kSRgbRed[0], kSRgbRed[1], 1}, {kSRgbGreen[0], kSRgbGreen[1], 1}, {kSRgbBlue[0], kSRgbBlue[1], 1}};
    cmsToneCurve *curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve *curves[] = {curve, curve, curve};
    const Bytes bytes = bytesOf(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(curve);
    return bytes;
}

Bytes greyProfile(double gamma)
{
    cmsToneCurve *curve = cmsBuildGamma(nullptr, gamma);
    const Bytes bytes = bytesOf(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return bytes;
}

struct Input
{
    std::vector<ComponentInfo> components;
    ColourSpecification colour;
};

BandMap mapOf(const Input &input, std::vector<std::string> *warnings = nullptr)
{
    RasterInfo raster;
    raster.components = input.components;
    Jp2Structure structure;
    structure.colour = input.colour;
    return BandMap::make(raster, structure, warnings);
}

Input equal(int count, int bits, Kind kind, std::uint32_t space, const Bytes &profile = {})
{
    return {std::vector<ComponentInfo>(static_cast<std::size_t>(count), component(bits)), {kind, space, profile, {}}};
}

/// All bands of one cell.
Cells convert(const BandMap &map, const Cells &cell)
{
    std::vector<int> bands(map.bands().size());
    std::iota(bands.begin(), bands.end(), 0);
    Rows rows;
    for (const int value : cell)
        rows.push_back({value});
    Cells made;
    for (const auto &row : ::convert(map, bands, rows))
        made.append(row[0]);
    return made;
}

} // namespace

Q_DECLARE_METATYPE(Input)

class TestColourConversion : public QObject
{
    Q_OBJECT

private slots:
    void cells_data();
    void cells();
    void yccOfEveryColour_data();
    void yccOfEveryColour();
    void profileCurve_data();
    void profileCurve();
    void profileThatIsSRgb();
    void profileOfOtherChannels();
    void strangeLabParameters();
    void threadsShareATransform();
};

void TestColourConversion::cells_data()
{
    QTest::addColumn<Input>("input");
    QTest::addColumn<Cells>("cell");
    QTest::addColumn<Cells>("expected");
    QTest::addColumn<int>("tolerance");
    QTest::addColumn<int>("bits");
    const auto row = [](const char *name, const Input &input, const Cells &cell, const Cells &expected, int tolerance,
                        int bits) { QTest::newRow(name) << input << cell << expected << tolerance << bits; };
    const Input limited = equal(3, 8, Kind::SYcc, 1), deepLimited = equal(3, 10, Kind::SYcc, 4);
    row("limited black", limited, {16, 128, 128}, {0, 0, 0}, 0, 8);
    row("limited white", limited, {235, 128, 128}, {255, 255, 255}, 0, 8);
    row("limited red", limited, {81, 90, 240}, {255, 0, 0}, 1, 8);
    row("limited white of 10 bits", deepLimited, {940, 512, 512}, {1023, 1023, 1023}, 0, 10);
    row("below limited black", limited, {0, 128, 128}, {0, 0, 0}, 0, 8);

    const Input eSRgb = equal(3, 10, Kind::SRgb, 20), eSRgb16 = equal(3, 16, Kind::SRgb, 20);
    row("e-sRGB", eSRgb, {384, 894, 639}, {0, 1023, 512}, 0, 10);
    row("e-sRGB beyond its gamut", eSRgb, {0, 1023, 384}, {0, 1023, 0}, 0, 10);
    row("e-sRGB of 16 bits", eSRgb16, {24576, 57216, 40896}, {0, 65535, 32768}, 0, 16);

    const Input cmyk = equal(4, 8, Kind::Cmyk, 12);
    row("no ink", cmyk, {0, 0, 0, 0}, {255, 255, 255}, 0, 8);
    row("cyan", cmyk, {255, 0, 0, 0}, {0, 255, 255}, 0, 8);
    row("yellow with black", cmyk, {0, 0, 255, 51}, {204, 204, 0}, 0, 8);
    Input signedInk = cmyk;
    signedInk.components.assign(4, component(8, true));
    row("signed ink", signedInk, {127, -128, 76, -128}, {0, 255, 51}, 0, 8);
    row("CMY", equal(3, 8, Kind::Cmyk, 11), {255, 51, 0}, {0, 204, 255}, 0, 8);
    row("bi-level", equal(1, 1, Kind::Greyscale, 0), {0}, {1}, 0, 1);

    // L* 50 is the grey 119 of sRGB; its red has the Lab (54.29, 80.81, 69.89) under D50.
    const Input lab = equal(3, 16, Kind::CieLab, 14);
    row("Lab grey", lab, {32768, 32768, 24576}, {119 * 257, 119 * 257, 119 * 257}, 60, 16);
    row("Lab white", lab, {65535, 32768, 24576}, {65535, 65535, 65535}, 60, 16);
    row("Lab red", lab, {35579, 32768 + 31152, 24576 + 22901}, {65535, 0, 0}, 120, 16);
    row("Lab of 8 bits", equal(3, 8, Kind::CieLab, 14), {128, 128, 96}, {119, 119, 119}, 1, 8);
    Input ranged = lab;
    for (const std::uint32_t value : {100u, 0u, 256u, 32768u, 256u, 32768u, 0x00443530u})
        for (int shift = 24; shift >= 0; shift -= 8)
            ranged.colour.enumParameters.push_back(static_cast<std::uint8_t>(value >> shift));
    row("Lab with its own ranges", ranged, {35579, 32768 + 20687, 32768 + 17892}, {65535, 0, 0}, 120, 16);
}

void TestColourConversion::cells()
{
    QFETCH(Input, input);
    QFETCH(Cells, cell);
    QFETCH(Cells, expected);
    QFETCH(int, tolerance);
    QFETCH(int, bits);
    const BandMap map = mapOf(input);
    const Cells made = convert(map, cell);
    QCOMPARE(made.size(), expected.size());
    for (int band = 0; band < made.size(); ++band) {
        const QString text = QStringLiteral("band %1: %2 for %3").arg(band).arg(made[band]).arg(expected[band]);
        QVERIFY2(std::abs(made[band] - expected[band]) <= tolerance, qPrintable(text));
        QCOMPARE(int(map.bands()[static_cast<std::size_t>(band)].bits), bits);
    }
}

void TestColourConversion::yccOfEveryColour_data()
{
    QTest::addColumn<int>("lumaBits");
    QTest::addColumn<int>("chromaBits");
    QTest::addColumn<bool>("signedChroma");
    QTest::addColumn<int>("outputBits");
    QTest::newRow("8 bits") << 8 << 8 << false << 8;
    QTest::newRow("8 bits, signed chroma") << 8 << 8 << true << 8;
    QTest::newRow("12 bits, signed chroma") << 12 << 12 << true << 12;
    QTest::newRow("16 bits") << 16 << 16 << false << 16;
    QTest::newRow("20 bits") << 20 << 20 << false << 20;
    QTest::newRow("luma deeper than chroma") << 12 << 8 << false << 12;
    QTest::newRow("4 bits") << 4 << 4 << false << 8;
}

// Colours through the forward matrix of IEC 61966-2-1 amendment 1 and back: no further off than the rounding of the
// codes.
void TestColourConversion::yccOfEveryColour()
{
    QFETCH(int, lumaBits);
    QFETCH(int, chromaBits);
    QFETCH(bool, signedChroma);
    QFETCH(int, outputBits);
    const Input input{{component(lumaBits), component(chromaBits, signedChroma), component(chromaBits, signedChroma)},
                      {Kind::SYcc, 18, {}, {}}};
    const BandMap map = mapOf(input);
    const double lumaTop = std::ldexp(1.0, lumaBits) - 1, chromaTop = std::ldexp(1.0, chromaBits) - 1;
    const double zero = signedChroma ? 0.0 : std::ldexp(1.0, chromaBits - 1);
    const double outTop = std::ldexp(1.0, outputBits) - 1;
    const double tolerance = 0.5 + outTop * (0.5 / lumaTop + 0.9 / chromaTop);
    for (int number = 0; number < 729; ++number) {
        const double rgb[] = {number % 9 / 8.0, number / 9 % 9 / 8.0, number / 81 / 8.0};
        const double luma = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
        const double blue = (rgb[2] - luma) / 1.772, red = (rgb[0] - luma) / 1.402;
        // The largest chroma of all, exactly one half, rounds to a code that is not there.
        const double top = zero + std::ldexp(1.0, chromaBits - 1) - 1;
        const Cells made = convert(map, {int(std::lround(luma * lumaTop)),
                                         int(std::min(std::floor(blue * chromaTop + 0.5) + zero, top)),
                                         int(std::min(std::floor(red * chromaTop + 0.5) + zero, top))});
        for (int band = 0; band < 3; ++band) {
            const double off = std::abs(made[band] - rgb[band] * outTop);
            QVERIFY2(off <= tolerance,
                     qPrintable(QStringLiteral("colour %1 band %2: %3").arg(number).arg(band).arg(made[band])));
        }
    }
    QCOMPARE(int(map.bands()[0].bits), outputBits);
}

void TestColourConversion::profileCurve_data()
{
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("outputBits");
    QTest::addColumn<double>("gamma");
    QTest::addColumn<double>("tolerance"); // of 1
    QTest::newRow("RGB, 8 bits, linear") << 3 << 8 << 8 << 1.0 << 1.2 / 255;
    QTest::newRow("RGB, 8 bits, gamma 1.8") << 3 << 8 << 8 << 1.8 << 1.2 / 255;
    QTest::newRow("RGB, 12 bits, linear") << 3 << 12 << 16 << 1.0 << 0.5 / 255;
    QTest::newRow("RGB, 16 bits, gamma 1.8") << 3 << 16 << 16 << 1.8 << 0.5 / 255;
    QTest::newRow("RGB, 5 bits") << 3 << 5 << 8 << 1.0 << 1.2 / 255;
    QTest::newRow("grey, 8 bits, linear") << 1 << 8 << 8 << 1.0 << 1.2 / 255;
    QTest::newRow("grey, 16 bits, gamma 1.8") << 1 << 16 << 16 << 1.8 << 0.5 / 255;
}

void TestColourConversion::profileCurve()
{
    QFETCH(int, channels);
    QFETCH(int, bits);
    QFETCH(int, outputBits);
    QFETCH(double, gamma);
    QFETCH(double, tolerance);
    const Bytes profile = channels == 1 ? greyProfile(gamma) : rgbProfile(gamma);
    const BandMap map = mapOf(equal(channels, bits, Kind::Icc, 0, profile));
    QCOMPARE(int(map.bands()[0].bits), outputBits);
    const int top = (1 << bits) - 1;
    for (int step = 0; step <= 16; ++step) {
        const Cells cell{top * step / 16, top * step / 16, top * step / 16};
        const double expected = sRgbCode(std::pow(double(cell[0]) / top, gamma));
        for (const int made : convert(map, cell)) {
            const double value = made / (std::ldexp(1.0, outputBits) - 1);
            QVERIFY2(std::abs(value - expected) < tolerance,
                     qPrintable(QStringLiteral("%1: %2").arg(step).arg(value - expected)));
        }
    }
}

void TestColourConversion::profileThatIsSRgb()
{
    const Bytes profile = bytesOf(cmsCreate_sRGBProfile());
    for (const int bits : {8, 12, 16}) {
        const BandMap map = mapOf(equal(3, bits, Kind::Icc, 0, profile));
        QVERIFY(map.isDirect(0) && map.isDirect(2));
        QCOMPARE(int(map.bands()[0].bits), bits);
        QCOMPARE(map.colourSpace(), PLK_COLORSPACE_SRGB);
        QCOMPARE(convert(map, {1, 2, 3}), (Cells{1, 2, 3}));
    }
    QVERIFY(!mapOf(equal(3, 8, Kind::Icc, 0, rgbProfile(1.8))).isDirect(1));
}

void TestColourConversion::profileOfOtherChannels()
{
    std::vector<std::string> warnings;
    // Fewer channels than the profile has, and a link between profiles.
    QVERIFY(mapOf(equal(1, 8, Kind::Icc, 0, rgbProfile(1.0)), &warnings).isDirect(0));
    QCOMPARE(warnings.size(), std::size_t(1));
    Bytes link = rgbProfile(1.0);
    std::copy_n("link", 4, link.begin() + 12);
    QVERIFY(mapOf(equal(3, 8, Kind::Icc, 0, link), &warnings).isDirect(0));
    QCOMPARE(warnings.size(), std::size_t(2));
    // More channels: the others are bands of their own.
    const BandMap map = mapOf(equal(3, 8, Kind::Icc, 0, greyProfile(1.0)), &warnings);
    QCOMPARE(warnings.size(), std::size_t(2));
    QVERIFY(!map.isDirect(0) && map.isDirect(1));
    QCOMPARE(map.bands()[2].description, std::string("Band #3"));
}

void TestColourConversion::strangeLabParameters()
{
    Input input = equal(3, 16, Kind::CieLab, 14);
    for (const Bytes &parameters : {Bytes(28, 0), Bytes(28, 255), Bytes(5, 1)}) {
        input.colour.enumParameters = parameters;
        std::vector<std::string> warnings;
        QVERIFY(mapOf(input, &warnings).isDirect(0));
        QCOMPARE(warnings.size(), std::size_t(1));
    }
}

void TestColourConversion::threadsShareATransform()
{
    const BandMap map = mapOf(equal(3, 8, Kind::Icc, 0, rgbProfile(1.0)));
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&map, &wrong, number] {
            for (int i = 0; i < 3000; ++i) {
                const int code = (i + number * 64) % 256;
                const double expected = 255 * sRgbCode(code / 255.0);
                wrong[static_cast<std::size_t>(number)] +=
                    std::abs(convert(map, {code, code, code})[1] - expected) > 1.2;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong, (std::vector<int>(4, 0)));
}

QTEST_GUILESS_MAIN(TestColourConversion)
#include "tst_colourconversion.moc"
