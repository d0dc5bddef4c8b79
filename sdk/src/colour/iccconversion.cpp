#include "iccconversion.h"

#include "base/bytecursor.h"
#include "container/boxtype.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace xrv {

namespace {

struct ContextDeleter
{
    void operator()(std::remove_pointer_t<cmsContext> *context) const { cmsDeleteContext(context); }
};
struct ProfileDeleter
{
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
struct TransformDeleter
{
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
struct CurveDeleter
{
    void operator()(cmsToneCurve *curve) const { cmsFreeToneCurve(curve); }
};
using ContextPtr = std::unique_ptr<std::remove_pointer_t<cmsContext>, ContextDeleter>;
using ProfilePtr = std::unique_ptr<void, ProfileDeleter>;
using TransformPtr = std::unique_ptr<void, TransformDeleter>;
using CurvePtr = std::unique_ptr<cmsToneCurve, CurveDeleter>;

// Cells per call of the transform: the buffers stay on the stack and in the processor's cache.
constexpr int kChunk = 512;
constexpr int kMaxChannels = 4;

// Grey with the tone curve of sRGB (IEC 61966-2-1) and its white.
ProfilePtr sRgbGrey(cmsContext context)
{
    const cmsFloat64Number parameters[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    const CurvePtr curve(cmsBuildParametricToneCurve(context, 4, parameters));
    return ProfilePtr(curve ? cmsCreateGrayProfileTHR(context, cmsD50_xyY(), curve.get()) : nullptr);
}

cmsUInt32Number format(int space, int channels, int bytes)
{
    return COLORSPACE_SH(static_cast<cmsUInt32Number>(space)) | CHANNELS_SH(static_cast<cmsUInt32Number>(channels)) |
           BYTES_SH(static_cast<cmsUInt32Number>(bytes));
}

// A link between profiles, an abstract or a named-colour one is no description of pixels (ICC.1:2010 7.2.5).
bool describesPixels(cmsHPROFILE profile)
{
    const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
    return kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
           kind == cmsSigColorSpaceClass;
}

// cell -> cell * scale + offset, a code of the transform's input
struct Line
{
    float scale = 1.0f;
    float offset = 0.0f;
};

} // namespace

struct IccConversion::Private
{
    ContextPtr context;
    TransformPtr transform;
    int inputs = 3;
    int outputs = 3;
    int bytes = 1; ///< per sample of the transform, in and out
    std::array<Line, kMaxChannels> lines;

    // Nothing to share between threads: without the cache of the last pixel a transform is never written to.
    bool makeTransform(cmsHPROFILE profile, int inputSpace);
    template <typename Sample> void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const;
    double top() const { return fullScale(8 * bytes); }
    /// The cell for a part, 0 to 1, of a channel's range.
    std::int32_t cellOf(std::size_t channel, double part) const;
    bool isNear(std::size_t channel, const std::int32_t *cells, const std::int32_t *results, int count) const;
};

bool IccConversion::Private::makeTransform(cmsHPROFILE profile, int inputSpace)
{
    const ProfilePtr display =
        outputs == 1 ? sRgbGrey(context.get()) : ProfilePtr(cmsCreate_sRGBProfileTHR(context.get()));
    if (!display)
        return false;
    transform.reset(cmsCreateTransformTHR(context.get(), profile, format(inputSpace, inputs, bytes), display.get(),
                                          format(outputs == 1 ? PT_GRAY : PT_RGB, outputs, bytes), INTENT_PERCEPTUAL,
                                          cmsFLAGS_NOCACHE));
    return transform != nullptr;
}

template <typename Sample>
void IccConversion::Private::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    constexpr float kTop = std::numeric_limits<Sample>::max();
    Sample source[kChunk * kMaxChannels];
    Sample target[kChunk * kMaxChannels];
    for (int x0 = 0; x0 < width; x0 += kChunk) {
        const int count = std::min(kChunk, width - x0);
        for (int channel = 0; channel < inputs; ++channel) {
            const Line line = lines[static_cast<std::size_t>(channel)];
            for (int x = 0; x < count; ++x) {
                const float value = static_cast<float>(in[channel][x0 + x]) * line.scale + line.offset;
                source[x * inputs + channel] = static_cast<Sample>(std::min(std::max(value, 0.0f), kTop) + 0.5f);
            }
        }
        cmsDoTransform(transform.get(), source, target, static_cast<cmsUInt32Number>(count));
        for (int channel = 0; channel < outputs; ++channel) {
            for (int x = 0; x < count; ++x)
                out[channel][x0 + x] = target[x * outputs + channel];
        }
    }
}

std::int32_t IccConversion::Private::cellOf(std::size_t channel, double part) const
{
    const Line line = lines[channel];
    return static_cast<std::int32_t>(std::lround((top() * part - line.offset) / line.scale));
}

bool IccConversion::Private::isNear(std::size_t channel, const std::int32_t *cells, const std::int32_t *results,
                                    int count) const
{
    const Line line = lines[channel];
    for (int i = 0; i < count; ++i) {
        if (std::abs(cells[i] * double(line.scale) + line.offset - results[i]) > top() / 255.0 + 0.5)
            return false;
    }
    return true;
}

IccConversion::IccConversion(std::unique_ptr<Private> p)
    : d(std::move(p))
{
}

IccConversion::~IccConversion() = default;

int IccConversion::channelCount(const Bytes &profile)
{
    ByteCursor cursor(profile.data(), profile.size());
    cursor.skip(16);
    switch (cursor.u32()) {
    case boxType("GRAY"):
        return 1;
    case boxType("RGB "):
        return 3;
    case boxType("CMYK"):
        return 4;
    default:
        return 0;
    }
}

std::unique_ptr<IccConversion> IccConversion::fromProfile(const Bytes &profile, const std::vector<Channel> &channels)
{
    auto p = std::make_unique<Private>();
    p->inputs = channelCount(profile);
    if (p->inputs == 0 || p->inputs != static_cast<int>(channels.size()))
        return nullptr;
    p->outputs = p->inputs == 1 ? 1 : 3;
    p->bytes = depthForConversion(channels) > 8 ? 2 : 1;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const double scale = fullScale(8 * p->bytes) / fullScale(channels[i].bits);
        p->lines[i] = {static_cast<float>(scale), static_cast<float>(signOffset(channels[i]) * scale)};
    }
    p->context.reset(cmsCreateContext(nullptr, nullptr));
    if (!p->context)
        return nullptr;
    const ProfilePtr input(
        cmsOpenProfileFromMemTHR(p->context.get(), profile.data(), static_cast<cmsUInt32Number>(profile.size())));
    const int space = p->inputs == 1 ? PT_GRAY : p->inputs == 3 ? PT_RGB : PT_CMYK;
    if (!input || !describesPixels(input.get()) || !p->makeTransform(input.get(), space))
        return nullptr;
    return std::unique_ptr<IccConversion>(new IccConversion(std::move(p)));
}

int IccConversion::outputBits() const
{
    return 8 * d->bytes;
}

void IccConversion::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    if (d->bytes == 1)
        d->convert<std::uint8_t>(in, width, out);
    else
        d->convert<std::uint16_t>(in, width, out);
}

bool IccConversion::isIdentity() const
{
    if (d->inputs != d->outputs)
        return false;
    // Greys, and each colour alone against two levels of the others.
    constexpr int kSteps = 33;
    for (int pattern = 0; pattern < (d->inputs == 1 ? 1 : 7); ++pattern) {
        std::array<std::array<std::int32_t, kSteps>, 3> cells{}, results{};
        const std::int32_t *const in[3] = {cells[0].data(), cells[1].data(), cells[2].data()};
        std::int32_t *const out[3] = {results[0].data(), results[1].data(), results[2].data()};
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const bool isMoving = pattern == 0 || pattern % 3 == static_cast<int>(channel);
            for (int step = 0; step < kSteps; ++step)
                cells[channel][static_cast<std::size_t>(step)] = d->cellOf(channel, isMoving ? step / double(kSteps - 1)
                                                                                    : pattern > 3 ? 0.75
                                                                                                  : 0.25);
        }
        convert(in, kSteps, out);
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(d->inputs); ++channel) {
            if (!d->isNear(channel, cells[channel].data(), results[channel].data(), kSteps))
                return false;
        }
    }
    return true;
}

} // namespace xrv
