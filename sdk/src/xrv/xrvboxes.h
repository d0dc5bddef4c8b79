#pragma once

#include "container/boxtype.h"

#include <array>

namespace xrv {

// Box types of XRV files besides those that JP2 files have too.
constexpr std::uint32_t kVersionBox = boxType("vers");
constexpr std::uint32_t kContentsBox = boxType("toc ");
constexpr std::uint32_t kFileInfoBox = boxType("finf");
constexpr std::uint32_t kBandsBox = boxType("band");
constexpr std::uint32_t kCellsBox = boxType("cell");
constexpr std::uint32_t kTextsBox = boxType("auth");
constexpr std::uint32_t kStatisticsBox = boxType("stat");
constexpr std::uint32_t kRpcBox = boxType("rpc ");
constexpr std::uint32_t kPacketIndexBox = boxType("pidx");

/// The signature box that every file begins with. Its content is that of a JP2 file's: it tells when a transfer changed
/// line ends or cut the eighth bit.
constexpr std::array<std::uint8_t, 12> kXrvSignature{0, 0, 0, 12, 'X', 'R', 'V', ' ', 0x0d, 0x0a, 0x87, 0x0a};

/// The version box follows the signature, the table of contents the version.
constexpr std::uint64_t kVersionStart = kXrvSignature.size(), kContentsStart = kVersionStart + 12;

} // namespace xrv
