#include "data/htmaker.h"
#include "peerdecoder.h"

#include "codestream/precinct.h"
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

/// An image of one code-block that the encoder has coded with a cleanup pass alone.
struct OneBlock
{
    Bytes before; ///< up to the packet
    int zeroBitPlanes = 0;
    Bytes cleanup;
};

std::size_t find(const Bytes &bytes, std::uint8_t marker)
{
    const std::uint8_t wanted[] = {0xFF, marker};
    return std::size_t(std::search(bytes.begin(), bytes.end(), wanted, wanted + 2) - bytes.begin());
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
    const Bytes bytes = htmaker::make(options);
    const std::size_t packet = find(bytes, 0x93) + 2;
    std::unique_ptr<RasterReader> reader;
    MemorySource source(bytes);
    MainHeader header;
    if (readMainHeader(source, {0, bytes.size()}, &header))
        return {};
    const IntRect rect{0, 0, width, height};
    const PacketNumbering numbering(header, header.style, rect);
    Precinct precinct(rect, header.style.components[0], numbering.grid(0, 0), 0, 0, false);
    std::size_t headerLength = 0;
    std::uint64_t bodyLength = 0;
    precinct.parse(bytes.data() + packet, bytes.size() - packet, 0, CancelFlag(), &headerLength, &bodyLength);
    const CodeBlockState &block = precinct.bands()[0].codeBlock(0);
    const auto begin = bytes.begin() + std::ptrdiff_t(packet + block.pieces[0].offset);
    return {{bytes.begin(), bytes.begin() + std::ptrdiff_t(packet)},
            block.zeroBitPlanes,
            {begin, begin + block.pieces[0].length}};
}

/// The codestream with \a planes bit-planes less of zeros above, so that as many can follow below, with \a placeholders
/// empty sets of passes in front and \a passes passes that share the bytes of \a refinement.
Bytes assemble(const OneBlock &block, int planes, int placeholders, int passes, const Bytes &refinement)
{
    HeaderBits bits;
    bits.put(3, 2); // not empty, the block is in it
    bits.putRun(0, block.zeroBitPlanes - planes - placeholders);
    bits.put(1, 1);
    const int all = passes + 3 * placeholders;
    if (all <= 2)
        bits.put(all == 1 ? 0 : 2, all);
    else if (all <= 5)
        bits.put(unsigned(12 + all - 3), 4);
    else
        bits.put(unsigned(0x1E0 + all - 6), 9);
    bits.putRun(1, 9); // Lblock is 12 now
    bits.put(0, 1);
    bits.put(unsigned(block.cleanup.size()), 12 + (placeholders >= 5   ? 4
                                                   : placeholders >= 3 ? 3
                                                   : placeholders      ? 2
                                                                       : 0));
    if (passes > 1)
        bits.put(unsigned(refinement.size()), passes > 2 ? 13 : 12);
    Bytes result = block.before;
    const Bytes header = bits.finish();
    for (const Bytes *part : {&header, &block.cleanup, &refinement})
        if (part != &refinement || passes > 1)
            result.insert(result.end(), part->begin(), part->end());
    const std::size_t sot = find(result, 0x90);
    const auto length = std::uint32_t(result.size() - sot);
    for (int i = 0; i < 4; ++i)
        result[sot + 6 + std::size_t(i)] = std::uint8_t(length >> (24 - 8 * i));
    result.insert(result.end(), {0xFF, 0xD9});
    return result;
}

std::vector<std::int32_t> decodeOwn(const Bytes &bytes, bool resilient = false)
{
    static int count = 0;
    auto source = std::make_shared<MemorySource>(bytes, "block" + std::to_string(++count));
    std::unique_ptr<RasterReader> reader;
    if (RasterReader::open(source, {0, bytes.size()}, &reader))
        return {};
    ReadRequest request;
    request.datasetRect = {0, 0, reader->info().width, reader->info().height};
    request.resilient = resilient;
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
    void laterSets();
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

/// A second set of passes codes the block anew, down to the next bit-plane; without its bytes the first one stands.
void TestHtBlocks::laterSets()
{
    const OneBlock coarse = makeBlock(32, 32, 5), fine = makeBlock(32, 32, 6);
    CodeBlock block;
    block.width = block.height = 32;
    block.style = CodeBlockStyle::kHighThroughput;
    block.bitPlanes = 3;
    const auto add = [&block](const Bytes &bytes, int passes) {
        block.segments.push_back({block.data.size(), bytes.size(), passes});
        block.data.insert(block.data.end(), bytes.begin(), bytes.end());
    };
    HtCodeBlockDecoder decoder;
    std::vector<std::int32_t> first(32 * 32), both(32 * 32), alone(32 * 32);
    add(coarse.cleanup, 1);
    add({1, 2, 3}, 2);
    QVERIFY(decoder.decode(block, first.data()));
    add(fine.cleanup, 1);
    QVERIFY(decoder.decode(block, both.data()));
    block.data = fine.cleanup;
    block.segments = {{0, fine.cleanup.size(), 1}};
    block.bitPlanes = 2;
    QVERIFY(decoder.decode(block, alone.data()));
    QVERIFY(both == alone);
    QVERIFY(both != first);
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
