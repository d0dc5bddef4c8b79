#include "data/boxbuilder.h"
#include "fuzz/mutations.h"

#include <QtTest>

using namespace boxbuilder;

/// Replays small files through the fuzz entry, whole, cut and with bytes changed. The entry ends the process where a
/// promise is broken.
class TestBoxMutations : public QObject
{
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

void TestBoxMutations::replay_data()
{
    QTest::addColumn<QByteArray>("file");
    const Bytes codestream{0xff, 0x4f, 0xff, 0x51, 0, 0, 0, 0};
    const auto row = [](const char *name, const Bytes &file) {
        QTest::newRow(name) << QByteArray(reinterpret_cast<const char *>(file.data()), static_cast<int>(file.size()));
    };
    row("bare codestream", codestream);
    row("opacity and mixed depths", jp2({ihdr(2, 2, 4, 255), bpcc({7, 0x87, 11, 0}), colrEnumerated(18),
                                         cdef({{0, 0, 1}, {1, 0, 2}, {2, 0, 3}, {3, 1, 0}})},
                                        codestream));
    row("palette", jp2({ihdr(2, 2, 1), pclr({7, 0x8b, 37}, {{1, -2, 3}, {255, 2047, 1}}),
                        cmap({{0, 1, 0}, {0, 1, 1}, {0, 1, 2}}), colrEnumerated(16)},
                       codestream));
    row("Lab and CMYK",
        jp2({ihdr(2, 2, 4), colrEnumerated(12), colrEnumerated(14, 1, 0, number(100, 28))}, codestream));
    row("texts and associations",
        join({signature(), fileType(), uuid(Bytes(16, 7), text("abc")), jp2h({ihdr(2, 2, 3), xml("<a/>")}), gml("<g/>"),
              longBox("xml ", text("<b/>")), openBox("jp2c", codestream)}));
    row("extended headers",
        join({signature(), fileType("jpx ", {"jpx "}), superBox("jpch", {label("one"), ihdr(2, 2, 2)}),
              superBox("jplh", {superBox("cgrp", {colrEnumerated(17)}), box("opct", {0}), box("creg", number(0, 10))}),
              superBox("ftbl", {box("flst", join({number(1, 2), number(40, 8), number(9, 4), number(0, 2)}))})}));
}

void TestBoxMutations::replay()
{
    QFETCH(QByteArray, file);
    replayMutations(file, 3000);
}

QTEST_GUILESS_MAIN(TestBoxMutations)
#include "tst_boxmutations.moc"
