#include "data/testfolder.h"
#include "layer/xrvjp2klayer.h"
#include "logging/logsinks.h"
#include "panels/xrvjp2kpreferences.h"

#include <QDGui/application.h>
#include <QDGui/stringutil.h>
#include <QDGui/system.h>
#include <xrv60/plklog.h>

#include <QCheckBox>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOptionGroupBox>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

using Korvane::Application;
using Korvane::Util::String::formatFileSize;

static quint64 machineMemory = 16384;

namespace Korvane {
namespace System {
quint64 getTotalRAM()
{
    return machineMemory;
}
} // namespace System
} // namespace Korvane

/// Files whose names begin with "held" are in use and stay, for root as well.
extern "C" __attribute__((visibility("default"))) int unlink(const char *path) noexcept
{
    const char *slash = strrchr(path, '/');
    if (strncmp(slash ? slash + 1 : path, "held", 4) == 0) {
        errno = EBUSY;
        return -1;
    }
    return unlinkat(AT_FDCWD, path, 0);
}

namespace {

constexpr quint64 kMegabyte = 1 << 20;

QVariant stored(const char *key)
{
    // Read by another object than the page's, from the file.
    Application::instance()->settings()->sync();
    const QSettings file(Application::instance()->settings()->fileName(), QSettings::IniFormat);
    return file.value(QLatin1String("XRVJP2kLayer/") + QLatin1String(key));
}

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

/// Answers message boxes in turn with the buttons given, and notes what they said.
class BoxAnswers : public QObject
{
public:
    explicit BoxAnswers(QList<QMessageBox::StandardButton> buttons)
        : buttons(std::move(buttons))
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            texts.append(box->windowTitle() + QLatin1Char('|') + box->text());
            offered = box->standardButtons();
            box->button(this->buttons.isEmpty() ? QMessageBox::Ok : this->buttons.takeFirst())->click();
        });
        timer.start(10);
    }

    QStringList texts;
    QMessageBox::StandardButtons offered;

private:
    QTimer timer;
    QList<QMessageBox::StandardButton> buttons;
};

} // namespace

/// The page's real widgets, a real settings file and real cache files.
class TestPreferencesPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void slotsInOrder();
    void defaultsOfTheMachine_data();
    void defaultsOfTheMachine();
    void nothingIsWrittenBeforeSaving();
    void savesWhatWasClicked();
    void slidersCountOnlyWhileDragged();
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
        page = std::make_unique<XRVJP2kPreferences>();
        page->show();
    }
    void click(const char *button);
    void save() { QMetaObject::invokeMethod(page.get(), "onSavePrefs"); }
    QString makeCacheFolder(const QString &name);
    void writeBytes(const QString &file, int count) const;

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kPreferences> page;
    QUrl openedUrl;
};

void TestPreferencesPage::init()
{
    machineMemory = 16384;
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
    const QString path = folder->path(name);
    QDir().mkpath(path);
    TestFolder::setSetting("XrvpCacheDir", path);
    return path;
}

void TestPreferencesPage::writeBytes(const QString &file, int count) const
{
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly));
    QCOMPARE(target.write(QByteArray(count, 'x')), qint64(count));
}

void TestPreferencesPage::slotsInOrder()
{
    const QMetaObject &meta = XRVJP2kPreferences::staticMetaObject;
    const QList<QByteArray> expected = {"init()",
                                        "onSavePrefs()",
                                        "onCacheDirSliderMove(int)",
                                        "onDiskCacheSliderMove(int)",
                                        "onEnableXRVPCache(bool)",
                                        "onChooseXRVPCacheDir(bool)",
                                        "onClipPercent(int)",
                                        "onUseBilinear(bool)",
                                        "onUseResilientDecoding(bool)",
                                        "onUseAdaptiveRendering(bool)",
                                        "onUseTexturing(bool)",
                                        "onUseWinHTTPInXRVP(bool)",
                                        "onAlwaysOpenProgressive(bool)",
                                        "onClearDiskCache(bool)",
                                        "onViewFiles(bool)",
                                        "onDefaults(bool)",
                                        "onLogXrv(bool)"};
    QCOMPARE(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(meta.method(meta.methodOffset() + i).methodSignature(), expected[i]);
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
    machineMemory = total;
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
    QVERIFY(!get<QToolButton>("diskCacheButton")->icon().isNull());
    QVERIFY(!get<QPushButton>("clearDiskCacheButton")->icon().pixmap(16).isNull());
}

void TestPreferencesPage::nothingIsWrittenBeforeSaving()
{
    show();
    click("useXrvTexture");
    click("defaultsButton");
    page.reset();
    QVERIFY(!stored("TextureDither").isValid());
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
    QCOMPARE(stored("OpenProgressive").toBool(), false);
    QCOMPARE(stored("OptimizeNearestNeighbour").toBool(), false);
    QCOMPARE(stored("AdaptiveRendering").toBool(), true);
    QCOMPARE(stored("TextureDither").toBool(), true);
    QCOMPARE(stored("ResilientDecoding").toBool(), false);
    QCOMPARE(stored("UseWinHTTPInXrvp").toBool(), true);
    QCOMPARE(stored("LogXrvEvents").toBool(), false);
    QCOMPARE(stored("LocalXrvpCache").toBool(), false);
    QCOMPARE(stored("DefaultClipTransform").toInt(), 77);
    QCOMPARE(stored("XRVPUserAgent").toString(), QString::fromUtf8("Gerät/1"));
    QCOMPARE(stored("XrvpCacheDir").toString(), QDir::tempPath() + QLatin1String("/QDViewerXrvpCache"));
    QCOMPARE(stored("CacheMaxMemMb").toULongLong(), 512ULL);
    QCOMPARE(stored("DiskCacheMaxSizeMb").toULongLong(), 500ULL);
    QCOMPARE(stored("OptimizeNonProgressive").toBool(), true);
    QVERIFY(!stored("LogLevel").isValid());
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

void TestPreferencesPage::slidersCountOnlyWhileDragged()
{
    TestFolder::setSetting("DiskCacheMaxSizeMb", 256);
    show();
    auto *memory = get<QSlider>("xrvpMemCacheDirSizeSlider");
    auto *disk = get<QSlider>("xrvpDiskCacheSizeSlider");
    QCOMPARE(disk->value(), 51);
    memory->setValue(70); // as a wheel or a key would do it
    disk->setValue(70);
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), QStringLiteral("512.00 MB"));

    const auto memoryPercent = static_cast<quint64>(drag(memory, 1.0));
    QCOMPARE(memoryPercent, 100ULL);
    QCOMPARE(get<QLabel>("xrvpCacheDirLabel")->text(), megabytes(2048, "  %2.2f"));
    const auto diskPercent = static_cast<quint64>(drag(disk, 0.0));
    QCOMPARE(diskPercent, 20ULL);
    QCOMPARE(get<QLabel>("xrvpDiskCacheLabel")->text(), megabytes(100, "  %2.2f"));
    save();
    QCOMPARE(stored("CacheMaxMemMb").toULongLong(), 2048ULL);
    QCOMPARE(stored("DiskCacheMaxSizeMb").toULongLong(), 100ULL);
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
    QCOMPARE(stored("TextureDither").toBool(), true);
    QCOMPARE(stored("XRVPUserAgent").toString(), QString());
    QCOMPARE(stored("XrvpCacheDir").toString(), QDir::tempPath() + QLatin1String("/QDViewerXrvpCache"));
    // These two are left alone.
    QCOMPARE(stored("OpenProgressive").toBool(), false);
    QCOMPARE(stored("AdaptiveRendering").toBool(), true);
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
    const int clip = stored("DefaultClipTransform").toInt();
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
    writeBytes(cache + QLatin1String("/a.data"), 1000);
    writeBytes(cache + QLatin1String("/b.cache"), 24);
    writeBytes(cache + QLatin1String("/c.txt"), 5000);
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
        writeBytes(cache + QLatin1Char('/') + QLatin1String(name), 10);
    QDir().mkdir(cache + QLatin1String("/folder.data"));
    show();
    BoxAnswers answers({QMessageBox::Cancel, QMessageBox::Ok});
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
        writeBytes(cache + QLatin1Char('/') + QLatin1String(name), 10);
    show();
    BoxAnswers answers({QMessageBox::Ok, QMessageBox::Ok});
    click("clearDiskCacheButton");
    QCOMPARE(answers.texts.value(1), QStringLiteral("Disk Cache|Not all files could be removed. Close all map views "
                                                    "before clearing the cache."));
    QCOMPARE(answers.offered, QMessageBox::Ok);
    QCOMPARE(QDir(cache).entryList(QDir::Files, QDir::Name),
             (QStringList{QStringLiteral("held.cache"), QStringLiteral("held.data")}));
    // So that the scratch folder can go.
    for (const char *name : {"held.data", "held.cache"})
        unlinkat(AT_FDCWD, QFile::encodeName(cache + QLatin1Char('/') + QLatin1String(name)).constData(), 0);
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
    BoxAnswers answers({});
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
    BoxAnswers answers({QMessageBox::Ok});
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
    bool isAccepting = false;
    QTimer answer;
    connect(&answer, &QTimer::timeout, this, [&] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        caption = dialog->windowTitle();
        dialog->setDirectory(chosen);
        if (isAccepting)
            static_cast<QDialog *>(dialog)->accept();
        else
            dialog->reject();
    });
    answer.start(10);
    click("diskCacheButton");
    save();
    QCOMPARE(stored("XrvpCacheDir").toString(), folder->path(QStringLiteral("old")));
    isAccepting = true;
    click("diskCacheButton");
    QCOMPARE(caption, QStringLiteral("Choose XRVP Cache Directory"));
    QCOMPARE(get<QLineEdit>("xrvpDiskCacheLocationEdit")->text(), shown);
    save();
    QCOMPARE(stored("XrvpCacheDir").toString(), chosen);
}

QTEST_MAIN(TestPreferencesPage)
#include "tst_preferencespage.moc"
