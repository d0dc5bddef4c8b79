// Compresses images to XRV or GeoJP2: see docs/xrvcompress.md.

#include "arguments.h"
#include "progressbar.h"
#include "sourceparts.h"

#include "../guarded.h"

#include "base/utf8.h"
#include "geo/rpc.h"

#include <xrv60/plkinit.h>
#include <xrv60/plkview.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

using PLK::CError;
using namespace xrv;

namespace {

constexpr int kFailed = 1, kWrongUsage = 2, kInterrupted = 130;
constexpr std::uint64_t kCacheBytes = 128u << 20; ///< of decoded pieces of a JPEG 2000 input
constexpr std::uintmax_t kMaxSideFile = 64u << 20;

CancelFlag *interrupted = nullptr; // for the signal handler; set before it is installed

extern "C" void interrupt(int)
{
    interrupted->raise(); // an atomic flag without a lock
}

void installHandlers(CancelFlag *flag)
{
    interrupted = flag;
    std::signal(SIGINT, interrupt);
    std::signal(SIGTERM, interrupt);
#ifdef SIGHUP
    std::signal(SIGHUP, interrupt);
#endif
}

void configureSdk()
{
    PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    config.SetCacheMaxmem(kCacheBytes);
    config.SetResilientDecodingEnabled(false); // damage must not be compressed as if it were the picture
    config.SetProjectionFormat(PLK_PROJECTION_EPSG);
}

CError readWhole(const std::string &path, std::string *text)
{
    const std::filesystem::path name = std::filesystem::u8path(path);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(name, error);
    if (error)
        return {PLK_ERR_NOT_FOUND, "\"" + path + "\" cannot be read: " + error.message() + "."};
    if (size > kMaxSideFile)
        return {PLK_ERR_UNSUPPORTED, "\"" + path + "\" is too large."};
    std::ifstream file(name, std::ios::binary);
    text->assign(std::istreambuf_iterator<char>(file), {});
    return text->size() == size ? CError() : CError(PLK_ERR_READ, "\"" + path + "\" cannot be read.");
}

/// The image as the options have it.
class AmendedSource : public ImageSource
{
public:
    explicit AmendedSource(std::unique_ptr<ImageSource> input)
        : source(std::move(input))
        , image(source->description())
    {
    }

    CError amend(const Arguments &arguments)
    {
        for (std::size_t i = 0; i < kXrvTexts; ++i)
            if (arguments.texts[i])
                image.texts[i] = arguments.texts[i];
        if (arguments.noData && image.isLastOpacity)
            return {PLK_ERR_INVALID_ARGUMENT, "The image has an opacity band already; --nodata is for those without."};
        image.noData = arguments.noData.value_or(image.noData);
        std::optional<std::string> &software = image.texts[std::size_t(XrvText::CompressionSoftware)];
        if (!arguments.texts[std::size_t(XrvText::CompressionSoftware)])
            software = std::string("xrvcompress ") + PLKGetLibraryVersion();
        for (const std::optional<std::string> &text : image.texts)
            if (text && !isValidUtf8(*text))
                return {PLK_ERR_INVALID_ARGUMENT, "One of the texts is no UTF-8."};
        for (const std::string &xml : arguments.xmls) {
            image.xmls.emplace_back();
            if (CError error = readWhole(xml, &image.xmls.back()))
                return error;
        }
        return arguments.rpc.empty() ? CError() : readRpcFile(arguments.rpc);
    }

    const ImageDescription &description() const override { return image; }
    CError read(const IntRect &rect, const std::vector<std::int32_t *> &planes) override
    {
        return source->read(rect, planes);
    }
    CError rewind() override { return source->rewind(); }

private:
    CError readRpcFile(const std::string &path)
    {
        std::string text;
        if (CError error = readWhole(path, &text))
            return error;
        std::vector<std::string> problems, ignored;
        image.rpc = parseRpcText(text, path, &problems);
        if (!image.rpc)
            image.rpc = parseRpb(text, path, &ignored);
        if (!image.rpc)
            return {PLK_ERR_MALFORMED, problems.empty() ? "\"" + path + "\" has no RPC coefficients." : problems[0]};
        return {};
    }

    std::unique_ptr<ImageSource> source;
    ImageDescription image;
};

CError compress(const Arguments &arguments)
{
    std::error_code ignored;
    if (std::filesystem::equivalent(std::filesystem::u8path(arguments.input), std::filesystem::u8path(arguments.output),
                                    ignored))
        return {PLK_ERR_INVALID_ARGUMENT, "The output would replace the input."};
    std::unique_ptr<ImageSource> input;
    std::vector<std::string> warnings;
    if (CError error = openImageSource(arguments.input, &input, &warnings))
        return error;
    if (!arguments.isQuiet)
        for (const std::string &warning : warnings)
            std::fprintf(stderr, "xrvcompress: warning: %s\n", warning.c_str());
    AmendedSource source(std::move(input));
    if (CError error = source.amend(arguments))
        return error;
    ProgressBar bar(!arguments.isQuiet);
    WriteOptions options = arguments.options;
    options.progress = [&bar](double share) { bar.show(share); };
    return writeImage(source, options, arguments.output);
}

int run(const std::vector<std::string> &words)
{
    Arguments arguments;
    if (const auto problem = parseArguments(words, &arguments)) {
        std::fprintf(stderr, "xrvcompress: %s\n\n%s", problem->c_str(), usage());
        return kWrongUsage;
    }
    if (arguments.wantsHelp || arguments.wantsVersion) {
        std::printf("%s", arguments.wantsHelp ? usage()
                                              : (std::string("xrvcompress ") + PLKGetLibraryVersion() + "\n").c_str());
        return 0;
    }
    installHandlers(&arguments.options.cancel);
    configureSdk();
    const CError error = compress(arguments);
    if (error)
        std::fprintf(stderr, "xrvcompress: %s\n", error.GetErrorMessage());
    return !error                                               ? 0
           : error.GetErrorNumber() == PLK_ERR_CANCELLED        ? kInterrupted
           : error.GetErrorNumber() == PLK_ERR_INVALID_ARGUMENT ? kWrongUsage
                                                                : kFailed;
}

} // namespace

int main(int argc, char *argv[])
{
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i)
        words.push_back(utf8FromLocal8Bit(argv[i]));
    PLKInit();
    const int status = guarded("xrvcompress", [&words] { return run(words); });
    PLKShutdown();
    return status;
}
