#pragma once

#include <xrv60/plkconfig.h>

namespace xrv {

/// The configuration of the process, that of the file factory.
PLK::SDK::CConfig &globalConfig();

/// What CConfig::SetCacheMaxmem() makes of its argument on a machine with \a machineMemory bytes.
std::uint64_t cacheBudget(std::uint64_t wishedBytes, std::uint64_t machineMemory);

/// Of this computer, in bytes.
std::uint64_t physicalMemory();

} // namespace xrv
