// Prints what an XRV or JPEG 2000 file holds.

#include "describe.h"
#include "indexfile.h"

#include "../guarded.h"

#include "base/utf8.h"

#include <xrv60/plkinit.h>

#include <cstdio>
#include <vector>

namespace {

constexpr const char *kUsage = R"(usage: xrvinfo [options] FILE

Prints what an XRV or JPEG 2000 file, local or at an xrvp:// address, holds.

  --json          as one JSON object
  --histograms    with the counts of the histograms
  --count         with statistics of every cell; else those of large images
                  without stored ones are estimated, and marked so
  --index         writes FILE.xrvi, which a publisher puts beside the image:
                  where its tiles lie, for those that read it over a network
  --help, --version

Exit status: 0 done, 1 the file cannot be read, 2 wrong usage.
)";

int wrongUsage(const std::string &problem)
{
    std::fprintf(stderr, "xrvinfo: %s\n\n%s", problem.c_str(), kUsage);
    return 2;
}

int writeIndex(const std::string &name)
{
    std::string indexPath;
    if (const PLK::CError error = writeIndexFile(name, &indexPath)) {
        std::fprintf(stderr, "xrvinfo: %s\n", error.GetErrorMessage());
        return 1;
    }
    if (indexPath.empty())
        std::printf("%s has its table of tile-parts in itself and needs no index.\n", name.c_str());
    else
        std::printf("%s\n", indexPath.c_str());
    return 0;
}

int run(const std::vector<std::string> &words)
{
    std::string name;
    bool isJson = false, isForIndex = false;
    DescribeOptions options;
    for (const std::string &word : words) {
        if (word == "--help" || word == "-h" || word == "--version") {
            std::printf("%s", word == "--version" ? (std::string("xrvinfo ") + PLKGetLibraryVersion() + "\n").c_str()
                                                  : kUsage);
            return 0;
        }
        if (word == "--json")
            isJson = true;
        else if (word == "--histograms")
            options.withHistograms = true;
        else if (word == "--index")
            isForIndex = true;
        else if (word == "--count")
            options.countsAllCells = true;
        else if (word.size() > 1 && word[0] == '-')
            return wrongUsage("Unknown option: " + word);
        else if (!name.empty())
            return wrongUsage("Too many files are named.");
        else
            name = word;
    }
    if (name.empty())
        return wrongUsage("A file is needed.");
    if (isForIndex)
        return writeIndex(name);
    Node report;
    if (const PLK::CError error = describe(name, options, &report)) {
        std::fprintf(stderr, "xrvinfo: %s\n", error.GetErrorMessage());
        return 1;
    }
    const std::string text = isJson ? report.json() : report.lines();
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
        std::fprintf(stderr, "xrvinfo: The report cannot be written.\n");
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i)
        words.push_back(xrv::utf8FromLocal8Bit(argv[i]));
    PLKInit();
    const int status = guarded("xrvinfo", [&words] { return run(words); });
    PLKShutdown();
    return status;
}
