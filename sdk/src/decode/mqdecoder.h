#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__GNUC__)
#define XRV_INLINE inline __attribute__((always_inline))
#else
#define XRV_INLINE __forceinline
#endif

namespace xrv {

/// One state of the probability estimator for one sense of the more probable symbol (ISO/IEC 15444-1 table C.2).
struct MqState
{
    std::uint32_t qe;       ///< probability estimate
    std::uint32_t mps;      ///< more probable symbol
    const MqState *nextMps; ///< the state after an MPS
    const MqState *nextLps; ///< the state after an LPS, with the symbol exchanged where the table says so
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

    XRV_INLINE unsigned decode(Context &context)
    {
        const MqState &state = *context;
        unsigned symbol = state.mps;
        a -= state.qe;
        if ((c >> 16) < state.qe) {
            // The LPS subinterval, which holds the MPS when it is the larger one.
            if (a < state.qe) {
                context = state.nextMps;
            } else {
                symbol ^= 1;
                context = state.nextLps;
            }
            a = state.qe;
            renormalize();
            return symbol;
        }
        c -= state.qe << 16;
        if (a & 0x8000)
            return symbol;
        if (a < state.qe) {
            symbol ^= 1;
            context = state.nextLps;
        } else {
            context = state.nextMps;
        }
        renormalize();
        return symbol;
    }

private:
    XRV_INLINE void renormalize()
    {
        do {
            if (count == 0)
                readByte();
            a <<= 1;
            c <<= 1;
            --count;
        } while (a < 0x8000);
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
