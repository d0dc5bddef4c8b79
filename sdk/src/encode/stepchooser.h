#pragma once

#include "imagesample.h"

#include <functional>

namespace xrv {

/// Finds the quantization step with which an image takes a given number of bytes: encodes a sample of it with some
/// steps, each taken from the former ones by the logarithms of steps and bytes, which mostly lie nearly on a line.
class StepChooser
{
public:
    /// All are borrowed. \a progress gets the share of the work that is done, 0 to 1, from any thread, one at a time.
    StepChooser(const ImageSample &sample, unsigned threads, const CancelFlag &cancel,
                std::function<void(double)> progress);

    /// \a bytesPerCell: that the packets of the image may take by the number of its cells (of all bands together).
    /// \a finest: step below which nothing is gained. The result lies between it and 0.84, even where that means other
    /// bytes.
    PLK::CError run(double bytesPerCell, double finest, double *step);

private:
    /// Logarithms to base 2.
    struct Trial
    {
        double step = 0.0, bytes = 0.0;
    };
    PLK::CError search(std::size_t stride, double tolerance, int mostTrials, double *logStep);
    PLK::CError measure(std::size_t stride, double logStep, Trial *trial);
    static double slopeOf(const Trial &a, const Trial &b);
    double between(const Trial &fine, const Trial &coarse) const;
    double beyond(const Trial &trial) const;

    const ImageSample &sample;
    const unsigned threads;
    const CancelFlag &cancel;
    const std::function<void(double)> progress;
    double wanted = 0.0, least = 0.0; ///< logarithms of bytes per cell and of the finest step
    double slope = 0.0;               ///< on this side of what is wanted, as last seen
    double piecesDone = 0.0;
};

} // namespace xrv
