#include "data/boxbuilder.h"

#include "codestream/packetindex.h"
#include "xrv/xrvrecords.h"

#include <QtTest>

#include <random>

using namespace boxbuilder;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

Q_DECLARE_METATYPE(Bytes)

/// Replays small files through the fuzz entry, whole, cut at every byte and with bytes changed: the same ones in every
/// run. The entry ends the process where a promise is broken.
class TestMutations : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

namespace {

Bytes xrvFile(const std::vector<Bytes> &records, int majorVersion = 1, int bands = 1)
{
    xrv::XrvFileInfo info;
    info.bands = static_cast<std::uint16_t>(bands);
    info.hasPlace = true;
    info.datum = "WGS84";
    info.compressionDate = "2024-01-01T00:00:00Z";
    return join({box("XRV ", {0x0d, 0x0a, 0x87, 0x0a}), box("vers", {static_cast<std::uint8_t>(majorVersion), 0, 0, 0}),
                 box("finf", makeFileInfo(info)), join(records),
                 longBox("jp2c", join({{0xff, 0x4f, 0xff, 0x51}, Bytes(220, 0)}))});
}

Bytes statistics(std::uint32_t buckets)
{
    std::vector<std::uint64_t> counts(buckets, 0);
    counts.back() = 300;
    PLKBandStatistics band{1, 2, 3, 4, 5, 6, buckets, counts.data()};
    return box("stat", xrv::makeStatistics(PLKFileStatistics{&band, 1}));
}

Bytes packetIndex(std::uint32_t packet)
{
    xrv::PacketIndex index;
    index.append(3, 14, {packet, 200});
    return box("pidx", index.content());
}

} // namespace

void TestMutations::replay_data()
{
    QTest::addColumn<Bytes>("file");
    const Bytes codestream{0xff, 0x4f, 0xff, 0x51, 0, 0, 0, 0};
    QTest::newRow("bare codestream") << codestream;
    QTest::newRow("opacity and mixed depths") << jp2({ihdr(2, 2, 4, 255), bpcc({7, 0x87, 11, 0}), colrEnumerated(18),
                                                      cdef({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}})},
                                                     codestream);
    QTest::newRow("palette") << jp2({ihdr(2, 2, 1), pclr({7, 0x8b, 37}, {{1, -2, 3}, {255, 2047, 1}}),
                                     cmap({{0, 1, 0}, {0, 1, 1}, {0, 1, 2}}), colrEnumerated(16)},
                                    codestream);
    QTest::newRow("Lab and CMYK") << jp2({ihdr(2, 2, 4), colrEnumerated(12), colrEnumerated(14, 1, 0, number(100, 28))},
                                         codestream);
    QTest::newRow("texts and associations")
        << join({signature(), fileType(), uuid(Bytes(16, 7), text("abc")), jp2h({ihdr(2, 2, 3), xml("<a/>")}),
                 gml("<g/>"), longBox("xml ", text("<b/>")), openBox("jp2c", codestream)});
    QTest::newRow("extended headers") << join(
        {signature(), fileType("jpx ", {"jpx "}), superBox("jpch", {label("one"), ihdr(2, 2, 2)}),
         superBox("jplh", {superBox("cgrp", {colrEnumerated(17)}), box("opct", {0}), box("creg", number(0, 10))}),
         superBox("ftbl", {box("flst", join({number(1, 2), number(40, 8), number(9, 4), number(0, 2)}))})});

    QTest::newRow("XRV, newer") << xrvFile({}, 2);
    xrv::XrvTexts texts;
    texts[4] = "山田太郎";
    texts[9] = "";
    QTest::newRow("XRV, records") << xrvFile(
        {box("band", xrv::makeBands({{8, true, "Red"}})), box("auth", xrv::makeTexts(texts)),
         box("rpc ", xrv::makeRpc(PLKRPCData{})), statistics(256), packetIndex(10)});
    QTest::newRow("XRV, header and table of contents")
        << xrvFile({box("toc ", join({text("finf"), number(44, 8), number(120, 8)})),
                    jp2h({ihdr(2, 2, 3), colrEnumerated(16)}), xml("<a/>"), box("????", {1, 2, 3})},
                   1, 3);
}

void TestMutations::replay()
{
    QFETCH(Bytes, file);
    for (std::size_t length = 0; length <= file.size(); ++length)
        QCOMPARE(LLVMFuzzerTestOneInput(file.data(), length), 0);
    std::mt19937 random(1);
    for (int round = 0; round < 4000; ++round) {
        Bytes changed = file;
        for (auto change = random() % 4 + 1; change > 0; --change) {
            const std::uint8_t values[] = {0, 1, 0xff, std::uint8_t(random())};
            changed[random() % changed.size()] = values[random() % 4];
        }
        QCOMPARE(LLVMFuzzerTestOneInput(changed.data(), changed.size()), 0);
    }
}

QTEST_GUILESS_MAIN(TestMutations)
#include "tst_mutations.moc"
