// Damaged, lying and vanishing files, through the public interface: each gives a clear error or the part of the picture
// that can be saved, in good time and in little memory, and the view goes on afterwards.

#include "attempt.h"
#include "claims.h"

#include "data/boxbuilder.h"
#include "data/files.h"
#include "data/jp2maker.h"
#include "data/syntheticimage.h"
#include "data/views.h"

#include <QDateTime>
#include <QSet>
#include <QTest>

#include <functional>
#include <random>

#if defined(Q_OS_UNIX)
#include <sys/stat.h>
#include <unistd.h>
#endif

using jp2maker::FileBytes;

namespace {

/// Places of the fields of SIZ in a bare codestream (ISO/IEC 15444-1 A.5.1): SOC and the marker are before it.
enum SizField : std::size_t {
    kLsiz = 4,
    kXsiz = 8,
    kYsiz = 12,
    kXOsiz = 16,
    kXTsiz = 24,
    kYTsiz = 28,
    kXTOsiz = 32,
    kCsiz = 40,
    kSsiz = 42,
    kXRsiz = 43,
};

void put(FileBytes *file, std::size_t offset, std::uint64_t value, int count)
{
    for (int i = count - 1; i >= 0; --i, value >>= 8)
        file->at(offset + static_cast<std::size_t>(i)) = static_cast<std::uint8_t>(value);
}

/// Place of the first \a marker (two bytes) behind the SIZ segment.
std::size_t markerPlace(const FileBytes &file, std::uint8_t low)
{
    for (std::size_t i = 4; i + 1 < file.size(); ++i)
        if (file[i] == 0xff && file[i + 1] == low)
            return i;
    return file.size();
}

// Noise does not compress: every part of the file then carries part of the picture.
std::int32_t noise(int component, int x, int y)
{
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(x * 7919 + y * 104729 + component) * 2654435761u) >>
                                     24);
}

jp2maker::Options options(int tile)
{
    jp2maker::Options result;
    result.width = result.height = kPictureSide;
    result.tileWidth = result.tileHeight = tile;
    result.cell = noise;
    return result;
}

FileBytes tiledFile()
{
    return jp2maker::make(options(64));
}

FileBytes tilePartFile()
{
    jp2maker::Options parts = options(128);
    parts.progression = "RLCP";
    parts.tilePartsPer = 'R';
    parts.tlm = parts.plt = true;
    return jp2maker::make(parts);
}

FileBytes precinctFile()
{
    jp2maker::Options precincts = options(0);
    precincts.progression = "RPCL";
    precincts.precincts = {{64, 64}};
    precincts.layerRates = {8, 2, 0};
    precincts.plt = precincts.sop = precincts.eph = true;
    return jp2maker::make(precincts);
}

FileBytes colourFile()
{
    jp2maker::Options colours = options(128);
    colours.components.resize(3);
    colours.componentTransform = true;
    colours.reversible = false;
    colours.codeBlockStyle = 13;
    return jp2maker::make(colours);
}

FileBytes bareFile(int tile = 0)
{
    jp2maker::Options bare = options(tile);
    bare.bareCodestream = true;
    return jp2maker::make(bare);
}

/// An XRV file, or a JP2 file with a packet index.
FileBytes writtenFile(xrv::FileKind kind, bool isHighThroughput)
{
    SyntheticImage image(kPictureSide, kPictureSide, 1, 8);
    image.cell = noise;
    xrv::WriteOptions written;
    written.kind = kind;
    written.isHighThroughput = isHighThroughput;
    written.tileSize = 128;
    const FileFolder folder;
    if (const PLK::CError error = writeImage(image, written, folder.path("made")))
        qFatal("%s", error.GetErrorMessage());
    const QByteArray file = folder.read("made");
    return {file.begin(), file.end()};
}

struct Sample
{
    const char *name;
    FileBytes bytes;
};

const std::vector<Sample> &samples()
{
    static const std::vector<Sample> all{{"tiles", tiledFile()},
                                         {"tile-parts", tilePartFile()},
                                         {"precincts", precinctFile()},
                                         {"colours", colourFile()},
                                         {"bare codestream", bareFile()},
                                         {"XRV", writtenFile(xrv::FileKind::Xrv, false)},
                                         {"high throughput", writtenFile(xrv::FileKind::GeoJp2, true)}};
    return all;
}

FileBytes cutAtSixteenth(const FileBytes &whole, std::size_t sixteenth)
{
    return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * sixteenth / 16)};
}

} // namespace

class TestHostile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cut_data();
    void cut();
    void cutKeepsFirstTile();
    void cutProgressive();
    void flippedBytes_data();
    void flippedBytes();
    void boxLengths();
    void header_data();
    void header();
    void claims_data();
    void claims();
    void lateLayer();
    void noImage_data();
    void noImage();
    void unreadable();
    void changedWhileOpen_data();
    void changedWhileOpen();

private:
    std::string write(const FileBytes &bytes) const { return folder.write("file", bytes); }
    /// Attempts to show \a bytes in both ways; fails the test when either is not as it should be.
    void mustBehave(const FileBytes &bytes, const QByteArray &what);
    void mustGoOn();

    FileFolder folder;
    PLK::CView view; ///< one for all: what an earlier file did must not trouble a later one
    std::string goodPath;
    Attempt good;
};

void TestHostile::mustBehave(const FileBytes &bytes, const QByteArray &what)
{
    const std::string path = write(bytes);
    for (const Damage damage : {Damage::Strict, Damage::Resilient}) {
        const QByteArray complaint = attempt(&view, path, damage).complaint();
        const char *const mode = damage == Damage::Strict ? " (strict)" : " (resilient)";
        QVERIFY2(complaint.isEmpty(), (what + mode + ": " + complaint).constData());
    }
}

void TestHostile::mustGoOn()
{
    const Attempt again = attempt(&view, goodPath, Damage::Strict);
    QVERIFY2(again.isShown(), again.error.GetErrorMessage());
    QVERIFY(again.picture == good.picture);
}

void TestHostile::initTestCase()
{
    goodPath = folder.write("good.jp2", tiledFile());
    good = attempt(&view, goodPath, Damage::Strict);
    QVERIFY2(good.isShown(), good.error.GetErrorMessage());
    QSet<int> values;
    for (std::size_t i = 0; i < good.picture.size(); i += 4)
        values.insert(good.picture[i]);
    QVERIFY2(values.size() > 100, "the picture of the good file is empty");
}

void TestHostile::cut_data()
{
    QTest::addColumn<int>("sample");
    for (std::size_t i = 0; i < samples().size(); ++i)
        QTest::newRow(samples()[i].name) << static_cast<int>(i);
}

/// Every sixteenth: an error or a picture, and a strict view never takes a part for the whole.
void TestHostile::cut()
{
    QFETCH(int, sample);
    const FileBytes &whole = samples()[static_cast<std::size_t>(sample)].bytes;
    const Attempt complete = attempt(&view, write(whole), Damage::Strict);
    QVERIFY2(complete.isShown(), complete.error.GetErrorMessage());

    int noticed = 0, saved = 0;
    for (std::size_t sixteenth = 0; sixteenth < 16; ++sixteenth) {
        const FileBytes part = cutAtSixteenth(whole, sixteenth);
        mustBehave(part, "cut at sixteenth " + QByteArray::number(static_cast<int>(sixteenth)));
        const Attempt strict = attempt(&view, write(part), Damage::Strict);
        QVERIFY(!strict.isShown() || strict.picture == complete.picture);
        noticed += !strict.isShown();
        saved += attempt(&view, write(part), Damage::Resilient).isShown();
    }
    QVERIFY2(noticed >= 15, qPrintable(QStringLiteral("only %1 of 16 cuts were noticed").arg(noticed)));
    QVERIFY2(saved >= 12, qPrintable(QStringLiteral("only %1 of 16 cuts were saved in part").arg(saved)));
    mustGoOn();
}

/// What is there is shown as it is, and what is not there is not made up.
void TestHostile::cutKeepsFirstTile()
{
    const Attempt part = attempt(&view, write(cutAtSixteenth(tiledFile(), 8)), Damage::Resilient);
    QVERIFY2(part.isShown(), part.error.GetErrorMessage());
    constexpr std::size_t kTile = 64, kLineBytes = std::size_t{kPictureSide} * 4;
    for (std::size_t y = 0; y < kTile; ++y)
        QVERIFY(std::equal(&part.picture[y * kLineBytes], &part.picture[y * kLineBytes] + kTile * 4,
                           &good.picture[y * kLineBytes]));
    const std::size_t last = good.picture.size() - kLineBytes;
    QVERIFY(!std::equal(part.picture.begin() + static_cast<std::ptrdiff_t>(last), part.picture.end(),
                        good.picture.begin() + static_cast<std::ptrdiff_t>(last)));
}

/// A progressive view of a damaged file ends too: with all its blocks or with an error.
void TestHostile::cutProgressive()
{
    PLK::SDK::CFileBase::sFilesHelper().Get()->Config().SetResilientDecodingEnabled(true);
    for (const std::size_t sixteenth : {6, 12}) {
        const std::string path = write(cutAtSixteenth(tiledFile(), sixteenth));
        ProgressiveView progressive;
        QVERIFY(progressive.Open(PLK::CString(path.c_str()), true, false).IsSuccess());
        QVERIFY(!setView(progressive, wholeOf(progressive)));
        QTRY_VERIFY_WITH_TIMEOUT(progressive.GetPercentComplete() == 100 || progressive.GetLastError(), 2000);
        QTRY_VERIFY_WITH_TIMEOUT(progressive.passes() > 0, 2000);
    }
}

void TestHostile::flippedBytes_data()
{
    cut_data();
}

void TestHostile::flippedBytes()
{
    QFETCH(int, sample);
    const FileBytes &whole = samples()[static_cast<std::size_t>(sample)].bytes;
    std::mt19937 random(static_cast<unsigned>(sample) + 1);
    constexpr int kFlips = 40;
    for (int i = 0; i < kFlips; ++i) {
        // Two thirds fall into the headers, where they do the most harm.
        const std::size_t range = i % 3 ? std::min<std::size_t>(whole.size(), 320) : whole.size();
        const std::size_t place = random() % range;
        FileBytes flipped = whole;
        flipped[place] = static_cast<std::uint8_t>(flipped[place] ^ (1u << random() % 8));
        mustBehave(flipped, "bit flipped in byte " + QByteArray::number(static_cast<int>(place)));
        if (QTest::currentTestFailed())
            return;
    }
    mustGoOn();
}

void TestHostile::boxLengths()
{
    const FileBytes whole = tiledFile();
    const auto boxes = boxbuilder::boxesOf(whole);
    QVERIFY(boxes.size() >= 6); // signature, ftyp, jp2h, ihdr, colr, jp2c
    for (const boxbuilder::BoxAt &box : boxes) {
        const auto length = static_cast<std::uint32_t>(box.length);
        for (const std::uint32_t wrong : {0u, 1u, 2u, 7u, 8u, length - 1, length + 1, 0x7fffffffu, 0xffffffffu}) {
            FileBytes damaged = whole;
            put(&damaged, box.start, wrong, 4);
            mustBehave(damaged, box.type.c_str() + QByteArray(" of length ") + QByteArray::number(wrong));
            if (QTest::currentTestFailed())
                return;
        }
    }
    mustGoOn();
}

using Lie = std::function<void(FileBytes *)>;
Q_DECLARE_METATYPE(Lie)

void TestHostile::header_data()
{
    QTest::addColumn<Lie>("lie");
    const auto set = [](std::size_t offset, std::uint64_t value, int count) {
        return [=](FileBytes *file) { put(file, offset, value, count); };
    };
    const auto all = [](std::vector<Lie> lies) {
        return [=](FileBytes *file) {
            for (const Lie &lie : lies)
                lie(file);
        };
    };
    constexpr std::uint64_t kHuge = std::uint64_t{1} << 31;
    const Lie hugeImage = all({set(kXsiz, kHuge, 4), set(kYsiz, kHuge, 4)});
    const Lie hugeTile = all({set(kXTsiz, kHuge, 4), set(kYTsiz, kHuge, 4)});
    const auto row = [](const char *name, const Lie &lie) { QTest::newRow(name) << lie; };

    row("2^31 x 2^31 in one tile", all({hugeImage, hugeTile}));
    row("2^31 x 2^31 in many tiles", hugeImage);
    row("2^31 x 2^31 in tiles of one cell", all({hugeImage, set(kXTsiz, 1, 4), set(kYTsiz, 1, 4)}));
    row("2^32 - 1 across", set(kXsiz, 0xffffffff, 4));
    row("a million tiles", all({set(kXsiz, 64000, 4), set(kYsiz, 64000, 4), set(kXTsiz, 64, 4), set(kYTsiz, 64, 4)}));
    row("65,025 tiles",
        all({set(kXsiz, 255 * 64, 4), set(kYsiz, 255 * 64, 4), set(kXTsiz, 64, 4), set(kYTsiz, 64, 4)}));
    row("tiles without cells", set(kXTsiz, 0, 4));
    row("no cells", set(kXOsiz, 256, 4));
    row("origin past the end", set(kXOsiz, 0xfffffff0, 4));
    row("tile origin past the image", set(kXTOsiz, 128, 4));
    row("16,384 components in three bytes", set(kCsiz, 16384, 2));
    row("65,535 components", set(kCsiz, 65535, 2));
    row("no components", set(kCsiz, 0, 2));
    row("16,384 components without data", [](FileBytes *file) {
        put(file, kLsiz, 38 + 3 * 16384, 2);
        put(file, kCsiz, 16384, 2);
        FileBytes more;
        for (int i = 1; i < 16384; ++i)
            more.insert(more.end(), {7, 1, 1});
        file->insert(file->begin() + kSsiz + 3, more.begin(), more.end());
    });
    row("38 bits", set(kSsiz, 37, 1));
    row("128 bits", set(kSsiz, 127, 1));
    row("step of 0", set(kXRsiz, 0, 1));
    row("step of 255", set(kXRsiz, 255, 1));
    row("short segment", set(kLsiz, 2, 2));
    row("segment longer than the file", set(kLsiz, 0xffff, 2));
    // COD (A.6.1): SGcod at 5, SPcod at 9 behind the marker.
    const auto inCod = [](std::size_t offset, std::uint64_t value, int count) {
        return [=](FileBytes *file) { put(file, markerPlace(*file, 0x52) + offset, value, count); };
    };
    row("no layers", inCod(6, 0, 2));
    row("65,535 layers", inCod(6, 65535, 2));
    row("33 levels", inCod(9, 33, 1));
    row("code-blocks of 2^17 cells", inCod(10, 15, 1));
    row("unknown progression", inCod(5, 9, 1));
    row("unknown transform", inCod(13, 7, 1));
    // SOT (A.4.2): Isot at 4, Psot at 6, TPsot at 10, TNsot at 11 behind the marker.
    const auto inSot = [](std::size_t offset, std::uint64_t value, int count) {
        return [=](FileBytes *file) { put(file, markerPlace(*file, 0x90) + offset, value, count); };
    };
    row("tile that is not there", inSot(4, 60000, 2));
    row("tile-part without bytes", inSot(6, 1, 4));
    row("tile-part of 12 bytes", inSot(6, 12, 4));
    row("tile-part of 4 GB", inSot(6, 0xffffffff, 4));
    row("tile-part to the end of the file", inSot(6, 0, 4));
    row("tile-part before the first", inSot(10, 200, 1));
    row("no main header end", [](FileBytes *file) { file->resize(markerPlace(*file, 0x90)); });
}

/// Lies about sizes and counts, for one tile and for many.
void TestHostile::header()
{
    QFETCH(Lie, lie);
    for (const int tile : {0, 64}) {
        FileBytes file = bareFile(tile);
        lie(&file);
        mustBehave(file, tile ? "many tiles" : "one tile");
        if (QTest::currentTestFailed())
            return;
    }
    mustGoOn();
}

void TestHostile::claims_data()
{
    QTest::addColumn<FileBytes>("file");
    QTest::addColumn<QByteArray>("refusal"); // empty: it is shown
    using namespace boxbuilder;
    const auto row = [](const char *name, const Claims &claims, const char *refusal = "") {
        QTest::newRow(name) << claims.make() << QByteArray(refusal);
    };
    const auto repeated = [](const Bytes &bytes, int times) {
        Bytes all;
        for (int i = 0; i < times; ++i)
            append(all, bytes);
        return all;
    };
    constexpr std::uint32_t k30 = 31623, k64 = 65280;
    row("2^26 code-blocks", {32768, 32768, 0, 1, 1, 1, 0, 0, -1, {}, {0x80, 0x80}}, "16777216 code-blocks");
    row("2^22 code-blocks, all layers", {32768, 32768, 0, 1, 5, 65535, 0, 0, -1, {}, Bytes(100000, 0x80)});
    row("2^16 code-blocks, packets of noise", {4096, 4096, 0, 1, 0, 1, 0, 2, -1, {}, repeated({0x9a, 0x5d}, 50000)});
    row("10^9 cells without levels", {k30, k30, 0, 3, 0, 1, 0, 4, -1, {}, {0, 0, 0}});
    row("4 x 10^9 cells without levels", {65535, 65535, 0, 1, 0, 1, 0, 4, -1, {}, Bytes(9, 0)});
    row("4 x 10^9 cells of noise", {65535, 65535, 0, 1, 0, 1, 0, 4, -1, {}, repeated({0x9a, 0x5d}, 50000)}, "cells");
    row("25 million packets by position", {20000, 20000, 0, 1, 5, 1, 2, 4, 2, {}, Bytes(1000, 0)});
    row("10^9 packets by layer", {60000, 60000, 0, 1, 5, 65535, 0, 4, 7, {}, Bytes(100000, 0x80)});
    row("255 large components", {30000, 30000, 0, 255, 1, 1, 0, 4, -1, {}, Bytes(510, 0)});
    row("16384 components", {1000, 1000, 0, 16384, 5, 1, 0, 4, -1, {}, Bytes(6 * 16384, 0)});
    row("16384 components without data", {1000, 1000, 0, 16384});
    row("65025 tiles", {k64, k64, 256, 1, 5, 1, 0, 4, -1, {}, Bytes(6, 0), 65025});
    row("65025 tiles that are not there", {k64, k64, 256, 3, 5, 1, 0, 4, -1, {}, {}, 1});
    row("tile-parts without end", {64, 64, 0, 1, 5, 1, 0, 4, -1, {}, {}, 1, 1000000});
    row("255 tile-parts each", {1024, 1024, 32, 1, 5, 1, 0, 4, -1, {}, {0}, 1024, 255});
    // A.6.6: from resolution and component 0 to layer 7, resolution 33 and component 16384, by position.
    const Bytes changes = repeated({0, 0, 0, 0, 7, 33, 0x40, 0, 2}, 7000);
    row("7000 progression changes", {64, 64, 0, 640, 5, 9, 0, 4, -1, Claims::segment(0x5f, changes), Bytes(9000, 0)});
    row("7000 progression changes of 16384 components",
        {64, 64, 0, 16384, 5, 9, 0, 4, -1, Claims::segment(0x5f, changes), Bytes(9000, 0)}, "7000 progression order");
    row("100 MB of comments",
        {64, 64, 0, 1, 5, 1, 0, 4, -1, repeated(Claims::segment(0x64, Bytes(65000, 1)), 1600), {0}}, "64 MB");
    const Bytes image = Claims().make();
    const auto boxed = [&image](const Bytes &header, const Bytes &boxes) {
        return join({signature(), fileType(), superBox("jp2h", {ihdr(64, 64, 1), header, colrEnumerated(16)}), boxes,
                     box("jp2c", image)});
    };
    QTest::newRow("70000 large boxes") << boxed({}, repeated(box("free", Bytes(60, 0)), 70000))
                                       << QByteArray("65536 boxes");
    const auto gml = [](const Bytes &boxes) { return superBox("asoc", {label("gml.data"), boxes}); };
    QTest::newRow("4 million elements") << boxed({},
                                                 gml(xml("<r>" + QByteArray("<a/>").repeated(3000000).toStdString())))
                                        << QByteArray();
    QTest::newRow("20000 texts") << boxed({}, gml(repeated(xml("<r srsName='gmljp2://xml/C#e'/>"), 20000)))
                                 << QByteArray();
    Bytes mapping;
    for (std::uint8_t i = 0; mapping.size() < 4 * 65535; ++i)
        append(mapping, {0, 0, 1, std::uint8_t(i % 3)});
    QTest::newRow("65535 channels") << boxed(join({pclr({7, 7, 7}, {{1, 2, 3}}), box("cmap", mapping)}), {})
                                    << QByteArray();
}

/// Small files that claim much: what they claim is refused with its number or costs no more than what is there. Nor
/// does anybody wait for them who closes the view.
void TestHostile::claims()
{
    QFETCH(FileBytes, file);
    QFETCH(QByteArray, refusal);
    mustBehave(file, "claims");
    if (QTest::currentTestFailed())
        return;
    const Attempt shown = attempt(&view, write(file), Damage::Resilient);
    QVERIFY2(shown.isShown() ? refusal.isEmpty() : QByteArray(shown.error.GetErrorMessage()).contains(refusal),
             shown.error.GetErrorMessage());
    const Attempt counted = attemptStatistics(&view);
    QVERIFY2(!shown.isShown() || counted.complaint().isEmpty(), counted.complaint().constData());
    for (const unsigned long milliseconds : {1ul, 30ul, 200ul}) {
        ProgressiveView progressive;
        if (progressive.Open(PLK::CString(folder.path("file").c_str()), true, false))
            break;
        QVERIFY(!setView(progressive, {kPictureSide, kPictureSide, 0, 0, 1e6, -1e6}));
        progressive.StartCountingStatistics();
        QTest::qWait(int(milliseconds));
        QElapsedTimer timer;
        timer.start();
        progressive.Close(true);
        QVERIFY2(double(timer.elapsed()) < 500 * timeFactor(),
                 qPrintable(QString::number(timer.elapsed()))); // tens, but for a busy machine
    }
    mustGoOn();
}

/// A code-block that comes with a layer beyond the 32,767th.
void TestHostile::lateLayer()
{
    constexpr int kLate = 40000;
    // ISO/IEC 15444-1 B.10: the packet is there; 40000 times no, yes; no zero bit-planes; one pass; 5 bytes.
    boxbuilder::Bytes packets(kLate, 0), header(2 + kLate / 8, 0);
    header[0] = 0x80;
    const std::size_t bit = 1 + kLate;
    const auto put = [&header](std::size_t at) { header[at / 8] = std::uint8_t(header[at / 8] | 0x80 >> at % 8); };
    for (const std::size_t at : {bit, bit + 1, bit + 4, bit + 6})
        put(at);
    boxbuilder::append(packets, boxbuilder::join({header, {1, 2, 3, 4, 5}}));
    packets.resize(packets.size() + 65534 - kLate, 0);
    const Claims claims{64, 64, 0, 1, 0, 65535, 0, 4, -1, {}, packets};
    const Attempt result = attempt(&view, write(claims.make()), Damage::Strict);
    QVERIFY2(result.isShown(), result.error.GetErrorMessage());
    QVERIFY(
        std::any_of(result.picture.begin(), result.picture.end(), [](std::uint8_t v) { return v != 255 && v != 128; }));
}

void TestHostile::noImage_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSet<int>>("codes");
    const auto row = [this](const char *name, const std::string &file, const QSet<int> &codes) {
        QTest::newRow(name) << QString::fromStdString(file[0] == '/' ? file : folder.path(file)) << codes;
    };
    folder.write("text.jp2", QByteArray(100, 'a'));
    folder.write("empty.jp2", QByteArray());
    FileBytes otherFamily = tiledFile();
    std::copy_n("qt  ", 4, otherFamily.begin() + 4);
    folder.write("other.jp2", otherFamily);
    row("missing", "nothing.jp2", {PLK_ERR_NOT_FOUND});
    row("missing folder", "nowhere/nothing.jp2", {PLK_ERR_NOT_FOUND});
    row("file as a folder", "good.jp2/picture.jp2", {PLK_ERR_NOT_FOUND});
    row("folder", folder.path(), {PLK_ERR_NO_ACCESS});
    row("text", "text.jp2", {PLK_ERR_UNKNOWN_FORMAT});
    row("empty", "empty.jp2", {PLK_ERR_UNKNOWN_FORMAT});
    row("another box format", "other.jp2", {PLK_ERR_UNKNOWN_FORMAT});
    row("name longer than any", std::string(5000, 'x'), {PLK_ERR_NOT_FOUND, PLK_ERR_NO_ACCESS, PLK_ERR_READ});
#if defined(Q_OS_UNIX)
    QCOMPARE(::mkfifo(folder.path("pipe.jp2").c_str(), 0600), 0);
    row("pipe that nobody writes to", "pipe.jp2", {PLK_ERR_NO_ACCESS});
    row("device", "/dev/zero", {PLK_ERR_NO_ACCESS});
#endif
}

void TestHostile::noImage()
{
    QFETCH(QString, path);
    QFETCH(QSet<int>, codes);
    const Attempt result = attempt(&view, path.toStdString(), Damage::Resilient);
    QVERIFY(!result.isShown());
    QVERIFY2(result.complaint().isEmpty(), result.complaint().constData());
    QVERIFY2(codes.contains(result.error.GetErrorNumber()), result.error.GetErrorMessage());
    mustGoOn();
}

void TestHostile::unreadable()
{
#if defined(Q_OS_UNIX)
    const std::string path = folder.write("secret.jp2", tiledFile());
    QCOMPARE(::chmod(path.c_str(), 0), 0);
    // The superuser may read everything, so somebody else has to try.
    constexpr uid_t kNobody = 65534;
    const bool isRoot = ::geteuid() == 0;
    QVERIFY(!isRoot || ::seteuid(kNobody) == 0);
    const Attempt result = attempt(&view, path, Damage::Resilient);
    QVERIFY(!isRoot || ::seteuid(0) == 0);
    QVERIFY2(result.complaint().isEmpty(), result.complaint().constData());
    QCOMPARE(result.error.GetErrorNumber(), int(PLK_ERR_NO_ACCESS));
    mustGoOn();
#else
    QSKIP("rights of files are set in another way here");
#endif
}

using Change = std::function<void(const QString &)>;
Q_DECLARE_METATYPE(Change)

void TestHostile::changedWhileOpen_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("mustFail");
    const auto row = [](const char *name, bool mustFail, const Change &change) {
        QTest::newRow(name) << change << mustFail;
    };
    row("cut short", true, [](const QString &path) { QVERIFY(QFile::resize(path, 2000)); });
    row("emptied", true, [](const QString &path) { QVERIFY(QFile::resize(path, 0)); });
    row("grown", true, [](const QString &path) { QVERIFY(QFile::resize(path, QFileInfo(path).size() + 10)); });
    row("overwritten", true, [](const QString &path) { writeFile(path, asByteArray(tilePartFile())); });
    row("overwritten in place", true, [](const QString &path) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(5000) && file.write("x") == 1);
        // Another second than that of the first version, whatever the file system's resolution.
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(5), QFileDevice::FileModificationTime));
    });
    // The bytes that were there are still there for those who have the file open.
    row("removed", false, [](const QString &path) { QVERIFY(QFile::remove(path)); });
    row("replaced", false, [](const QString &path) {
        writeFile(path + QStringLiteral(".new"), asByteArray(tilePartFile()));
        QVERIFY(QFile::remove(path) && QFile::rename(path + QStringLiteral(".new"), path));
    });
}

/// Either the picture of the file as it was, or an error: never a mixture.
void TestHostile::changedWhileOpen()
{
    QFETCH(Change, change);
    QFETCH(bool, mustFail);
    const std::string path = folder.write("changing.jp2", tiledFile());
    PLK::SDK::CFileBase::sFilesHelper().Get()->Config().SetResilientDecodingEnabled(true);
    QVERIFY(view.Open(PLK::CString(path.c_str()), false, false).IsSuccess());
    change(QString::fromStdString(path));
    const Attempt result = attemptView(&view);
    QVERIFY2(result.complaint().isEmpty(), result.complaint().constData());
    QCOMPARE(result.isShown(), !mustFail);
    QCOMPARE(result.error.GetErrorNumber(), mustFail ? int(PLK_ERR_FILE_CHANGED) : 0);
    QVERIFY(mustFail || result.picture == good.picture);
    QVERIFY(!mustFail || QByteArray(result.error.GetErrorMessage()).contains("changing.jp2"));
    mustGoOn();
}

QTEST_GUILESS_MAIN(TestHostile)
#include "tst_hostile.moc"
