#pragma once

#include "encode/imagewriter.h"

#include <optional>
#include <string>
#include <vector>

/// What the command line asks for.
struct Arguments
{
    std::string input, output; ///< UTF-8
    xrv::WriteOptions options;
    xrv::XrvTexts texts;           ///< in place of those of the image
    std::vector<std::string> xmls; ///< files, beside the boxes of the image
    std::string rpc;               ///< file, in place of what the image has
    /// In place of what the image sets aside for cells without data: a number, or std::nullopt in it for none.
    std::optional<std::optional<double>> noData;
    bool isQuiet = false;
    bool wantsHelp = false, wantsVersion = false;
};

/// Reads the command line (UTF-8, without the program's name). On failure gives a sentence.
std::optional<std::string> parseArguments(const std::vector<std::string> &words, Arguments *arguments);

/// The usage text.
const char *usage();
