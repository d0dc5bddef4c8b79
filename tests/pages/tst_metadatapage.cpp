#include "data/boxbuilder.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pagetest.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

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
    void fileNames_data();
    void fileNames();
    void fileGoneAfterOpening();
    void layersThatShowNothing();

private:
    using Bytes = boxbuilder::Bytes;
    /// A small image with \a boxes behind its codestream.
    std::unique_ptr<XRVJP2kLayer> open(const Bytes &boxes, const QString &name = QString());
    static QStringList labels(const QWidget &page);

    TestFolder folder;
    int fileNumber = 0;
};

std::unique_ptr<XRVJP2kLayer> TestMetadataPage::open(const Bytes &boxes, const QString &name)
{
    Bytes file = jp2maker::make(jp2maker::Options());
    boxbuilder::append(file, boxes);
    return openLayer(folder.write(name.isEmpty() ? QStringLiteral("%1.jp2").arg(++fileNumber) : name, file));
}

QStringList TestMetadataPage::labels(const QWidget &page)
{
    const auto *combo = page.findChild<QComboBox *>(QStringLiteral("comboBoxMetaBox"));
    QStringList labels;
    for (int i = 0; i < combo->count(); ++i)
        labels.append(combo->itemText(i));
    return labels;
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
    QCOMPARE(labels(page), QStringList({QStringLiteral("'xml ' Box #1:")}));
    QTEST(textOf(page, "plainTextEditMetaData"), "text");
    const auto *combo = page.findChild<QComboBox *>(QStringLiteral("comboBoxMetaBox"));
    QTEST(combo->itemData(0).toString(), "text");
}

void TestMetadataPage::severalBoxes()
{
    const auto layer = open(boxbuilder::join({boxbuilder::xml("<one/>"), boxbuilder::xml("<two/>")}));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(labels(page), QStringList({QStringLiteral("'xml ' Box #1:"), QStringLiteral("'xml ' Box #2:")}));
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
    QCOMPARE(labels(page).size(), 2);
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QStringLiteral("<one/>"));
}

void TestMetadataPage::boxesInsideOthers()
{
    const auto layer = open(boxbuilder::join({boxbuilder::gml("<g/>"), boxbuilder::xml("<x/>")}));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QCOMPARE(labels(page).size(), 2);
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

void TestMetadataPage::fileGoneAfterOpening()
{
    const auto layer = open(boxbuilder::xml("<gone/>"), QStringLiteral("gone.jp2"));
    XRVJP2kLayerMetaDataBox page;
    page.setLayer(layer.get());
    QVERIFY(QFile::remove(folder.path(QStringLiteral("gone.jp2"))));
    page.setLayer(layer.get());
    QCOMPARE(labels(page), QStringList());
    QCOMPARE(textOf(page, "plainTextEditMetaData"), QString());
}

void TestMetadataPage::layersThatShowNothing()
{
    XRVJP2kLayerMetaDataBox page;
    ForeignLayer foreign;
    XRVJP2kLayer fresh(nullptr);
    const auto plain = open({});
    const auto filled = open(boxbuilder::xml("<a/>"));
    for (Korvane::Map::Layer *layer :
         {static_cast<Korvane::Map::Layer *>(nullptr), static_cast<Korvane::Map::Layer *>(&foreign),
          static_cast<Korvane::Map::Layer *>(&fresh), static_cast<Korvane::Map::Layer *>(plain.get())}) {
        page.setLayer(filled.get());
        QCOMPARE(labels(page).size(), 1);
        page.setLayer(layer);
        QCOMPARE(labels(page), QStringList());
        page.onComboBoxActivated(0);
        QCOMPARE(textOf(page, "plainTextEditMetaData"), QString());
    }
}

QTEST_MAIN(TestMetadataPage)
#include "tst_metadatapage.moc"
