#include "layer/layertest.h"
#include "panels/sunshadewidget.h"
#include "panels/xrvjp2ksunshade.h"

#include <QDGui/mapview.h>

#include <QCheckBox>
#include <QFrame>
#include <QMdiSubWindow>
#include <QSpinBox>
#include <QtTest>

using Korvane::XRVJP2kLayer;

class TestSunshadePanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void loadsWithoutSending();
    void controlsSetTheLayer();
    void otherLayersAndWindows();
    void rose();
    void sunFollowsTheMouse();

private:
    template <typename Widget> Widget *get(const char *name) const
    {
        return panel->findChild<Widget *>(QLatin1String(name));
    }
    void type(const char *spinBox, const char *digits);

    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayer> layer;
    std::unique_ptr<XRVJP2kSunshade> panel;
};

void TestSunshadePanel::init()
{
    folder = std::make_unique<TestFolder>();
    TestFolder::setSetting("OpenProgressive", false);
    layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), colourImage(16, 16)));
    viewWhole(*layer);
    panel = std::make_unique<XRVJP2kSunshade>();
    panel->show();
}

void TestSunshadePanel::cleanup()
{
    panel.reset();
    layer.reset();
    folder.reset();
}

void TestSunshadePanel::type(const char *spinBox, const char *digits)
{
    auto *box = get<QSpinBox>(spinBox);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, QLatin1String(digits));
    QTest::keyClick(box, Qt::Key_Return);
}

void TestSunshadePanel::loadsWithoutSending()
{
    layer->setAzumith(359.9);
    layer->setElevation(12.7);
    layer->setHillShade(true);
    const quint64 refreshes = layer->getRefreshCount();
    panel->onLayerActivated(layer.get());
    QVERIFY(panel->isEnabled());
    QCOMPARE(get<QSpinBox>("azumithSpinBox")->value(), 359);
    QCOMPARE(get<QSpinBox>("elevationSpinBox")->value(), 12);
    QVERIFY(get<QCheckBox>("hillShadeCheckBox")->isChecked());
    QCOMPARE(layer->getAzumith(), 359.9);
    QCOMPARE(layer->getElevation(), 12.7);
    QCOMPARE(layer->getRefreshCount(), refreshes);
}

void TestSunshadePanel::controlsSetTheLayer()
{
    panel->onLayerActivated(layer.get());
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

void TestSunshadePanel::otherLayersAndWindows()
{
    panel->onLayerActivated(layer.get());
    QMdiSubWindow plainWindow;
    plainWindow.setWidget(new QWidget);
    QMdiSubWindow mapWindow;
    mapWindow.setWidget(new Korvane::Map::MapView);
    panel->onSubWindowActivated(&plainWindow);
    QVERIFY(!panel->isEnabled());
    panel->onSubWindowActivated(&mapWindow);
    QVERIFY(panel->isEnabled());
    panel->onSubWindowActivated(nullptr);
    QVERIFY(!panel->isEnabled());
    panel->onLayerActivated(nullptr);
    panel->onSubWindowActivated(&mapWindow);
    get<QSpinBox>("azumithSpinBox")->setValue(77);
    QCOMPARE(layer->getAzumith(), 45.0);
    panel->onLayerActivated(layer.get());
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

void TestSunshadePanel::rose()
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

void TestSunshadePanel::sunFollowsTheMouse()
{
    panel->onLayerActivated(layer.get());
    panel->resize(300, 400);
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

QTEST_MAIN(TestSunshadePanel)
#include "tst_sunshadepanel.moc"
