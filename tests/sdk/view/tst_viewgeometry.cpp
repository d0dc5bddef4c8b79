#include "viewsupport.h"

#include "view/levelchooser.h"

#include <QtTest>

#include <cmath>
#include <limits>

/// Which cell is shown where. Expectations come from the positions of the samples alone, by trying all of them.
class TestViewGeometry : public QObject
{
    Q_OBJECT

private slots:
    void nearest_data();
    void nearest();
    void bilinear_data() { nearest_data(); }
    void bilinear();
    void matchingScaleIsUntouched_data();
    void matchingScaleIsUntouched();
    void level_data();
    void level();
};

namespace {

struct Shape
{
    xrv::IntRect canvas;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> steps{{1, 1}};
    int codedLevels = 6;
};

struct Look
{
    int width, height;
    xrv::EdgeRect rect;
    int level; ///< that is expected
};

std::unique_ptr<FakeReader> makeReader(const Shape &shape)
{
    auto reader = std::make_unique<FakeReader>(1, 1, static_cast<int>(shape.steps.size()), std::uint8_t(31), true);
    for (std::size_t i = 0; i < shape.steps.size(); ++i) {
        reader->raster.components[i].stepX = shape.steps[i].first;
        reader->raster.components[i].stepY = shape.steps[i].second;
    }
    const auto u32 = [](std::int64_t number) { return static_cast<std::uint32_t>(number); };
    reader->setCanvas(u32(shape.canvas.x0), u32(shape.canvas.y0), u32(shape.canvas.x1), u32(shape.canvas.y1));
    reader->raster.codedLevels = shape.codedLevels;
    return reader;
}

/// Where sample \a u of a component at \a level stands, in dataset cells: on the canvas at a multiple of its step, and
/// shown in the middle of a cell. Samples below the coded levels are means of pairs.
double samplePosition(double step, double minStep, double canvasStart, int level, int codedLevels, std::int64_t u)
{
    if (level >= codedLevels)
        return (samplePosition(step, minStep, canvasStart, level - 1, codedLevels, 2 * u) +
                samplePosition(step, minStep, canvasStart, level - 1, codedLevels, 2 * u + 1)) /
               2.0;
    const double onCanvas = static_cast<double>(u << level) * step;
    return onCanvas / minStep + 0.5 - std::ceil(canvasStart / minStep);
}

struct Axis
{
    std::vector<double> samples; ///< positions
    std::int64_t first;          ///< number of the first one
    double span, origin;

    Axis(const xrv::RasterInfo &raster, int component, int level, bool isX)
    {
        const xrv::ComponentInfo &info = raster.components[static_cast<std::size_t>(component)];
        const double step = isX ? info.stepX : info.stepY, minStep = isX ? raster.minStepX : raster.minStepY;
        const double start = isX ? raster.canvasX0 : raster.canvasY0;
        const xrv::IntRect rect = raster.levelRect(component, level);
        first = isX ? rect.x0 : rect.y0;
        for (std::int64_t u = first; u < (isX ? rect.x1 : rect.y1); ++u)
            samples.push_back(samplePosition(step, minStep, start, level, raster.codedLevels, u));
        span = std::ldexp(step / minStep, level);
        origin = std::ceil(start / minStep);
    }
    std::int64_t nearest(double position) const
    {
        double best = std::numeric_limits<double>::max();
        for (double sample : samples)
            best = std::min(best, std::abs(sample - position));
        std::vector<std::int64_t> found;
        for (std::size_t i = 0; i < samples.size(); ++i)
            if (std::abs(samples[i] - position) < best + 1e-6)
                found.push_back(first + static_cast<std::int64_t>(i));
        const auto owner = static_cast<std::int64_t>(std::floor((position + origin) / span));
        return std::find(found.begin(), found.end(), owner) != found.end() ? owner : found.front();
    }
    double withinSamples(double position) const { return std::clamp(position, samples.front(), samples.back()); }
};

double centre(double first, double last, int pixels, int i)
{
    return first + (i + 0.5) * (last - first) / pixels;
}

} // namespace

Q_DECLARE_METATYPE(Shape)
Q_DECLARE_METATYPE(Look)

void TestViewGeometry::nearest_data()
{
    QTest::addColumn<Shape>("shape");
    QTest::addColumn<Look>("look");
    const Shape plain{{0, 0, 100, 70}};
    const Shape shifted{{37, 13, 137, 83}};
    const Shape subsampled{{3, 5, 103, 75}, {{1, 1}, {2, 2}}};
    const Shape unequalSteps{{5, 7, 205, 147}, {{2, 2}, {3, 4}}};
    const Shape fewCoded{{0, 0, 200, 130}, {{1, 1}}, 2};
    QTest::newRow("whole image, one to one") << plain << Look{100, 70, {0, 0, 100, 70}, 0};
    QTest::newRow("window") << plain << Look{20, 10, {33, 21, 53, 31}, 0};
    QTest::newRow("beyond the top left") << plain << Look{60, 40, {-25.5, -10.25, 34.5, 29.75}, 0};
    QTest::newRow("beyond the bottom right") << plain << Look{50, 50, {80, 50, 130, 100}, 0};
    QTest::newRow("larger than the image all around") << plain << Look{33, 33, {-100, -100, 200, 200}, 3};
    QTest::newRow("beside the image") << plain << Look{10, 10, {200, 0, 210, 10}, 0};
    QTest::newRow("enlarged by an odd factor") << plain << Look{74, 37, {10.3, 20.6, 30.3, 30.6}, 0};
    QTest::newRow("one cell over all pixels") << plain << Look{40, 40, {99.1, 0.2, 99.9, 0.8}, 0};
    QTest::newRow("1:3, level cells smaller than pixels") << plain << Look{33, 23, {0, 0, 99, 69}, 1};
    QTest::newRow("1:1.7, level cells larger than pixels") << plain << Look{58, 40, {0.5, 1, 99.1, 69}, 1};
    QTest::newRow("1:4, off the grid by a cell") << plain << Look{20, 15, {1, 3, 81, 63}, 2};
    QTest::newRow("one pixel") << plain << Look{1, 1, {0, 0, 100, 70}, 5};
    QTest::newRow("upside down") << plain << Look{50, 70, {20, 70, 70, 0}, 0};
    QTest::newRow("turned round, reduced") << plain << Look{40, 31, {100.5, 66, -4.5, -5}, 1};
    QTest::newRow("canvas offset") << shifted << Look{100, 70, {0, 0, 100, 70}, 0};
    QTest::newRow("canvas offset, reduced") << shifted << Look{24, 16, {1.5, 2.5, 97.5, 66.5}, 2};
    QTest::newRow("subsampled component") << subsampled << Look{100, 70, {0, 0, 100, 70}, 0};
    QTest::newRow("subsampled component, enlarged") << subsampled << Look{66, 70, {-1, -2, 32, 33}, 0};
    QTest::newRow("subsampled component, reduced") << subsampled << Look{50, 35, {0, 0, 100, 70}, 1};
    QTest::newRow("finest step above one") << unequalSteps << Look{80, 60, {5, 5, 85, 65}, 0};
    QTest::newRow("below the coded levels") << fewCoded << Look{20, 14, {3, 3, 183, 129}, 3};
    QTest::newRow("1 x N") << Shape{{0, 0, 1, 500}} << Look{3, 300, {-1, 0, 2, 450}, 0};
    QTest::newRow("no cells at coarse levels") << Shape{{1, 3, 2, 90}} << Look{1, 20, {-1.6, 0, 2.4, 80}, 0};
}

void TestViewGeometry::nearest()
{
    QFETCH(Shape, shape);
    QFETCH(Look, look);
    const std::unique_ptr<FakeReader> reader = makeReader(shape);
    reader->cell = [](int, int level, std::int64_t u, std::int64_t v) { return level << 24 | v << 12 | u; };
    BlockingView image(*reader);
    xrv::ViewEngine &engine = image.engine;
    std::vector<int> bands;
    for (int band = 0; band < static_cast<int>(shape.steps.size()); ++band)
        bands.push_back(band);
    image.show(bands, look.width, look.height, look.rect);
    const Lines<std::int32_t> lines = readBil<std::int32_t>(engine, PLKCT_INT32, bands.size());
    QCOMPARE(lines.status, PLK_READ_SUCCESS);
    for (int band : bands) {
        const Axis x(reader->raster, band, look.level, true), y(reader->raster, band, look.level, false);
        for (int j = 0; j < look.height; ++j) {
            const double cy = centre(look.rect.top, look.rect.bottom, look.height, j);
            for (int i = 0; i < look.width; ++i) {
                const double cx = centre(look.rect.left, look.rect.right, look.width, i);
                const bool isInside = cx >= 0 && cy >= 0 && cx < reader->raster.width && cy < reader->raster.height;
                const std::int64_t expected = isInside ? (look.level << 24 | y.nearest(cy) << 12 | x.nearest(cx)) : 0;
                if (lines.at(i, j, static_cast<std::size_t>(band)) != expected)
                    QFAIL(qPrintable(QStringLiteral("band %1 pixel (%2, %3): %4 instead of %5")
                                         .arg(band)
                                         .arg(i)
                                         .arg(j)
                                         .arg(lines.at(i, j, static_cast<std::size_t>(band)), 0, 16)
                                         .arg(expected, 0, 16)));
            }
        }
    }
}

/// On a slope every interpolated cell is what the slope is at the pixel's centre; beyond the outermost samples it is
/// what it is there.
void TestViewGeometry::bilinear()
{
    QFETCH(Shape, shape);
    QFETCH(Look, look);
    const std::unique_ptr<FakeReader> reader = makeReader(shape);
    const auto slope = [](double x, double y) { return 1000.0 * x + 170.0 * y + 5000.0; };
    const xrv::RasterInfo &raster = reader->raster;
    reader->cell = [&](int component, int level, std::int64_t u, std::int64_t v) {
        const auto [stepX, stepY] = shape.steps[static_cast<std::size_t>(component)];
        const double x = samplePosition(stepX, raster.minStepX, raster.canvasX0, level, raster.codedLevels, u);
        const double y = samplePosition(stepY, raster.minStepY, raster.canvasY0, level, raster.codedLevels, v);
        return std::llround(slope(x, y));
    };
    BlockingView image(*reader);
    xrv::ViewEngine &engine = image.engine;
    const int band = static_cast<int>(shape.steps.size()) - 1;
    image.showSmoothly({band}, look.width, look.height, look.rect);
    const Lines<std::int32_t> lines = readBil<std::int32_t>(engine, PLKCT_INT32, 1);
    QCOMPARE(lines.status, PLK_READ_SUCCESS);
    const Axis x(raster, band, look.level, true), y(raster, band, look.level, false);
    for (int j = 0; j < look.height; ++j) {
        const double cy = centre(look.rect.top, look.rect.bottom, look.height, j);
        for (int i = 0; i < look.width; ++i) {
            const double cx = centre(look.rect.left, look.rect.right, look.width, i);
            const bool isInside = cx >= 0 && cy >= 0 && cx < raster.width && cy < raster.height;
            const double expected = isInside ? slope(x.withinSamples(cx), y.withinSamples(cy)) : 0.0;
            // Cells are whole numbers, and so is the result: half a unit each.
            if (std::abs(lines.at(i, j) - expected) > 1.01)
                QFAIL(qPrintable(QStringLiteral("pixel (%1, %2): %3 instead of %4")
                                     .arg(i)
                                     .arg(j)
                                     .arg(lines.at(i, j))
                                     .arg(expected)));
        }
    }
}

void TestViewGeometry::matchingScaleIsUntouched_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<double>("noise");
    QTest::newRow("full resolution") << 0 << 0.0;
    QTest::newRow("full resolution, with the rounding of world coordinates") << 0 << 3e-8;
    QTest::newRow("1:2") << 1 << 0.0;
    QTest::newRow("1:8") << 3 << 1e-8;
}

void TestViewGeometry::matchingScaleIsUntouched()
{
    QFETCH(int, level);
    QFETCH(double, noise);
    FakeReader reader(160, 160, 1, 16);
    reader.cell = [](int, int, std::int64_t u, std::int64_t v) { return u * 7919 % 251 * 256 + v * 104729 % 251; };
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    const double span = 1 << level;
    image.showSmoothly({0}, 10, 10, {5 * span + noise, 4 * span - noise, 15 * span - noise, 14 * span + noise});
    const auto lines = readBil<std::uint16_t>(engine, PLKCT_UINT16, 1);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            QCOMPARE(int(lines.at(x, y)), int(reader.cell(0, level, x + 5, y + 4)));
}

void TestViewGeometry::level_data()
{
    QTest::addColumn<double>("pitchX");
    QTest::addColumn<double>("pitchY");
    QTest::addColumn<bool>("coarser");
    QTest::addColumn<int>("expected");
    QTest::newRow("enlarged") << 0.1 << 0.1 << true << 0;
    QTest::newRow("one to one") << 1.0 << 1.0 << true << 0;
    QTest::newRow("cells of 1.25 pixels are too large") << 1.6 << 1.6 << false << 0;
    QTest::newRow("unless a coarser level is welcome") << 1.6 << 1.6 << true << 1;
    QTest::newRow("cells of 1.18 pixels") << 1.7 << 1.7 << false << 1;
    QTest::newRow("exactly 1:8") << 8.0 << 8.0 << false << 3;
    QTest::newRow("sharper axis decides") << 2.0 << 4.0 << false << 1;
    QTest::newRow("squeezed beyond measure") << 1.0 << 1024.0 << false << 7;
    QTest::newRow("past the last level") << 1e6 << 1e6 << false << 9;
}

void TestViewGeometry::level()
{
    QFETCH(double, pitchX);
    QFETCH(double, pitchY);
    QFETCH(bool, coarser);
    FakeReader reader(100000, 100000);
    reader.raster.levels = 10;
    Image image(reader);
    xrv::ViewRequest request = image.view({0}, 100, 100, {0, 0, 100 * pitchX, 100 * pitchY});
    request.coarserNearest = coarser;
    request.components = {0};
    QTEST(xrv::chooseLevel(reader.raster, request), "expected");
}

QTEST_APPLESS_MAIN(TestViewGeometry)
#include "tst_viewgeometry.moc"
