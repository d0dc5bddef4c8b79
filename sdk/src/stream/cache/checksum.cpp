#include "checksum.h"

namespace xrv {

namespace {

constexpr std::uint64_t kPrime1 = 0x9E3779B185EBCA87u, kPrime2 = 0xC2B2AE3D27D4EB4Fu, kPrime3 = 0x165667B19E3779F9u,
                        kPrime4 = 0x85EBCA77C2B2AE63u, kPrime5 = 0x27D4EB2F165667C5u;

std::uint64_t rotated(std::uint64_t value, int bits)
{
    return value << bits | value >> (64 - bits);
}

std::uint64_t littleEndian(const std::uint8_t *bytes, int count)
{
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= std::uint64_t(bytes[i]) << (8 * i);
    return value;
}

std::uint64_t roundOf(std::uint64_t lane, std::uint64_t input)
{
    return rotated(lane + input * kPrime2, 31) * kPrime1;
}

std::uint64_t stripesOf(const std::uint8_t *&bytes, const std::uint8_t *end, std::uint64_t seed)
{
    std::uint64_t lanes[4] = {seed + kPrime1 + kPrime2, seed + kPrime2, seed, seed - kPrime1};
    for (; end - bytes >= 32; bytes += 32)
        for (std::ptrdiff_t i = 0; i < 4; ++i)
            lanes[i] = roundOf(lanes[i], littleEndian(bytes + 8 * i, 8));
    std::uint64_t sum = rotated(lanes[0], 1) + rotated(lanes[1], 7) + rotated(lanes[2], 12) + rotated(lanes[3], 18);
    for (const std::uint64_t lane : lanes)
        sum = (sum ^ roundOf(0, lane)) * kPrime1 + kPrime4;
    return sum;
}

} // namespace

std::uint64_t checksum64(const void *data, std::size_t length, std::uint64_t seed)
{
    const auto *bytes = static_cast<const std::uint8_t *>(data);
    const std::uint8_t *const end = bytes + length;
    std::uint64_t sum = (length >= 32 ? stripesOf(bytes, end, seed) : seed + kPrime5) + length;
    for (; end - bytes >= 8; bytes += 8)
        sum = rotated(sum ^ roundOf(0, littleEndian(bytes, 8)), 27) * kPrime1 + kPrime4;
    if (end - bytes >= 4) {
        sum = rotated(sum ^ (littleEndian(bytes, 4) * kPrime1), 23) * kPrime2 + kPrime3;
        bytes += 4;
    }
    for (; bytes < end; ++bytes)
        sum = rotated(sum ^ (*bytes * kPrime5), 11) * kPrime1;
    sum = (sum ^ sum >> 33) * kPrime2;
    sum = (sum ^ sum >> 29) * kPrime3;
    return sum ^ sum >> 32;
}

std::string checksumText(const std::string &text, std::uint64_t seed)
{
    std::uint64_t sum = checksum64(text.data(), text.size(), seed);
    std::string digits(16, '0');
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, sum >>= 4)
        *digit = "0123456789abcdef"[sum & 15];
    return digits;
}

} // namespace xrv
