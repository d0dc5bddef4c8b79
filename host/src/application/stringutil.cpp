#include <QDGui/stringutil.h>

#include <QRegularExpression>

namespace Korvane::Util::String {

namespace {

/// Whether printf may be given \a format and one double.
bool isDoubleFormat(const QString &format)
{
    static const QRegularExpression kPattern(
        QStringLiteral("\\A(?:[^%]|%%)*%[-+ #0]*\\d{0,3}(?:\\.\\d{0,2})?[fFeEgG](?:[^%]|%%)*\\z"),
        QRegularExpression::DotMatchesEverythingOption);
    return kPattern.match(format).hasMatch();
}

} // namespace

QString formatFileSize(quint64 bytes, const char *format)
{
    static constexpr const char *kUnits[] = {"B", "KB", "MB", "GB", "TB"};
    size_t unit = 0;
    auto size = static_cast<double>(bytes);
    while (size >= 1024.0 && unit + 1 < std::size(kUnits)) {
        size /= 1024.0;
        ++unit;
    }
    const bool isUsable = format && isDoubleFormat(QString::fromUtf8(format));
    return QString::asprintf(isUsable ? format : "%.2f", size) + QLatin1Char(' ') + QLatin1String(kUnits[unit]);
}

} // namespace Korvane::Util::String
