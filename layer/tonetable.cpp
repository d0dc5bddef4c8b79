#include "tonetable.h"

#include <cmath>

namespace Korvane {

quint8 truncatedToByte(double value)
{
    // fmin and fmax give the other operand where one is a NaN.
    return static_cast<quint8>(std::fmax(0.0, std::fmin(255.0, std::isnan(value) ? 0.0 : value)));
}

ToneTable makeToneTable(double contrast, double brightness)
{
    ToneTable table{};
    for (int i = 0; i < 256; ++i) {
        const float fromMiddle = static_cast<float>(i) - 127.5F;
        const double tone = fromMiddle * contrast + 127.5 + (brightness - 1.0) * 255.0;
        table[static_cast<size_t>(i)] = truncatedToByte(static_cast<float>(tone));
    }
    return table;
}

void applyToneTable(const ToneTable &table, const QRgb *from, QRgb *to, int count)
{
    for (int x = 0; x < count; ++x) {
        const QRgb pixel = from[x];
        to[x] = qRgba(table[qRed(pixel)], table[qGreen(pixel)], table[qBlue(pixel)], qAlpha(pixel));
    }
}

} // namespace Korvane
