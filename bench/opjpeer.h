#pragma once

#include "child.h"
#include "peer.h"

/// OpenJPEG's own tool as a process of its own, with two threads, to a file in memory where there is such a folder. It
/// does not resample: it gives the window at the coarsest resolution level that GDAL, too, would take for the picture.
ChildResult runOpjDecompress(const std::string &path, const Window &window, int levels);
