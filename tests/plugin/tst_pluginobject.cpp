#include "data/testfolder.h"
#include "plugin/xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <QDGui/ilayerpropertieswidget.h>
#include <QDGui/layer.h>
#include <QDGui/xrvpbrowser.h>

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <memory>

using Korvane::Gui::XRVPBrowser;

/// Identity and layer factory.
class TestPluginObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void identity();
    void enabledFlagIsSharedByInstances();
    void metaObjectDeclaresTwoSlots();
    void cancelledBrowser();
    void addressThatCannotBeOpened();
    void informationPages();

private:
    TestFolder folder;
};

void TestPluginObject::identity()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Somebody"));
    const XRVJP2kLayerPlugin plugin;
    QCOMPARE(plugin.getVersion(), QStringLiteral("6.0.0.1513"));
    QCOMPARE(plugin.getVendor(), QStringLiteral("Somebody"));
    QCOMPARE(plugin.getDescription(), QStringLiteral("XRV JPEG 2000"));
    QCOMPARE(plugin.getClassName(), QStringLiteral("Korvane::XRVJP2kLayer"));
    QCOMPARE(plugin.getId(), QStringLiteral("18B1BFEA-0F8D-4a6f-9B57-DB14C81B5C93"));
    QCOMPARE(plugin.getFileFilter(), QStringLiteral("XRV Image (*.xrv);;XRVP / JPIP Url(*.url);;JPEG 2000 Image(*.jp2 "
                                                    "*.j2k *.j2c *.jpc *.jpx *.jpf)"));
    QVERIFY(!plugin.getIcon().pixmap(32).isNull());
}

void TestPluginObject::enabledFlagIsSharedByInstances()
{
    XRVJP2kLayerPlugin one;
    QVERIFY(one.isEnabled());
    one.setEnabled(false);
    QVERIFY(!XRVJP2kLayerPlugin().isEnabled());
    XRVJP2kLayerPlugin().setEnabled(true);
    QVERIFY(one.isEnabled());
}

void TestPluginObject::metaObjectDeclaresTwoSlots()
{
    const QMetaObject &meta = XRVJP2kLayerPlugin::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("onOpenXRVP()"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(), QByteArray("onAddXrvpUrl(QString)"));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void TestPluginObject::cancelledBrowser()
{
    XRVJP2kLayerPlugin plugin;
    QTimer::singleShot(0, qApp, [] {
        if (auto *browser = qobject_cast<XRVPBrowser *>(QApplication::activeModalWidget()))
            browser->reject();
    });
    QVERIFY(!plugin.createLayer(true));
}

void TestPluginObject::addressThatCannotBeOpened()
{
    XRVJP2kLayerPlugin plugin;
    QString title;
    QString text;
    int buttons = 0;
    // Answers whatever dialog is open: first the browser, then the message.
    QTimer answer;
    connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto *browser = qobject_cast<XRVPBrowser *>(QApplication::activeModalWidget())) {
            browser->setAddress(QStringLiteral("xrvp://localhost:1/none.xrv"));
            browser->accept();
        } else if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            title = box->windowTitle();
            text = box->text();
            buttons = box->buttons().size();
            box->accept();
        }
    });
    answer.start(20);
    QVERIFY(!plugin.createLayer(true));
    QCOMPARE(title, QStringLiteral("XRV JP2 Error:"));
    QVERIFY(!text.isEmpty());
    QCOMPARE(buttons, 1);
}

void TestPluginObject::informationPages()
{
    XRVJP2kLayerPlugin plugin;
    const QStringList classes = {QStringLiteral("XRVJP2kLayerFileInfo"), QStringLiteral("XRVJP2kLayerJP2FileInfo"),
                                 QStringLiteral("XRVJP2kLayerStatistics"), QStringLiteral("XRVJP2kLayerRPCInfo"),
                                 QStringLiteral("XRVJP2kLayerMetaDataBox")};
    const QList<QWidget *> pages = plugin.getInfoPages() + plugin.getInfoPages();
    QCOMPARE(pages.size(), 2 * classes.size());
    QSet<QWidget *> different;
    for (int i = 0; i < pages.size(); ++i) {
        QCOMPARE(QString::fromLatin1(pages[i]->metaObject()->className()), classes[i % classes.size()]);
        QVERIFY(!pages[i]->parent());
        QVERIFY(qobject_cast<Korvane::ILayerPropertiesWidget *>(pages[i]));
        different.insert(pages[i]);
    }
    QCOMPARE(different.size(), pages.size());
    qDeleteAll(different);
}

QTEST_MAIN(TestPluginObject)
#include "tst_pluginobject.moc"
