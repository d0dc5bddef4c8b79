#include "labconversion.h"

#include "base/bytecursor.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

// Fine enough that a straight line between two steps is within one code of 16 bits.
constexpr int kSteps = 4096;

// The white of D50 (ICC.1:2010 7.2.16), and the light of the primaries of sRGB for XYZ under it: IEC 61966-2-1 with the
// linear Bradford adaptation of ICC.1:2010 annex E.
constexpr float kWhite[3] = {0.9642f, 1.0f, 0.8249f};
constexpr float kPrimaries[3][3] = {{3.1338561f, -1.6168667f, -0.4906146f},
                                    {-0.9787684f, 1.9161415f, 0.0334540f},
                                    {0.0719453f, -0.2289914f, 1.4052427f}};

// IEC 61966-2-1 5.2.
double sRgbCode(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// ISO/CIE 11664-4, backwards.
float tristimulus(float root)
{
    constexpr float kBreak = 6.0f / 29.0f;
    return root > kBreak ? root * root * root : 3.0f * kBreak * kBreak * (root - 4.0f / 29.0f);
}

struct LabRanges
{
    double range[3];
    double offset[3];
};

bool readRanges(const Bytes &parameters, LabRanges *ranges)
{
    if (parameters.empty())
        return true;
    ByteCursor cursor(parameters.data(), parameters.size());
    for (int i = 0; i < 3; ++i) {
        ranges->range[i] = cursor.u32();
        ranges->offset[i] = cursor.u32();
        // No lightness or chroma of a picture lies in ranges such as these.
        if (ranges->range[i] < 1.0 || ranges->range[i] > 65535.0)
            return false;
    }
    return cursor.ok();
}

} // namespace

LabConversion::LabConversion(int outputBits)
    : bits(outputBits)
{
    codes.reserve(kSteps + 1);
    for (int step = 0; step <= kSteps; ++step)
        codes.push_back(static_cast<float>(fullScale(bits) * sRgbCode(double(step) / kSteps)));
}

std::unique_ptr<LabConversion> LabConversion::make(const Bytes &parameters, const std::vector<Channel> &channels)
{
    const double halfA = std::ldexp(1.0, channels[1].bits - 1);
    const double threeEighthsB = std::ldexp(3.0, channels[2].bits - 3);
    LabRanges ranges{{100.0, 170.0, 200.0}, {0.0, halfA, threeEighthsB}};
    if (!readRanges(parameters, &ranges))
        return nullptr;
    std::unique_ptr<LabConversion> conversion(new LabConversion(depthForConversion(channels) > 8 ? 16 : 8));
    for (std::size_t i = 0; i < 3; ++i)
        conversion->scales.push_back({static_cast<float>(ranges.offset[i] - signOffset(channels[i])),
                                      static_cast<float>(ranges.range[i] / fullScale(channels[i].bits))});
    return conversion;
}

std::int32_t LabConversion::encoded(float light) const
{
    const float place = std::min(std::max(0.0f, light), 1.0f) * kSteps;
    const auto step = std::min(static_cast<std::size_t>(place), std::size_t(kSteps - 1));
    const float part = place - static_cast<float>(step);
    return static_cast<std::int32_t>(codes[step] + (codes[step + 1] - codes[step]) * part + 0.5f);
}

void LabConversion::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    for (int x = 0; x < width; ++x) {
        float lab[3];
        for (std::size_t i = 0; i < 3; ++i)
            lab[i] = (static_cast<float>(in[i][x]) - scales[i].offset) * scales[i].scale;
        const float luminance = (lab[0] + 16.0f) / 116.0f;
        const float xyz[3] = {kWhite[0] * tristimulus(luminance + lab[1] / 500.0f), kWhite[1] * tristimulus(luminance),
                              kWhite[2] * tristimulus(luminance - lab[2] / 200.0f)};
        for (std::size_t i = 0; i < 3; ++i)
            out[i][x] = encoded(kPrimaries[i][0] * xyz[0] + kPrimaries[i][1] * xyz[1] + kPrimaries[i][2] * xyz[2]);
    }
}

} // namespace xrv
