#include "stepchooser.h"

#include "workers.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>
#include <optional>

namespace xrv {

using PLK::CError;

namespace {

/// Logarithm of the coarsest step. From 0 on the highest subband would have no bit plane left, for which OpenJPH is not
/// made.
constexpr double kCoarsest = -0.25;
constexpr std::size_t kFewPieces = 32;
constexpr std::size_t kRoughStride = 8;
constexpr int kMaxRoughTrials = 7, kMaxTrials = 4, kMaxWholeTrials = 8;
constexpr double kRoughTolerance = 0.1, kTolerance = 0.02; ///< logarithms: 7 % and 1.4 % of the bytes
constexpr double kNarrow = 0.002;                          ///< between steps that make no difference
constexpr double kUsualTrials = 3.0;                       ///< with all pieces, for the progress
constexpr double kUsualSlope = -0.8;
constexpr double kSteepest = -4.0, kFlattest = -0.2;

} // namespace

StepChooser::StepChooser(const ImageSample &sample, unsigned threads, const CancelFlag &cancel,
                         std::function<void(double)> progress)
    : sample(sample)
    , threads(threads)
    , cancel(cancel)
    , progress(std::move(progress))
{
}

CError StepChooser::run(double bytesPerCell, double finest, double *step)
{
    wanted = std::log2(bytesPerCell);
    least = std::log2(finest);
    double logStep = std::clamp(least + 4.0, least, kCoarsest);
    const bool areMany = sample.rects().size() >= kFewPieces;
    if (areMany)
        if (CError error = search(kRoughStride, kRoughTolerance, kMaxRoughTrials, &logStep))
            return error;
    if (CError error = search(1, kTolerance, areMany ? kMaxTrials : kMaxWholeTrials, &logStep))
        return error;
    *step = std::exp2(logStep);
    return {};
}

/// Tries steps with every \a stride'th piece, from \a logStep on, until one comes within \a tolerance of the wanted
/// bytes; \a logStep then is the one that came closest.
CError StepChooser::search(std::size_t stride, double tolerance, int mostTrials, double *logStep)
{
    std::optional<Trial> fine, coarse; // the last ones with too many and with too few bytes
    slope = kUsualSlope;
    double closest = std::numeric_limits<double>::max();
    double guess = *logStep;
    for (int i = 0; i < mostTrials && closest >= tolerance; ++i) {
        Trial trial;
        if (CError error = measure(stride, guess, &trial))
            return error;
        std::optional<Trial> &side = trial.bytes > wanted ? fine : coarse;
        if (side)
            slope = slopeOf(*side, trial);
        side = trial;
        const double distance = std::abs(trial.bytes - wanted);
        if (distance < closest) {
            closest = distance;
            *logStep = guess;
        }
        const double before = guess;
        guess = fine && coarse ? between(*fine, *coarse) : beyond(trial);
        if (std::abs(guess - before) < kNarrow)
            break;
    }
    return {};
}

double StepChooser::slopeOf(const Trial &a, const Trial &b)
{
    return std::clamp((b.bytes - a.bytes) / (b.step - a.step), kSteepest, kFlattest);
}

/// Where the line through two trials has the wanted bytes. It keeps away from both: images that were compressed before
/// make the bytes fall by leaps.
double StepChooser::between(const Trial &fine, const Trial &coarse) const
{
    constexpr double kMargin = 0.2;
    const double share = (fine.bytes - wanted) / (fine.bytes - coarse.bytes);
    return fine.step + std::clamp(share, kMargin, 1.0 - kMargin) * (coarse.step - fine.step);
}

double StepChooser::beyond(const Trial &trial) const
{
    return std::clamp(trial.step + (wanted - trial.bytes) / slope, least, kCoarsest);
}

CError StepChooser::measure(std::size_t stride, double logStep, Trial *trial)
{
    std::atomic<std::size_t> nextPiece{0};
    std::mutex mutex; // guards what follows
    double bytes = 0.0, cells = 0.0;
    CError error = runWorkers(threads, [&](bool *goesOn) -> CError {
        const std::size_t piece = nextPiece.fetch_add(stride);
        *goesOn = piece < sample.rects().size();
        if (!*goesOn)
            return {};
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The compression was cancelled."};
        std::uint64_t count = 0;
        if (CError failed = sample.encode(piece, std::exp2(logStep), &count))
            return failed;
        const std::lock_guard<std::mutex> lock(mutex);
        bytes += std::max(static_cast<double>(count) / 2.0, static_cast<double>(count) - sample.excessBytes());
        cells += static_cast<double>(sample.cells(piece));
        piecesDone += 1.0;
        progress(std::min(1.0, piecesDone / (kUsualTrials * static_cast<double>(sample.rects().size()))));
        return {};
    });
    *trial = {logStep, std::log2(bytes / cells)};
    return error;
}

} // namespace xrv
