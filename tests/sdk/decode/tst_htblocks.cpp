#include "data/htmaker.h"
#include "peerdecoder.h"

#include "codestream/segmentlengths.h"
#include "decode/codeblock/htcodeblockdecoder.h"
#include "decode/rasterreader.h"
#include "io/memorysource.h"

#include <QtTest>

#include <algorithm>
#include <random>

using namespace xrv;

namespace {

/// Packet header bits with the stuffing of B.10.1.
class HeaderBits
{
public:
    void put(unsigned value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            putBit(value >> i & 1);
    }
    void putRun(unsigned bit, int count)
    {
        for (int i = 0; i < count; ++i)
            putBit(bit);
    }
    Bytes finish()
    {
        while (free < 8)
            putBit(0);
        return bytes;
    }

private:
    void putBit(unsigned bit)
    {
        byte = static_cast<std::uint8_t>(byte << 1 | bit);
        if (--free > 0)
            return;
        bytes.push_back(byte);
        free = byte == 0xFF ? 7 : 8;
        byte = 0;
    }
    Bytes bytes;
    std::uint8_t byte = 0;
    int free = 8;
};

/// An image of one code-block: the encoder of high-throughput ones codes a cleanup pass alone.
struct OneBlock
{
    Bytes before; ///< up to the packet
    int zeroBitPlanes = 0, passes = 0;
    Bytes cleanup;
};

std::size_t find(const Bytes &bytes, std::uint8_t marker)
{
    const std::uint8_t wanted[] = {0xFF, marker};
    return std::size_t(std::search(bytes.begin(), bytes.end(), wanted, wanted + 2) - bytes.begin());
}

OneBlock takeApart(const Bytes &bytes)
{
    const std::size_t packet = find(bytes, 0x93) + 2;
    MemorySource source(bytes);
    MainHeader header;
    if (readMainHeader(source, {0, bytes.size()}, &header))
        return {};
    const IntRect rect = tileRect(header, 0);
    const PacketNumbering numbering(header, header.style, rect);
    Precinct precinct(rect, header.style.components[0], numbering.grid(0, 0), 0, 0, false);
    std::size_t headerLength = 0;
    std::uint64_t bodyLength = 0;
    precinct.parse(bytes.data() + packet, bytes.size() - packet, 0, CancelFlag(), &headerLength, &bodyLength);
    const CodeBlockState &block = precinct.bands()[0].codeBlock(0);
    const auto begin = bytes.begin() + std::ptrdiff_t(packet + block.pieces[0].offset);
    return {{bytes.begin(), bytes.begin() + std::ptrdiff_t(packet)},
            block.zeroBitPlanes,
            block.passes,
            {begin, begin + block.pieces[0].length}};
}

OneBlock makeBlock(int width, int height, unsigned seed)
{
    jp2maker::Options options;
    options.width = width;
    options.height = height;
    options.levels = 0;
    // Small numbers leave room above for the planes that the tests take for refinement.
    options.cell = [seed](int, int x, int y) {
        const unsigned hash = (unsigned(x) * 73856093u ^ unsigned(y) * 19349663u ^ seed) * 2654435761u;
        return 128 + int(hash >> 28) * (hash & 0x300 ? 0 : 1) - int(hash >> 24 & 3);
    };
    return takeApart(htmaker::make(options));
}

/// A number in so many bits.
struct Field
{
    std::size_t value = 0;
    int width = 0;
};

/// What one packet has of the code-block.
struct Packet
{
    int passes = 0;
    std::vector<Field> lengths;
    std::vector<Bytes> bytes;
};

int log2Of(int value)
{
    return value > 1 ? 1 + log2Of(value / 2) : 0;
}

constexpr int kLengthBits = 12; ///< Lblock, from the first packet on

/// The codestream with one packet a layer and \a zeroBitPlanes of the code-block.
Bytes assemble(Bytes bytes, int zeroBitPlanes, const std::vector<Packet> &packets, int lengthBits = kLengthBits)
{
    bytes[find(bytes, 0x52) + 7] = std::uint8_t(packets.size());
    for (const Packet &packet : packets) {
        HeaderBits bits;
        bits.put(3, 2); // not empty, the block is in it
        if (&packet == &packets.front()) {
            bits.putRun(0, zeroBitPlanes);
            bits.put(1, 1);
        }
        const int passes = packet.passes;
        if (passes <= 2)
            bits.put(passes == 1 ? 0 : 2, passes);
        else if (passes <= 5)
            bits.put(unsigned(12 + passes - 3), 4);
        else
            bits.put(unsigned(0x1E0 + passes - 6), 9);
        bits.putRun(1, &packet == &packets.front() ? lengthBits - 3 : 0);
        bits.put(0, 1);
        for (const Field &length : packet.lengths)
            bits.put(unsigned(length.value), length.width);
        const Bytes header = bits.finish();
        bytes.insert(bytes.end(), header.begin(), header.end());
        for (const Bytes &part : packet.bytes)
            bytes.insert(bytes.end(), part.begin(), part.end());
    }
    const std::size_t sot = find(bytes, 0x90);
    const auto length = std::uint32_t(bytes.size() - sot);
    for (int i = 0; i < 4; ++i)
        bytes[sot + 6 + std::size_t(i)] = std::uint8_t(length >> (24 - 8 * i));
    bytes.insert(bytes.end(), {0xFF, 0xD9});
    return bytes;
}

/// A set of up to three passes, after \a placeholders empty sets.
Packet set(const Bytes &cleanup, int passes, const Bytes &refinement, int placeholders = 0)
{
    const int empty = 3 * placeholders;
    Packet packet{empty + passes, {{cleanup.size(), kLengthBits + log2Of(empty + 1)}}, {cleanup}};
    if (passes > 1) {
        packet.lengths.push_back({refinement.size(), passes > 2 ? kLengthBits + 1 : kLengthBits});
        packet.bytes.push_back(refinement);
    }
    return packet;
}

/// The codestream with \a planes bit-planes less of zeros above, so that as many can follow below.
Bytes assemble(const OneBlock &block, int planes, int placeholders, int passes, const Bytes &refinement)
{
    return assemble(block.before, block.zeroBitPlanes - planes - placeholders,
                    {set(block.cleanup, passes, refinement, placeholders)});
}

std::vector<std::int32_t> decodeOwn(const Bytes &bytes, bool resilient = false, int layers = 0)
{
    static int count = 0;
    auto source = std::make_shared<MemorySource>(bytes, "block" + std::to_string(++count));
    std::unique_ptr<RasterReader> reader;
    if (RasterReader::open(source, {0, bytes.size()}, &reader))
        return {};
    ReadRequest request;
    request.datasetRect = {0, 0, reader->info().width, reader->info().height};
    request.resilient = resilient;
    request.qualityLayers = layers;
    request.components = {0};
    ReadResult result;
    std::vector<std::int32_t> cells(std::size_t(reader->info().width) * reader->info().height, -1);
    if (reader->read(request, &result))
        return {};
    for (const Plane &plane : result.planes)
        for (std::int64_t y = plane.rect.y0; y < plane.rect.y1; ++y)
            std::copy_n(plane.row<std::uint8_t>(y), plane.rect.width(),
                        cells.begin() + y * reader->info().width + plane.rect.x0);
    return cells;
}

/// Any bytes are refinement bits. Those that need stuffing are left out: encoders never write them unstuffed.
Bytes randomBytes(std::mt19937 &random, std::size_t count)
{
    Bytes bytes(count);
    for (std::uint8_t &byte : bytes)
        do
            byte = std::uint8_t(random());
        while ((byte & 0x7F) == 0x7F);
    return bytes;
}

} // namespace

/// High-throughput code-blocks as no encoder at hand writes them: with refinement passes and placeholders.
class TestHtBlocks : public QObject
{
    Q_OBJECT

private slots:
    void refinementAgreesWithPeer_data();
    void refinementAgreesWithPeer();
    void placeholders();
    void layers();
    void mixed();
    void damage();
};

void TestHtBlocks::refinementAgreesWithPeer_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const auto &[width, height] :
         {std::pair{64, 64}, {64, 62}, {61, 13}, {1, 1}, {1, 37}, {33, 1}, {7, 6}, {8, 63}})
        QTest::addRow("%d x %d", width, height) << width << height;
}

void TestHtBlocks::refinementAgreesWithPeer()
{
    QFETCH(int, width);
    QFETCH(int, height);
    std::mt19937 random(unsigned(width * 100 + height));
    int refined = 0;
    for (int i = 0; i < 40; ++i) {
        OneBlock block = makeBlock(width, height, unsigned(random()));
        if (i % 2) // vertically causal: a bit in the coding style
            block.before[find(block.before, 0x52) + 12] |= 8;
        const int passes = 1 + i % 3, planes = 1 + int(random() % 2);
        const Bytes bytes = assemble(block, planes, 0, passes, randomBytes(random, 1 + random() % 400));
        const std::vector<PeerComponent> peer = decodeWithPeer(bytes, 0, 0);
        QCOMPARE(peer.size(), std::size_t(1));
        QCOMPARE(decodeOwn(bytes), peer[0].cells);
        refined += decodeOwn(assemble(block, planes, 0, 1, {})) != peer[0].cells ? 1 : 0;
    }
    QVERIFY(refined > 5);
}

void TestHtBlocks::placeholders()
{
    std::mt19937 random(3);
    const OneBlock block = makeBlock(64, 64, 1);
    for (int passes = 1; passes <= 3; ++passes) {
        const Bytes refinement = randomBytes(random, 300);
        const std::vector<std::int32_t> plain = decodeOwn(assemble(block, 1, 0, passes, refinement));
        QVERIFY(!plain.empty());
        for (const int sets : {1, 2, 3})
            QCOMPARE(decodeOwn(assemble(block, 1, sets, passes, refinement)), plain);
    }
}

/// Sets of passes, placeholders and single passes in packets of their own.
void TestHtBlocks::layers()
{
    std::mt19937 random(5);
    const OneBlock block = makeBlock(64, 64, 1), other = makeBlock(64, 64, 2);
    const Bytes refinement = randomBytes(random, 300), front(refinement.begin(), refinement.begin() + 100),
                back(refinement.begin() + 100, refinement.end());
    const int planes = block.zeroBitPlanes - 1, otherPlanes = other.zeroBitPlanes - 1;
    const auto decode = [&](int zeroBitPlanes, const std::vector<Packet> &packets, int layers = 0) {
        return decodeOwn(assemble(block.before, zeroBitPlanes, packets), false, layers);
    };
    const Packet whole = set(block.cleanup, 3, refinement), otherCleanup = set(other.cleanup, 1, {});
    const std::vector<std::int32_t> plain = decode(planes, {whole});
    QVERIFY(!plain.empty());
    // Placeholders, in whole sets or not, which make up sets in the end.
    const Packet three{3, {{0, kLengthBits + 1}}, {}}, four{4, {{0, kLengthBits + 2}, {0, 0}}, {}};
    QCOMPARE(decode(planes - 1, {three, whole}), plain);
    QCOMPARE(decode(planes - 3, {three, set(block.cleanup, 3, refinement, 2)}), plain);
    Packet rest = whole;
    rest.passes = 5; // two placeholders before the three
    rest.lengths[0].width = kLengthBits + 1;
    QCOMPARE(decode(planes - 2, {four, rest}), plain);
    QCOMPARE(decode(planes - 1, {three, whole}, 1), std::vector<std::int32_t>(64 * 64, 128));
    // One pass after the other.
    const Packet cleanup = set(block.cleanup, 1, {});
    QCOMPARE(decode(planes, {cleanup, {1, {{100, kLengthBits}}, {front}}, {1, {{200, kLengthBits}}, {back}}}), plain);
    // All of it in a region of interest: shifted up, and down again.
    for (const int shift : {9, 30, 45}) {
        OneBlock region = block;
        const std::uint8_t rgn[] = {0xFF, 0x5E, 0, 5, 0, 0, std::uint8_t(shift)};
        region.before.insert(region.before.begin() + std::ptrdiff_t(find(region.before, 0x90)), rgn, rgn + 7);
        QCOMPARE(decodeOwn(assemble(region, 1, 0, 3, refinement)), plain);
    }
    // A later set codes the block anew, one bit-plane further down; one without bytes changes nothing.
    const Packet second{3, {{0, kLengthBits + 1}, {other.cleanup.size(), kLengthBits}}, {other.cleanup}};
    const Packet empty{3, {{0, kLengthBits + 1}, {0, kLengthBits}}, {}};
    const std::vector<std::int32_t> alone = decode(otherPlanes + 1, {otherCleanup});
    QCOMPARE(decode(otherPlanes, {cleanup, second}), alone);
    QCOMPARE(decode(otherPlanes, {cleanup, second}, 1), decode(otherPlanes, {cleanup}));
    QCOMPARE(decode(planes, {whole, {1, {{0, kLengthBits}}, {}}}), plain);
    QCOMPARE(decode(otherPlanes, {otherCleanup, empty}), decode(otherPlanes, {set(other.cleanup, 3, {})}));
}

/// Where both codings may occur, the length of the first pass tells which it is.
void TestHtBlocks::mixed()
{
    OneBlock fast = makeBlock(64, 64, 1);
    const std::vector<std::int32_t> plain = decodeOwn(assemble(fast, 1, 1, 1, {}));
    const auto styleOf = [](Bytes &bytes) -> std::uint8_t & { return bytes[find(bytes, 0x52) + 12]; };
    styleOf(fast.before) |= CodeBlockStyle::kMixed;
    QCOMPARE(decodeOwn(assemble(fast, 1, 1, 1, {})), plain);

    jp2maker::Options options;
    options.levels = 0;
    options.bareCodestream = true;
    const OneBlock slow = takeApart(jp2maker::make(options));
    Bytes before = slow.before;
    styleOf(before) |= CodeBlockStyle::kMixed | CodeBlockStyle::kHighThroughput;
    // So wide that the length begins with a one; passes of an earlier packet may be without bytes.
    const int width = log2Of(int(slow.cleanup.size())) + 1;
    const auto field = [&](int passes) {
        return Field{slow.cleanup.size(), width - log2Of(slow.passes) + log2Of(passes)};
    };
    const int lengthBits = field(1).width, rest = slow.passes - 3;
    const std::vector<std::int32_t> expected = decodeOwn(jp2maker::make(options));
    QCOMPARE(decodeOwn(assemble(before, slow.zeroBitPlanes, {{slow.passes, {field(slow.passes)}, {slow.cleanup}}},
                                lengthBits)),
             expected);
    QVERIFY(log2Of(rest) == log2Of(slow.passes));
    QCOMPARE(decodeOwn(assemble(before, slow.zeroBitPlanes,
                                {{3, {{0, lengthBits + 1}}, {}}, {rest, {field(rest)}, {slow.cleanup}}}, lengthBits)),
             expected);
}

void TestHtBlocks::damage()
{
    std::mt19937 random(11);
    const OneBlock block = makeBlock(64, 63, 9);
    HtCodeBlockDecoder decoder;
    std::vector<std::int32_t> cells(64 * 63);
    int found = 0;
    for (int i = 0; i < 3000; ++i) {
        CodeBlock damaged;
        damaged.width = 64;
        damaged.height = 63;
        damaged.style = CodeBlockStyle::kHighThroughput;
        damaged.bitPlanes = 1 + int(random() % 31);
        damaged.data = block.cleanup;
        damaged.data.resize(random() % 4 ? damaged.data.size() : random() % damaged.data.size());
        for (auto flips = 1 + random() % 20; flips > 0 && !damaged.data.empty(); --flips)
            damaged.data[random() % damaged.data.size()] = std::uint8_t(random());
        const std::size_t cleanup = random() % 8 ? damaged.data.size() : random() % (damaged.data.size() + 1);
        damaged.segments = {{0, cleanup, 1}, {cleanup, damaged.data.size() - cleanup, 2}};
        if (!decoder.decode(damaged, cells.data())) {
            ++found;
            QVERIFY(std::all_of(cells.begin(), cells.end(), [](std::int32_t cell) { return cell == 0; }));
        }
    }
    QVERIFY(found > 100);
    // In a file: an error, or a gap in the picture where that is wanted.
    OneBlock broken = block;
    broken.cleanup.back() = 0xFF;
    const Bytes bytes = assemble(broken, 0, 0, 1, {});
    QVERIFY(decodeOwn(bytes).empty());
    QCOMPARE(decodeOwn(bytes, true), std::vector<std::int32_t>(64 * 63, 128));
    broken.before[find(broken.before, 0x52) + 12] = CodeBlockStyle::kMixed; // the other bit alone is reserved
    const Bytes mixed = assemble(broken, 0, 0, 1, {});
    std::unique_ptr<RasterReader> reader;
    const PLK::CError error = RasterReader::open(std::make_shared<MemorySource>(mixed), {0, mixed.size()}, &reader);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_UNSUPPORTED));
}

QTEST_GUILESS_MAIN(TestHtBlocks)

#include "tst_htblocks.moc"
