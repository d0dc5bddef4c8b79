#pragma once

#include "node.h"

#include <xrv60/plkerror.h>

#include <string>

/// What the XRV or JPEG 2000 file or address \a name (UTF-8) holds. \a withHistograms: the counts as well.
PLK::CError describe(const std::string &name, bool withHistograms, Node *report);
