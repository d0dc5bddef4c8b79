#include "data/htmaker.h"
#include "data/jp2maker.h"
#include "planecells.h"

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

std::uint32_t numberAt(const Bytes &bytes, std::size_t at)
{
    return std::uint32_t(bytes[at]) << 24 | std::uint32_t(bytes[at + 1]) << 16 | std::uint32_t(bytes[at + 2]) << 8 |
           bytes[at + 3];
}

void putNumber(Bytes *bytes, std::size_t at, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        (*bytes)[at + i] = std::uint8_t(value >> (24 - 8 * i));
}

/// \a content in short marker segments with indexes, the last one first.
Bytes segmentsOf(std::uint8_t marker, const Bytes &content)
{
    constexpr std::size_t kLength = 200;
    Bytes result;
    for (std::size_t i = (content.size() + kLength - 1) / kLength; i-- > 0;) {
        const std::size_t begin = i * kLength, end = std::min(begin + kLength, content.size());
        const auto length = std::uint16_t(end - begin + 3);
        result.insert(result.end(), {0xFF, marker, std::uint8_t(length >> 8), std::uint8_t(length), std::uint8_t(i)});
        result.insert(result.end(), content.begin() + std::ptrdiff_t(begin), content.begin() + std::ptrdiff_t(end));
    }
    return result;
}

/// The codestream, which has SOP and EPH markers and nothing but SOT before SOD, with its packet headers in PPM or PPT
/// marker segments.
Bytes withPackedHeaders(const Bytes &bytes, bool inMainHeader)
{
    const auto isAt = [&bytes](std::size_t at, std::uint8_t marker) {
        return bytes[at] == 0xFF && bytes[at + 1] == marker;
    };
    std::size_t part = 2;
    while (!isAt(part, 0x90))
        part += 2 + (numberAt(bytes, part) & 0xFFFF);
    Bytes main(bytes.begin(), bytes.begin() + std::ptrdiff_t(part)), parts, ppm;
    while (isAt(part, 0x90)) {
        const std::size_t end = part + numberAt(bytes, part + 6);
        Bytes headers, bodies, made(bytes.begin() + std::ptrdiff_t(part), bytes.begin() + std::ptrdiff_t(part + 12));
        bool isHeader = false;
        for (std::size_t at = part + 14; at < end;) {
            const bool isSop = isAt(at, 0x91), isEph = isAt(at, 0x92);
            Bytes &to = isHeader ? headers : bodies;
            const std::size_t count = isSop ? 6 : isEph ? 2 : 1;
            to.insert(to.end(), bytes.begin() + std::ptrdiff_t(at), bytes.begin() + std::ptrdiff_t(at + count));
            at += count;
            isHeader = isSop || (isHeader && !isEph);
        }
        const Bytes ppt = inMainHeader ? Bytes() : segmentsOf(0x61, headers);
        made.insert(made.end(), ppt.begin(), ppt.end());
        made.insert(made.end(), {0xFF, 0x93});
        made.insert(made.end(), bodies.begin(), bodies.end());
        putNumber(&made, 6, std::uint32_t(made.size()));
        parts.insert(parts.end(), made.begin(), made.end());
        ppm.resize(ppm.size() + 4);
        putNumber(&ppm, ppm.size() - 4, std::uint32_t(headers.size()));
        ppm.insert(ppm.end(), headers.begin(), headers.end());
        part = end;
    }
    if (inMainHeader) {
        ppm = segmentsOf(0x60, ppm);
        main.insert(main.end(), ppm.begin(), ppm.end());
    }
    main.insert(main.end(), parts.begin(), parts.end());
    main.insert(main.end(), {0xFF, 0xD9});
    return main;
}

/// Which encoder makes a file, and where its packet headers end up.
enum class Form { Plain, HighThroughput, PackedInMain, PackedInTile };

} // namespace

Q_DECLARE_METATYPE(Form)
Q_DECLARE_METATYPE(jp2maker::Options)

/// What the reader gives, against the codec that decodes the file as a whole.
class TestRasterReader : public QObject
{
    Q_OBJECT

private slots:
    void agreesWithPeer_data();
    void agreesWithPeer();
    void partsOfTheCodestream_data();
    void partsOfTheCodestream();
    void deepSamples_data();
    void deepSamples();
    void levelsBeyondTheCoded();
    void noCells();

private:
    static void compareWithPeer(const Bytes &bytes, const Bytes &bytesForPeer, int levels, int tolerance);
};

void TestRasterReader::agreesWithPeer_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("tolerance");
    QTest::addColumn<Form>("form");

    const auto row = [](const char *name, Options options, int tolerance = 0) {
        QTest::newRow(name) << options << tolerance << Form::Plain;
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

    for (const int bits : {1, 4, 12, 16, 24}) {
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

    o = base(260, 190, 2);
    o.sop = o.eph = true;
    o.layerRates = {20, 8, 0};
    o.codeBlockWidth = o.codeBlockHeight = 16;
    for (const char parts : {'\0', 'R'}) {
        o.progression = parts ? "RLCP" : "PCRL";
        o.tileWidth = o.tileHeight = parts ? 128 : 0;
        o.precincts.assign(parts ? 0 : 1, {64, 64});
        o.tilePartsPer = parts;
        QTest::addRow("headers in PPM, %s", o.progression) << o << 0 << Form::PackedInMain;
        QTest::addRow("headers in PPT, %s", o.progression) << o << 0 << Form::PackedInTile;
    }

    const auto fast = [](const QString &name, const Options &options) {
        QTest::newRow(qPrintable(name)) << options << (options.reversible ? 0 : 1) << Form::HighThroughput;
    };
    for (const bool reversible : {true, false}) {
        const QString kind = reversible ? QStringLiteral("high throughput, reversible, ")
                                        : QStringLiteral("high throughput, irreversible, ");
        o = base(317, 203, 3);
        o.reversible = reversible;
        o.componentTransform = true;
        o.tileWidth = o.tileHeight = 100;
        fast(kind + QStringLiteral("tiles of odd sizes"), o);
        o = base(213, 177);
        o.reversible = reversible;
        o.offsetX = 37;
        o.offsetY = 51;
        o.progression = "RPCL";
        o.precincts = {{64, 64}, {32, 64}};
        fast(kind + QStringLiteral("image offset, precincts"), o);
        for (const auto &[width, height] : {std::pair{4, 1024}, {1024, 4}, {32, 128}, {16, 16}}) {
            o = base(1030, 1027);
            o.reversible = reversible;
            o.levels = 1;
            o.codeBlockWidth = width;
            o.codeBlockHeight = height;
            fast(kind + QStringLiteral("blocks of %1 x %2").arg(width).arg(height), o);
        }
        for (const int bits : {1, 4, 12, 16}) {
            o = base(120, 90);
            o.reversible = reversible;
            o.components[0].bits = bits;
            o.components[0].isSigned = bits == 12;
            fast(kind + QStringLiteral("%1 bits").arg(bits), o);
        }
        o = base(131, 99, 2);
        o.reversible = reversible;
        o.components[1].stepX = o.components[1].stepY = 2;
        fast(kind + QStringLiteral("subsampled"), o);
    }
}

/// Windows at random and the whole, at every level.
void TestRasterReader::compareWithPeer(const Bytes &bytes, const Bytes &bytesForPeer, int levels, int tolerance)
{
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    QCOMPARE(reader->info().codedLevels, levels + 1);
    std::mt19937 random(7);

    for (int level = 0; level <= levels; ++level) {
        const std::vector<PeerComponent> peer = decodeWithPeer(bytesForPeer, level, 0);
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
                const Difference found = difference(plane, all, expected.cells);
                QVERIFY2(found.largest <= tolerance, found.text());
            }
        }
    }
}

void TestRasterReader::agreesWithPeer()
{
    QFETCH(Options, options);
    QFETCH(int, tolerance);
    QFETCH(Form, form);
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    const Bytes bytes = form == Form::HighThroughput ? htmaker::make(options) : jp2maker::make(options);
    const bool isPacked = form == Form::PackedInMain || form == Form::PackedInTile;
    compareWithPeer(isPacked ? withPackedHeaders(bytes, form == Form::PackedInMain) : bytes, bytes, options.levels,
                    tolerance);
}

void TestRasterReader::partsOfTheCodestream_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<std::vector<int>>("components"); // of which each is read by itself
    using Components = std::vector<int>;
    Options o = base(256, 256, 3);
    o.layerRates = {40, 15, 5};
    o.componentTransform = true;
    QTest::newRow("fewer layers") << o << Components{2, 0};
    o.plt = true;
    QTest::newRow("fewer layers, packet lengths") << o << Components{0, 1};
    o = base(90, 70, 3);
    o.componentTransform = true;
    QTest::newRow("component transform of the tile alone") << o << Components{1};
    o = base(150, 120, 5);
    o.plt = true;
    o.reversible = false;
    QTest::newRow("components one by one") << o << Components{3, 0, 4};
    o = base(8, 8, 700);
    o.levels = 1;
    QTest::newRow("one of 700 components") << o << Components{698};
}

/// What was read of fewer layers must not be taken for more, nor one component for another.
void TestRasterReader::partsOfTheCodestream()
{
    QFETCH(Options, options);
    QFETCH(std::vector<int>, components);
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    Bytes bytes = jp2maker::make(options);
    if (options.componentTransform && options.layerRates.size() == 1) {
        // COD stands in the tile-part header too, and that of the main header knows of no transform.
        const auto at = [&bytes](std::uint8_t marker) {
            const std::uint8_t wanted[] = {0xFF, marker};
            return std::search(bytes.begin(), bytes.end(), wanted, wanted + 2);
        };
        const Bytes cod(at(0x52), at(0x52) + 14);
        at(0x52)[8] = 0;
        const auto sot = std::size_t(at(0x90) - bytes.begin());
        putNumber(&bytes, sot + 6, numberAt(bytes, sot + 6) + std::uint32_t(cod.size()));
        bytes.insert(bytes.begin() + std::ptrdiff_t(sot + 12), cod.begin(), cod.end());
    }
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    QCOMPARE(reader->info().qualityLayers, int(options.layerRates.size()));
    for (int layers = 1; layers <= reader->info().qualityLayers; ++layers) {
        const std::vector<PeerComponent> peer = decodeWithPeer(bytes, 0, layers);
        for (const int component : components) {
            ReadRequest request = requestFor(*reader, wholeOf(*reader), 0);
            request.components = {component};
            request.qualityLayers = layers;
            ReadResult result;
            QVERIFY(reader->read(request, &result).IsSuccess());
            QCOMPARE(result.planes.size(), std::size_t(1));
            const auto found = difference(result.planes[0], wholeOf(*reader), peer.at(std::size_t(component)).cells);
            QVERIFY2(found.largest <= (options.reversible ? 0 : 1), found.text());
        }
    }
}

void TestRasterReader::deepSamples_data()
{
    QTest::addColumn<Form>("form");
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("levels");
    QTest::addColumn<bool>("reversible");
    for (const Form form : {Form::Plain, Form::HighThroughput})
        for (const int bits : {27, 32, 33, 38})
            for (const int levels : {0, 2})
                for (const bool reversible : {true, false})
                    QTest::addRow("%s, %d bits, %d levels, %s", form == Form::Plain ? "arithmetic" : "high throughput",
                                  bits, levels, reversible ? "reversible" : "irreversible")
                        << form << bits << levels << reversible;
}

/// A file of 10 bits of which the headers say that it has more, in its samples and their bit-planes: its cells are
/// moved up, and what the lower bit-planes would have told is missing.
void TestRasterReader::deepSamples()
{
    QFETCH(Form, form);
    QFETCH(int, bits);
    QFETCH(int, levels);
    QFETCH(bool, reversible);
    constexpr int kBits = 10, kMaxExponent = 31;
    Options options = base(150, 130);
    options.components[0].bits = kBits;
    options.levels = levels;
    options.reversible = reversible;
    options.cell = [&options](int c, int x, int y) { return textured(options, c, x, y); };
    Bytes bytes = form == Form::HighThroughput ? htmaker::make(options) : jp2maker::make(options);
    const std::vector<std::int32_t> shallow = decodeWithPeer(bytes, 0, 0).at(0).cells;
    bytes[42] = std::uint8_t(bits - 1); // Ssiz
    // Exponents as far as they go; where they count bit-planes and not steps, guard bits help them.
    const std::uint8_t qcd[] = {0xFF, 0x5C};
    const auto sqcd = std::search(bytes.begin(), bytes.end(), qcd, qcd + 2) + 4;
    int largest = 0;
    for (int band = 0; band < 3 * levels + 1; ++band)
        largest = std::max(largest, sqcd[1 + band * (reversible ? 1 : 2)] >> 3);
    const int exponents = std::min(bits - kBits, kMaxExponent - largest);
    const int guards = reversible ? std::min(bits - kBits - exponents, 7 - (*sqcd >> 5)) : 0;
    const int shift = reversible ? exponents + guards : bits - kBits;
    *sqcd = std::uint8_t(*sqcd + (guards << 5));
    for (int band = 0; band < 3 * levels + 1; ++band)
        sqcd[1 + band * (reversible ? 1 : 2)] += std::uint8_t(exponents << 3);
    const std::unique_ptr<RasterReader> reader = openBytes(bytes);
    QVERIFY(reader);
    ReadResult result;
    const PLK::CError error = reader->read(requestFor(*reader, wholeOf(*reader), 0), &result);
    QVERIFY2(error.IsSuccess(), error.GetErrorMessage());
    std::vector<std::int64_t> expected;
    for (const std::int32_t cell : shallow)
        expected.push_back(std::int64_t(cell - 512) * (std::int64_t(1) << shift) + (std::int64_t(1) << (bits - 1)));
    const int dropped = std::max(0, bits - 32); // cells have no more
    for (std::int64_t &cell : expected)
        cell >>= dropped;
    const Difference found = difference(result.planes[0], wholeOf(*reader), expected);
    QVERIFY2(found.largest <= (std::int64_t(levels > 0 ? 6 : 1) << shift >> dropped), found.text());
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
    const auto source = std::make_shared<MemorySource>(bytes, "no cells");
    std::unique_ptr<RasterReader> reader;
    QCOMPARE(RasterReader::open(source, ByteRange{0, bytes.size()}, &reader).GetErrorNumber(), int(PLK_ERR_MALFORMED));
}

QTEST_APPLESS_MAIN(TestRasterReader)
#include "tst_rasterreader.moc"
