#include "data/testfolder.h"

#include <QDGui/ilayereditorplugin.h>
#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/layer.h>

#include <QJsonObject>
#include <QPluginLoader>
#include <QtTest>

#include <memory>

/// The library as a host meets it.
class TestPluginLoading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void metadata();
    void interfaces();
    void instanceIsMadeAnew();
    void unloadedWhileDecoding();
    void leftToTheEnd();

private:
    TestFolder folder;
    QString imageFile;
};

void TestPluginLoading::initTestCase()
{
    imageFile = folder.makeImage(QStringLiteral("noise.jp2"), noiseImage());
}

void TestPluginLoading::metadata()
{
    const QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    const QJsonObject metadata = loader.metaData();
    QCOMPARE(metadata[QLatin1String("IID")].toString(), QStringLiteral("com.korvane.viewer.plugin.XRVJP2kLayerPlugin"));
    QCOMPARE(metadata[QLatin1String("className")].toString(), QStringLiteral("XRVJP2kLayerPlugin"));
    QVERIFY(metadata[QLatin1String("MetaData")].toObject().isEmpty());
}

void TestPluginLoading::interfaces()
{
    QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    QObject *instance = loader.instance();
    QVERIFY2(instance, qPrintable(loader.errorString()));
    QCOMPARE(instance->qt_metacast("XRVJP2kLayerPlugin"), static_cast<void *>(instance));
    for (const char *name : {"ILayerPluginInfo", "ILayerPlugin", "ILayerEditorPlugin"}) {
        const QByteArray id = QByteArray("com.korvane.viewer.") + name + "/1.0";
        QVERIFY2(instance->qt_metacast(name), name);
        QCOMPARE(instance->qt_metacast(name), instance->qt_metacast(id.constData()));
    }
    QVERIFY(!instance->qt_metacast("NoSuchInterface"));
    QVERIFY(qobject_cast<ILayerPluginInfo *>(instance));
    QVERIFY(qobject_cast<ILayerPlugin *>(instance));
    QVERIFY(qobject_cast<ILayerEditorPlugin *>(instance));
    // The icons come along in the library.
    QVERIFY(!qobject_cast<ILayerPluginInfo *>(instance)->getIcon().pixmap(32).isNull());
    QVERIFY(loader.unload());
}

void TestPluginLoading::instanceIsMadeAnew()
{
    QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    QPointer<QObject> first = loader.instance();
    QCOMPARE(loader.instance(), first.data());
    delete first.data();
    QObject *second = loader.instance();
    QVERIFY(second);
    QCOMPARE(second->metaObject()->className(), "XRVJP2kLayerPlugin");
    QVERIFY(loader.unload());
}

void TestPluginLoading::unloadedWhileDecoding()
{
    for (const int percent : {0, 5, 20}) {
        QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
        auto *factory = qobject_cast<ILayerPlugin *>(loader.instance());
        QVERIFY(factory);
        std::unique_ptr<Korvane::Map::Layer> layer(factory->createLayer(false));
        QVERIFY(!layer->isValid() && !layer->parent());
        QCOMPARE(layer->metaObject()->className(),
                 qobject_cast<ILayerPluginInfo *>(loader.instance())->getClassName().toLatin1().constData());
        QVERIFY2(layer->setDataSource(imageFile), qPrintable(layer->getLastError()));
        layer->setView(1500, 1200, 0, 0, 1500, -1200);
        QVERIFY(QTest::qWaitFor([&] { return layer->getPercentComplete() >= percent; }, 60000));
        layer.reset();
        QVERIFY2(loader.unload(), qPrintable(loader.errorString()));
    }
}

void TestPluginLoading::leftToTheEnd()
{
    // Goes when the process does, after the application object: a crash then is this program's.
    QPluginLoader loader(QStringLiteral(XRV_PLUGIN_FILE));
    QVERIFY(loader.instance());
}

QTEST_MAIN(TestPluginLoading)
#include "tst_pluginloading.moc"
