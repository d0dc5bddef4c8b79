#pragma once

#include <cstdint>

namespace xrv {

/// The three kinds of bit-streams in a high-throughput code-block (ISO/IEC 15444-15 clause 7). None of them reads
/// outside of its bytes; where those end, each goes on with what the standard says.

/// Bits that come lowest first. \a Reader has refill(), which brings at least 32 of them into the buffer.
template <typename Reader> class LowBits
{
public:
    /// The next 32 bits.
    std::uint32_t peek()
    {
        if (count < 32)
            static_cast<Reader *>(this)->refill();
        return static_cast<std::uint32_t>(buffer);
    }
    /// After peek(); at most 32.
    void skip(unsigned bits)
    {
        buffer >>= bits;
        count -= bits;
    }
    unsigned bit()
    {
        const unsigned result = peek() & 1;
        skip(1);
        return result;
    }
    /// The next \a bits bits, fewer than \a Value has.
    template <typename Value> Value take(unsigned bits)
    {
        Value low = 0;
        unsigned taken = 0;
        if (sizeof(Value) > sizeof(std::uint32_t) && bits > 31) {
            low = peek();
            skip(32);
            taken = 32;
        }
        const std::uint32_t next = peek() & ((1u << (bits - taken)) - 1);
        skip(bits - taken);
        return low | static_cast<Value>(static_cast<Value>(next) << taken);
    }

protected:
    void append(std::uint32_t bits, unsigned width)
    {
        buffer |= std::uint64_t(bits) << count;
        count += width;
    }

    std::uint64_t buffer = 0;
    unsigned count = 0; ///< of bits in the buffer
};

/// Bits from the front: magnitudes and signs, significance propagation. After a byte of 0xFF the next one has seven
/// bits.
class ForwardBits : public LowBits<ForwardBits>
{
public:
    /// \a filling: what comes after the end, 0xFF or 0.
    ForwardBits(const std::uint8_t *begin, const std::uint8_t *end, std::uint8_t filling)
        : next(begin)
        , end(end)
        , filling(filling)
    {
    }

private:
    friend LowBits<ForwardBits>;

    void refill()
    {
        if (end - next >= 4 && !isStuffed) {
            const std::uint32_t word = std::uint32_t(next[0]) | std::uint32_t(next[1]) << 8 |
                                       std::uint32_t(next[2]) << 16 | std::uint32_t(next[3]) << 24;
            // The usual test for a byte of zeros, on the complement.
            const bool hasFullByte = (~word - 0x01010101u) & word & 0x80808080u;
            if (!hasFullByte) {
                append(word, 32);
                next += 4;
                return;
            }
        }
        while (count <= 56) {
            const std::uint8_t byte = next < end ? *next++ : filling;
            append(isStuffed ? byte & 0x7F : byte, isStuffed ? 7 : 8);
            isStuffed = byte == 0xFF;
        }
    }

    const std::uint8_t *next, *const end;
    const std::uint8_t filling;
    bool isStuffed = false;
};

/// Bits from the back: codewords of variable length, magnitude refinement. A byte whose lower seven bits are ones has
/// no more than those where the one before it (behind it in memory) is above 0x8F. Zeros follow.
class BackwardBits : public LowBits<BackwardBits>
{
public:
    /// The first byte is \a end[-1].
    BackwardBits(const std::uint8_t *begin, const std::uint8_t *end)
        : begin(begin)
        , next(end)
    {
    }
    /// Begins with the upper four bits of \a half, or three of them where those are ones.
    BackwardBits(const std::uint8_t *begin, const std::uint8_t *end, std::uint8_t half)
        : begin(begin)
        , next(end)
        , isAfterLarge((half | 0x0F) > 0x8F)
    {
        const bool isStuffed = (half >> 4 & 7) == 7;
        append(isStuffed ? 7 : half >> 4, isStuffed ? 3 : 4);
    }

private:
    friend LowBits<BackwardBits>;

    void refill()
    {
        while (count < 32) {
            const std::uint8_t byte = next > begin ? *--next : 0;
            const bool isStuffed = isAfterLarge && (byte & 0x7F) == 0x7F;
            append(isStuffed ? 0x7F : byte, isStuffed ? 7 : 8);
            isAfterLarge = byte > 0x8F;
        }
    }

    const std::uint8_t *const begin, *next;
    bool isAfterLarge = true;
};

/// Events from an adaptive run-length code, highest bit first.
class MelEvents
{
public:
    /// The codeword stream after it may share the last byte, of which only the upper half is read.
    MelEvents(const std::uint8_t *begin, const std::uint8_t *end)
        : next(begin)
        , end(end)
    {
    }

    bool event()
    {
        if (zeros == 0 && !endsInOne)
            readRun();
        if (zeros > 0) {
            --zeros;
            return false;
        }
        endsInOne = false;
        return true;
    }

private:
    /// Zeros and perhaps a one after them; at least one event. A one stands for a full run of 2^exponent zeros and
    /// lengthens the next runs; a zero, with the length in as many bits as the exponent says, for a run cut short by a
    /// one.
    void readRun()
    {
        static constexpr std::uint8_t kExponents[13] = {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 4, 5};
        const int exponent = kExponents[state];
        if (bit()) {
            zeros = 1u << exponent;
            state = state < 12 ? state + 1 : 12;
            return;
        }
        for (int i = 0; i < exponent; ++i)
            zeros = zeros << 1 | bit();
        endsInOne = true;
        state = state > 0 ? state - 1 : 0;
    }

    unsigned bit()
    {
        if (count == 0) {
            count = byte == 0xFF ? 7 : 8;
            byte = next < end ? *next++ : 0xFF;
            if (next == end)
                byte |= 0x0F;
        }
        return byte >> --count & 1u;
    }

    const std::uint8_t *next, *const end;
    std::uint8_t byte = 0;
    int count = 0; ///< of bits left in the byte
    int state = 0;
    unsigned zeros = 0;
    bool endsInOne = false;
};

} // namespace xrv
