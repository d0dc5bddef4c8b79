#include "geographic.h"

#include <QCoreApplication>

#include <proj.h>

#include <cmath>
#include <memory>

namespace Viewer::Geographic {

namespace {

constexpr int kDecimals = 6; // a tenth of a metre

struct ContextDeleter
{
    void operator()(PJ_CONTEXT *context) const { proj_context_destroy(context); }
};
struct ProjectionDeleter
{
    void operator()(PJ *projection) const { proj_destroy(projection); }
};
using Context = std::unique_ptr<PJ_CONTEXT, ContextDeleter>;
using Projection = std::unique_ptr<PJ, ProjectionDeleter>;

/// With the axes as maps have them: x or longitude first.
Projection toDegrees(PJ_CONTEXT *context, int code)
{
    const QByteArray name = QByteArrayLiteral("EPSG:") + QByteArray::number(code);
    const Projection plain(proj_create_crs_to_crs(context, name.constData(), "OGC:CRS84", nullptr));
    return Projection(plain ? proj_normalize_for_visualization(context, plain.get()) : nullptr);
}

std::optional<QPointF> transformed(const QPointF &point, int code, PJ_DIRECTION direction)
{
    if (code <= 0)
        return {};
    const Context context(proj_context_create());
    proj_log_level(context.get(), PJ_LOG_NONE);
    const Projection projection = toDegrees(context.get(), code);
    if (!projection)
        return {};
    const PJ_COORD place = proj_trans(projection.get(), direction, proj_coord(point.x(), point.y(), 0, 0));
    if (!std::isfinite(place.xy.x) || !std::isfinite(place.xy.y))
        return {};
    return QPointF(place.xy.x, place.xy.y);
}

} // namespace

std::optional<QPointF> fromWorld(const QPointF &world, int code)
{
    const auto place = transformed(world, code, PJ_FWD);
    return place && std::abs(place->y()) <= 90.0 ? place : std::nullopt;
}

std::optional<QPointF> toWorld(const QPointF &place, int code)
{
    return transformed(place, code, PJ_INV);
}

QString longitudeText(double degrees)
{
    return degrees < 0 ? QCoreApplication::translate("Viewer::Geographic", "%1° W").arg(-degrees, 0, 'f', kDecimals)
                       : QCoreApplication::translate("Viewer::Geographic", "%1° E").arg(degrees, 0, 'f', kDecimals);
}

QString latitudeText(double degrees)
{
    return degrees < 0 ? QCoreApplication::translate("Viewer::Geographic", "%1° S").arg(-degrees, 0, 'f', kDecimals)
                       : QCoreApplication::translate("Viewer::Geographic", "%1° N").arg(degrees, 0, 'f', kDecimals);
}

} // namespace Viewer::Geographic
