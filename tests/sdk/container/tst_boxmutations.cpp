#include "data/boxbuilder.h"

#include <QtTest>

#include <random>

using namespace boxbuilder;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

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
    const auto run = [](const QByteArray &bytes) {
        return LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                      static_cast<std::size_t>(bytes.size()));
    };
    for (int length = 0; length <= file.size(); ++length)
        QCOMPARE(run(file.left(length)), 0);
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        QByteArray changed = file;
        for (unsigned change = random() % 4 + 1; change > 0; --change) {
            const unsigned choice = random() % 4;
            const char value = choice == 0 ? '\0' : choice == 1 ? '\xff' : choice == 2 ? '\x01' : char(random() % 256);
            changed[int(random() % unsigned(changed.size()))] = value;
        }
        QCOMPARE(run(changed), 0);
    }
}

QTEST_GUILESS_MAIN(TestBoxMutations)
#include "tst_boxmutations.moc"
