#include "data/dialogwatch.h"
#include "data/testfolder.h"
#include "layer/xrvjp2klayer.h"
#include "logging/logsinks.h"
#include "panels/xrvjp2kpreferences.h"

#include <QDGui/application.h>
#include <QDGui/stringutil.h>
#include <xrv60/plklog.h>

#include <QCheckBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOptionGroupBox>
#include <QToolButton>
#include <QUrl>
#include <QtTest>

#include <memory>

using Korvane::Application;
using Korvane::Util::String::formatFileSize;

namespace {

constexpr quint64 kMegabyte = 1 << 20;

QString megabytes(quint64 size, const char *format = "%2.2f")
{
    return formatFileSize(size * kMegabyte, format);
}

QPoint checkMarkOf(const QGroupBox &group)
{
    QStyleOptionGroupBox option;
    option.initFrom(&group);
    option.text = group.title();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxCheckBox | QStyle::SC_GroupBoxLabel;
    return group.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxCheckBox, &group).center();
}

} // namespace

/// The page's real widgets, a real settings file and real cache files.
class TestPreferencesPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void defaultsOfTheMachine_data();
    void defaultsOfTheMachine();
    void nothingIsWrittenBeforeSaving();
    void savesWhatWasClicked();
    void slidersCountWhenAPersonMovesThem();
    void defaultsButton();
    void badSettings_data();
    void badSettings();
    void showsCacheUse();
    void clearsOnlyCacheFiles();
    void reportsFilesThatStay();
    void opensTheFolder_data();
    void opensTheFolder();
    void tellsWhenTheFolderDoesNotOpen();
    void choosesAFolder();

public Q_SLOTS:
    void takeUrl(const QUrl &url) { openedUrl = url; }

private:
    template <typename Widget> Widget *get(const char *name) const
    {
        return page->findChild<Widget *>(QLatin1String(name));
    }
    void show()
    {
        page = std::make_unique<XRVJP2kPreferences>(surroundings);
        page->show();
    }
    void click(const char *button);
    void save() { QMetaObject::invokeMethod(page.get(), "onSavePrefs"); }
    QString makeCacheFolder(const QString &name);
    /// So many bytes in a file of the cache.
    void writeIn(const char *name, int count) const
    {
        folder->writeText(cacheName + QLatin1Char('/') + QLatin1String(name), QByteArray(count, 'x'));
    }

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kPreferences> page;
    XRVJP2kPreferences::Surroundings surroundings;
    QString cacheName;
    QUrl openedUrl;
};

void TestPreferencesPage::init()
{
    surroundings = {16384,
                    [](const QString &name) { return !name.contains(QLatin1String("held")) && QFile::remove(name); }};
    folder = std::make_unique<TestFolder>();
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Some Viewer"));
}

void TestPreferencesPage::cleanup()
{
    page.reset();
    folder.reset();
    openedUrl.clear();
}

void TestPreferencesPage::click(const char *button)
{
    auto *target = get<QAbstractButton>(button);
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, QPoint(8, target->height() / 2));
}

QString TestPreferencesPage::makeCacheFolder(const QString &name)
{
    cacheName = name;
    const QString path = folder->path(name);
    QDir().mkpath(path);
    TestFolder::setSetting("XrvpCacheDir", path);
    return path;
}

void TestPreferencesPage::defaultsOfTheMachine_data()
{
    QTest::addColumn<quint64>("total");
    QTest::addColumn<quint64>("recommended");
    QTest::addColumn<int>("slider");
    QTest::newRow("large") << quint64(16384) << quint64(512) << 25;
    QTest::newRow("small") << quint64(1000) << quint64(250) << 100;
    QTest::newRow("unknown") << quint64(0) << quint64(0) << 100;
}

void TestPreferencesPage::defaultsOfTheMachine()
{
    QFETCH(quint64, total);
    QFETCH(quint64, recommended);
    surroundings.memory = total;
    show();
    QCOMPARE(page->objectName(), QStringLiteral("XRV JP2"));
    QCOMPARE(page->windowTitle(), QStringLiteral("XRV & JP2 Preferences"));
    QTEST(get<QSlider>("xrvpMemCacheDirSizeSlider")->value(), "slider");
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), QStringLiteral("512.00 MB"));
    QVERIFY(get<QLabel>("memCacheLabel")->text().endsWith(megabytes(recommended) + QLatin1String("</b>")));
    QCOMPARE(get<QLineEdit>("xrvpDiskCacheLocationEdit")->text(),
             QDir::tempPath() + QLatin1String("/QDViewerXrvpCache"));
    QCOMPARE(get<QLabel>("xrvpDiskCacheLabel")->text(), QStringLiteral("  500.00 MB"));
    QCOMPARE(get<QSlider>("xrvpDiskCacheSizeSlider")->value(), 100);
    QCOMPARE(get<QLineEdit>("userAgentLineEdit")->text(), QStringLiteral("Some Viewer"));
    QCOMPARE(get<QSpinBox>("clipPercent")->value(), 99);
    QVERIFY(get<QGroupBox>("diskCacheGroupBox")->isChecked());
    QVERIFY(get<QCheckBox>("useOpenProgressive")->isChecked() && get<QCheckBox>("useResilientDecoding")->isChecked());
    QVERIFY(!get<QCheckBox>("useXrvTexture")->isChecked() && !get<QCheckBox>("useBilinearSampling")->isChecked());
}

void TestPreferencesPage::nothingIsWrittenBeforeSaving()
{
    show();
    click("useXrvTexture");
    click("defaultsButton");
    page.reset();
    QVERIFY(!TestFolder::storedSetting("TextureDither").isValid());
    QVERIFY(Application::instance()->settings()->allKeys().isEmpty());
}

void TestPreferencesPage::savesWhatWasClicked()
{
    TestFolder::setSetting("LogLevel", 3);
    TestFolder::setSetting("OptimizeNonProgressive", true);
    show();
    for (const char *box : {"useOpenProgressive", "useBilinearSampling", "useAdaptiveRendering", "useXrvTexture",
                            "useResilientDecoding", "useWinHTTPInXRVP", "logXrvMessages"})
        click(box);
    auto *group = get<QGroupBox>("diskCacheGroupBox");
    QTest::mouseClick(group, Qt::LeftButton, Qt::NoModifier, checkMarkOf(*group));
    QVERIFY(!group->isChecked());
    auto *clip = get<QSpinBox>("clipPercent");
    clip->selectAll();
    QTest::keyClicks(clip, QStringLiteral("77"));
    get<QLineEdit>("userAgentLineEdit")->setText(QString::fromUtf8("Gerät/1"));
    get<QLineEdit>("xrvpDiskCacheLocationEdit")->setText(QStringLiteral("/typed/in/vain"));
    QVERIFY(charLogSink().isLevelEnabled(nullptr, PLK_LOG_FATAL));
    save();
    QCOMPARE(TestFolder::storedSetting("OpenProgressive").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("OptimizeNearestNeighbour").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("AdaptiveRendering").toBool(), true);
    QCOMPARE(TestFolder::storedSetting("TextureDither").toBool(), true);
    QCOMPARE(TestFolder::storedSetting("ResilientDecoding").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("UseWinHTTPInXrvp").toBool(), true);
    QCOMPARE(TestFolder::storedSetting("LogXrvEvents").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("LocalXrvpCache").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("DefaultClipTransform").toInt(), 77);
    QCOMPARE(TestFolder::storedSetting("XRVPUserAgent").toString(), QString::fromUtf8("Gerät/1"));
    QCOMPARE(TestFolder::storedSetting("XrvpCacheDir").toString(),
             QDir::tempPath() + QLatin1String("/QDViewerXrvpCache"));
    QCOMPARE(TestFolder::storedSetting("CacheMaxMemMb").toULongLong(), 512ULL);
    QCOMPARE(TestFolder::storedSetting("DiskCacheMaxSizeMb").toULongLong(), 500ULL);
    QCOMPARE(TestFolder::storedSetting("OptimizeNonProgressive").toBool(), true);
    QVERIFY(!TestFolder::storedSetting("LogLevel").isValid());
    // Logging alone follows at once, in both sinks.
    QVERIFY(!charLogSink().isLevelEnabled(nullptr, PLK_LOG_FATAL) &&
            !wcharLogSink().isLevelEnabled(nullptr, PLK_LOG_FATAL));
    click("logXrvMessages");
    save();
    QVERIFY(charLogSink().isLevelEnabled(nullptr, PLK_LOG_FATAL) &&
            wcharLogSink().isLevelEnabled(nullptr, PLK_LOG_FATAL));
}

/// The handle moved by the mouse, to about \a part of the slider's way; the value it then has.
static int drag(QSlider *slider, double part)
{
    const int y = slider->height() / 2;
    const auto placeOf = [slider](double share) { return 6 + qRound((slider->width() - 12) * share); };
    const double from = double(slider->value() - slider->minimum()) / (slider->maximum() - slider->minimum());
    QTest::mousePress(slider, Qt::LeftButton, Qt::NoModifier, QPoint(placeOf(from), y));
    QMouseEvent move(QEvent::MouseMove, QPointF(placeOf(part), y), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(slider, &move);
    QTest::mouseRelease(slider, Qt::LeftButton, Qt::NoModifier, QPoint(placeOf(part), y));
    return slider->value();
}

void TestPreferencesPage::slidersCountWhenAPersonMovesThem()
{
    TestFolder::setSetting("DiskCacheMaxSizeMb", 256);
    show();
    auto *memory = get<QSlider>("xrvpMemCacheDirSizeSlider");
    auto *disk = get<QSlider>("xrvpDiskCacheSizeSlider");
    QCOMPARE(disk->value(), 51);
    memory->setValue(70); // by the program
    disk->setValue(70);
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), QStringLiteral("512.00 MB"));

    QTest::keyClick(memory, Qt::Key_PageUp); // as a click beside the handle
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), megabytes(2048 * quint64(memory->value()) / 100, "  %2.2f"));

    QWheelEvent wheel(QPointF(5, 5), memory->mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    const int beforeWheel = memory->value();
    QApplication::sendEvent(memory, &wheel);
    QVERIFY(memory->value() < beforeWheel);
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), megabytes(2048 * quint64(memory->value()) / 100, "  %2.2f"));

    const auto memoryPercent = static_cast<quint64>(drag(memory, 1.0));
    QCOMPARE(memoryPercent, 100ULL);
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), megabytes(2048, "  %2.2f"));
    const auto diskPercent = static_cast<quint64>(drag(disk, 0.0));
    QCOMPARE(diskPercent, 20ULL);
    QCOMPARE(get<QLabel>("xrvpDiskCacheLabel")->text(), megabytes(100, "  %2.2f"));
    save();
    QCOMPARE(TestFolder::storedSetting("CacheMaxMemMb").toULongLong(), 2048ULL);
    QCOMPARE(TestFolder::storedSetting("DiskCacheMaxSizeMb").toULongLong(), 100ULL);
}

void TestPreferencesPage::defaultsButton()
{
    TestFolder::setSetting("OpenProgressive", false);
    TestFolder::setSetting("AdaptiveRendering", true);
    TestFolder::setSetting("CacheMaxMemMb", 1000);
    TestFolder::setSetting("XrvpCacheDir", QStringLiteral("/somewhere"));
    TestFolder::setSetting("LocalXrvpCache", false);
    TestFolder::setSetting("DefaultClipTransform", 50);
    show();
    QCOMPARE(get<QSlider>("xrvpMemCacheDirSizeSlider")->value(), 48);
    click("defaultsButton");
    QCOMPARE(get<QSlider>("xrvpMemCacheDirSizeSlider")->value(), 25);
    QVERIFY(get<QGroupBox>("diskCacheGroupBox")->isChecked());
    QCOMPARE(get<QSpinBox>("clipPercent")->value(), 99);
    save();
    QCOMPARE(TestFolder::storedSetting("TextureDither").toBool(), true);
    QCOMPARE(TestFolder::storedSetting("XRVPUserAgent").toString(), QString());
    QCOMPARE(TestFolder::storedSetting("XrvpCacheDir").toString(),
             QDir::tempPath() + QLatin1String("/QDViewerXrvpCache"));
    // These two are left alone.
    QCOMPARE(TestFolder::storedSetting("OpenProgressive").toBool(), false);
    QCOMPARE(TestFolder::storedSetting("AdaptiveRendering").toBool(), true);
}

void TestPreferencesPage::badSettings_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("memory no number") << QByteArray("CacheMaxMemMb") << QVariant(QStringLiteral("much"));
    QTest::newRow("memory huge") << QByteArray("CacheMaxMemMb") << QVariant(1000000000000ULL);
    QTest::newRow("memory negative") << QByteArray("CacheMaxMemMb") << QVariant(-1);
    QTest::newRow("disk huge") << QByteArray("DiskCacheMaxSizeMb") << QVariant(QStringLiteral("18446744073709551615"));
    QTest::newRow("disk no number") << QByteArray("DiskCacheMaxSizeMb") << QVariant(QStringLiteral("a lot"));
    QTest::newRow("clip negative") << QByteArray("DefaultClipTransform") << QVariant(-20);
    QTest::newRow("clip no number") << QByteArray("DefaultClipTransform") << QVariant(QStringLiteral("all"));
    QTest::newRow("clip huge") << QByteArray("DefaultClipTransform") << QVariant(4000000000U);
    QTest::newRow("folder of nothing") << QByteArray("XrvpCacheDir") << QVariant(QString());
    QTest::newRow("folder that cannot be") << QByteArray("XrvpCacheDir") << QVariant(QStringLiteral("/proc/no/such"));
    QTest::newRow("colour") << QByteArray("OutlineColor") << QVariant(QStringLiteral("no colour"));
    QTest::newRow("switch") << QByteArray("OpenProgressive") << QVariant(QStringLiteral("perhaps"));
    QTest::newRow("resampling") << QByteArray("ResampleType") << QVariant(77);
}

void TestPreferencesPage::badSettings()
{
    QFETCH(QByteArray, key);
    QFETCH(QVariant, value);
    TestFolder::setSetting(key.constData(), value);
    TestFolder::setSetting("DrawOutline", true);
    show();
    save();
    // What the page saves is what it shows.
    const int clip = TestFolder::storedSetting("DefaultClipTransform").toInt();
    QCOMPARE(clip, get<QSpinBox>("clipPercent")->value());
    QVERIFY(clip >= 1 && clip <= 100);
    TestFolder::setSetting(key.constData(), value);
    jp2maker::Options options;
    options.components[0].bits = 16;
    Korvane::XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(folder->makeImage(QStringLiteral("image.jp2"), options)));
    layer.setProgressive(false);
    viewWhole(layer);
    const QImage picture = paintedWhole(layer, Qt::magenta);
    QVERIFY(picture.pixelColor(30, 30) != QColor(Qt::magenta));
}

void TestPreferencesPage::showsCacheUse()
{
    const QString cache = makeCacheFolder(QString::fromUtf8("mein Gerät"));
    writeIn("a.data", 1000);
    writeIn("b.cache", 24);
    writeIn("c.txt", 5000);
    QDir().mkdir(cache + QLatin1String("/d.data"));
    show();
    QCOMPARE(get<QLabel>("xrvpDiskCacheSizeLabel")->text(), formatFileSize(1024, "%2.2f"));
    TestFolder::setSetting("XrvpCacheDir", folder->path(QStringLiteral("missing")));
    show();
    QCOMPARE(get<QLabel>("xrvpDiskCacheSizeLabel")->text(), formatFileSize(0, "%2.2f"));
}

void TestPreferencesPage::clearsOnlyCacheFiles()
{
    const QString cache = makeCacheFolder(QString::fromUtf8("Cache für Ströme"));
    for (const char *name : {"a.data", "b.cache", "c.txt", "data", "d.data.bak"})
        writeIn(name, 10);
    QDir().mkdir(cache + QLatin1String("/folder.data"));
    show();
    BoxWatch answers({QMessageBox::Cancel, QMessageBox::Ok});
    click("clearDiskCacheButton");
    QVERIFY(QFile::exists(cache + QLatin1String("/a.data")));
    answers.texts.clear();
    click("clearDiskCacheButton");
    QCOMPARE(answers.texts, QStringList{QStringLiteral("Disk Cache|Clearing the XRVP disk cache cannot be undone.\n\n"
                                                       "Are you sure you want to clear the disk cache?")});
    QCOMPARE(answers.offered, QMessageBox::Ok | QMessageBox::Cancel);
    QCOMPARE(QDir(cache).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
             (QStringList{QStringLiteral("c.txt"), QStringLiteral("d.data.bak"), QStringLiteral("data"),
                          QStringLiteral("folder.data")}));
}

void TestPreferencesPage::reportsFilesThatStay()
{
    const QString cache = makeCacheFolder(QStringLiteral("cache"));
    for (const char *name : {"a.data", "held.data", "held.cache", "z.cache"})
        writeIn(name, 10);
    show();
    const BoxWatch answers;
    click("clearDiskCacheButton");
    QCOMPARE(answers.texts.value(1), QStringLiteral("Disk Cache|Not all files could be removed. Close all map views "
                                                    "before clearing the cache."));
    QCOMPARE(answers.offered, QMessageBox::Ok);
    QCOMPARE(QDir(cache).entryList(QDir::Files, QDir::Name),
             (QStringList{QStringLiteral("held.cache"), QStringLiteral("held.data")}));
}

void TestPreferencesPage::opensTheFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("cache");
    QTest::newRow("blank and umlaut") << QString::fromUtf8("tief/für Ströme");
}

void TestPreferencesPage::opensTheFolder()
{
    QFETCH(QString, name);
    const QString cache = folder->path(name);
    TestFolder::setSetting("XrvpCacheDir", cache);
    show();
    // The address is made from the folder as it stands, so it has no scheme here.
    QDesktopServices::setUrlHandler(QString(), this, "takeUrl");
    const BoxWatch answers;
    click("viewFilesButton");
    QDesktopServices::unsetUrlHandler(QString());
    QVERIFY(QDir(cache).exists());
    QCOMPARE(openedUrl.path(), cache);
    QCOMPARE(answers.texts, QStringList());
}

void TestPreferencesPage::tellsWhenTheFolderDoesNotOpen()
{
    // A scheme that nothing on a desktop opens.
    const QString place = QStringLiteral("nonsense-scheme-of-this-test:/x");
    TestFolder::setSetting("XrvpCacheDir", place);
    const QString before = QDir::currentPath();
    QDir::setCurrent(folder->path(QString())); // where the folder of that name is made
    show();
    const BoxWatch answers;
    click("viewFilesButton");
    QDir::setCurrent(before);
    QCOMPARE(answers.texts,
             QStringList{QStringLiteral("Error|Could not open local XRVP cache folder '%1'.").arg(place)});
}

void TestPreferencesPage::choosesAFolder()
{
    makeCacheFolder(QStringLiteral("old"));
    const QString chosen = folder->path(QStringLiteral("new one"));
    QDir().mkpath(chosen);
    show();
    const QString shown = get<QLineEdit>("xrvpDiskCacheLocationEdit")->text();
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QString caption;
    const DialogWatch<QFileDialog> answer([&](QFileDialog &dialog) {
        caption = dialog.windowTitle();
        dialog.setDirectory(chosen);
        if (answer.shown == 2)
            static_cast<QDialog &>(dialog).accept();
        else
            dialog.reject();
    });
    click("diskCacheButton");
    save();
    QCOMPARE(TestFolder::storedSetting("XrvpCacheDir").toString(), folder->path(QStringLiteral("old")));
    click("diskCacheButton");
    QCOMPARE(caption, QStringLiteral("Choose XRVP Cache Directory"));
    QCOMPARE(get<QLineEdit>("xrvpDiskCacheLocationEdit")->text(), shown);
    save();
    QCOMPARE(TestFolder::storedSetting("XrvpCacheDir").toString(), chosen);
}

QTEST_MAIN(TestPreferencesPage)
#include "tst_preferencespage.moc"
