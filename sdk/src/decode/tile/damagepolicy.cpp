#include "damagepolicy.h"

using PLK::CError;

namespace xrv {

CError DamagePolicy::settle(CError error, std::string *damage) const
{
    const int code = error.GetErrorNumber();
    const bool isDamage = code == PLK_ERR_DECODE || code == PLK_ERR_TRUNCATED || code == PLK_ERR_MALFORMED;
    if (error.IsSuccess() || !isResilient || !isDamage)
        return error;
    *damage = error.GetErrorMessage();
    return {};
}

CError missingTile(std::uint32_t tile)
{
    return {PLK_ERR_TRUNCATED, "Tile " + std::to_string(tile) + " is missing."};
}

CError incompleteTile(std::uint32_t tile)
{
    return {PLK_ERR_TRUNCATED, "Tile " + std::to_string(tile) + " is incomplete."};
}

} // namespace xrv
