#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

#if defined(__GNUC__)
#define XRV_INLINE inline __attribute__((always_inline))
#else
#define XRV_INLINE __forceinline
#endif

namespace xrv {

/// One state of the probability estimator for one sense of the more probable symbol (ISO/IEC 15444-1 table C.2).
struct MqState
{
    std::int32_t qe;   ///< probability estimate, times 256
    std::uint32_t mps; ///< more probable symbol
    const MqState
        *next[2]; ///< the state after an MPS, and after an LPS with the symbol exchanged where the table says so
};
/// Two entries per row of the table: row * 2 + MPS.
extern const MqState kMqStates[94];
/// With 0 as the more probable symbol.
inline const MqState *mqStateOfRow(std::ptrdiff_t row)
{
    return kMqStates + 2 * row;
}

/// The MQ arithmetic decoder (ISO/IEC 15444-1 C.3). The data must be followed by two bytes of 0xFF, which end every
/// segment: from there on the decoder feeds itself with ones.
///
/// Interval and code are kept times 256. Both shrink by the same estimate with every MPS, so that one number, how much
/// both may still shrink before anything else happens, is all that most decisions touch.
class MqDecoder
{
public:
    /// Contexts point into kMqStates.
    using Context = const MqState *;

    void start(const std::uint8_t *data)
    {
        next = data;
        code = *next << 8;
        code = (code + static_cast<std::int32_t>(nextByte())) << 7;
        count -= 7;
        interval = kLeastInterval;
        settle();
    }

    XRV_INLINE unsigned decode(Context &context)
    {
        const MqState &state = *context;
        slack -= state.qe;
        if (slack >= 0)
            return state.mps;
        return decodeRarely(context, state);
    }

private:
    static constexpr std::int32_t kLeastInterval = 0x8000 << 8;
    static constexpr std::uint32_t kMostCode = 0x10000 << 8;

    /// The choice between the subintervals cannot be foretold, so it is made without branches: figure C.15 comes down
    /// to an LPS when the code lies in the lower subinterval or the two have changed places, but not both.
    XRV_INLINE unsigned decodeRarely(Context &context, const MqState &state)
    {
        interval += slack;
        code += slack;
        const std::int32_t lowerMask = code >> 31; // all ones when the code lies in the lower subinterval
        const unsigned isLps = static_cast<unsigned>(interval < state.qe) ^ static_cast<unsigned>(lowerMask & 1);
        code += state.qe & lowerMask;
        interval ^= (interval ^ state.qe) & lowerMask;
        const unsigned symbol = state.mps ^ isLps;
        context = state.next[isLps];
        renormalize();
        settle();
        return symbol;
    }

    XRV_INLINE void settle()
    {
        slack = interval - kLeastInterval < code ? interval - kLeastInterval : code;
        interval -= slack;
        code -= slack;
    }

    static XRV_INLINE int leadingZeros(std::uint32_t value)
    {
#if defined(__GNUC__)
        return __builtin_clz(value);
#else
        unsigned long highest = 0;
        _BitScanReverse(&highest, value);
        return 31 - static_cast<int>(highest);
#endif
    }

    /// Doubles the interval until it has its highest bit, all steps at once up to the next byte. The code stays below
    /// the interval in sound data; in others it is kept close, so that no sum leaves its type.
    XRV_INLINE void renormalize()
    {
        int shift = leadingZeros(static_cast<std::uint32_t>(interval)) - 8;
        interval <<= shift;
        auto bits = static_cast<std::uint32_t>(code);
        while (shift > count) {
            bits <<= count;
            shift -= count;
            bits += nextByte();
        }
        bits <<= shift;
        count -= shift;
        code = static_cast<std::int32_t>(bits < kMostCode ? bits : kMostCode);
    }

    /// What the next byte adds to the code; count is then that of its bits.
    XRV_INLINE std::uint32_t nextByte()
    {
        const std::uint32_t following = next[1];
        if (*next == 0xFF) {
            if (following > 0x8F) {
                count = 8;
                return 0xFF;
            }
            ++next;
            count = 7;
            return following << 1;
        }
        ++next;
        count = 8;
        return following;
    }

    const std::uint8_t *next = nullptr;
    std::int32_t interval = 0, code = 0; ///< less slack
    std::int32_t slack = 0;
    int count = 0; ///< shifts until the next byte
};

/// Bits of raw passes (D.6), most significant first, with a stuffed bit after a byte of 0xFF. Ones after the end.
class RawBits
{
public:
    RawBits() = default;
    RawBits(const std::uint8_t *data, std::size_t size)
        : data(data)
        , size(size)
    {
    }

    unsigned bit()
    {
        if (left == 0) {
            const bool stuffed = current == 0xFF;
            current = position < size ? data[position++] : 0xFF;
            left = stuffed ? 7 : 8;
        }
        --left;
        return current >> left & 1u;
    }

private:
    const std::uint8_t *data = nullptr;
    std::size_t size = 0, position = 0;
    unsigned current = 0;
    int left = 0;
};

} // namespace xrv
