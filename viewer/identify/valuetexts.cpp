#include "valuetexts.h"

#include <QDGui/layervaluereader.h>

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

namespace Viewer::ValueTexts {

namespace {

constexpr int kDigits = 9;                      // tell every two 32-bit floating-point numbers apart
constexpr double kLargestWhole = 1000000000000; // above, an exponent is easier to read

} // namespace

QString number(double value)
{
    if (std::isnan(value))
        return QCoreApplication::translate("Viewer::ValueTexts", "no number");
    if (value == std::trunc(value) && std::abs(value) < kLargestWhole)
        return QString::number(value, 'f', 0);
    return QString::number(value, 'g', kDigits);
}

QString list(const Korvane::Map::CellValues &values)
{
    QStringList texts;
    for (const double value : values.values)
        texts.append(number(value));
    const QString all = texts.join(QLatin1Char(' '));
    return all.isEmpty() || values.isExact ? all : QStringLiteral("\u2248 ") + all;
}

} // namespace Viewer::ValueTexts
