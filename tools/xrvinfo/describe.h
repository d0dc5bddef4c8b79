#pragma once

#include "node.h"

#include <xrv60/plkerror.h>

#include <string>

struct DescribeOptions
{
    bool withHistograms = false; ///< the counts as well
    bool countsAllCells = false; ///< statistics are exact, however long that takes
};

/// What the XRV or JPEG 2000 file or address \a name (UTF-8) holds.
PLK::CError describe(const std::string &name, const DescribeOptions &options, Node *report);
