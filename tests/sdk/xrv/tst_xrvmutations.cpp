#include "data/boxbuilder.h"
#include "fuzz/mutations.h"

#include "codestream/packetindex.h"
#include "xrv/xrvrecords.h"

#include <QtTest>

using namespace boxbuilder;

/// Replays small XRV files through the fuzz entry, whole, cut and with bytes changed. The entry ends the process where
/// a promise is broken.
class TestXrvMutations : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

namespace {

Bytes xrvStart(int majorVersion = 1)
{
    return join(
        {box("XRV ", {0x0d, 0x0a, 0x87, 0x0a}), box("vers", {static_cast<std::uint8_t>(majorVersion), 0, 0, 0})});
}

Bytes fileInfo(int bands)
{
    xrv::XrvFileInfo info;
    info.bands = static_cast<std::uint16_t>(bands);
    info.hasPlace = true;
    info.datum = "WGS84";
    info.compressionDate = "2024-01-01T00:00:00Z";
    return box("finf", makeFileInfo(info));
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

void TestXrvMutations::replay_data()
{
    QTest::addColumn<QByteArray>("file");
    const Bytes codestream = join({{0xff, 0x4f, 0xff, 0x51}, Bytes(220, 0)});
    const auto row = [](const char *name, const Bytes &file) {
        QTest::newRow(name) << QByteArray(reinterpret_cast<const char *>(file.data()), static_cast<int>(file.size()));
    };
    row("least", join({xrvStart(), fileInfo(1), box("jp2c", codestream)}));
    row("newer", join({xrvStart(2), fileInfo(1), box("jp2c", codestream)}));
    xrv::XrvTexts texts;
    texts[4] = "山田太郎";
    texts[9] = "";
    row("records", join({xrvStart(), fileInfo(1), box("band", xrv::makeBands({{8, true, "Red"}})),
                         box("auth", xrv::makeTexts(texts)), box("rpc ", xrv::makeRpc(PLKRPCData{})), statistics(256),
                         packetIndex(10), box("jp2c", codestream)}));
    row("header and table of contents",
        join({xrvStart(), box("toc ", join({text("finf"), number(44, 8), number(120, 8)})), fileInfo(3),
              jp2h({ihdr(2, 2, 3), colrEnumerated(16)}), xml("<a/>"), box("????", {1, 2, 3}),
              longBox("jp2c", codestream)}));
}

void TestXrvMutations::replay()
{
    QFETCH(QByteArray, file);
    replayMutations(file, 5000);
}

QTEST_GUILESS_MAIN(TestXrvMutations)
#include "tst_xrvmutations.moc"
