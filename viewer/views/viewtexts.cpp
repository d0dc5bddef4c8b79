#include "viewtexts.h"

#include <QCoreApplication>
#include <QLocale>

#include <cmath>

namespace Viewer::ViewTexts {

namespace {

/// Doubles have about 15 decimal digits; more than these decimals are noise in any coordinate system.
constexpr int kMaxDecimals = 12;

bool isPositive(double value)
{
    return std::isfinite(value) && value > 0.0;
}

/// A context for texts.
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Viewer::ViewTexts)
};

/// With three significant digits, never in exponent form for the sizes that occur.
QString significant(double value)
{
    const int magnitude = static_cast<int>(std::floor(std::log10(value)));
    QString text = QLocale().toString(value, 'f', qBound(0, 2 - magnitude, kMaxDecimals));
    const QString point(QLocale().decimalPoint());
    if (text.contains(point)) {
        while (text.endsWith(QLocale().zeroDigit()))
            text.chop(1);
        if (text.endsWith(point))
            text.chop(point.size());
    }
    return text;
}

} // namespace

int decimalsFor(double unitsPerPixel)
{
    if (!isPositive(unitsPerPixel))
        return 0;
    return qBound(0, static_cast<int>(std::ceil(-std::log10(unitsPerPixel))) + 1, kMaxDecimals);
}

QString coordinates(const QPointF &worldPoint, double unitsPerPixel)
{
    const int decimals = decimalsFor(unitsPerPixel);
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator); // so that what is copied by eye or hand is a number elsewhere
    return Texts::tr("X %1  Y %2")
        .arg(locale.toString(worldPoint.x(), 'f', decimals), locale.toString(worldPoint.y(), 'f', decimals));
}

QString plainCoordinates(const QPointF &worldPoint, double unitsPerPixel)
{
    const int decimals = decimalsFor(unitsPerPixel);
    return QString::number(worldPoint.x(), 'f', decimals) + QLatin1String(", ") +
           QString::number(worldPoint.y(), 'f', decimals);
}

QString zoomPercent(double cellSize, double unitsPerPixel)
{
    const double size = std::fabs(cellSize);
    if (!isPositive(size) || !isPositive(unitsPerPixel))
        return QString();
    return Texts::tr("%1 %").arg(significant(100.0 * size / unitsPerPixel));
}

QString unitsPerPixel(double units)
{
    return isPositive(units) ? Texts::tr("%1 units per pixel").arg(significant(units)) : QString();
}

} // namespace Viewer::ViewTexts
