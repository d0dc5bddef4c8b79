#pragma once

#include <xrv60/plkerror.h>

#include <cstdint>
#include <string>

namespace xrv {

/// What damage means to a read: cells that are missing, which a sentence tells, or the end of the read.
class DamagePolicy
{
public:
    explicit DamagePolicy(bool isResilient)
        : isResilient(isResilient)
    {
    }

    /// Success where the read goes on without what \a error is about; \a damage then has its sentence. Errors that no
    /// damage is behind (of the source, cancelled, out of memory) come back in any case.
    PLK::CError settle(PLK::CError error, std::string *damage) const;

private:
    bool isResilient;
};

/// No part of \a tile is in the file.
PLK::CError missingTile(std::uint32_t tile);
/// Some of the bytes of \a tile are not in the file, or contradict themselves.
PLK::CError incompleteTile(std::uint32_t tile);

} // namespace xrv
