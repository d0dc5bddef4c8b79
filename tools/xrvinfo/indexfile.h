#pragma once

#include <xrv60/plkerror.h>

#include <string>

/// Writes what a reader over a network would have to find out about the image at \a path into a file beside it, whose
/// name goes to \a indexPath; none where the image has all of it in itself, and \a indexPath is empty then.
PLK::CError writeIndexFile(const std::string &path, std::string *indexPath);
