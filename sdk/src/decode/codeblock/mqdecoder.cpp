#include "mqdecoder.h"

#include <array>

namespace xrv {

namespace {

/// ISO/IEC 15444-1 table C.2: Qe, next state after an MPS, after an LPS, and whether an LPS exchanges the symbol.
struct Row
{
    std::uint16_t qe;
    std::uint8_t nextMps, nextLps, exchange;
};
constexpr Row kRows[47] = {
    {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},  {0x0521, 5, 29, 0},
    {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},  {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0},
    {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0}, {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1},
    {0x5401, 16, 14, 0}, {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
    {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0}, {0x1C01, 25, 22, 0},
    {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0}, {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0},
    {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0}, {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0},
    {0x02A1, 36, 33, 0}, {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
    {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0}, {0x0005, 45, 42, 0},
    {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0},
};

} // namespace

#define XRV_MQ_ENTRY(row, symbol)                                                                                      \
    {                                                                                                                  \
        kRows[row].qe << 8, symbol,                                                                                    \
        {                                                                                                              \
            kMqStates + (kRows[row].nextMps * 2 + (symbol)),                                                           \
                kMqStates + (kRows[row].nextLps * 2 + ((symbol) ^ kRows[row].exchange))                                \
        }                                                                                                              \
    }
#define XRV_MQ_ROW(row) XRV_MQ_ENTRY(row, 0), XRV_MQ_ENTRY(row, 1)
#define XRV_MQ_TEN(row)                                                                                                \
    XRV_MQ_ROW((row)), XRV_MQ_ROW((row) + 1), XRV_MQ_ROW((row) + 2), XRV_MQ_ROW((row) + 3), XRV_MQ_ROW((row) + 4),     \
        XRV_MQ_ROW((row) + 5), XRV_MQ_ROW((row) + 6), XRV_MQ_ROW((row) + 7), XRV_MQ_ROW((row) + 8),                    \
        XRV_MQ_ROW((row) + 9)

const MqState kMqStates[94] = {XRV_MQ_TEN(0),  XRV_MQ_TEN(10), XRV_MQ_TEN(20), XRV_MQ_TEN(30),
                               XRV_MQ_ROW(40), XRV_MQ_ROW(41), XRV_MQ_ROW(42), XRV_MQ_ROW(43),
                               XRV_MQ_ROW(44), XRV_MQ_ROW(45), XRV_MQ_ROW(46)};

} // namespace xrv
