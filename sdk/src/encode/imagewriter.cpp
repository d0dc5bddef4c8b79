#include "imagewriter.h"

#include "codestreamassembler.h"
#include "filestart.h"
#include "preparedimage.h"
#include "stepchooser.h"
#include "tileencoder.h"
#include "tilemerger.h"
#include "workers.h"

#include <xrv60/plkinit.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <mutex>
#include <new>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::uint32_t kUsualTileSize = 1024;
constexpr int kUsualLevels = 5;
constexpr std::uint32_t kSmallestOverview = 512; ///< cells across that the lowest resolution should have at most
constexpr std::size_t kMaxTiles = 65535;         ///< ISO/IEC 15444-1 A.4.2
constexpr int kMaxTransformedBits = 16;          ///< of colours: their differences take one more
constexpr double kShareOfCopying = 0.05;         ///< of the time, at the end
constexpr double kShareOfSurvey = 0.15;          ///< of the time, at the beginning, where cells have to be known before
constexpr double kShareOfSampling = 0.3;         ///< of the time, at the beginning, where a step has to be found

std::string now()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm parts{};
#ifdef _WIN32
    gmtime_s(&parts, &seconds);
#else
    gmtime_r(&seconds, &parts);
#endif
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts));
}

bool isPowerOfTwo(std::uint32_t number)
{
    return number != 0 && (number & (number - 1)) == 0;
}

CError unsupported(const char *sentence)
{
    return {PLK_ERR_UNSUPPORTED, sentence};
}

/// One compression.
class Writer
{
public:
    Writer(ImageSource &source, const WriteOptions &options)
        : source(source)
        , options(options)
        , prepared(source)
    {
    }

    CError run(const std::string &path)
    {
        if (CError error = check())
            return error;
        OutputFile output;
        if (CError error = output.open(path))
            return error;
        if (CError error = prepare())
            return error;
        CodestreamAssembler assembler(makeLayout());
        if (CError error = assembler.open(path))
            return error;
        if (options.isHighThroughput && !options.isLossless)
            if (CError error = chooseStep())
                return error;
        if (CError error = encodeAll(&assembler))
            return error;
        if (CError error = assembler.finish())
            return error;
        if (CError error = output.write(makeStart(assembler)))
            return error;
        const auto copied = [this](double share) {
            report(1.0 - kShareOfCopying + kShareOfCopying * share);
            return !options.cancel.isRaised();
        };
        if (CError error = assembler.write(&output, copied))
            return error;
        return output.commit();
    }

private:
    CError check()
    {
        tileSize = options.tileSize != 0 ? options.tileSize : kUsualTileSize;
        if (!isPowerOfTwo(tileSize) || tileSize < 64 || tileSize > 16384)
            return {PLK_ERR_INVALID_ARGUMENT, "The block size must be a power of two from 64 to 16384."};
        if (options.layers < 1 || options.layers > 32)
            return {PLK_ERR_INVALID_ARGUMENT, "The number of quality layers must be 1 to 32."};
        if (options.isHighThroughput && options.layers != 1)
            return {PLK_ERR_INVALID_ARGUMENT, "High-throughput blocks have one quality layer."};
        if (!options.isLossless && !(options.rate >= 1.0 && options.rate <= 1000.0))
            return {PLK_ERR_INVALID_ARGUMENT, "The rate must be 1 to 1000."};
        tileCount = makeLayout().tileCount();
        if (tileCount > kMaxTiles)
            return unsupported("The image has too many blocks; take larger ones.");
        return {};
    }

    CError prepare()
    {
        std::vector<IntRect> rects;
        for (std::uint32_t tile = 0; prepared.needsSurvey() && tile < tileCount; ++tile)
            rects.push_back(rectOf(tile));
        const auto surveyed = [this](double share) {
            report(kShareOfSurvey * share);
            return !options.cancel.isRaised();
        };
        if (CError error = prepared.prepare(options, rects, surveyed))
            return error;
        shareDone = prepared.needsSurvey() ? kShareOfSurvey : 0.0;
        makeCoding();
        return {};
    }

    const ImageDescription &image() const { return prepared.description(); }

    CodestreamAssembler::Layout makeLayout() const
    {
        return {image().width, image().height, tileSize, tileSize, prepared.components()};
    }

    void makeCoding()
    {
        const XrvBand &first = image().bands.front();
        const auto isAlike = [&first](const XrvBand &band) {
            return band.bits == first.bits && band.isSigned == first.isSigned && band.bits <= kMaxTransformedBits;
        };
        coding.bands = prepared.components();
        coding.isLossless = options.isLossless;
        coding.rate = options.rate;
        coding.layers = options.layers;
        coding.isHighThroughput = options.isHighThroughput;
        coding.hasColourTransform = image().colourSpace == PLK_COLORSPACE_SRGB && image().bands.size() >= 3 &&
                                    std::all_of(image().bands.begin(), image().bands.begin() + 3, isAlike);
        coding.tileSize = tileSize;
        coding.levels = kUsualLevels;
        while (std::max(image().width, image().height) >> coding.levels > kSmallestOverview)
            ++coding.levels;
        // Lower resolutions of a tile than a few cells gain nothing.
        while (coding.levels > 0 && tileSize >> coding.levels < 16)
            --coding.levels;
        if (!options.isLossless && image().isLastOpacity && coding.bands.size() > 1)
            codeOpacityApart();
    }

    /// Exactly, so that what is hidden stays hidden and nothing else becomes it.
    void codeOpacityApart()
    {
        opacityCoding = coding;
        opacityCoding.bands = {coding.bands.back()};
        opacityCoding.isLossless = true;
        opacityCoding.layers = 1;
        opacityCoding.hasColourTransform = false;
        coding.bands.pop_back();
    }
    bool isOpacityApart() const { return !opacityCoding.bands.empty(); }

    /// High-throughput code-blocks are coded by step; which one gives the wanted rate, a sample of the image tells.
    CError chooseStep()
    {
        ImageSample sample(image(), coding);
        const auto reportPart = [this, before = shareDone](double share) {
            report(before + (kShareOfSampling - before) * share);
        };
        const auto sampled = [reportPart](double share) { reportPart(share / 2.0); };
        const auto tried = [reportPart](double share) { reportPart((1.0 + share) / 2.0); };
        if (CError error = sample.read(source, options.cancel, sampled))
            return error;
        StepChooser chooser(sample, threadCount(options.threads), options.cancel, tried);
        int bits = 1;
        int bytesPerCell = 0;
        for (const XrvBand &band : coding.bands) {
            bits = std::max<int>(bits, band.bits);
            bytesPerCell += (band.bits + 7) / 8;
        }
        const double cells = static_cast<double>(image().width) * image().height;
        const auto headers = static_cast<double>(expectedHeaderBytes());
        const double bytes = std::max(bytesPerCell * cells / options.rate - headers, headers);
        // An eighth of a cell's unit: what is finer is lost in rounding.
        if (CError error = chooser.run(bytes / cells, std::ldexp(1.0, -bits - 3), &coding.step))
            return error;
        shareDone = kShareOfSampling;
        return source.rewind();
    }

    /// Of the codestream, all but packets.
    std::uint64_t expectedHeaderBytes() const
    {
        constexpr std::uint64_t kPartBytes = 12 + 5 + 2 + 6; // SOT, PLT and SOD, entry in the TLM
        const auto precincts = [this](std::uint32_t side, int level) {
            const std::uint32_t tiles = (side + tileSize - 1) / tileSize;
            return std::max(tiles, ((side >> level) + kPrecinctSize - 1) / kPrecinctSize);
        };
        std::uint64_t packets = 0;
        for (int level = 0; level <= coding.levels; ++level)
            packets += std::uint64_t(precincts(image().width, level)) * precincts(image().height, level);
        return tileCount * kPartBytes * (coding.levels + 1u) + packets * coding.bands.size() * 3 / 2;
    }

    CError encodeAll(CodestreamAssembler *assembler)
    {
        return runWorkers(threadCount(options.threads),
                          [this, assembler](bool *goesOn) { return encodeNext(assembler, goesOn); });
    }

    IntRect rectOf(std::uint32_t tile) const
    {
        const std::uint32_t across = (image().width + tileSize - 1) / tileSize;
        const std::int64_t x = std::int64_t(tile % across) * tileSize, y = std::int64_t(tile / across) * tileSize;
        return IntRect{x, y, x + tileSize, y + tileSize}.intersected({0, 0, image().width, image().height});
    }

    CError encodeNext(CodestreamAssembler *assembler, bool *goesOn)
    {
        std::unique_ptr<TileEncoder> encoder, opacityEncoder;
        std::uint32_t tile = 0;
        {
            // Sources go from top to bottom, so one thread reads while the others encode.
            const std::lock_guard<std::mutex> lock(sourceMutex);
            if (options.cancel.isRaised())
                return {PLK_ERR_CANCELLED, "The compression was cancelled."};
            *goesOn = nextTile < tileCount;
            if (!*goesOn)
                return {};
            tile = nextTile++;
            encoder = TileEncoder::make(coding, rectOf(tile));
            std::vector<std::int32_t *> planes = encoder->planes();
            if (isOpacityApart()) {
                opacityEncoder = TileEncoder::make(opacityCoding, rectOf(tile));
                planes.push_back(opacityEncoder->planes().front());
            }
            if (CError error = prepared.read(rectOf(tile), planes))
                return error;
        }
        EncodedTile encoded;
        if (CError error = encoder->encode(&encoded))
            return error;
        encoder.reset();
        if (opacityEncoder) {
            EncodedTile opacity;
            if (CError error = opacityEncoder->encode(&opacity))
                return error;
            addComponent(opacity, coding.bands.size(), coding.layers, &encoded);
        }
        const std::lock_guard<std::mutex> lock(mutex);
        CError error = assembler->add(tile, encoded);
        ++tilesDone;
        report(shareDone + (1.0 - kShareOfCopying - shareDone) * tilesDone / tileCount);
        return error;
    }

    void report(double share) const
    {
        if (options.progress)
            options.progress(share);
    }

    Bytes makeStart(const CodestreamAssembler &assembler) const
    {
        const PacketIndex *index = assembler.isIndexComplete() ? &assembler.index() : nullptr;
        if (options.kind == FileKind::GeoJp2)
            return makeJp2FileStart(image(), coding.isHighThroughput, index, assembler.length());
        XrvFileInfo info;
        info.isLossless = options.isLossless;
        info.targetRate = options.isLossless ? 1 : static_cast<std::uint16_t>(std::lround(options.rate));
        info.tileWidth = info.tileHeight = tileSize;
        info.compressionDate = options.compressionDate.empty() ? now() : options.compressionDate;
        return makeXrvFileStart(image(), info, prepared.mappings(), *prepared.statistics(), index, assembler.length());
    }

    ImageSource &source;
    const WriteOptions &options;
    PreparedImage prepared;
    std::uint32_t tileSize = kUsualTileSize;
    std::uint32_t tileCount = 0;
    TileCoding coding;
    TileCoding opacityCoding; ///< of the opacity band, where that is coded apart; else without bands
    double shareDone = 0.0;   ///< of the time, before the tiles are coded
    std::mutex sourceMutex;   ///< guards the source and nextTile
    std::uint32_t nextTile = 0;
    std::mutex mutex; ///< guards what follows and the assembler
    std::uint32_t tilesDone = 0;
};

} // namespace

CError writeImage(ImageSource &source, const WriteOptions &options, const std::string &path)
{
    try {
        return Writer(source, options).run(path);
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory; take smaller blocks."};
    } catch (const std::exception &exception) {
        return {PLK_ERR_DECODE, exception.what()};
    }
}

} // namespace xrv
