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
    std::uint32_t qe;  ///< probability estimate
    std::uint32_t mps; ///< more probable symbol
    const MqState
        *next[2]; ///< the state after an MPS, and after an LPS with the symbol exchanged where the table says so
};
/// Two entries per row of the table: row * 2 + MPS.
extern const MqState kMqStates[94];

/// The MQ arithmetic decoder (ISO/IEC 15444-1 C.3). The data must be followed by two bytes of 0xFF, which end every
/// segment: from there on the decoder feeds itself with ones.
class MqDecoder
{
public:
    /// Contexts point into kMqStates.
    using Context = const MqState *;

    void start(const std::uint8_t *data)
    {
        next = data;
        c = static_cast<std::uint32_t>(*next) << 16;
        readByte();
        c <<= 7;
        count -= 7;
        a = 0x8000;
    }

    /// The choice between the subintervals cannot be foretold, so it is made without branches: figure C.15 comes down
    /// to an LPS when the code lies in the lower subinterval or the two have changed places, but not both.
    XRV_INLINE unsigned decode(Context &context)
    {
        const MqState &state = *context;
        const std::uint32_t qe = state.qe;
        a -= qe;
        const std::uint32_t isLower = (c >> 16) < qe;
        const std::uint32_t isLps = isLower ^ static_cast<std::uint32_t>(a < qe);
        const std::uint32_t lowerMask = 0u - isLower;
        c -= (qe << 16) & ~lowerMask;
        a ^= (a ^ qe) & lowerMask;
        if (a & 0x8000)
            return state.mps;
        context = state.next[isLps];
        renormalize();
        return state.mps ^ isLps;
    }

private:
    static XRV_INLINE std::uint32_t leadingZeros(std::uint32_t value)
    {
#if defined(__GNUC__)
        return static_cast<std::uint32_t>(__builtin_clz(value));
#else
        unsigned long highest = 0;
        _BitScanReverse(&highest, value);
        return 31u - highest;
#endif
    }

    /// Doubles the interval until it has its highest bit, all steps at once up to the next byte.
    XRV_INLINE void renormalize()
    {
        std::uint32_t shift = leadingZeros(a) - 16;
        a <<= shift;
        while (shift > count) {
            c <<= count;
            shift -= count;
            readByte();
        }
        c <<= shift;
        count -= shift;
    }

    XRV_INLINE void readByte()
    {
        const std::uint32_t following = next[1];
        if (*next == 0xFF) {
            if (following > 0x8F) {
                c += 0xFF00;
                count = 8;
            } else {
                ++next;
                c += following << 9;
                count = 7;
            }
        } else {
            ++next;
            c += following << 8;
            count = 8;
        }
    }

    const std::uint8_t *next = nullptr;
    std::uint32_t a = 0, c = 0, count = 0;
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
