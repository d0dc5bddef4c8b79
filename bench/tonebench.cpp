// Measures how fast a 4K map view follows a panel's sliders: repaints with another transparency, contrast or
// brightness, which decode nothing, and a drag of the sliders that do need a decode.
//
// usage: tonebench FILE [REPETITIONS]
//
// Prints Markdown. Works without a display (QT_QPA_PLATFORM=offscreen).

#include "layer/xrvjp2klayer.h"

#include <QDGui/mapview.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QTemporaryDir>
#include <QVector>

#include <QDGui/application.h>

#include <algorithm>
#include <cstdio>
#include <functional>

using Korvane::XRVJP2kLayer;
using Korvane::Map::MapView;

namespace {

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr int kPatienceMs = 120000;
constexpr int kDragSteps = 60;
constexpr double kQuietMs = 1500.0; // longer than any pause between two passes

/// Counts the view's paint events.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(MapView &view) { view.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return false;
    }
};

struct Times
{
    double median = 0.0, worst = 0.0; // milliseconds
};

Times timesOf(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values.last()};
}

double msOf(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) * 1e-6;
}

using Change = std::function<void(XRVJP2kLayer &, int step)>;

/// From the change to the end of the repaint that shows it.
QVector<double> timeRepaints(MapView &view, XRVJP2kLayer &layer, int repetitions, const Change &change)
{
    PaintCounter paints(view);
    QVector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        const int before = paints.count;
        QElapsedTimer timer;
        timer.start();
        change(layer, i);
        layer.refresh(0, 0, 0, 0);
        while (paints.count == before)
            QApplication::processEvents();
        times.append(msOf(timer));
    }
    return times;
}

void reportRepaints(MapView &view, XRVJP2kLayer &layer, int repetitions, const char *name, const Change &change)
{
    const Times times = timesOf(timeRepaints(view, layer, repetitions, change));
    std::printf("| %s | %.1f | %.1f | %.0f |\n", name, times.median, times.worst, 1000.0 / times.median);
    std::fflush(stdout);
}

void benchRepaints(MapView &view, XRVJP2kLayer &layer, int repetitions)
{
    std::printf("| change | median ms | worst ms | repaints/s |\n|---|---|---|---|\n");
    reportRepaints(view, layer, repetitions, "nothing", [](XRVJP2kLayer &, int) {});
    reportRepaints(view, layer, repetitions, "transparency",
                   [](XRVJP2kLayer &target, int i) { target.setTransparency(0.99 - 0.01 * (i % 50)); });
    layer.setTransparency(1.0);
    reportRepaints(view, layer, repetitions, "contrast",
                   [](XRVJP2kLayer &target, int i) { target.setContrast(1.01 + 0.01 * (i % 50)); });
    layer.setContrast(1.0);
    reportRepaints(view, layer, repetitions, "brightness",
                   [](XRVJP2kLayer &target, int i) { target.setBrightness(1.01 + 0.01 * (i % 50)); });
    reportRepaints(view, layer, repetitions, "brightness and transparency", [](XRVJP2kLayer &target, int i) {
        target.setTransparency(0.99 - 0.01 * (i % 50));
        target.setBrightness(1.01 + 0.01 * (i % 50));
    });
    layer.setTransparency(1.0);
    layer.setBrightness(1.0);
}

/// Runs the event loop until nothing has been painted for a while; milliseconds until the last repaint.
double timeUntilQuiet(const PaintCounter &paints)
{
    QElapsedTimer timer;
    timer.start();
    double last = 0.0;
    int seen = paints.count;
    while (msOf(timer) - last < kQuietMs) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        if (paints.count != seen) {
            seen = paints.count;
            last = msOf(timer);
        }
    }
    return last;
}

/// A slider is moved step by step while the views that it asks for decode; each ought to cancel the one before.
void benchDrag(MapView &view, XRVJP2kLayer &layer, const char *name, const Change &change)
{
    const PaintCounter paints(view);
    QElapsedTimer timer;
    change(layer, 0);
    const double single = timeUntilQuiet(paints);
    QVector<double> steps;
    for (int i = 1; i <= kDragSteps; ++i) {
        timer.start();
        change(layer, i);
        QApplication::processEvents();
        steps.append(msOf(timer));
    }
    const double afterLast = timeUntilQuiet(paints);
    const Times times = timesOf(steps);
    std::printf("| %s | %.1f | %.1f | %.0f | %.0f |\n", name, times.median, times.worst, single, afterLast);
    std::fflush(stdout);
}

void benchDrags(MapView &view, XRVJP2kLayer &layer)
{
    std::printf(
        "\n| drag of %d steps | median ms per step | worst ms | one view alone ms | complete after the last step "
        "ms |\n|---|---|---|---|---|\n",
        kDragSteps);
    benchDrag(view, layer, "dynamic range", [](XRVJP2kLayer &target, int i) { target.setTransformClip(99 - i); });
    const int layers = std::max(1, layer.getMaxJp2QualityLayers());
    benchDrag(view, layer, "quality layers",
              [layers](XRVJP2kLayer &target, int i) { target.setJp2QualityLayers(1 + i % layers); });
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: tonebench FILE [REPETITIONS]\n");
        return 2;
    }
    const QTemporaryDir folder;
    Korvane::Application::instance()->setSettingsFile(folder.filePath(QStringLiteral("settings.ini")));
    const int repetitions = argc > 2 ? std::max(1, atoi(argv[2])) : 50;

    MapView view;
    auto *layer = new XRVJP2kLayer(nullptr);
    view.resize(kWidth, kHeight);
    view.show();
    view.addLayer(layer, -1);
    if (!layer->setDataSource(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "tonebench: %s\n", qPrintable(layer->getLastError()));
        return 1;
    }
    view.setVisibleWorldRect(layer->getBounds());
    view.zoomToNative(layer);
    if (!view.waitUntilComplete(kPatienceMs)) {
        std::fprintf(stderr, "tonebench: the view does not become complete\n");
        return 1;
    }
    std::printf("%d x %d pixels, one cell per pixel\n\n", kWidth, kHeight);
    benchRepaints(view, *layer, repetitions);
    benchDrags(view, *layer);
    // More pixels than cells: the picture is also enlarged for every repaint.
    view.setUnitsPerPixel(view.getUnitsPerPixel() / 3.3);
    for (bool isSmooth : {true, false}) {
        layer->setPixmapSmoothing(isSmooth);
        view.waitUntilComplete(kPatienceMs);
        std::printf("\n%d x %d pixels, 3.3 pixels per cell, %s\n\n", kWidth, kHeight, isSmooth ? "smooth" : "nearest");
        benchRepaints(view, *layer, repetitions);
    }
    return 0;
}
