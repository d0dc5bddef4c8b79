#include "pages/xrvjp2klayerfileinfo.h"
#include "pages/xrvjp2klayerjp2fileinfo.h"
#include "pages/xrvjp2klayermetadatabox.h"
#include "pages/xrvjp2klayerrpcinfo.h"
#include "pages/xrvjp2klayerstatistics.h"
#include "pagetest.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTranslator>
#include <QtTest>

/// What the five forms have in common, and what they say before a layer is set.
class TestPageForms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forms_data();
    void forms();
    void slotOrder();
    void nothingCanBeTypedIn();
    void everythingFits_data();
    void everythingFits();
    void keyboardOrder();
    void translations();

private:
    static std::unique_ptr<QWidget> make(const QString &className);
    static void addPageRows();
};

namespace {

const QStringList kClasses = {QStringLiteral("XRVJP2kLayerFileInfo"), QStringLiteral("XRVJP2kLayerJP2FileInfo"),
                              QStringLiteral("XRVJP2kLayerStatistics"), QStringLiteral("XRVJP2kLayerRPCInfo"),
                              QStringLiteral("XRVJP2kLayerMetaDataBox")};

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

std::unique_ptr<QWidget> TestPageForms::make(const QString &className)
{
    switch (kClasses.indexOf(className)) {
    case 0:
        return std::make_unique<XRVJP2kLayerFileInfo>();
    case 1:
        return std::make_unique<XRVJP2kLayerJP2FileInfo>();
    case 2:
        return std::make_unique<XRVJP2kLayerStatistics>();
    case 3:
        return std::make_unique<XRVJP2kLayerRPCInfo>();
    default:
        return std::make_unique<XRVJP2kLayerMetaDataBox>();
    }
}

void TestPageForms::addPageRows()
{
    QTest::addColumn<QString>("className");
    for (const QString &name : kClasses)
        QTest::newRow(qPrintable(name)) << name;
}

void TestPageForms::forms_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("objectName");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("groupTitles");
    const auto row = [](int page, const char *objectName, const char *title, QSize size, const char *groupTitles) {
        QTest::newRow(qPrintable(kClasses[page]))
            << kClasses[page] << QString::fromLatin1(objectName) << QString::fromLatin1(title) << size
            << QString::fromLatin1(groupTitles);
    };
    row(0, "XRVJP2kLayerFileInfo", "XRV Info", QSize(414, 453), "XRV JP2 Compression Info");
    row(1, "XRVJP2kLayerJP2FileInfo", "JP2 Info", QSize(439, 455), "JPEG 2000 Header Info");
    row(2, "XRVJP2kLayerStatistics", "Statistics", QSize(354, 279), "Statistics");
    row(3, "XRVJP2kLayerRPCInfo", "RPC Info", QSize(353, 342), "Rapid Positioning Capability|Coefficients");
    row(4, "XRVJP2LayerMetaDataBox", "Metadata", QSize(321, 298), "Metadata Boxes");
}

void TestPageForms::forms()
{
    QFETCH(QString, className);
    const auto page = make(className);
    QCOMPARE(QString::fromLatin1(page->metaObject()->className()), className);
    QTEST(page->objectName(), "objectName");
    QTEST(page->windowTitle(), "title");
    QTEST(page->size(), "size");
    QVERIFY(!page->parent());
    QStringList groups;
    for (const QGroupBox *group : page->findChildren<QGroupBox *>())
        groups.append(group->title());
    QTEST(groups.join(QLatin1Char('|')), "groupTitles");
    for (const QLabel *label : page->findChildren<QLabel *>())
        QVERIFY2(label->buddy(), qPrintable(label->text())); // a screen reader names the field after it
    const auto *button = page->findChild<QPushButton *>(QStringLiteral("copyToClipboard"));
    QCOMPARE(bool(button), className != QLatin1String("XRVJP2kLayerMetaDataBox"));
    if (button)
        QCOMPARE(button->text(), QStringLiteral("Copy to Clipboard"));
}

void TestPageForms::slotOrder()
{
    const QMap<QString, QStringList> last = {
        {kClasses[0], {QStringLiteral("setLayer"), QStringLiteral("copyToClipboard"), QStringLiteral("apply")}},
        {kClasses[1], {QStringLiteral("setLayer"), QStringLiteral("copyToClipboard"), QStringLiteral("apply")}},
        {kClasses[2],
         {QStringLiteral("setLayer"), QStringLiteral("apply"), QStringLiteral("onBandChange"),
          QStringLiteral("copyToClipboard")}},
        {kClasses[3], {QStringLiteral("setLayer"), QStringLiteral("apply"), QStringLiteral("copyToClipboard")}},
        {kClasses[4], {QStringLiteral("setLayer"), QStringLiteral("apply"), QStringLiteral("onComboBoxActivated")}},
    };
    for (const QString &className : kClasses) {
        const auto page = make(className);
        const QMetaObject *meta = page->metaObject();
        QStringList names;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
            names.append(QString::fromLatin1(meta->method(i).name()));
        QCOMPARE(names, last[className]);
        QVERIFY(page->qt_metacast("com.korvane.viewer.ILayerPropertiesWidget/1.0"));
    }
}

void TestPageForms::nothingCanBeTypedIn()
{
    for (const QString &className : kClasses) {
        const auto page = make(className);
        for (const QLineEdit *field : page->findChildren<QLineEdit *>())
            QVERIFY2(field->isReadOnly() != (field->objectName() == QLatin1String("blockSize")),
                     qPrintable(field->objectName()));
        for (const QPlainTextEdit *field : page->findChildren<QPlainTextEdit *>()) {
            QVERIFY(field->isReadOnly());
            QVERIFY(field->textInteractionFlags() & Qt::TextSelectableByKeyboard);
        }
    }
}

void TestPageForms::everythingFits_data()
{
    addPageRows();
}

/// At the least size that the page takes no text is wider or higher than its place.
void TestPageForms::everythingFits()
{
    QFETCH(QString, className);
    const auto page = make(className);
    page->resize(page->minimumSizeHint());
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    for (const QLabel *label : page->findChildren<QLabel *>()) {
        const QSize needed = label->sizeHint();
        QVERIFY2(label->width() >= needed.width() && label->height() >= needed.height(), qPrintable(label->text()));
    }
    for (const QLineEdit *field : page->findChildren<QLineEdit *>())
        QVERIFY2(field->height() >= field->sizeHint().height(), qPrintable(field->objectName()));
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
    for (const QString &className : kClasses) {
        const auto page = make(className);
        const QString context = page->objectName() + QLatin1Char('|');
        QVERIFY(page->windowTitle().startsWith(context));
        for (const QLabel *label : page->findChildren<QLabel *>())
            QVERIFY2(label->text().startsWith(context), qPrintable(label->text()));
    }
    TestFolder folder;
    jp2maker::Options options;
    const auto layer = openLayer(
        folder.write(QStringLiteral("a.jp2"), jp2maker::withBox(jp2maker::make(options), "xml ", "<a/>")));
    XRVJP2kLayerMetaDataBox boxes;
    boxes.setLayer(layer.get());
    QCOMPARE(PageTest::textOf(boxes, "comboBoxMetaBox"), QStringLiteral("XRVJP2kLayerMetaDataBox|'xml ' Box #1:"));
    XRVJP2kLayerFileInfo file;
    file.setLayer(layer.get());
    QVERIFY(PageTest::copiedText(file).startsWith(
        QLatin1String("XRVJP2kLayerFileInfo|XRVP Version = XRVJP2kLayerFileInfo|Local file\r")));
    QCOMPARE(PageTest::textOf(file, "xrvpVersion"), QStringLiteral("Local file"));
    QCoreApplication::removeTranslator(&translator);
}

QTEST_MAIN(TestPageForms)
#include "tst_pageforms.moc"
