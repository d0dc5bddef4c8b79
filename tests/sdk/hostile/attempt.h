#pragma once

#include <xrv60/plkview.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <string>
#include <vector>

/// What came of the attempt to show a file, and what it cost.
struct Attempt
{
    PLK::CError error;                 ///< success when every line was read
    std::vector<std::uint8_t> picture; ///< BGRA, kPictureSide lines of kPictureSide pixels; what was read of it
    double seconds = 0.0;              ///< of processors
    std::uint64_t peakBytes = 0;       ///< most memory of the process while it lasted

    bool isShown() const { return error.IsSuccess(); }
    /// Empty when this is a clear error or a picture, in good time and in little memory; else what is wrong with it.
    QByteArray complaint() const;
};

constexpr int kPictureSide = 256;

enum class Damage { Strict, Resilient };

/// How much longer things may take here than the programs promise: 1, or more under the address sanitizer.
double timeFactor();

/// Opens \a path (UTF-8) with \a view and shows all of it as one blocking picture of kPictureSide pixels square.
Attempt attempt(PLK::CView *view, const std::string &path, Damage damage);
/// Has the statistics of what \a view has open worked out.
Attempt attemptStatistics(PLK::CView *view);
/// Shows all of what \a view has open already.
Attempt attemptView(PLK::CView *view);
