// Writes sample files into a folder, for the scripts that compare what programs say of JPEG 2000 files.
//
// usage: makecomparefiles FOLDER

#include "data/boxbuilder.h"
#include "data/jp2maker.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

namespace {

constexpr int kSYcc = 3; // OPJ_CLRSPC_SYCC

using jp2maker::FileBytes;
using jp2maker::Options;

/// Every value that differs from its neighbours in the list of what is compared.
Options manyThings()
{
    Options options;
    options.width = 301;
    options.height = 203;
    options.tileWidth = 128;
    options.tileHeight = 96;
    options.components.assign(3, jp2maker::Component());
    options.levels = 2;
    options.layerRates = {20, 5, 2};
    options.progression = "RPCL";
    options.precincts = {{128, 64}, {64, 32}, {32, 32}};
    options.codeBlockWidth = 32;
    options.codeBlockHeight = 16;
    options.reversible = false;
    options.componentTransform = true;
    options.sop = options.eph = true;
    options.comment = "Made for a comparison";
    return options;
}

Options onCanvas()
{
    Options options;
    options.width = 200;
    options.height = 150;
    options.offsetX = 33;
    options.offsetY = 17;
    options.tileWidth = options.tileHeight = 64;
    options.tileOffsetX = 5;
    options.tileOffsetY = 9;
    options.levels = 1;
    options.progression = "PCRL";
    options.eph = true;
    return options;
}

Options ofComponents(int count, const jp2maker::Component &component)
{
    Options options;
    options.components.assign(static_cast<std::size_t>(count), component);
    return options;
}

Options codestreamAlone()
{
    Options options = ofComponents(2, {16, false, 1, 1});
    options.bareCodestream = true;
    options.progression = "CPRL";
    options.sop = true;
    options.levels = 0;
    return options;
}

Options withOpacity()
{
    Options options = ofComponents(4, {});
    options.opacityLast = true;
    options.progression = "RLCP";
    return options;
}

Options halfColour()
{
    Options options = ofComponents(3, {8, false, 2, 2});
    options.components[0] = {};
    options.colourSpace = kSYcc;
    return options;
}

FileBytes withXmlBoxes()
{
    FileBytes file = jp2maker::make({});
    const std::string nested = "<nested>inside of two boxes</nested>";
    file = jp2maker::withBox(file, "xml ", std::string("<first/>\n"));
    file = jp2maker::withBox(
        file, "asoc", boxbuilder::join({boxbuilder::label("label"), boxbuilder::asoc({boxbuilder::xml(nested)})}));
    file = jp2maker::withBox(file, "uuid", FileBytes(32, 7));
    file = jp2maker::withBox(file, "xml ", std::string("<last>\xC3\xA4\xE6\x9D\xB1</last>"));
    return file;
}

bool write(const std::string &folder, const std::string &name, const FileBytes &bytes)
{
    std::ofstream file(folder + '/' + name, std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

bool writeAll(const std::string &folder)
{
    return write(folder, "plain.jp2", jp2maker::make({})) && write(folder, "many.jp2", jp2maker::make(manyThings())) &&
           write(folder, "canvas.jp2", jp2maker::make(onCanvas())) &&
           write(folder, "signed12.jp2", jp2maker::make(ofComponents(1, {12, true, 1, 1}))) &&
           write(folder, "bands5.jp2", jp2maker::make(ofComponents(5, {10, false, 1, 1}))) &&
           write(folder, "codestream.j2k", jp2maker::make(codestreamAlone())) &&
           write(folder, "opacity.jp2", jp2maker::make(withOpacity())) &&
           write(folder, "half.jp2", jp2maker::make(halfColour())) && write(folder, "xml.jp2", withXmlBoxes());
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fputs("usage: makecomparefiles FOLDER\n", stderr);
        return 2;
    }
    try {
        if (writeAll(argv[1]))
            return 0;
        std::fputs("makecomparefiles: the files cannot be written\n", stderr);
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "makecomparefiles: %s\n", exception.what());
    }
    return 1;
}
