#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pagetest.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTranslator>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

/// What the five pages have in common: their forms, and how they take layers.
class TestPageForms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void interface();
    void forms_data() { addPageRows(); }
    void forms();
    void keyboardOrder();
    void translations();
    void layersInTurn_data();
    void layersInTurn();

private:
    static void addPageRows();
    std::unique_ptr<XRVJP2kLayer> fullLayer(int number) const;

    TestFolder folder;
};

namespace {

/// Gives back context and text.
class EchoTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        return QStringLiteral("%1|%2").arg(QLatin1String(context), QLatin1String(text));
    }
};

/// Where a Tab leads from \a first on.
QStringList keyboardChain(const QWidget &first)
{
    QStringList names;
    const QWidget *widget = &first;
    do {
        if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus))
            names.append(widget->objectName());
        widget = widget->nextInFocusChain();
    } while (widget != &first);
    return names;
}

} // namespace

void TestPageForms::addPageRows()
{
    QTest::addColumn<QString>("className");
    for (const QString &name : kPageClasses)
        QTest::newRow(qPrintable(name)) << name;
}

/// A host finds the slots by their order and names, and the pages by the names of their objects.
void TestPageForms::interface()
{
    QStringList found;
    for (const QString &className : kPageClasses) {
        const auto page = makePage(className);
        const QMetaObject *meta = page->metaObject();
        QCOMPARE(QString::fromLatin1(meta->className()), className);
        QVERIFY(page->qt_metacast("com.korvane.viewer.ILayerPropertiesWidget/1.0"));
        QStringList names{page->objectName(), page->windowTitle()};
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
            names.append(QString::fromLatin1(meta->method(i).name()));
        found.append(names.join(QLatin1Char(',')));
    }
    QCOMPARE(found, (QStringList{
                        QStringLiteral("XRVJP2kLayerFileInfo,XRV Info,setLayer,copyToClipboard,apply"),
                        QStringLiteral("XRVJP2kLayerJP2FileInfo,JP2 Info,setLayer,copyToClipboard,apply"),
                        QStringLiteral("XRVJP2kLayerStatistics,Statistics,setLayer,apply,onBandChange,copyToClipboard"),
                        QStringLiteral("XRVJP2kLayerRPCInfo,RPC Info,setLayer,apply,copyToClipboard"),
                        QStringLiteral("XRVJP2LayerMetaDataBox,Metadata,setLayer,apply,onComboBoxActivated")}));
}

/// Nothing can be typed in, each field has a name for a screen reader, and at the least size that the page takes no
/// text is wider or higher than its place.
void TestPageForms::forms()
{
    QFETCH(QString, className);
    const auto page = makePage(className);
    page->resize(page->minimumSizeHint());
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    for (const QLabel *label : page->findChildren<QLabel *>()) {
        QVERIFY2(label->buddy(), qPrintable(label->text()));
        const QSize needed = label->sizeHint();
        QVERIFY2(label->width() >= needed.width() && label->height() >= needed.height(), qPrintable(label->text()));
    }
    for (const QLineEdit *field : page->findChildren<QLineEdit *>()) {
        QVERIFY2(field->height() >= field->sizeHint().height(), qPrintable(field->objectName()));
        QVERIFY2(field->isReadOnly() != (field->objectName() == QLatin1String("blockSize")),
                 qPrintable(field->objectName()));
    }
    for (const QPlainTextEdit *field : page->findChildren<QPlainTextEdit *>())
        QVERIFY(field->isReadOnly() && (field->textInteractionFlags() & Qt::TextSelectableByKeyboard));
}

void TestPageForms::keyboardOrder()
{
    XRVJP2kLayerRPCInfo page;
    page.show();
    const QStringList chain = keyboardChain(*page.findChild<QWidget *>(QStringLiteral("errorBias")));
    QCOMPARE(chain.mid(0, 4), QStringList({QStringLiteral("errorBias"), QStringLiteral("errorRandom"),
                                           QStringLiteral("lineOffset"), QStringLiteral("lineScale")}));
    QCOMPARE(chain.mid(chain.size() - 2),
             QStringList({QStringLiteral("coefficients"), QStringLiteral("copyToClipboard")}));
    XRVJP2kLayerFileInfo file;
    file.show();
    const QStringList fileChain = keyboardChain(*file.findChild<QWidget *>(QStringLiteral("xrvpVersion")));
    QCOMPARE(fileChain.mid(0, 3), QStringList({QStringLiteral("xrvpVersion"), QStringLiteral("fileFormatVersion"),
                                               QStringLiteral("gdtDatum")}));
    QCOMPARE(fileChain.value(20), QStringLiteral("telephone"));
    QCOMPARE(fileChain.value(21), QStringLiteral("copyToClipboard"));
}

void TestPageForms::translations()
{
    EchoTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    for (const QString &className : kPageClasses) {
        const auto page = makePage(className);
        const QString context = page->objectName() + QLatin1Char('|');
        QVERIFY(page->windowTitle().startsWith(context));
        for (const QLabel *label : page->findChildren<QLabel *>())
            QVERIFY2(label->text().startsWith(context), qPrintable(label->text()));
    }
    const auto layer = fullLayer(1);
    XRVJP2kLayerMetaDataBox boxes;
    boxes.setLayer(layer.get());
    QCOMPARE(textOf(boxes, "comboBoxMetaBox"), QStringLiteral("XRVJP2kLayerMetaDataBox|'xml ' Box #1:"));
    XRVJP2kLayerFileInfo file;
    file.setLayer(layer.get());
    QVERIFY(copiedText(file).startsWith(
        QLatin1String("XRVJP2kLayerFileInfo|XRVP Version = XRVJP2kLayerFileInfo|Local file\r")));
    QCOMPARE(textOf(file, "xrvpVersion"), QStringLiteral("Local file"));
    QCoreApplication::removeTranslator(&translator);
}

/// A layer of an image that every page has something of to show, and each \a number something else.
std::unique_ptr<XRVJP2kLayer> TestPageForms::fullLayer(int number) const
{
    QByteArray rpc = "LINE_OFF: 5000\nSAMP_OFF: 4000\nLAT_OFF: 48\nLONG_OFF: 11\nHEIGHT_OFF: 500\nLINE_SCALE: 1\n"
                     "SAMP_SCALE: 1\nLAT_SCALE: 1\nLONG_SCALE: 1\nHEIGHT_SCALE: 1\n";
    for (const char *key : {"LINE_NUM", "LINE_DEN", "SAMP_NUM", "SAMP_DEN"}) {
        for (int i = 1; i <= 20; ++i)
            rpc += QByteArray(key) + "_COEFF_" + QByteArray::number(i) + ": " + QByteArray::number(number) + '\n';
    }
    folder.writeText(QStringLiteral("full%1_RPC.TXT").arg(number), rpc);
    const jp2maker::FileBytes image = jp2maker::make(colourImage(20 * number, 30));
    return openLayer(folder.write(QStringLiteral("full%1.jp2").arg(number),
                                  jp2maker::withBox(image, "xml ", "<a" + std::to_string(number) + "/>")));
}

void TestPageForms::layersInTurn_data()
{
    QTest::addColumn<bool>("isCleared"); // by whatever is no layer of ours
    QTest::addColumn<bool>("isOwn");     // a copy of what was shown is the page's own
    for (const QString &name : kPageClasses)
        QTest::newRow(qPrintable(name)) << name.contains(QLatin1String("Box"))
                                        << (name.endsWith(QLatin1String("RPCInfo")) ||
                                            name.endsWith(QLatin1String("Statistics")));
}

void TestPageForms::layersInTurn()
{
    QFETCH(bool, isCleared);
    QFETCH(bool, isOwn);
    const auto page = makePage(QString::fromLatin1(QTest::currentDataTag()));
    const auto copied = [&] { return isCleared ? QString() : copiedText(*page); }; // there is no button for it
    const QString nothing = isCleared ? QString() : kUntouched;
    ForeignLayer foreign;
    XRVJP2kLayer fresh(nullptr);
    const QVector<Korvane::Map::Layer *> others = {nullptr, &foreign, &fresh};
    for (Korvane::Map::Layer *other : others) {
        setLayer(*page, other);
        QCOMPARE(filledFields(*page), QStringList());
        QCOMPARE(copied(), other == &fresh && !isOwn ? QString() : nothing);
    }
    auto layer = fullLayer(1);
    setLayer(*page, layer.get());
    const QStringList fields = filledFields(*page);
    QVERIFY(!fields.isEmpty());
    for (Korvane::Map::Layer *other : others) {
        setLayer(*page, layer.get());
        QCOMPARE(filledFields(*page), fields);
        setLayer(*page, other);
        if (isCleared)
            QCOMPARE(itemsOf(*page, "comboBoxMetaBox"), QStringList());
        else
            QCOMPARE(filledFields(*page), fields);
        const bool isKept = !isCleared && (!other || (isOwn && other == &foreign));
        QCOMPARE(copied().size() > 100, isKept);
    }

    const auto second = fullLayer(2);
    setLayer(*page, second.get());
    QVERIFY(!filledFields(*page).isEmpty() && filledFields(*page) != fields);
    setLayer(*page, layer.get());
    layer.reset(); // while it is shown
    QCOMPARE(filledFields(*page), fields);
    QCOMPARE(copied() != nothing, isOwn);
    QVERIFY(QFile::remove(folder.path(QStringLiteral("full2.jp2"))));
    setLayer(*page, second.get());
    QCOMPARE(filledFields(*page).isEmpty(), isCleared);
}

QTEST_MAIN(TestPageForms)
#include "tst_pageforms.moc"
