#include "cachefolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>

namespace xrv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kPrefix = "xrvp-";
constexpr const char *kIndexEnding = ".cache";
constexpr const char *kDataEnding = ".data";

fs::path pathOf(const std::string &folder, const std::string &base, const char *ending)
{
    return fs::u8path(folder) / fs::u8path(base + ending);
}

} // namespace

CacheFolder::CacheFolder(std::string path)
    : path(std::move(path))
{
}

bool CacheFolder::create() const
{
    std::error_code error;
    fs::create_directories(fs::u8path(path), error);
    return fs::is_directory(fs::u8path(path), error);
}

std::vector<CacheFolder::Pair> CacheFolder::pairs(const std::string &prefix) const
{
    std::map<std::string, Pair> found;
    std::error_code error;
    fs::directory_iterator it(fs::u8path(path), error);
    for (; !error && it != fs::directory_iterator(); it.increment(error)) {
        const std::string base = it->path().stem().u8string(), ending = it->path().extension().u8string();
        if ((ending != kIndexEnding && ending != kDataEnding) || base.compare(0, prefix.size(), prefix) != 0 ||
            base.compare(0, std::char_traits<char>::length(kPrefix), kPrefix) != 0)
            continue;
        std::error_code gone;
        const std::uintmax_t size = it->file_size(gone);
        Pair &pair = found[base];
        pair.base = base;
        pair.bytes += gone ? 0 : size;
        const fs::file_time_type time = it->last_write_time(gone);
        if (!gone && (ending == kIndexEnding || pair.lastUse == 0))
            pair.lastUse = time.time_since_epoch().count();
    }
    std::vector<Pair> pairs;
    for (const auto &[base, pair] : found)
        pairs.push_back(pair);
    return pairs;
}

void CacheFolder::remove(const std::string &base) const
{
    std::error_code ignored;
    for (const char *ending : {kIndexEnding, kDataEnding})
        fs::remove(pathOf(path, base, ending), ignored);
}

void CacheFolder::touch(const std::string &base) const
{
    fs::file_time_type time = fs::file_time_type::clock::now();
    for (const Pair &pair : pairs(kPrefix)) {
        const fs::file_time_type after{fs::file_time_type::duration(pair.lastUse) + std::chrono::milliseconds(1)};
        if (pair.base != base)
            time = std::max(time, after);
    }
    std::error_code ignored;
    fs::last_write_time(pathOf(path, base, kIndexEnding), time, ignored);
}

bool CacheFolder::makeRoom(std::uint64_t wanted, std::uint64_t limit, const std::string &keptBase) const
{
    std::vector<Pair> all = pairs(kPrefix);
    std::sort(all.begin(), all.end(), [](const Pair &a, const Pair &b) { return a.lastUse < b.lastUse; });
    std::uint64_t sum = wanted;
    for (const Pair &pair : all)
        sum += pair.bytes;
    for (auto it = all.begin(); it != all.end() && sum > limit; ++it) {
        if (it->base == keptBase)
            continue;
        remove(it->base);
        sum -= it->bytes;
    }
    return sum <= limit;
}

} // namespace xrv
