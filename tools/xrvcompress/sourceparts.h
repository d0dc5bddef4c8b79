#pragma once

#include "encode/imagesource.h"

#include <memory>
#include <string>
#include <vector>

/// Opens the image file \a path (UTF-8): JPEG 2000 and XRV, GeoTIFF, PNM or PNG; the content decides. An xrvp://
/// address is one of the first two. \a warnings gets sentences about what is left out.
PLK::CError openImageSource(const std::string &path, std::unique_ptr<xrv::ImageSource> *source,
                            std::vector<std::string> *warnings);

/// Fills in place and RPC coefficients from \a image's own tags and, without them, from the side files of \a path.
void completePlace(const std::string &path, xrv::ImageDescription *image, std::vector<std::string> *warnings);

/// Names the bands as the colour space has it, unless they have names.
void nameBands(xrv::ImageDescription *image);

PLK::CError openViewSource(const std::string &path, std::unique_ptr<xrv::ImageSource> *source,
                           std::vector<std::string> *warnings);
PLK::CError openTiffSource(const std::string &path, std::unique_ptr<xrv::ImageSource> *source,
                           std::vector<std::string> *warnings);
PLK::CError openPnmSource(const std::string &path, std::unique_ptr<xrv::ImageSource> *source,
                          std::vector<std::string> *warnings);
PLK::CError openPngSource(const std::string &path, std::unique_ptr<xrv::ImageSource> *source,
                          std::vector<std::string> *warnings);
