#include "preparedimage.h"

#include "cellsurvey.h"

#include <xrv60/plkinit.h>

#include <algorithm>

namespace xrv {

using PLK::CError;

namespace {

constexpr int kMaxPlainBits = 16;
constexpr std::size_t kMaxBands = 255;
constexpr std::size_t kMaxBucketsOfAllBands = std::size_t(4) << 20;

bool isDeep(const XrvBand &band)
{
    return band.bits > kMaxPlainBits;
}

CError unsupported(const std::string &sentence)
{
    return {PLK_ERR_UNSUPPORTED, sentence};
}

/// Calls \a visit(first, count) for each run of cells that are not hidden.
template <typename Visitor> void visitVisible(const std::int32_t *opacity, std::size_t count, Visitor visit)
{
    const auto isHidden = [](std::int32_t cell) { return cell == 0; };
    const std::int32_t *const end = opacity + count;
    for (const std::int32_t *first = opacity; first != end;) {
        first = std::find_if_not(first, end, isHidden);
        const std::int32_t *const last = std::find_if(first, end, isHidden);
        if (last != first)
            visit(static_cast<std::size_t>(first - opacity), static_cast<std::size_t>(last - first));
        first = last;
    }
}

} // namespace

PreparedImage::PreparedImage(ImageSource &imageSource)
    : source(imageSource)
    , image(source.description())
    , sourceBands(image.bands.size())
    , hidden(image.bands, image.noData)
    , coder({})
    , codedBands(image.bands)
{
}

bool PreparedImage::needsSurvey() const
{
    return (hidden.arePossible() && !image.isLastOpacity) ||
           std::any_of(image.bands.begin(), image.bands.end(), isDeep);
}

CError PreparedImage::check(const WriteOptions &options) const
{
    if (image.width == 0 || image.height == 0 || image.bands.empty())
        return unsupported("The image has no cells.");
    if (image.isLastOpacity && isDeep(image.bands.back()))
        return unsupported("Opacity of more than 16 bits cannot be written.");
    for (const XrvBand &band : image.bands) {
        const bool isPlain = band.bits >= 1 && band.bits <= kMaxPlainBits && band.kind == CellKind::Whole;
        if (!isPlain && band.bits != 32)
            return unsupported("Cells of 1 to 16 and of 32 bits can be written, not those of " +
                               std::to_string(band.bits) + ".");
        if (isDeep(band) && !options.isLossless)
            return unsupported("Cells of 32 bits can only be written without loss.");
        if (band.kind == CellKind::Float && options.kind == FileKind::GeoJp2)
            return unsupported(
                "JPEG 2000 files hold whole numbers; cells that are Floats can be written to XRV files.");
    }
    return {};
}

CError PreparedImage::prepare(const WriteOptions &options, const std::vector<IntRect> &rects,
                              const std::function<bool(double)> &progress)
{
    if (CError error = check(options))
        return error;
    makeCounters();
    if (needsSurvey()) {
        std::vector<BandSurvey> surveys(image.bands.begin(), image.bands.end());
        if (CError error = survey(rects, progress, &surveys))
            return error;
        if (hasMadeOpacity)
            addOpacity();
        if (options.kind == FileKind::GeoJp2) {
            if (CError error = narrow(surveys))
                return error;
        } else {
            map(surveys);
        }
        for (std::size_t band = 0; band < surveys.size(); ++band)
            if (isDeep(source.description().bands[band]))
                counters[band].beginNextPass();
    }
    if (codedBands.size() > kMaxBands)
        return unsupported("Images of more than 255 bands cannot be written; deep ones may count twice.");
    return {};
}

CError PreparedImage::survey(const std::vector<IntRect> &rects, const std::function<bool(double)> &progress,
                             std::vector<BandSurvey> *surveys)
{
    hasMadeOpacity = hidden.arePossible() && !image.isLastOpacity;
    bool isAnyHidden = false;
    std::vector<std::vector<std::int32_t>> rows(sourceBands + 1);
    std::vector<std::int32_t *> planes(rows.size());
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const auto cells = static_cast<std::size_t>(areaOf(rects[i]));
        for (std::size_t band = 0; band < rows.size(); ++band) {
            rows[band].resize(std::max(cells, rows[band].size()));
            planes[band] = rows[band].data();
        }
        if (CError error = readBands(rects[i], planes))
            return error;
        const std::int32_t *opacity = hasMadeOpacity        ? planes.back()
                                      : image.isLastOpacity ? planes[sourceBands - 1]
                                                            : nullptr;
        isAnyHidden = isAnyHidden || (opacity && std::find(opacity, opacity + cells, 0) != opacity + cells);
        for (std::size_t band = 0; band < sourceBands; ++band) {
            if (!isDeep(image.bands[band]))
                continue;
            (*surveys)[band].add(planes[band], cells, opacity);
            if (!opacity)
                counters[band].add(planes[band], cells);
            else
                visitVisible(opacity, cells, [&](std::size_t first, std::size_t count) {
                    counters[band].add(planes[band] + first, count);
                });
        }
        if (!progress(static_cast<double>(i + 1) / static_cast<double>(rects.size())))
            return {PLK_ERR_CANCELLED, "The compression was cancelled."};
    }
    hasMadeOpacity = hasMadeOpacity && isAnyHidden;
    return source.rewind();
}

void PreparedImage::addOpacity()
{
    image.bands.push_back({8, false, "AllOpacity"});
    image.isLastOpacity = true;
    makeCounters();
}

/// JPEG 2000 files hold any depth, the encoder's limit in mind, but more than 16 bits, so that readers see 32.
CError PreparedImage::narrow(const std::vector<BandSurvey> &surveys)
{
    for (std::size_t band = 0; band < surveys.size(); ++band) {
        if (!isDeep(image.bands[band]))
            continue;
        const int bits = surveys[band].neededBits();
        if (bits > kMaxCodedBits)
            return unsupported("The cells need " + std::to_string(bits) +
                               " bits; JPEG 2000 files with cells of up to " + std::to_string(kMaxCodedBits) +
                               " bits can be written, and XRV files with all.");
        image.bands[band].bits = static_cast<std::uint8_t>(std::max(kMaxPlainBits + 1, bits));
        image.bands[band].kind = CellKind::Whole;
    }
    codedBands = image.bands;
    return {};
}

void PreparedImage::map(const std::vector<BandSurvey> &surveys)
{
    std::vector<CellMapping> mappings(image.bands.size());
    std::vector<int> bits;
    for (std::size_t band = 0; band < surveys.size(); ++band)
        if (isDeep(image.bands[band]))
            mappings[band] = surveys[band].mapping(kMaxCodedBits);
    for (const XrvBand &band : image.bands)
        bits.push_back(band.bits);
    codedBands = image.bands;
    CellCoder made(std::move(mappings));
    if (!made.isMapped())
        return;
    coder = std::move(made);
    const std::vector<int> componentBits = coder.componentBits(bits);
    codedBands.resize(componentBits.size());
    for (std::size_t i = 0; i < codedBands.size(); ++i)
        if (i >= image.bands.size() || coder.mappings()[i].isMapped())
            codedBands[i] = {static_cast<std::uint8_t>(componentBits[i]), false};
}

void PreparedImage::makeCounters()
{
    const std::size_t bands = sourceBands + (hidden.arePossible() ? 1 : 0);
    for (std::size_t band = counters.size(); band < image.bands.size(); ++band)
        counters.emplace_back(image.bands[band].bits, image.bands[band].isSigned,
                              std::clamp(kMaxBucketsOfAllBands / bands, std::size_t(256), std::size_t(65536)),
                              image.bands[band].kind);
}

CError PreparedImage::readBands(const IntRect &rect, const std::vector<std::int32_t *> &planes)
{
    const std::vector<std::int32_t *> own(planes.begin(), planes.begin() + static_cast<std::ptrdiff_t>(sourceBands));
    if (CError error = source.read(rect, own))
        return error;
    if (hasMadeOpacity)
        hidden.mark(own, static_cast<std::size_t>(areaOf(rect)), planes[sourceBands]);
    return {};
}

CError PreparedImage::read(const IntRect &rect, const std::vector<std::int32_t *> &planes)
{
    if (CError error = readBands(rect, planes))
        return error;
    const auto cells = static_cast<std::size_t>(areaOf(rect));
    count(planes, cells);
    coder.encode(planes, static_cast<std::size_t>(rect.width()), cells, opacityOf(planes));
    return {};
}

void PreparedImage::count(const std::vector<std::int32_t *> &planes, std::size_t cells)
{
    const std::int32_t *opacity = opacityOf(planes);
    for (std::size_t band = 0; band < counters.size(); ++band) {
        if (!opacity || planes[band] == opacity)
            counters[band].add(planes[band], cells);
        else
            visitVisible(opacity, cells, [&](std::size_t first, std::size_t count) {
                counters[band].add(planes[band] + first, count);
            });
    }
}

StatisticsPtr PreparedImage::statistics() const
{
    StatisticsPtr record = makeStatisticsRecord(counters.size());
    for (std::size_t band = 0; band < counters.size(); ++band)
        counters[band].finish(&record->pBandStats[band]);
    return record;
}

} // namespace xrv
