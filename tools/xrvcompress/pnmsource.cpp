#include "rowsource.h"
#include "sourceparts.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

using PLK::CError;
using namespace xrv;

namespace {

/// A binary PGM, PPM or PAM file.
class PnmSource : public RowSource
{
public:
    CError open(const std::string &path, std::vector<std::string> *warnings)
    {
        name = path;
        file.open(std::filesystem::u8path(path), std::ios::binary);
        const std::string magic = word();
        const bool isGood = magic == "P7" ? readPamHeader() : (magic == "P5" || magic == "P6") && readHeader(magic);
        if (magic == "P1" || magic == "P2" || magic == "P3" || magic == "P4")
            return {PLK_ERR_UNSUPPORTED, "Of PNM files only binary grey (P5), colour (P6) and PAM (P7) ones are read."};
        if (!isGood || !file)
            return {PLK_ERR_MALFORMED, "The header of \"" + path + "\" is damaged."};
        firstRow = file.tellg();
        describe();
        completePlace(path, &image, warnings);
        return {};
    }

protected:
    CError readRow(std::uint8_t *row) override
    {
        const std::size_t cells = image.width * image.bands.size();
        file.read(reinterpret_cast<char *>(row), static_cast<std::streamsize>(cells * bytesPerCell()));
        if (!file)
            return {PLK_ERR_TRUNCATED, "\"" + name + "\" ends before its last row."};
        if (bytesPerCell() == 2) { // high byte first
            for (std::size_t i = 0; i < cells; ++i) {
                const auto cell = static_cast<std::uint16_t>(row[2 * i] << 8 | row[2 * i + 1]);
                std::memcpy(row + 2 * i, &cell, sizeof cell);
            }
        }
        return {};
    }

    CError skipRows(std::int64_t count) override
    {
        file.seekg(static_cast<std::streamoff>(count) * static_cast<std::streamoff>(rowBytes()), std::ios::cur);
        return {};
    }

    CError restart() override
    {
        file.clear();
        file.seekg(firstRow);
        return {};
    }

private:
    /// The next word; comments are left out.
    std::string word()
    {
        std::string text;
        for (int c = file.get(); file; c = file.get()) {
            if (c == '#') {
                std::string comment;
                std::getline(file, comment);
            } else if (!std::isspace(c)) {
                text.push_back(static_cast<char>(c));
            } else if (!text.empty()) {
                break;
            }
            if (text.size() > 64)
                break;
        }
        return text;
    }
    bool number(std::uint32_t most, std::uint32_t *value)
    {
        const std::string text = word();
        std::uint64_t result = 0;
        for (const char c : text) {
            if (c < '0' || c > '9')
                return false;
            result = result * 10 + static_cast<std::uint64_t>(c - '0');
            if (result > most)
                return false;
        }
        *value = static_cast<std::uint32_t>(result);
        return !text.empty() && result > 0;
    }
    bool readHeader(const std::string &magic)
    {
        depth = magic == "P6" ? 3 : 1;
        return number(kMaxCells, &image.width) && number(kMaxCells, &image.height) && number(65535, &largest);
    }
    bool readPamHeader()
    {
        bool isGood = true;
        for (std::string key = word(); isGood && key != "ENDHDR"; key = word()) {
            if (key == "WIDTH")
                isGood = number(kMaxCells, &image.width);
            else if (key == "HEIGHT")
                isGood = number(kMaxCells, &image.height);
            else if (key == "DEPTH")
                isGood = number(255, &depth);
            else if (key == "MAXVAL")
                isGood = number(65535, &largest);
            else if (key == "TUPLTYPE")
                tupleType = word();
            else
                isGood = false;
        }
        return isGood && image.width > 0 && image.height > 0 && depth > 0 && largest > 0;
    }
    void describe()
    {
        std::uint8_t bits = 1;
        while (largest >> bits != 0)
            ++bits;
        image.bands.assign(depth, {bits, false, {}});
        const bool hasAlpha = tupleType.find("_ALPHA") != std::string::npos;
        const std::uint32_t colours = depth - (hasAlpha ? 1 : 0);
        const bool isRgb = colours == 3 && (tupleType.empty() || tupleType.compare(0, 3, "RGB") == 0);
        image.isLastOpacity = hasAlpha && depth > 1;
        image.colourSpace = isRgb          ? PLK_COLORSPACE_SRGB
                            : colours == 1 ? PLK_COLORSPACE_GREYSCALE
                                           : PLK_COLORSPACE_MULTIBAND;
        nameBands(&image);
    }

    static constexpr std::uint32_t kMaxCells = 0x7FFFFFFF;
    std::string name, tupleType;
    std::ifstream file;
    std::ifstream::pos_type firstRow = 0;
    std::uint32_t depth = 0, largest = 0;
};

} // namespace

CError openPnmSource(const std::string &path, std::unique_ptr<ImageSource> *source, std::vector<std::string> *warnings)
{
    auto made = std::make_unique<PnmSource>();
    CError error = made->open(path, warnings);
    if (error.IsSuccess())
        *source = std::move(made);
    return error;
}
