#include "tiffmaker.h"

#include "data/files.h"

#include "xrvcompress/sourceparts.h"

#include <QtTest>

#include <png.h>
#include <tiff.h>

#include <cstdio>

using Recipe = TiffRecipe;
Q_DECLARE_METATYPE(Recipe)

/// The sources of images that xrvcompress reads: in blocks, with rows left out, and once more from the start.
class TestImageSources : public QObject
{
    Q_OBJECT

private slots:
    void startAgain_data();
    void startAgain();

private:
    FileFolder folder;
};

namespace {

constexpr int kWidth = 211, kHeight = 307;

int cellAt(int band, int x, int y)
{
    return (x * 7 + y * 13 + band * 50 + x * y / 64) & 255;
}

QByteArray pixels(int bands)
{
    QByteArray bytes;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (int band = 0; band < bands; ++band)
                bytes.append(char(cellAt(band, x, y)));
    return bytes;
}

void savePnm(const QString &path)
{
    writeFile(path, "P6\n# with a comment\n" + QByteArray::number(kWidth) + ' ' + QByteArray::number(kHeight) +
                        "\n255\n" + pixels(3));
}

bool savePng(const QString &path, bool isInterlaced)
{
    std::FILE *file = std::fopen(QFile::encodeName(path).constData(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (!file || setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGB,
                 isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    QByteArray bytes = pixels(3);
    std::vector<png_bytep> rows;
    for (int y = 0; y < kHeight; ++y)
        rows.push_back(reinterpret_cast<png_bytep>(bytes.data()) + y * kWidth * 3);
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return std::fclose(file) == 0;
}

/// Reads the rows from \a first to \a end in two blocks; compares.
bool isRight(xrv::ImageSource *source, int first, int end)
{
    const int bands = int(source->description().bands.size());
    for (const auto &[x0, x1] : {std::make_pair(0, 100), std::make_pair(100, kWidth)}) {
        std::vector<std::vector<std::int32_t>> cells(
            std::size_t(bands), std::vector<std::int32_t>(std::size_t(x1 - x0) * std::size_t(end - first)));
        std::vector<std::int32_t *> planes;
        for (auto &plane : cells)
            planes.push_back(plane.data());
        if (source->read(xrv::IntRect{x0, first, x1, end}, planes))
            return false;
        for (int band = 0; band < bands; ++band)
            for (int y = first; y < end; ++y)
                for (int x = x0; x < x1; ++x)
                    if (*planes[std::size_t(band)]++ != cellAt(band, x, y))
                        return false;
    }
    return true;
}

} // namespace

void TestImageSources::startAgain_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<Recipe>("recipe");
    const auto row = [](const char *name, const char *kind, const std::function<void(Recipe *)> &change) {
        Recipe recipe;
        recipe.width = kWidth;
        recipe.height = kHeight;
        change(&recipe);
        QTest::newRow(name) << QString::fromLatin1(kind) << recipe;
    };
    row("PNM", "pnm", [](Recipe *) {});
    row("PNG", "png", [](Recipe *) {});
    row("PNG, interlaced", "interlaced", [](Recipe *) {});
    row("TIFF, strips", "tiff", [](Recipe *) {});
    row("TIFF, strips, LZW", "tiff", [](Recipe *r) { r->compression = COMPRESSION_LZW, r->rowsPerStrip = 48; });
    row("TIFF, one strip, LZW", "tiff", [](Recipe *r) { r->compression = COMPRESSION_LZW, r->rowsPerStrip = 1000; });
    row("TIFF, one strip, bands apart, LZW", "tiff", [](Recipe *r) {
        r->compression = COMPRESSION_LZW, r->rowsPerStrip = 1000, r->isPlanar = true, r->samples = 3;
    });
    row("TIFF, tiles", "tiff", [](Recipe *r) { r->tileSize = 64, r->samples = 3; });
}

void TestImageSources::startAgain()
{
    QFETCH(QString, kind);
    QFETCH(Recipe, recipe);
    recipe.cell = cellAt;
    const QString name = QString::fromStdString(folder.path("image"));
    if (kind == QLatin1String("pnm"))
        savePnm(name);
    else
        QVERIFY(kind == QLatin1String("tiff") ? makeTiff(name, recipe)
                                              : savePng(name, kind == QLatin1String("interlaced")));
    std::unique_ptr<xrv::ImageSource> source;
    std::vector<std::string> warnings;
    QVERIFY(openImageSource(name.toStdString(), &source, &warnings).IsSuccess());

    // A sample with gaps, which begin and end within strips.
    QVERIFY(isRight(source.get(), 10, 40));
    QVERIFY(isRight(source.get(), 41, 60));
    QVERIFY(isRight(source.get(), 150, 190));
    QVERIFY(isRight(source.get(), 250, 260));
    // All of it, twice: once from within and once from the end.
    for (int time = 0; time < 2; ++time) {
        QVERIFY(source->rewind().IsSuccess());
        for (int y = 0; y < kHeight; y += 64)
            QVERIFY(isRight(source.get(), y, std::min(y + 64, kHeight)));
    }
}

QTEST_GUILESS_MAIN(TestImageSources)
#include "tst_imagesources.moc"
