#include "arguments.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>

using namespace xrv;

namespace {

bool parseNumber(const std::string &text, double least, double most, double *number)
{
    char *end = nullptr;
    *number = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && *number >= least && *number <= most;
}

bool parseWhole(const std::string &text, int least, int most, int *number)
{
    double value = 0.0;
    if (!parseNumber(text, least, most, &value) || value != std::floor(value))
        return false;
    *number = static_cast<int>(value);
    return true;
}

/// Takes options apart, one word after the other.
class Parser
{
public:
    Parser(const std::vector<std::string> &words, Arguments *arguments)
        : words(words)
        , result(*arguments)
    {
        addTextOptions();
        addOptions();
    }

    std::optional<std::string> run()
    {
        for (next = 0; next < words.size() && problem.empty(); ++next) {
            const std::string &word = words[next];
            if (!areOptionsOver && word == "--")
                areOptionsOver = true;
            else if (!areOptionsOver && word.size() > 1 && word[0] == '-')
                takeOption(word);
            else
                files.push_back(word);
        }
        if (problem.empty() && !result.wantsHelp && !result.wantsVersion)
            takeFiles();
        return problem.empty() ? std::nullopt : std::optional(problem);
    }

private:
    using Taker = std::function<bool(const std::string &)>;

    void addTextOptions()
    {
        const char *const names[] = {"--classification", "--acquisition-date", "--sensor", "--software", "--author",
                                     "--copyright",      "--company",          "--email",  "--address",  "--telephone"};
        for (std::size_t i = 0; i < kXrvTexts; ++i)
            withValue[names[i]] = [this, i](const std::string &value) {
                result.texts[i] = value;
                return true;
            };
    }

    void addOptions()
    {
        withValue["--rate"] = [this](const std::string &value) {
            result.options.isLossless = false;
            hasRate = true;
            const std::size_t colon = value.find(':'); // "10:1" is what people write
            const bool isRatio = colon != std::string::npos && value.substr(colon) == ":1";
            return parseNumber(isRatio ? value.substr(0, colon) : value, 1.0, 1000.0, &result.options.rate);
        };
        withValue["--block-size"] = [this](const std::string &value) {
            int size = 0;
            const bool isGood = parseWhole(value, 64, 16384, &size) && (size & (size - 1)) == 0;
            result.options.tileSize = static_cast<std::uint32_t>(size);
            return isGood;
        };
        withValue["--layers"] = [this](const std::string &value) {
            return parseWhole(value, 1, 32, &result.options.layers);
        };
        withValue["--threads"] = [this](const std::string &value) {
            return parseWhole(value, 1, 256, &result.options.threads);
        };
        withValue["--xml"] = [this](const std::string &value) {
            result.xmls.push_back(value);
            return true;
        };
        withValue["--rpc"] = [this](const std::string &value) {
            result.rpc = value;
            return true;
        };
        withValue["--nodata"] = [this](const std::string &value) {
            char *end = nullptr;
            const double number = std::strtod(value.c_str(), &end);
            const bool isNumber = !value.empty() && *end == '\0';
            result.noData = isNumber ? std::optional(number) : std::nullopt;
            return isNumber || value == "none";
        };
        alone["--lossless"] = &isLossless;
        alone["--jp2"] = &isJp2;
        alone["--high-throughput"] = &result.options.isHighThroughput;
        alone["--quiet"] = &result.isQuiet;
        alone["--help"] = alone["-h"] = &result.wantsHelp;
        alone["--version"] = &result.wantsVersion;
    }

    void takeOption(const std::string &word)
    {
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        if (const auto flag = alone.find(name); flag != alone.end() && equals == std::string::npos) {
            *flag->second = true;
            return;
        }
        const auto option = withValue.find(name);
        if (option == withValue.end()) {
            problem = "Unknown option: " + word;
            return;
        }
        if (equals == std::string::npos && next + 1 == words.size()) {
            problem = "The option " + name + " needs a value.";
            return;
        }
        const std::string value = equals != std::string::npos ? word.substr(equals + 1) : words[++next];
        if (!option->second(value))
            problem = "\"" + value + "\" is no value for the option " + name + ".";
    }

    void takeFiles()
    {
        if (files.size() != 2)
            problem = files.size() < 2 ? "An input and an output file are needed." : "Too many files are named.";
        else if (isLossless && hasRate)
            problem = "The options --lossless and --rate exclude each other.";
        else if (result.options.isHighThroughput && result.options.layers > 1)
            problem = "The option --high-throughput allows for one quality layer only.";
        else {
            result.input = files[0];
            result.output = files[1];
            result.options.kind = isJp2 ? FileKind::GeoJp2 : FileKind::Xrv;
        }
    }

    const std::vector<std::string> &words;
    Arguments &result;
    std::map<std::string, Taker> withValue;
    std::map<std::string, bool *> alone;
    std::vector<std::string> files;
    std::string problem;
    std::size_t next = 0;
    bool areOptionsOver = false, isLossless = false, hasRate = false, isJp2 = false;
};

} // namespace

std::optional<std::string> parseArguments(const std::vector<std::string> &words, Arguments *arguments)
{
    return Parser(words, arguments).run();
}

const char *usage()
{
    return R"(usage: xrvcompress [options] INPUT OUTPUT

Compresses JPEG 2000, XRV, (Geo)TIFF, PNM or PNG images to XRV, or to JPEG 2000 that streams well. Cells have 1 to 16
bits or, without loss, 32; Floats go to XRV files only.

  --lossless            every cell as it was (the default)
  --rate N              N:1, N from 1 to 1000: the cells take N times as many bytes as the file
  --nodata V            cells of this value are no data and shown transparent; "none" for no value (default: as
                        the GDAL_NODATA tag of a TIFF has it). Floats that are no numbers always are.
  --jp2                 write a GeoJP2 file in place of an XRV file
  --high-throughput     code blocks several times as fast; a lossless file is a tenth larger then
  --block-size N        side of the blocks in cells, a power of two from 64 to 16384 (default 1024)
  --layers N            quality layers, 1 to 32 (default 1)
  --xml FILE            put this XML document into the file; may be repeated
  --rpc FILE            rational polynomial coefficients (_RPC.TXT or .RPB file)
  --threads N           default: one for every core
  --quiet               no progress bar, no warnings
  --help, --version

Texts that an XRV file carries; each replaces that of the input:
  --classification TEXT    --acquisition-date TEXT    --sensor TEXT    --software TEXT    --author TEXT
  --copyright TEXT         --company TEXT             --email TEXT     --address TEXT     --telephone TEXT

Exit status: 0 done, 1 failed, 2 wrong usage, 130 interrupted.
)";
}
