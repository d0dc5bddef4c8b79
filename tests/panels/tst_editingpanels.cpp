#include "data/dialogwatch.h"
#include "host/fakelayer.h"
#include "layer/layertest.h"
#include "panels/sunshadewidget.h"
#include "panels/xrvjp2kproperties.h"
#include "panels/xrvjp2ksunshade.h"

#include <QDGui/application.h>
#include <QDGui/mapview.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>
#include <QtTest>

#include <cmath>

using Korvane::XRVJP2kLayer;

namespace {

constexpr int kPatienceMs = 30000;

/// Mean difference of the red channels.
double meanDifference(const QImage &a, const QImage &b)
{
    double sum = 0.0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qRed(a.pixel(x, y)) - qRed(b.pixel(x, y)));
    return sum / (a.width() * a.height());
}

} // namespace

/// The panels' real widgets, driven by mouse and keys, on a real layer with a real file.
class TestEditingPanels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void loadingCallsNoSetter();
    void transparency();
    void tones();
    void dynamicRange();
    void qualityLayers();
    void withoutHeader();
    void bands();
    void opacityBand();
    void checkBoxes_data();
    void checkBoxes();
    void resampling();
    void outline();
    void readLineMethod();
    void otherLayers();
    void deletedLayer();
    void draggingShowsTheLastValue();

    void sunshadeLoadsWithoutSending();
    void sunshadeSetsTheLayer();
    void sunshadeOfOthers();
    void sunshadeRose();
    void sunFollowsTheMouse();

private:
    void open(const jp2maker::Options &options);
    void openSunshade();
    template <typename Widget> Widget *get(const char *name) const
    {
        return form->findChild<Widget *>(QLatin1String(name));
    }
    void type(const char *spinBox, const char *digits);
    void click(const char *button);
    QImage painted()
    {
        viewWhole(*layer);
        return paintedWhole(*layer);
    }

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayer> layer;
    std::unique_ptr<XRVJP2kProperties> panel;
    std::unique_ptr<XRVJP2kSunshade> sunshade;
    QWidget *form = nullptr; ///< one of the two
};

void TestEditingPanels::init()
{
    folder = std::make_unique<TestFolder>();
    TestFolder::setSetting("OpenProgressive", false); // decodes within paint(), so that pixels can be looked at at once
    panel = std::make_unique<XRVJP2kProperties>();
    form = panel.get();
    panel->show();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TestEditingPanels::cleanup()
{
    sunshade.reset();
    panel.reset();
    layer.reset();
    folder.reset();
}

void TestEditingPanels::open(const jp2maker::Options &options)
{
    layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), options));
    viewWhole(*layer);
    panel->onLayerActivated(layer.get());
}

void TestEditingPanels::openSunshade()
{
    open(colourImage(16, 16));
    sunshade = std::make_unique<XRVJP2kSunshade>();
    form = sunshade.get();
    sunshade->onLayerActivated(layer.get());
    sunshade->show();
}

void TestEditingPanels::type(const char *spinBox, const char *digits)
{
    auto *box = get<QSpinBox>(spinBox);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QLatin1String(digits));
    QTest::keyClick(box, Qt::Key_Return);
}

void TestEditingPanels::click(const char *button)
{
    auto *target = get<QAbstractButton>(button);
    // On the left, where a check box has its mark.
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, QPoint(8, target->height() / 2));
}

void TestEditingPanels::loadingCallsNoSetter()
{
    open(colourImage(16, 16));
    // Values that the widgets show rounded down: had a setter been called, they would be gone.
    layer->setTransparency(0.333);
    layer->setContrast(1.239);
    layer->setBrightness(0.757);
    layer->setBandList({2, 2, 2});
    layer->setDrawOutline(true);
    layer->setAdaptiveRoam(true);
    layer->setResampleType(XRVJP2kLayer::Bilinear);
    layer->setPixmapSmoothing(false); // as no choice in the panel leaves it
    const quint64 refreshes = layer->getRefreshCount();
    // From a layer with other values in every widget.
    XRVJP2kLayer other(nullptr);
    panel->onLayerActivated(&other);
    panel->onLayerActivated(layer.get());
    QVERIFY(get<QCheckBox>("drawImageOutlineCheckBox")->isChecked());
    QCOMPARE(get<QComboBox>("resampleTypeComboBox")->currentIndex(), 1);
    QVERIFY(!layer->getPixmapSmoothing());
    QCOMPARE(get<QSlider>("transparencySlider")->value(), 66);
    QCOMPARE(get<QSpinBox>("transparencySpinBox")->value(), 66);
    QCOMPARE(get<QSlider>("contrastSlider")->value(), 123);
    QCOMPARE(get<QSpinBox>("brightnessSpinBox")->value(), 75);
    QCOMPARE(get<QComboBox>("redBandComboBox")->currentIndex(), 2);
    QCOMPARE(layer->getTransparency(), 0.333);
    QCOMPARE(layer->getContrast(), 1.239);
    QCOMPARE(layer->getBrightness(), 0.757);
    QCOMPARE(layer->getRefreshCount(), refreshes);
    QVERIFY(!Korvane::Application::instance()->settings()->contains(QStringLiteral("XRVJP2kLayer/OutlineColor")));
}

void TestEditingPanels::transparency()
{
    open(colourImage(16, 16));
    const quint64 refreshes = layer->getRefreshCount();
    type("transparencySpinBox", "25");
    QCOMPARE(layer->getTransparency(), 0.75);
    QCOMPARE(get<QSlider>("transparencySlider")->value(), 25);
    QVERIFY(layer->getRefreshCount() > refreshes);
    // Three quarters of blue 50 and one of the white below.
    QVERIFY(std::abs(qBlue(painted().pixel(3, 3)) - (0.75 * 50 + 0.25 * 255)) <= 1.0);
    click("resetTransparency");
    QCOMPARE(layer->getTransparency(), 1.0);
    QCOMPARE(painted().pixel(3, 3), colourOf(3, 3));
    auto *slider = get<QSlider>("transparencySlider");
    QTest::keyClick(slider, Qt::Key_PageUp);
    QCOMPARE(layer->getTransparency(), 0.9);
    QCOMPARE(get<QSpinBox>("transparencySpinBox")->value(), 10);
}

void TestEditingPanels::tones()
{
    open(colourImage(160, 8));
    type("contrastSpinBox", "150");
    QCOMPARE(layer->getContrast(), 1.5);
    type("brightnessSpinBox", "60");
    QCOMPARE(layer->getBrightness(), 0.6);
    QVERIFY(painted().pixel(150, 1) != colourOf(150, 1));
    click("resetContrast");
    click("resetBrightness");
    QCOMPARE(get<QSlider>("contrastSlider")->value(), 100);
    QCOMPARE(get<QSlider>("brightnessSlider")->value(), 100);
    QCOMPARE(painted().pixel(150, 1), colourOf(150, 1));
}

/// Cells from 0 to 1000, and one in a hundred at the far end of 16 bits.
static jp2maker::Options imageWithOutliers()
{
    jp2maker::Options options;
    options.components[0].bits = 16;
    options.cell = [](int, int x, int y) { return (y * 64 + x) % 100 == 0 ? 65535 : (y * 64 + x) * 1000 / 4096; };
    return options;
}

void TestEditingPanels::dynamicRange()
{
    open(imageWithOutliers());
    type("draSpinBox", "100");
    QCOMPARE(layer->getTransformClip(), 100);
    const QPoint bright(30, 61); // cell 960 or so
    QVERIFY(qRed(painted().pixel(bright)) < 10);
    type("draSpinBox", "1");
    type("draSpinBox", "0");
    QCOMPARE(get<QSpinBox>("draSpinBox")->value(), 1);
    type("draSpinBox", "90");
    QCOMPARE(layer->getTransformClip(), 90);
    QCOMPARE(get<QSlider>("draSlider")->value(), 90);
    QVERIFY(qRed(painted().pixel(bright)) > 200);
    QVERIFY(qRed(painted().pixel(1, 1)) < 30);
    for (const auto &[stored, expected] :
         {std::pair<QVariant, int>({}, 99), {80, 80}, {-7, 1}, {QStringLiteral("most"), 1}}) {
        if (stored.isValid())
            TestFolder::setSetting("DefaultClipTransform", stored);
        type("draSpinBox", "50");
        click("resetDRA");
        QCOMPARE(layer->getTransformClip(), expected);
        QCOMPARE(get<QSpinBox>("draSpinBox")->value(), expected);
    }
}

void TestEditingPanels::qualityLayers()
{
    jp2maker::Options options;
    options.width = options.height = 128;
    options.layerRates = {60, 15, 1};
    options.cell = [](int, int x, int y) { return (x * 7919 + y * 104729 + x * y * 31) % 251; };
    open(options);
    QVERIFY(get<QGroupBox>("groupBoxQuality")->isEnabled());
    QCOMPARE(get<QSlider>("jp2QualitySlider")->maximum(), 3);
    QCOMPARE(get<QSlider>("jp2QualitySlider")->value(), 3);
    const QImage best = painted();
    type("jp2QualitySpinBox", "1");
    QCOMPARE(layer->getJp2QualityLayers(), 1);
    const double coarsest = meanDifference(painted(), best);
    type("jp2QualitySpinBox", "2");
    const double coarse = meanDifference(painted(), best);
    QVERIFY2(coarsest > coarse && coarse > 1.0, qPrintable(QStringLiteral("%1 %2").arg(coarsest).arg(coarse)));
    click("resetJp2Quality");
    QCOMPARE(layer->getJp2QualityLayers(), 3);
    QCOMPARE(painted(), best);
}

void TestEditingPanels::withoutHeader()
{
    open(colourImage(8, 8));
    XRVJP2kLayer closed(nullptr);
    panel->onLayerActivated(&closed);
    QVERIFY(panel->isEnabled());
    QVERIFY(!get<QGroupBox>("groupBoxQuality")->isEnabled());
    get<QToolButton>("resetJp2Quality")->click();
    QCOMPARE(closed.getJp2QualityLayers(), -1);
    QCOMPARE(get<QComboBox>("redBandComboBox")->count(), 0);
}

void TestEditingPanels::bands()
{
    open(colourImage(16, 16));
    QCOMPARE(get<QComboBox>("redBandComboBox")->count(), 3);
    QVERIFY(!get<QComboBox>("opacityBandComboBox")->isEnabled());
    QTest::keyClick(get<QComboBox>("redBandComboBox"), Qt::Key_Down);
    QTest::keyClick(get<QComboBox>("blueBandComboBox"), Qt::Key_Home);
    QCOMPARE(layer->getBandList(), (QVector<int>{1, 1, 0}));
    QCOMPARE(painted().pixel(11, 5), qRgb(5, 5, 11));
}

void TestEditingPanels::opacityBand()
{
    jp2maker::Options options = colourImage(16, 16);
    options.components.resize(4);
    options.opacityLast = true;
    options.cell = [](int component, int, int) { return component == 3 ? 0 : 100; };
    open(options);
    auto *box = get<QComboBox>("opacityBandComboBox");
    QVERIFY(box->isEnabled());
    QCOMPARE(box->currentText(), QStringLiteral("AllOpacity"));
    QCOMPARE(painted().pixel(5, 5), qRgb(255, 255, 255));
    QTest::keyClick(box, Qt::Key_Up);
    QCOMPARE(layer->getBandList().size(), 3);
    QCOMPARE(painted().pixel(5, 5), qRgb(100, 100, 100));
    // Opacity shown as a colour is none, also when the layer is activated again.
    get<QComboBox>("blueBandComboBox")->setCurrentIndex(3);
    Q_EMIT get<QComboBox>("blueBandComboBox")->activated(3);
    panel->onLayerActivated(layer.get());
    QCOMPARE(box->currentText(), QStringLiteral("None"));
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(layer->getBandList(), QVector<int>({0, 1, 3, 3}));
}

void TestEditingPanels::checkBoxes_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QByteArray>("property");
    QTest::newRow("progressive") << QByteArray("progressiveCheckbox") << QByteArray("Progressive");
    QTest::newRow("adaptive") << QByteArray("adaptiveRoamCheckbox") << QByteArray("AdaptiveRoam");
    QTest::newRow("backing") << QByteArray("backingStoreCheckBox") << QByteArray("BackingStore");
    QTest::newRow("dither") << QByteArray("textureDitherCheckBox") << QByteArray("TextureDither");
    QTest::newRow("outline") << QByteArray("drawImageOutlineCheckBox") << QByteArray("DrawOutline");
}

void TestEditingPanels::checkBoxes()
{
    QFETCH(QByteArray, box);
    QFETCH(QByteArray, property);
    open(colourImage(8, 8));
    auto *widget = get<QCheckBox>(box.constData());
    const bool before = layer->property(property.constData()).toBool();
    QCOMPARE(widget->isChecked(), before);
    for (bool expected : {!before, before}) {
        click(box.constData());
        QCOMPARE(widget->isChecked(), expected);
        QCOMPARE(layer->property(property.constData()).toBool(), expected);
    }
    QVERIFY(layer->isValid());
}

void TestEditingPanels::resampling()
{
    jp2maker::Options options;
    options.width = options.height = 16;
    options.cell = [](int, int x, int) { return x < 8 ? 0 : 200; };
    open(options);
    const auto greys = [this] {
        QSet<int> found;
        viewWhole(*layer, 8);
        const QImage picture = paintedWhole(*layer, Qt::white, 8);
        for (int x = 0; x < picture.width(); ++x)
            found.insert(qRed(picture.pixel(x, 64)));
        return found;
    };
    QCOMPARE(greys(), (QSet<int>{0, 200}));
    QTest::keyClick(get<QComboBox>("resampleTypeComboBox"), Qt::Key_Down);
    QCOMPARE(layer->getResampleType(), XRVJP2kLayer::Bilinear);
    QVERIFY(layer->getPixmapSmoothing());
    QVERIFY(greys().size() > 4);
    QTest::keyClick(get<QComboBox>("resampleTypeComboBox"), Qt::Key_Up);
    QVERIFY(!layer->getPixmapSmoothing());
    QCOMPARE(greys(), (QSet<int>{0, 200}));
}

void TestEditingPanels::outline()
{
    open(colourImage(16, 16));
    click("drawImageOutlineCheckBox");
    QCOMPARE(painted().pixel(7, 0), qRgb(0, 255, 255));
    QCOMPARE(painted().pixel(7, 7), colourOf(7, 7));

    QColor offered;
    const DialogWatch<QColorDialog> watch([&](QColorDialog &dialog) {
        offered = dialog.currentColor();
        dialog.setCurrentColor(QColor(200, 10, 20));
        static_cast<QDialog &>(dialog).done(watch.shown == 2);
    });
    click("outlineColorButton");
    QCOMPARE(layer->getOutlineColor(), QColor(0, 255, 255));
    click("outlineColorButton");
    QCOMPARE(offered, QColor(0, 255, 255));
    QCOMPARE(painted().pixel(7, 0), qRgb(200, 10, 20));
    auto *frame = get<QFrame>("colorFrame");
    QCOMPARE(frame->styleSheet(), QStringLiteral("background-color: rgb(200, 10, 20);"));
    QCOMPARE(frame->grab().toImage().pixel(frame->width() / 2, frame->height() / 2), qRgb(200, 10, 20));
    QCOMPARE(XRVJP2kLayer(nullptr).getOutlineColor(), QColor(200, 10, 20));
}

void TestEditingPanels::readLineMethod()
{
    open(colourImage(8, 8));
    // Never offered, but the slots stay in place.
    const auto choose = [this](int id) {
        QMetaObject::invokeMethod(panel.get(), "on_readLineGroupBox_buttonClicked", Q_ARG(int, id));
        return layer->getReadRGBA();
    };
    QVERIFY(!choose(1));
    QVERIFY(!choose(7));
    QVERIFY(choose(0));
    QMetaObject::invokeMethod(panel.get(), "on_freeCacheCheckBox_stateChanged", Q_ARG(int, 0));
    QVERIFY(!layer->getFreeCache());
}

void TestEditingPanels::otherLayers()
{
    open(colourImage(8, 8));
    QVERIFY(panel->isEnabled());
    FakeLayer plain(QRectF(0, 0, 1, -1));
    panel->onLayerActivated(&plain);
    QVERIFY(!panel->isEnabled());
    get<QSlider>("transparencySlider")->setValue(50);
    QCOMPARE(get<QSpinBox>("transparencySpinBox")->value(), 50);
    QCOMPARE(layer->getTransparency(), 1.0);
    panel->onLayerActivated(layer.get());
    QCOMPARE(get<QSlider>("transparencySlider")->value(), 0);
    panel->onLayerActivated(nullptr);
    QVERIFY(!panel->isEnabled());
}

void TestEditingPanels::deletedLayer()
{
    open(colourImage(8, 8));
    const DialogWatch<QColorDialog> watch([this](QColorDialog &dialog) {
        layer.reset();
        dialog.setCurrentColor(Qt::red);
        dialog.accept();
    });
    click("outlineColorButton");
    type("transparencySpinBox", "40");
    click("progressiveCheckbox");
    QTest::keyClick(get<QComboBox>("redBandComboBox"), Qt::Key_Down);
    click("resetJp2Quality");
    QVERIFY(!layer);
}

void TestEditingPanels::draggingShowsTheLastValue()
{
    TestFolder::setSetting("OpenProgressive", true);
    jp2maker::Options options = imageWithOutliers();
    options.width = options.height = 600;
    options.cell = [](int, int x, int y) { return (x * 17 + y * 29) % 5000; };
    open(options);
    XRVJP2kLayer reference(nullptr);
    QVERIFY(reference.setDataSource(layer->getDataSource()));
    reference.setTransformClip(60);
    viewWhole(reference);
    auto *slider = get<QSlider>("draSlider");
    for (int value = 99; value >= 60; --value) {
        slider->setValue(value);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(reference.getPercentComplete()), 100, kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(qAlpha(paintedWhole(reference, Qt::transparent).pixel(5, 5)) == 255, kPatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(paintedWhole(*layer), paintedWhole(reference), kPatienceMs);
}

void TestEditingPanels::sunshadeLoadsWithoutSending()
{
    openSunshade();
    layer->setAzumith(359.9);
    layer->setElevation(12.7);
    layer->setHillShade(true);
    const quint64 refreshes = layer->getRefreshCount();
    sunshade->onLayerActivated(layer.get());
    QVERIFY(sunshade->isEnabled());
    QCOMPARE(get<QSpinBox>("azumithSpinBox")->value(), 359);
    QCOMPARE(get<QSpinBox>("elevationSpinBox")->value(), 12);
    QVERIFY(get<QCheckBox>("hillShadeCheckBox")->isChecked());
    QCOMPARE(layer->getAzumith(), 359.9);
    QCOMPARE(layer->getElevation(), 12.7);
    QCOMPARE(layer->getRefreshCount(), refreshes);
}

void TestEditingPanels::sunshadeSetsTheLayer()
{
    openSunshade();
    const quint64 refreshes = layer->getRefreshCount();
    auto *box = get<QCheckBox>("hillShadeCheckBox");
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    QVERIFY(layer->getHillShade());
    QVERIFY(layer->getRefreshCount() > refreshes);
    // The veil over the middle, and the rim that it leaves clear.
    QCOMPARE(paintedWhole(*layer).pixel(8, 8), qRgb(0, 0, 0));
    QCOMPARE(paintedWhole(*layer).pixel(0, 0), qRgb(255, 255, 255));
    type("azumithSpinBox", "123");
    QCOMPARE(layer->getAzumith(), 123.0);
    type("azumithSpinBox", "400"); // the last digit does not fit
    QCOMPARE(layer->getAzumith(), 40.0);
    QTest::keyClick(get<QSpinBox>("elevationSpinBox"), Qt::Key_Up);
    QCOMPARE(layer->getElevation(), 46.0);
    get<QSpinBox>("azumithSpinBox")->setValue(400);
    QCOMPARE(layer->getAzumith(), 360.0);
}

void TestEditingPanels::sunshadeOfOthers()
{
    openSunshade();
    QMdiSubWindow plainWindow;
    plainWindow.setWidget(new QWidget);
    QMdiSubWindow mapWindow;
    mapWindow.setWidget(new Korvane::Map::MapView);
    sunshade->onSubWindowActivated(&plainWindow);
    QVERIFY(!sunshade->isEnabled());
    sunshade->onSubWindowActivated(&mapWindow);
    QVERIFY(sunshade->isEnabled());
    sunshade->onSubWindowActivated(nullptr);
    QVERIFY(!sunshade->isEnabled());
    sunshade->onLayerActivated(nullptr);
    sunshade->onSubWindowActivated(&mapWindow);
    get<QSpinBox>("azumithSpinBox")->setValue(77);
    QCOMPARE(layer->getAzumith(), 45.0);
    sunshade->onLayerActivated(layer.get());
    layer.reset();
    get<QSpinBox>("azumithSpinBox")->setValue(78);
}

/// Whether something darker than the background is drawn on any pixel around \a place.
static bool isDrawn(const QImage &picture, const QPoint &place)
{
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x)
            if (qRed(picture.pixel(place + QPoint(x, y))) < 215)
                return true;
    return false;
}

void TestEditingPanels::sunshadeRose()
{
    SunShadeWidget widget(nullptr);
    QPalette white;
    white.setColor(QPalette::Window, Qt::white);
    widget.setPalette(white);
    widget.resize(300, 200);
    const QImage picture = widget.grab().toImage();
    // The square is 200 wide from x = 50; the outer ring spans 180 from (60, 10), and each further one starts 20 later.
    // A little above the horizontal line, which crosses them all.
    const int y = 88;
    for (int i = 0; i < 5; ++i) {
        const double radius = 90.0 - 20.0 * i;
        const double x = 150.0 - std::sqrt(radius * radius - 12.0 * 12.0 * (radius > 12.0 ? 1.0 : 0.0));
        if (radius > 12.0)
            QVERIFY2(isDrawn(picture, QPoint(qRound(x), y)), qPrintable(QString::number(i)));
    }
    QVERIFY(isDrawn(picture, QPoint(150, 10)));
    QVERIFY(isDrawn(picture, QPoint(62, 100)) && isDrawn(picture, QPoint(238, 100)));
    QVERIFY(!isDrawn(picture, QPoint(52, 104)));
    QVERIFY(!isDrawn(picture, QPoint(70, 92)));
}

void TestEditingPanels::sunFollowsTheMouse()
{
    openSunshade();
    sunshade->resize(300, 400);
    SunShadeWidget *rose = nullptr;
    for (QObject *child : get<QFrame>("hillShadeFrame")->children())
        rose = rose ? rose : dynamic_cast<SunShadeWidget *>(child);
    QVERIFY(rose);
    const QImage sun(QStringLiteral(":/Resources/sun.png"));
    QCOMPARE(sun.size(), QSize(16, 16));
    const auto sunIsAt = [&](const QPoint &place) {
        // The middle of the drawing is opaque.
        return rose->grab().toImage().pixel(place) == sun.pixel(8, 8);
    };
    QVERIFY(sunIsAt(QPoint(0, 0)));
    QTest::mousePress(rose, Qt::LeftButton, Qt::NoModifier, QPoint(40, 50));
    QVERIFY(sunIsAt(QPoint(40, 50)));
    QMouseEvent drag(QEvent::MouseMove, QPointF(60, 30), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(rose, &drag);
    QVERIFY(sunIsAt(QPoint(60, 30)));
    QTest::mouseRelease(rose, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QVERIFY(sunIsAt(QPoint(60, 30)));
    QCOMPARE(layer->getAzumith(), 45.0);
    QCOMPARE(layer->getElevation(), 45.0);
}

QTEST_MAIN(TestEditingPanels)
#include "tst_editingpanels.moc"
