#include "placetext.h"

#include "geographic.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Viewer::PlaceText {

namespace {

/// A comma is a decimal point where something else separates the numbers.
std::optional<double> number(QString text)
{
    bool isNumber = false;
    const double value = text.replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

std::optional<QPointF> plain(const QString &text)
{
    static const QRegularExpression kSeparators[] = {QRegularExpression(QStringLiteral("\\s*;\\s*")),
                                                     QRegularExpression(QStringLiteral(",?\\s+")),
                                                     QRegularExpression(QStringLiteral("\\s*,\\s*"))};
    for (const QRegularExpression &separator : kSeparators) {
        const QStringList parts = text.split(separator);
        if (parts.size() != 2)
            continue;
        const auto x = number(parts[0]), y = number(parts[1]);
        return x && y ? std::optional<QPointF>(QPointF(*x, *y)) : std::nullopt;
    }
    return {};
}

/// "46° 43' 25\" N" as degrees, negative for W and S; \a isLongitude for E and W.
std::optional<double> angle(const QRegularExpressionMatch &match, bool *isLongitude)
{
    double degrees = 0.0, share = 1.0;
    for (int part = 1; part <= 3; ++part, share /= 60.0) {
        if (match.captured(part).isEmpty())
            continue;
        const auto value = number(match.captured(part));
        if (!value || (part > 1 && *value >= 60.0))
            return {};
        degrees += *value * share;
    }
    const QChar side = match.captured(4).at(0).toUpper();
    *isLongitude = side == QLatin1Char('E') || side == QLatin1Char('W');
    return side == QLatin1Char('W') || side == QLatin1Char('S') ? -degrees : degrees;
}

std::optional<QPointF> geographic(const QString &text)
{
    static const QRegularExpression kAngle(
        QStringLiteral("\\s*(\\d+(?:[.,]\\d+)?)\\s*[°:]?\\s*(?:(\\d+(?:[.,]\\d+)?)\\s*['′:]?\\s*)?"
                       "(?:(\\d+(?:[.,]\\d+)?)\\s*(?:\"|″|'')?\\s*)?([NSEW])\\s*,?;?"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch first =
        kAngle.match(text, 0, QRegularExpression::NormalMatch, QRegularExpression::AnchoredMatchOption);
    const QRegularExpressionMatch second =
        kAngle.match(text, std::max(0, first.capturedEnd()), QRegularExpression::NormalMatch,
                     QRegularExpression::AnchoredMatchOption);
    if (!first.hasMatch() || !second.hasMatch() || !text.mid(second.capturedEnd()).trimmed().isEmpty())
        return {};
    bool firstIsLongitude = false, secondIsLongitude = false;
    const auto one = angle(first, &firstIsLongitude), other = angle(second, &secondIsLongitude);
    if (!one || !other || firstIsLongitude == secondIsLongitude)
        return {};
    const QPointF place = firstIsLongitude ? QPointF(*one, *other) : QPointF(*other, *one);
    return std::abs(place.x()) <= 180.0 && std::abs(place.y()) <= 90.0 ? std::optional<QPointF>(place) : std::nullopt;
}

} // namespace

std::optional<QPointF> parse(const QString &text, int code)
{
    if (const auto degrees = geographic(text))
        return Geographic::toWorld(*degrees, code);
    return plain(text.trimmed());
}

} // namespace Viewer::PlaceText
