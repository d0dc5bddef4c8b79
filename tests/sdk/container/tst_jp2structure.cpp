#include "container/jp2structure.h"
#include "data/boxbuilder.h"
#include "io/memorysource.h"

#include <QtTest>

using namespace boxbuilder;
using xrv::Jp2Structure;
using Kind = xrv::ColourSpecification::Kind;

Q_DECLARE_METATYPE(Bytes)

namespace {

const Bytes kCodestream{0xff, 0x4f, 0xff, 0x51, 1, 2, 3, 4};

struct Reading
{
    PLK::CError error;
    Jp2Structure structure;
    std::vector<std::string> warnings;
};

Reading readFile(const Bytes &file)
{
    Reading reading;
    xrv::MemorySource source(file, "made.jp2");
    reading.error = xrv::readJp2Structure(source, &reading.structure, &reading.warnings);
    return reading;
}

Bytes iccProfile(const std::string &space, const std::string &signature = "acsp")
{
    Bytes profile(200, 0);
    std::copy(space.begin(), space.end(), profile.begin() + 16);
    std::copy(signature.begin(), signature.end(), profile.begin() + 36);
    return profile;
}

Bytes jpx(const std::vector<Bytes> &boxes)
{
    return join({signature(), fileType("jpx ", {"jpx ", "jp2 "}), join(boxes)});
}

Bytes fragmentTable(const std::vector<std::array<std::uint64_t, 3>> &fragments)
{
    Bytes list = number(fragments.size(), 2);
    for (const auto &[offset, length, file] : fragments)
        append(list, join({number(offset, 8), number(length, 4), number(file, 2)}));
    return superBox("ftbl", {box("flst", list)});
}

} // namespace

class TestJp2Structure : public QObject
{
    Q_OBJECT

private slots:
    void recognises_data();
    void recognises();
    void imageHeader_data();
    void imageHeader();
    void palette();
    void definitions();
    void colour_data();
    void colour();
    void extendedHeaders();
    void opacityBox();
    void fragments_data();
    void fragments();
    void texts();
    void gmlAssociations();
    void uuids();
};

void TestJp2Structure::recognises_data()
{
    QTest::addColumn<Bytes>("file");
    QTest::addColumn<int>("code");
    const Bytes header = jp2h({ihdr(2, 3, 1), colrEnumerated(17)});
    const Bytes content = join({header, box("jp2c", kCodestream)});
    QTest::newRow("JP2") << join({signature(), fileType(), content}) << int(PLK_SUCCESS);
    QTest::newRow("high throughput") << join({signature(), fileType("jph ", {"jph "}), content}) << int(PLK_SUCCESS);
    QTest::newRow("extended") << join({signature(), fileType("jpx ", {"jpx "}), content}) << int(PLK_SUCCESS);
    QTest::newRow("without file type") << join({signature(), content}) << int(PLK_SUCCESS);
    QTest::newRow("bare codestream") << kCodestream << int(PLK_SUCCESS);
    QTest::newRow("empty") << Bytes() << int(PLK_ERR_UNKNOWN_FORMAT);
    QTest::newRow("one byte") << Bytes{0xff} << int(PLK_ERR_UNKNOWN_FORMAT);
    QTest::newRow("text") << text("a text that is longer than twelve bytes") << int(PLK_ERR_UNKNOWN_FORMAT);
    QTest::newRow("JPEG") << Bytes{0xff, 0xd8, 0xff, 0xe0, 0, 16, 'J', 'F', 'I', 'F', 0, 1}
                          << int(PLK_ERR_UNKNOWN_FORMAT);
    QTest::newRow("other box file") << join({fileType("heic"), content}) << int(PLK_ERR_UNKNOWN_FORMAT);
    QTest::newRow("no codestream") << join({signature(), fileType(), header}) << int(PLK_ERR_MALFORMED);
    QTest::newRow("film") << join({signature(), fileType("mjp2", {"mjp2"}), box("moov", {})})
                          << int(PLK_ERR_UNSUPPORTED);
    QTest::newRow("document") << join({signature(), fileType("jpm ", {"jpm "}), box("mhdr", {})})
                              << int(PLK_ERR_UNSUPPORTED);
}

void TestJp2Structure::recognises()
{
    QFETCH(Bytes, file);
    QFETCH(int, code);
    const Reading reading = readFile(file);
    QCOMPARE(reading.error.GetErrorNumber(), code);
    QCOMPARE(*reading.error.GetErrorMessage() == '\0', code == PLK_SUCCESS);
    if (code != PLK_SUCCESS)
        return;
    const xrv::ByteRange place = reading.structure.codestream;
    QCOMPARE(Bytes(file.begin() + int(place.offset), file.begin() + int(place.end())), kCodestream);
    QCOMPARE(reading.structure.isBareCodestream, file == kCodestream);
    QCOMPARE(reading.structure.imageWidth, file == kCodestream ? 0u : 2u);
    QVERIFY(reading.warnings.empty());
}

void TestJp2Structure::imageHeader_data()
{
    QTest::addColumn<Bytes>("header");
    QTest::addColumn<QString>("depths");
    QTest::addColumn<bool>("warned");
    QTest::newRow("one depth") << jp2h({ihdr(7, 9, 3, depthCode(12))}) << "12 12 12" << false;
    QTest::newRow("signed") << jp2h({ihdr(7, 9, 1, depthCode(16, true))}) << "-16" << false;
    QTest::newRow("depths of their own") << jp2h({ihdr(7, 9, 3, 255), bpcc({depthCode(1), depthCode(38, true), 7})})
                                         << "1 -38 8" << false;
    QTest::newRow("too few depths") << jp2h({ihdr(7, 9, 3, 255), bpcc({7, 7})}) << "" << true;
    QTest::newRow("depth of 128 bits") << jp2h({ihdr(7, 9, 1, 255), bpcc({127})}) << "" << true;
    QTest::newRow("one depth of 127 bits") << jp2h({ihdr(7, 9, 1, 126)}) << "" << true;
    QTest::newRow("second header") << jp2h({ihdr(7, 9, 1), ihdr(1, 1, 2)}) << "8" << true;
    QTest::newRow("outside of the header") << join({ihdr(7, 9, 2), colrEnumerated(17)}) << "8 8" << true;
    QTest::newRow("none") << Bytes() << "" << true;
}

void TestJp2Structure::imageHeader()
{
    QFETCH(Bytes, header);
    QFETCH(QString, depths);
    QFETCH(bool, warned);
    const Reading reading = readFile(join({signature(), fileType(), header, box("jp2c", kCodestream)}));
    QVERIFY(reading.error.IsSuccess());
    QStringList found;
    for (const xrv::BitDepth &depth : reading.structure.depths)
        found << QString::number(depth.isSigned ? -depth.bits : depth.bits);
    QCOMPARE(found.join(QLatin1Char(' ')), depths);
    if (!header.empty()) {
        QCOMPARE(reading.structure.imageWidth, 7u);
        QCOMPARE(reading.structure.imageHeight, 9u);
    }
    QCOMPARE(!reading.warnings.empty(), warned);
}

void TestJp2Structure::palette()
{
    const std::vector<std::vector<std::int64_t>> entries{{255, -1, 0x3fffffffff}, {0, -2048, 1}, {3, 2047, 0}};
    const Bytes codes{depthCode(8), depthCode(12, true), depthCode(38)};
    const Reading reading =
        readFile(jp2({ihdr(2, 2, 1), pclr(codes, entries), cmap({{0, 1, 2}, {0, 0, 0}})}, kCodestream));
    QVERIFY(reading.structure.palette);
    const xrv::Palette &palette = *reading.structure.palette;
    QCOMPARE(palette.entries, 3u);
    QCOMPARE(palette.columns.size(), std::size_t(3));
    QCOMPARE(int(palette.columns[1].bits), 12);
    QVERIFY(palette.columns[1].isSigned && !palette.columns[2].isSigned);
    const std::vector<std::int64_t> values{255, -1, 0x3fffffffff, 0, -2048, 1, 3, 2047, 0};
    QCOMPARE(palette.values, values);
    QCOMPARE(reading.structure.mapping.size(), std::size_t(2));
    QVERIFY(reading.structure.mapping[0].usesPalette && !reading.structure.mapping[1].usesPalette);
    QCOMPARE(int(reading.structure.mapping[0].paletteColumn), 2);
}

void TestJp2Structure::definitions()
{
    const Reading reading =
        readFile(jp2({ihdr(2, 2, 2), cdef({{1, 0, 1}, {0, 2, 0}, {9, 65535, 65535}})}, kCodestream));
    QCOMPARE(reading.structure.definitions.size(), std::size_t(3));
    const xrv::ChannelDefinition second = reading.structure.definitions[1];
    QVERIFY(second.channel == 0 && second.type == 2 && second.association == 0);
    QCOMPARE(int(reading.structure.definitions[2].association), 65535);
}

void TestJp2Structure::colour_data()
{
    QTest::addColumn<Bytes>("boxes");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("space");
    const Bytes rgbProfile = iccProfile("RGB ");
    const auto row = [](const char *name, const std::vector<Bytes> &boxes, Kind kind, int space) {
        QTest::newRow(name) << join(boxes) << int(kind) << space;
    };
    row("sRGB", {colrEnumerated(16)}, Kind::SRgb, 16);
    row("greyscale", {colrEnumerated(17)}, Kind::Greyscale, 17);
    row("sYCC", {colrEnumerated(18)}, Kind::SYcc, 18);
    row("CMYK", {colrEnumerated(12)}, Kind::Cmyk, 12);
    row("unknown space", {colrEnumerated(99)}, Kind::Unknown, 99);
    row("restricted profile", {colrIcc(rgbProfile, 2)}, Kind::Icc, 0);
    row("any profile", {colrIcc(rgbProfile, 3)}, Kind::Icc, 0);
    row("profile of grey", {colrIcc(iccProfile("GRAY"))}, Kind::Icc, 0);
    row("damaged profile", {colrIcc(iccProfile("RGB ", "damn"))}, Kind::Unknown, 0);
    row("profile without header", {colrIcc(Bytes(20, 0))}, Kind::Unknown, 0);
    row("vendor's method", {colrIcc(rgbProfile, 4)}, Kind::Unknown, 0);
    row("first of equals", {colrEnumerated(16), colrIcc(rgbProfile)}, Kind::SRgb, 16);
    row("the understood one", {colrEnumerated(99, 5), colrIcc(rgbProfile, 4, 9), colrEnumerated(18)}, Kind::SYcc, 18);
    row("higher precedence", {colrIcc(rgbProfile, 2, 0, 1), colrEnumerated(20, 1, 1)}, Kind::SRgb, 20);
    row("precedence has a sign", {colrEnumerated(17, -1), colrEnumerated(16)}, Kind::SRgb, 16);
    row("exact, and nothing said of it", {colrEnumerated(16, 0, 1), colrIcc(rgbProfile)}, Kind::SRgb, 16);
    row("closer approximation", {colrEnumerated(16, 0, 3), colrIcc(rgbProfile, 3, 0, 1)}, Kind::Icc, 0);
    row("parameters of sRGB", {box("colr", {5, 0, 0, 0, 1, 0, 13, 0, 0, 0x80})}, Kind::SRgb, 0);
    row("parameters of film", {box("colr", {5, 0, 0, 0, 9, 0, 16, 0, 9, 0x80})}, Kind::Unknown, 0);
}

void TestJp2Structure::colour()
{
    QFETCH(Bytes, boxes);
    QFETCH(int, kind);
    QFETCH(int, space);
    const Reading reading = readFile(jp2({ihdr(2, 2, 3), boxes}, kCodestream));
    QVERIFY(reading.structure.colour);
    QCOMPARE(int(reading.structure.colour->kind), kind);
    QCOMPARE(int(reading.structure.colour->enumeratedSpace), space);
    if (kind == int(Kind::Icc))
        QCOMPARE(reading.structure.colour->iccProfile.size(), std::size_t(200));
}

void TestJp2Structure::extendedHeaders()
{
    const Bytes file = jpx(
        {jp2h({ihdr(2, 2, 3), colrEnumerated(16), cdef({{0, 0, 1}})}),
         superBox("jpch", {label("first"), ihdr(5, 6, 1), xml("<label/>")}), superBox("jpch", {ihdr(8, 8, 2)}),
         superBox("jplh",
                  {superBox("cgrp", {colrEnumerated(18)}), box("creg", join({number(0, 4), number(1ull << 32, 6)}))}),
         superBox("jplh", {superBox("cgrp", {colrEnumerated(17)}), box("creg", join({number(0, 4), number(0, 6)}))}),
         box("jp2c", kCodestream), box("jp2c", {1, 2, 3})});
    const Reading reading = readFile(file);
    QVERIFY(reading.error.IsSuccess());
    QCOMPARE(reading.structure.imageWidth, 5u);
    QCOMPARE(reading.structure.depths.size(), std::size_t(1));
    QCOMPARE(int(reading.structure.colour->kind), int(Kind::Greyscale));
    QCOMPARE(reading.structure.definitions.size(), std::size_t(1));
    QCOMPARE(reading.structure.xmlBoxes.size(), std::size_t(1));
    QCOMPARE(reading.structure.codestream.length, std::uint64_t(kCodestream.size()));
    QVERIFY(reading.warnings.empty());
}

void TestJp2Structure::opacityBox()
{
    const Reading reading = readFile(jpx(
        {jp2h({ihdr(2, 2, 4), colrEnumerated(16)}), superBox("jplh", {box("opct", {1})}), box("jp2c", kCodestream)}));
    QCOMPARE(reading.structure.definitions.size(), std::size_t(4));
    const xrv::ChannelDefinition blue = reading.structure.definitions[2];
    QVERIFY(blue.channel == 2 && blue.type == 0 && blue.association == 3);
    const xrv::ChannelDefinition opacity = reading.structure.definitions[3];
    QVERIFY(opacity.channel == 3 && opacity.type == 2 && opacity.association == 0);
}

void TestJp2Structure::fragments_data()
{
    QTest::addColumn<Bytes>("table");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("length");
    QTest::newRow("one piece") << fragmentTable({{{40, 30, 0}}}) << int(PLK_SUCCESS) << 40 << 30;
    QTest::newRow("pieces in a row") << fragmentTable({{{40, 5, 0}}, {{45, 7, 0}}}) << int(PLK_SUCCESS) << 40 << 12;
    QTest::newRow("pieces apart") << fragmentTable({{{40, 5, 0}}, {{46, 7, 0}}}) << int(PLK_ERR_UNSUPPORTED) << 0 << 0;
    QTest::newRow("other file") << fragmentTable({{{40, 5, 1}}}) << int(PLK_ERR_UNSUPPORTED) << 0 << 0;
    QTest::newRow("beyond the end") << fragmentTable({{{4000, 5, 0}}}) << int(PLK_ERR_TRUNCATED) << 0 << 0;
    QTest::newRow("offset near overflow") << fragmentTable({{{~0ull, 5, 0}}}) << int(PLK_ERR_MALFORMED) << 0 << 0;
    QTest::newRow("no pieces") << fragmentTable({}) << int(PLK_ERR_MALFORMED) << 0 << 0;
    QTest::newRow("no list") << superBox("ftbl", {}) << int(PLK_ERR_MALFORMED) << 0 << 0;
}

void TestJp2Structure::fragments()
{
    QFETCH(Bytes, table);
    QFETCH(int, code);
    QFETCH(int, offset);
    QFETCH(int, length);
    // The codestream after the table is the second one, and not what the headers describe.
    const Reading reading = readFile(jpx({box("mdat", Bytes(40, 1)), table, box("jp2c", kCodestream)}));
    QCOMPARE(reading.error.GetErrorNumber(), code);
    QCOMPARE(int(reading.structure.codestream.offset), offset);
    QCOMPARE(int(reading.structure.codestream.length), length);
}

void TestJp2Structure::texts()
{
    const Bytes file =
        jp2({ihdr(2, 2, 1), xml("<in_header/>")}, kCodestream, {xml("<a/>"), superBox("uinf", {xml("<b/>")})},
            {asoc({label("other"), xml("<c/>")}), openBox("xml ", text("<d/>"))});
    const Reading reading = readFile(file);
    QStringList texts;
    for (const xrv::BoxPlace &place : reading.structure.xmlBoxes)
        texts << QString::fromLatin1(reinterpret_cast<const char *>(file.data() + place.content.offset),
                                     int(place.content.length));
    QCOMPARE(texts.join(QLatin1Char(' ')), QStringLiteral("<in_header/> <a/> <b/> <c/> <d/>"));
    QVERIFY(reading.structure.gml.empty() && !reading.structure.hasGmlBox);
}

void TestJp2Structure::gmlAssociations()
{
    const Bytes association =
        asoc({label("gml.data"), asoc({label("gml.root-instance"), xml(std::string("<root/>\0", 8))}),
              asoc({label("dictionary.xml"), xml("<units/>")})});
    const Reading reading = readFile(jp2({ihdr(2, 2, 1)}, kCodestream, {asoc({box("nlst", number(0, 4)), association})},
                                         {asoc({label("photo"), xml("<not_gml/>")})}));
    QVERIFY(reading.structure.hasGmlBox);
    QCOMPARE(reading.structure.gml.size(), std::size_t(2));
    QCOMPARE(reading.structure.gml[0].label, std::string("gml.root-instance"));
    QCOMPARE(reading.structure.gml[0].xml, std::string("<root/>"));
    QCOMPARE(reading.structure.gml[1].label, std::string("dictionary.xml"));
    QCOMPARE(reading.structure.gml[1].xml, std::string("<units/>"));
}

void TestJp2Structure::uuids()
{
    const Bytes first(16, 0xb1), second(16, 2);
    const Reading reading =
        readFile(jp2({ihdr(2, 2, 1)}, kCodestream, {uuid(first, {1, 2, 3})},
                     {uuid(second, {}), box("uuid", Bytes(15, 1)), uuid(first, Bytes((16u << 20) + 1, 0))}));
    QCOMPARE(reading.structure.uuidBoxes.size(), std::size_t(2));
    QCOMPARE(int(reading.structure.uuidBoxes[0].uuid[15]), 0xb1);
    QCOMPARE(reading.structure.uuidBoxes[0].content, (Bytes{1, 2, 3}));
    QVERIFY(reading.structure.uuidBoxes[1].content.empty());
    // Too short for a UUID, and too large to keep.
    QCOMPARE(reading.warnings.size(), std::size_t(2));
}

QTEST_GUILESS_MAIN(TestJp2Structure)
#include "tst_jp2structure.moc"
