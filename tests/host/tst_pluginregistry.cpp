#include <QDGui/ilayerplugin.h>
#include <QDGui/ilayerplugininfo.h>
#include <QDGui/layer.h>
#include <QDGui/pluginregistry.h>

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Korvane::PluginRegistry;

namespace {

const QString kGoodPlugin = QStringLiteral(GOOD_PLUGIN);
const QString kForeignPlugin = QStringLiteral(FOREIGN_PLUGIN);

} // namespace

class TestPluginRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsAndUnloads();
    void answersByNameAndById();
    void refusesWithAReason_data();
    void refusesWithAReason();
    void loadsAFolder();
    void findsThePluginForAFile_data();
    void findsThePluginForAFile();
    void leavesOutDisabledPlugins();
};

void TestPluginRegistry::loadsAndUnloads()
{
    for (int round = 0; round < 2; ++round) {
        PluginRegistry registry;
        QVERIFY2(registry.loadFile(kGoodPlugin), qPrintable(registry.getErrors().join(QLatin1Char('\n'))));
        const QVector<PluginRegistry::Plugin> plugins = registry.getPlugins();
        QCOMPARE(plugins.size(), 1);
        QVERIFY(plugins[0].info && plugins[0].factory && !plugins[0].editor);
        std::unique_ptr<Korvane::Map::Layer> layer(plugins[0].factory->createLayer(false));
        QVERIFY(layer);
        const QPointer<QObject> instance(plugins[0].instance);
        layer.reset();
        registry.unloadAll();
        QVERIFY(instance.isNull());
        QVERIFY(registry.getPlugins().isEmpty());
        QVERIFY(!registry.findForFile(QStringLiteral("a.jp2")));
    }
}

void TestPluginRegistry::answersByNameAndById()
{
    PluginRegistry registry;
    QVERIFY(registry.loadFile(kGoodPlugin));
    const PluginRegistry::Plugin plugin = registry.getPlugins().constFirst();
    QCOMPARE(plugin.instance->qt_metacast("ILayerPlugin"), static_cast<void *>(plugin.factory));
    QCOMPARE(plugin.instance->qt_metacast("com.korvane.viewer.ILayerPlugin/1.0"), static_cast<void *>(plugin.factory));
    QCOMPARE(plugin.instance->qt_metacast("com.korvane.viewer.ILayerPluginInfo/1.0"), static_cast<void *>(plugin.info));
    QCOMPARE(plugin.instance->qt_metacast("com.korvane.viewer.ILayerEditorPlugin/1.0"), nullptr);
}

void TestPluginRegistry::refusesWithAReason_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("no such file") << QStringLiteral("/no/such/plugin.so");
    QTest::newRow("not a library") << QFINDTESTDATA("tst_pluginregistry.cpp");
    QTest::newRow("a plug-in for others") << kForeignPlugin;
    QTest::newRow("the same again") << kGoodPlugin;
}

void TestPluginRegistry::refusesWithAReason()
{
    QFETCH(QString, fileName);
    PluginRegistry registry;
    QVERIFY(registry.loadFile(kGoodPlugin));
    QVERIFY(!registry.loadFile(fileName));
    QCOMPARE(registry.getPlugins().size(), 1);
    QCOMPARE(registry.getErrors().size(), 1);
    QVERIFY2(registry.getErrors().constFirst().contains(QFileInfo(fileName).fileName()),
             qPrintable(registry.getErrors().constFirst()));
    QVERIFY(registry.findForFile(QStringLiteral("a.jp2")));
}

void TestPluginRegistry::loadsAFolder()
{
    const QTemporaryDir folder;
    QFile broken(folder.filePath(QStringLiteral("broken.so")));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("not a library at all");
    broken.close();
    QFile note(folder.filePath(QStringLiteral("readme.txt")));
    QVERIFY(note.open(QIODevice::WriteOnly));
    QVERIFY(QFile::copy(kGoodPlugin, folder.filePath(QFileInfo(kGoodPlugin).fileName())));

    PluginRegistry registry;
    QCOMPARE(registry.loadFolder(QStringLiteral("/no/such/folder")), 0);
    QVERIFY(registry.getErrors().isEmpty());
    QCOMPARE(registry.loadFolder(folder.path()), 1);
    QCOMPARE(registry.getErrors().size(), 1);
    QVERIFY(registry.getErrors().constFirst().contains(QStringLiteral("broken.so")));
}

void TestPluginRegistry::findsThePluginForAFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("one of its extensions") << QStringLiteral("/data/a.abc") << true;
    QTest::newRow("capitals") << QStringLiteral("C:/DATA/A.JP2") << true;
    QTest::newRow("second pattern of a filter") << QStringLiteral("a.b.j2k") << true;
    QTest::newRow("beyond its filter") << QStringLiteral("a.More") << true;
    QTest::newRow("stream") << QStringLiteral("xrvps://server/image.dat") << true;
    QTest::newRow("only begins like one") << QStringLiteral("a.jp2x") << false;
    QTest::newRow("extension of a folder") << QStringLiteral("/data.jp2/a") << false;
    QTest::newRow("another kind of file") << QStringLiteral("a.tif") << false;
    QTest::newRow("no name") << QString() << false;
}

void TestPluginRegistry::findsThePluginForAFile()
{
    QFETCH(QString, fileName);
    QFETCH(bool, isFound);
    PluginRegistry registry;
    QVERIFY(registry.loadFile(kGoodPlugin));
    QCOMPARE(registry.findForFile(fileName) != nullptr, isFound);
}

void TestPluginRegistry::leavesOutDisabledPlugins()
{
    PluginRegistry registry;
    QVERIFY(registry.loadFile(kGoodPlugin));
    QVERIFY(registry.getFileFilter().startsWith(
        QStringLiteral("All supported files (*.abc *.url *.jp2 *.j2k *.more *.most);;Plain")));
    registry.getPlugins().constFirst().info->setEnabled(false);
    QVERIFY(!registry.findForFile(QStringLiteral("a.jp2")));
    QVERIFY(!registry.getFileFilter().contains(QStringLiteral("jp2")));
    // A stored layer needs its own plug-in, whether it is offered for new files or not.
    QVERIFY(registry.findForClass(QStringLiteral("FakeLayer")));
    QVERIFY(!registry.findForClass(QStringLiteral("OtherLayer")));
}

QTEST_MAIN(TestPluginRegistry)
#include "tst_pluginregistry.moc"
