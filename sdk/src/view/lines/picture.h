#pragma once

#include "linemaker.h"
#include "stripreader.h"
#include "viewrequest.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <mutex>

namespace xrv {

/// Where a line goes.
struct LineTarget
{
    void *bgra = nullptr; ///< interleaved pixels, or null for one buffer per band
    PLKCellType type = PLKCT_UINT8;
    void *const *lines = nullptr;  ///< one buffer per band of the view
    bool autoscaleOpacity = false; ///< counts at the first line of a picture
};

/// A view at one level, read line by line from top to bottom and then from the top again. Any thread; lines are given
/// out in the order of the calls.
class Picture
{
public:
    Picture(const ViewSource &source, RequestPtr request, int level, StripPtr atHand);

    const ViewRequest &request() const { return *viewRequest; }
    /// Decodes what the first lines need. A failure is kept and given out by every line.
    PLK::CError prepare();
    /// Makes the next line. \a error is set on PLK_READ_FAILED. The position stays where it is when no line was made.
    PLKReadStatus readLine(const LineTarget &target, PLK::CError *error);
    /// The next line is the first one.
    void rewind();
    /// Lines given out since the last rewind(), of all rounds; 0 to request().height after the first round.
    int linesRead() const;
    /// Cells at hand, null for none.
    StripPtr strip() const;

private:
    PLK::CError need(int line);

    RequestPtr viewRequest;
    mutable std::mutex mutex; ///< guards the rest
    LineMaker lines;
    StripReader strips;
    StripPtr bound;
    PLK::CError failure;
    int nextLine = 0;
    int reachedLine = 0;
};

} // namespace xrv
