#include "data/htmaker.h"
#include "data/jp2maker.h"
#include "peerdecoder.h"

#include "decode/rasterreader.h"
#include "io/memorysource.h"

#include <QtTest>

#include <random>

using jp2maker::Options;
using namespace xrv;

namespace {

/// Smooth shapes with noise, so that all bit-planes and passes come into play.
std::int32_t textured(const Options &options, int c, int x, int y)
{
    const jp2maker::Component &component = options.components[std::size_t(c)];
    const double span = double(std::int64_t(1) << component.bits);
    const double wave = std::sin(x * 0.07 + c) * std::cos(y * 0.05) * 0.35 + 0.5;
    const std::uint32_t hash =
        (std::uint32_t(x) * 73856093u ^ std::uint32_t(y) * 19349663u ^ std::uint32_t(c) * 83492791u) * 2654435761u;
    const double noise = (double(hash >> 8) / double(1 << 24) - 0.5) * ((x / 40 + y / 40) % 2 ? 0.25 : 0.01);
    const double value = std::clamp((wave + noise) * span, 0.0, span - 1.0);
    return static_cast<std::int32_t>(value) - (component.isSigned ? std::int32_t(span / 2) : 0);
}

std::int64_t cellAt(const Plane &plane, std::int64_t x, std::int64_t y)
{
    const std::int64_t at = x - plane.rect.x0;
    switch (plane.type) {
    case SampleType::UInt8:
        return plane.row<std::uint8_t>(y)[at];
    case SampleType::Int8:
        return plane.row<std::int8_t>(y)[at];
    case SampleType::UInt16:
        return plane.row<std::uint16_t>(y)[at];
    case SampleType::Int16:
        return plane.row<std::int16_t>(y)[at];
    default:
        return plane.row<std::int32_t>(y)[at];
    }
}

Options base(int width, int height, int components = 1)
{
    Options options;
    options.width = width;
    options.height = height;
    options.components.resize(std::size_t(components));
    options.bareCodestream = true;
    return options;
}

/// A file in memory under its own name, since the tile cache goes by it.
std::unique_ptr<RasterReader> openBytes(const Bytes &bytes)
{
    static int count = 0;
    auto source = std::make_shared<MemorySource>(bytes, "memory" + std::to_string(++count));
    std::unique_ptr<RasterReader> reader;
    const PLK::CError error = RasterReader::open(source, ByteRange{0, bytes.size()}, &reader);
    if (error)
        qWarning("%s", error.GetErrorMessage());
    return reader;
}

ReadRequest requestFor(const RasterReader &reader, const IntRect &rect, int level)
{
    ReadRequest request;
    request.datasetRect = rect;
    request.level = level;
    request.resilient = false;
    for (int c = 0; c < int(reader.info().components.size()); ++c)
        request.components.push_back(c);
    return request;
}

IntRect wholeOf(const RasterReader &reader)
{
    return {0, 0, reader.info().width, reader.info().height};
}

} // namespace

Q_DECLARE_METATYPE(jp2maker::Options)

/// What the reader gives, against the codec that decodes the file as a whole.
class TestRasterReader : public QObject
{
    Q_OBJECT

private slots:
    void agreesWithPeer_data();
    void agreesWithPeer();
    void highThroughput_data();
    void highThroughput();
    void fewerLayers();
    void levelsBeyondTheCoded();
    void componentsOneByOne();
    void cutShort();
    void manyComponents();
    void damagedBytes();
    void noCells();

private:
    static void compareWithPeer(const Bytes &bytes, int levels, int tolerance);
};

void TestRasterReader::agreesWithPeer_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("tolerance");

    const auto row = [](const char *name, Options options, int tolerance = 0) {
        QTest::newRow(name) << options << tolerance;
    };
    Options o = base(300, 200);
    row("one tile", o);
    o.plt = true;
    row("packet lengths", o);
    o.sop = o.eph = true;
    row("packet lengths with SOP and EPH markers", o);
    o.plt = false;
    row("SOP and EPH markers without packet lengths", o);

    o = base(317, 203, 3);
    o.tileWidth = o.tileHeight = 100;
    o.componentTransform = true;
    row("tiles of odd sizes, reversible transform", o);
    o.reversible = false;
    row("tiles of odd sizes, irreversible transform", o, 1);
    o.tlm = o.plt = true;
    o.tilePartsPer = 'R';
    row("a tile-part for every resolution", o, 1);

    o = base(213, 177);
    o.offsetX = 37;
    o.offsetY = 51;
    o.tileOffsetX = 17;
    o.tileOffsetY = 5;
    o.tileWidth = 64;
    o.tileHeight = 80;
    row("image and tile offsets", o);
    o.reversible = false;
    row("image and tile offsets, irreversible", o, 1);

    for (const char *progression : {"LRCP", "RLCP", "RPCL", "PCRL", "CPRL"}) {
        for (const bool plt : {false, true}) {
            o = base(260, 190, 2);
            o.components[1].stepX = o.components[1].stepY = 2;
            o.progression = progression;
            o.plt = plt;
            o.layerRates = {20, 8, 0};
            o.precincts = {{64, 64}, {32, 64}};
            o.codeBlockWidth = o.codeBlockHeight = 16;
            row(qPrintable(QStringLiteral("%1%2").arg(QLatin1String(progression),
                                                      plt ? QStringLiteral(" with lengths") : QString())),
                o);
        }
    }

    for (int style = 1; style < 64; style <<= 1) {
        o = base(150, 130);
        o.codeBlockStyle = style;
        o.layerRates = {10, 0};
        row(qPrintable(QStringLiteral("code-block style %1").arg(style)), o);
    }
    o = base(150, 130);
    o.codeBlockStyle = 63;
    row("all code-block styles at once", o);

    for (const int bits : {1, 4, 12, 16}) {
        o = base(120, 90);
        o.components[0].bits = bits;
        row(qPrintable(QStringLiteral("%1 bits").arg(bits)), o);
        o.components[0].isSigned = true;
        row(qPrintable(QStringLiteral("%1 bits, signed").arg(bits)), o);
    }
    o = base(200, 150);
    o.regionOfInterestShift = 7;
    row("region of interest", o);
    o = base(8, 300);
    o.offsetX = 5;
    row("down to one cell wide, odd columns", o);
    o.reversible = false;
    row("down to one cell wide, odd columns, irreversible", o, 1);
    o = base(300, 9);
    o.offsetY = 3;
    row("down to one cell high", o);
    o = base(130, 130);
    o.levels = 0;
    row("no decomposition", o);
}

/// Windows at random and the whole, at every level.
void TestRasterReader::compareWithPeer(const Bytes &bytes, int levels, int tolerance)
{
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    QCOMPARE(reader->info().codedLevels, levels + 1);
    std::mt19937 random(7);

    for (int level = 0; level <= levels; ++level) {
        const std::vector<PeerComponent> peer = decodeWithPeer(bytes, level, 0);
        QCOMPARE(peer.size(), reader->info().components.size());
        // Parts first, then all: what is cached of parts must fit in with the rest.
        for (int part = 0; part < 6; ++part) {
            IntRect rect = wholeOf(*reader);
            if (part < 5) {
                const auto within = [&random](std::int64_t size) {
                    return std::int64_t(random() % std::uint64_t(size));
                };
                rect.x0 = within(rect.x1);
                rect.y0 = within(rect.y1);
                rect.x1 = rect.x0 + 1 + within(rect.x1 - rect.x0);
                rect.y1 = rect.y0 + 1 + within(rect.y1 - rect.y0);
            }
            ReadResult result;
            const PLK::CError error = reader->read(requestFor(*reader, rect, level), &result);
            QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
            for (const Plane &plane : result.planes) {
                const PeerComponent &expected = peer[std::size_t(plane.component)];
                const IntRect all = reader->info().levelRect(plane.component, level);
                QCOMPARE(int(all.width()), expected.width);
                QCOMPARE(int(all.height()), expected.height);
                for (std::int64_t y = plane.rect.y0; y < plane.rect.y1; ++y)
                    for (std::int64_t x = plane.rect.x0; x < plane.rect.x1; ++x) {
                        const std::int64_t want =
                            expected.cells[std::size_t((y - all.y0) * expected.width + (x - all.x0))];
                        if (std::abs(cellAt(plane, x, y) - want) > tolerance)
                            QFAIL(qPrintable(QStringLiteral("level %1, component %2, cell (%3, %4): %5 instead of %6")
                                                 .arg(level)
                                                 .arg(plane.component)
                                                 .arg(x)
                                                 .arg(y)
                                                 .arg(cellAt(plane, x, y))
                                                 .arg(want)));
                    }
            }
        }
    }
}

void TestRasterReader::agreesWithPeer()
{
    QFETCH(Options, options);
    QFETCH(int, tolerance);
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    compareWithPeer(jp2maker::make(options), options.levels, tolerance);
}

void TestRasterReader::highThroughput_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("tolerance");

    const auto row = [](const QString &name, const Options &options) {
        QTest::newRow(qPrintable(name)) << options << (options.reversible ? 0 : 1);
    };
    for (const bool reversible : {true, false}) {
        const QString kind = reversible ? QStringLiteral("reversible, ") : QStringLiteral("irreversible, ");
        Options o = base(317, 203, 3);
        o.reversible = reversible;
        o.componentTransform = true;
        o.tileWidth = o.tileHeight = 100;
        row(kind + QStringLiteral("tiles of odd sizes"), o);
        o = base(213, 177);
        o.reversible = reversible;
        o.offsetX = 37;
        o.offsetY = 51;
        o.progression = "RPCL";
        o.precincts = {{64, 64}, {32, 64}};
        row(kind + QStringLiteral("image offset, precincts"), o);
        for (const auto &[width, height] : {std::pair{4, 1024}, {1024, 4}, {32, 128}, {16, 16}}) {
            o = base(1030, 1027);
            o.reversible = reversible;
            o.levels = 1;
            o.codeBlockWidth = width;
            o.codeBlockHeight = height;
            row(kind + QStringLiteral("blocks of %1 x %2").arg(width).arg(height), o);
        }
        for (const int bits : {1, 4, 12, 16}) {
            o = base(120, 90);
            o.reversible = reversible;
            o.components[0].bits = bits;
            o.components[0].isSigned = bits == 12;
            row(kind + QStringLiteral("%1 bits").arg(bits), o);
        }
        o = base(131, 99, 2);
        o.reversible = reversible;
        o.components[1].stepX = o.components[1].stepY = 2;
        row(kind + QStringLiteral("subsampled"), o);
    }
}

void TestRasterReader::highThroughput()
{
    QFETCH(Options, options);
    QFETCH(int, tolerance);
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    compareWithPeer(htmaker::make(options), options.levels, tolerance);
}

void TestRasterReader::fewerLayers()
{
    Options options = base(256, 256, 3);
    options.layerRates = {40, 15, 5};
    options.componentTransform = true;
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    for (const bool plt : {false, true}) {
        options.plt = plt;
        const Bytes bytes = jp2maker::make(options);
        const std::unique_ptr<RasterReader> reader = openBytes(bytes);
        QVERIFY(reader);
        QCOMPARE(reader->info().qualityLayers, 3);
        for (int layers = 1; layers <= 3; ++layers) {
            const std::vector<PeerComponent> peer = decodeWithPeer(bytes, 0, layers);
            ReadRequest request = requestFor(*reader, wholeOf(*reader), 0);
            request.qualityLayers = layers;
            ReadResult result;
            QVERIFY(reader->read(request, &result).IsSuccess());
            for (const Plane &plane : result.planes)
                for (std::int64_t y = 0; y < 256; ++y)
                    for (std::int64_t x = 0; x < 256; ++x)
                        QCOMPARE(cellAt(plane, x, y),
                                 std::int64_t(peer[std::size_t(plane.component)].cells[std::size_t(y * 256 + x)]));
        }
    }
}

void TestRasterReader::levelsBeyondTheCoded()
{
    Options options = base(400, 300);
    options.levels = 1;
    options.tileWidth = options.tileHeight = 128;
    options.cell = [](int, int x, int y) { return x / 8 % 2 + y / 8 % 2 ? 200 : 40; };
    const std::unique_ptr<RasterReader> reader = openBytes(jp2maker::make(options));
    QVERIFY(reader);
    QVERIFY(reader->info().levels > reader->info().codedLevels);
    // Level 3 averages the 4 x 4 cells of level 1, and blocks of 8 cells are plain.
    ReadResult result;
    QVERIFY(reader->read(requestFor(*reader, wholeOf(*reader), 3), &result).IsSuccess());
    const Plane &plane = result.planes.front();
    QCOMPARE(plane.rect.width(), std::int64_t(50));
    for (std::int64_t y = 1; y < 37; ++y)
        for (std::int64_t x = 1; x < 49; ++x)
            QVERIFY(std::abs(cellAt(plane, x, y) - (x % 2 + y % 2 ? 200 : 40)) <= 30);
}

void TestRasterReader::componentsOneByOne()
{
    Options options = base(150, 120, 5);
    options.plt = true;
    options.reversible = false;
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    const Bytes bytes = jp2maker::make(options);
    const std::vector<PeerComponent> peer = decodeWithPeer(bytes, 0, 0);
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    for (const int c : {3, 0, 4}) {
        ReadRequest request = requestFor(*reader, wholeOf(*reader), 0);
        request.components = {c};
        ReadResult result;
        QVERIFY(reader->read(request, &result).IsSuccess());
        QCOMPARE(result.planes.size(), std::size_t(1));
        for (std::int64_t y = 0; y < 120; ++y)
            for (std::int64_t x = 0; x < 150; ++x)
                QVERIFY(std::abs(cellAt(result.planes[0], x, y) -
                                 peer[std::size_t(c)].cells[std::size_t(y * 150 + x)]) <= 1);
    }
}

/// Cut at every sixteenth: what is left decodes without an end of the world, and is right where it is not damaged.
void TestRasterReader::cutShort()
{
    Options options = base(256, 256);
    options.tileWidth = options.tileHeight = 64;
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    const Bytes bytes = jp2maker::make(options);
    int noticed = 0, rightCells = 0;
    for (std::size_t sixteenth = 1; sixteenth < 16; ++sixteenth) {
        const std::unique_ptr<RasterReader> reader =
            openBytes(Bytes(bytes.begin(), bytes.begin() + std::ptrdiff_t(bytes.size() * sixteenth / 16)));
        if (!reader)
            continue;
        ReadRequest request = requestFor(*reader, wholeOf(*reader), 0);
        ReadResult result;
        QVERIFY(!reader->read(request, &result).IsSuccess());
        request.resilient = true;
        const PLK::CError error = reader->read(request, &result);
        QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
        noticed += result.damaged ? 1 : 0;
        if (sixteenth == 12)
            for (std::int64_t y = 0; y < 128; ++y)
                for (std::int64_t x = 0; x < 256; ++x)
                    rightCells += cellAt(result.planes[0], x, y) == textured(options, 0, int(x), int(y)) ? 1 : 0;
    }
    QVERIFY(noticed >= 14);
    QCOMPARE(rightCells, 128 * 256); // the upper half was there
}

void TestRasterReader::manyComponents()
{
    Options options = base(8, 8, 700);
    options.levels = 1;
    const Bytes bytes = jp2maker::make(options);
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    ReadRequest request = requestFor(*reader, wholeOf(*reader), 0);
    request.components = {698};
    ReadResult result;
    QVERIFY(reader->read(request, &result).IsSuccess());
    const std::vector<PeerComponent> peer = decodeWithPeer(bytes, 0, 0);
    for (std::int64_t i = 0; i < 64; ++i)
        QCOMPARE(cellAt(result.planes[0], i % 8, i / 8), std::int64_t(peer[698].cells[std::size_t(i)]));
}

/// Bytes changed at random: an answer or an error with a sentence, never more; the sanitizers look on.
void TestRasterReader::damagedBytes()
{
    std::vector<Bytes> files;
    for (int kind = 0; kind < 4; ++kind) {
        Options options = base(150, 110, kind == 1 ? 3 : 1);
        options.plt = kind == 0;
        options.reversible = kind != 2;
        options.componentTransform = kind == 1;
        options.codeBlockStyle = kind == 3 ? 13 : 0;
        options.layerRates = {20, 0};
        options.tileWidth = options.tileHeight = 80;
        options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
        files.push_back(jp2maker::make(options));
    }
    std::mt19937 random(20);
    int refused = 0, damaged = 0, answered = 0;
    for (int round = 0; round < 400; ++round) {
        Bytes bytes = files[round % files.size()];
        for (int change = 0; change < 4; ++change) {
            const std::size_t reach = change == 0 ? std::min<std::size_t>(200, bytes.size()) : bytes.size();
            bytes[random() % reach] = static_cast<std::uint8_t>(random());
        }
        auto source = std::make_shared<MemorySource>(bytes, "damaged" + std::to_string(round));
        std::unique_ptr<RasterReader> reader;
        PLK::CError error = RasterReader::open(source, ByteRange{0, bytes.size()}, &reader);
        if (error.IsSuccess()) {
            ReadResult result;
            ReadRequest request =
                requestFor(*reader, {0, 0, 200, 200}, int(random() % unsigned(reader->info().levels)));
            request.components.resize(std::min<std::size_t>(3, request.components.size()));
            request.resilient = true;
            error = reader->read(request, &result);
            answered += error.IsSuccess() ? 1 : 0;
            damaged += error.IsSuccess() && result.damaged ? 1 : 0;
            reader->dropCached();
        }
        refused += error.IsSuccess() ? 0 : 1;
        QVERIFY(error.IsSuccess() || *error.GetErrorMessage() != '\0');
    }
    QVERIFY(refused > 20);
    QVERIFY(damaged > 20);
    QVERIFY(answered > 100);
}

/// Components sampled more coarsely than the image is large.
void TestRasterReader::noCells()
{
    Bytes bytes = jp2maker::make(base(40, 40));
    // SIZ: the image is moved to the columns 1 to 3, the component's step is 200.
    const auto put = [&bytes](std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    };
    put(8, 3);
    put(16, 1);
    bytes[43] = 200;
    auto source = std::make_shared<MemorySource>(bytes, "no cells");
    std::unique_ptr<RasterReader> reader;
    QCOMPARE(RasterReader::open(source, ByteRange{0, bytes.size()}, &reader).GetErrorNumber(), int(PLK_ERR_MALFORMED));
}

QTEST_APPLESS_MAIN(TestRasterReader)
#include "tst_rasterreader.moc"
