#include "data/boxbuilder.h"
#include "pages/boxtexts.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pagetest.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QtTest>

#include <cstring>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

class TestMetadataPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void contents_data();
    void contents();
    void severalBoxes();
    void boxesInsideOthers();
    void largeBoxes_data();
    void largeBoxes();
    void unreachableBoxes();
    void fileNames_data();
    void fileNames();

private:
    using Bytes = boxbuilder::Bytes;
    /// A small image with \a boxes behind its codestream.
    std::unique_ptr<XRVJP2kLayer> open(const Bytes &boxes, const QString &name = QString());

    TestFolder folder;
    int fileNumber = 0;
};

std::unique_ptr<XRVJP2kLayer> TestMetadataPage::open(const Bytes &boxes, const QString &name)
{
    Bytes file = jp2maker::make(jp2maker::Options());
    boxbuilder::append(file, boxes);
    return openLayer(folder.write(name.isEmpty() ? QStringLiteral("%1.jp2").arg(++fileNumber) : name, file));
}

void TestMetadataPage::contents_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QByteArray &content, const QString &text) {
        QTest::newRow(name) << content << text;
    };
    row("well formed", "<a b=\"1\">\n <c/>\n</a>\n", QStringLiteral("<a b=\"1\">\n <c/>\n</a>\n"));
    row("broken XML", "<a><b></a> & <", QStringLiteral("<a><b></a> & <"));
    row("markup that a text field could take for its own", "<b>%1</b><br>", QStringLiteral("<b>%1</b><br>"));
    row("beyond ASCII", "<a>\xC3\x9C\xE6\x9D\xB1</a>", QString::fromUtf8("<a>\xC3\x9C\xE6\x9D\xB1</a>"));
    row("not UTF-8", "<a>\xDC</a>", QStringLiteral("<a>%1</a>").arg(QChar(QChar::ReplacementCharacter)));
    row("ended by a zero byte", QByteArray("<a/>\0", 5), QStringLiteral("<a/>"));
    row("empty", QByteArray(), QString());
}

void TestMetadataPage::contents()
{
    QFETCH(QByteArray, content);
    const auto layer = open(boxbuilder::xml(content.toStdString()));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "comboBoxMetaBox"), QStringList({QStringLiteral("'xml ' Box #1:")}));
    QTEST(textOf(page, "plainTextEditMetaData"), "text");
    const auto *combo = page.findChild<QComboBox *>(QStringLiteral("comboBoxMetaBox"));
    QTEST(combo->itemData(0).toString(), "text");
}

void TestMetadataPage::severalBoxes()
{
    const auto layer = open(boxbuilder::join({boxbuilder::xml("<one/>"), boxbuilder::xml("<two/>")}));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "comboBoxMetaBox"),
             QStringList({QStringLiteral("'xml ' Box #1:"), QStringLiteral("'xml ' Box #2:")}));
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<one/>"));
    // As when a person chooses the second one; choosing by program shows nothing else.
    auto *combo = page.findChild<QComboBox *>(QStringLiteral("comboBoxMetaBox"));
    combo->setCurrentIndex(1);
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<one/>"));
    Q_EMIT combo->activated(1);
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<two/>"));
    for (const int index : {-1, 2, 1000000}) {
        page.onComboBoxActivated(index);
        QCOMPARE(textOf(page, "plainTextEditMetaData"), QString());
    }
    // The same layer again, not added to what is listed.
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "comboBoxMetaBox").size(), 2);
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<one/>"));
}

void TestMetadataPage::boxesInsideOthers()
{
    const auto layer = open(boxbuilder::join({boxbuilder::gml("<g/>"), boxbuilder::xml("<x/>")}));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "comboBoxMetaBox").size(), 2);
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<g/>"));
}

void TestMetadataPage::largeBoxes_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("four megabytes in lines") << QStringLiteral("<line number=\"1\"/>\n").repeated(220000);
    QTest::newRow("two megabytes in one line") << QStringLiteral("<word>and</word> ").repeated(120000);
    QTest::newRow("a megabyte without a blank") << QStringLiteral("QUJD").repeated(262144);
    QTest::newRow("many long words") << (QStringLiteral("QUJD").repeated(490) + QLatin1Char(' ')).repeated(500);
}

void TestMetadataPage::largeBoxes()
{
    QFETCH(QString, text);
    const auto layer = open(boxbuilder::xml(text.toStdString()));
    XRVJP2kLayerMetaDataBox page;
    page.show();
    QElapsedTimer timer;
    timer.start();
    page.setLayer(layer.get());
    page.grab(); // lays the text out
    // Takes a fraction of a second; what grows with the square of the length takes minutes.
    QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(textOf(page, "plainTextEditMetaData"), text);
}

/// Holds so many bytes, of which the last cannot be read.
class ShortStream : public PLK::CIOStream
{
public:
    static constexpr quint64 kEndless = 257 * 1024 * 1024; // a box that is there all the same

    bool IsRemote() const override { return false; }
    std::uint64_t GetSize() const override { return 1U << 30; }
    bool Seek(std::uint64_t offset) override
    {
        position = offset;
        return offset <= quint64(bytes.size());
    }
    bool Read(void *buffer, std::uint64_t length) override
    {
        if (length == kEndless) {
            std::memcpy(static_cast<char *>(buffer) + length - 4, "end", 4);
            std::memset(buffer, ' ', size_t(length) - 4);
            return true;
        }
        if (position + length >= quint64(bytes.size()))
            return false;
        std::memcpy(buffer, bytes.constData() + position, size_t(length));
        return true;
    }

private:
    const QByteArray bytes = "<one/><two/><three/>";
    quint64 position = 0;
};

void TestMetadataPage::unreachableBoxes()
{
    constexpr quint64 kBeyond = 5000;
    const std::pair<PLKXMLBox, const char *> boxes[] = {
        {{0, kBeyond, 3}, ""}, {{0, 0, 6}, "<one/>"},  {{0, kBeyond, 9}, "<one/>"}, // that of the box before
        {{0, 6, 6}, "<two/>"}, {{0, 12, 8}, "unread"}, {{0, 0, ~quint64(0)}, "unread"},
    };
    ShortStream stream;
    BoxTexts texts(&stream);
    for (const auto &[box, text] : boxes)
        QCOMPARE(texts.read(box, QStringLiteral("unread")), QLatin1String(text));
    const QString endless = texts.read({0, 0, ShortStream::kEndless}, QStringLiteral("unread"));
    QCOMPARE(endless.size(), int(ShortStream::kEndless) - 1);
    QVERIFY(endless.endsWith(QLatin1String(" end")));
    QCOMPARE(BoxTexts(nullptr).read(boxes[1].first, QStringLiteral("unread")), QString());
    QCOMPARE(BoxTexts::typeName(0x75756964), QStringLiteral("uuid"));
}

void TestMetadataPage::fileNames_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"plain.jp2", "Übersicht 東京.jp2", "Ã¼ mangled.jp2", "per cent %20.jp2"})
        QTest::newRow(name) << QString::fromUtf8(name);
}

void TestMetadataPage::fileNames()
{
    QFETCH(QString, name);
    const auto layer = open(boxbuilder::xml("<named/>"), name);
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<named/>"));
}

QTEST_MAIN(TestMetadataPage)
#include "tst_metadatapage.moc"
