#pragma once

#include <QDGui/application.h>

#include <QColor>
#include <QDir>
#include <QGuiApplication>
#include <QSettings>
#include <QString>
#include <QVariant>

/// What the plug-in keeps in the host's settings store: the one place that knows the keys, their types and what holds
/// for those that were never stored.
namespace PluginSettings {

/// Stands for a default in a place that does not read the setting.
struct Unread
{
};

/// One setting. What the layer, the SDK and the log sinks run with and what the preferences page proposes differ on
/// purpose in places: a proposal counts from when a person saves it.
template <typename Used, typename Proposed = Used> struct Setting
{
    const char *name; ///< below "XRVJP2kLayer/"
    Used whenUsed;
    Proposed onPage;
};

/// Of texts that are known only at run time.
using Text = QString (*)();

inline QString noText()
{
    return QString();
}

inline QString proposedCacheFolder()
{
    return QDir::tempPath() + QLatin1String("/QDViewerXrvpCache");
}

// clang-format off
// Type (of the page, where it is another)     Name                       Layer, SDK, sinks         Preferences page
constexpr Setting<bool>          kTextureDither{"TextureDither",            false,                    false};
constexpr Setting<bool>          kLocalXrvpCache{"LocalXrvpCache",          true,                     true};
constexpr Setting<Text>          kXrvpCacheDir{"XrvpCacheDir",              QDir::tempPath,           proposedCacheFolder};
constexpr Setting<int, quint64>  kCacheMaxMemMb{"CacheMaxMemMb",            512,                      512};
constexpr Setting<int, quint64>  kDiskCacheMaxSizeMb{"DiskCacheMaxSizeMb",  256,                      500};
constexpr Setting<bool>          kResilientDecoding{"ResilientDecoding",    true,                     true};
constexpr Setting<bool>          kNearestNeighbour{"OptimizeNearestNeighbour", true,                  true};
constexpr Setting<Text>          kXrvpUserAgent{"XRVPUserAgent",            noText,                   QGuiApplication::applicationDisplayName};
constexpr Setting<bool>          kUseWinHttp{"UseWinHTTPInXrvp",            false,                    false};
constexpr Setting<bool>          kLogXrvEvents{"LogXrvEvents",              true,                     true};
constexpr Setting<bool>          kAdaptiveRendering{"AdaptiveRendering",    false,                    false};
constexpr Setting<bool>          kOpenProgressive{"OpenProgressive",        true,                     true};
constexpr Setting<int>           kDefaultClipTransform{"DefaultClipTransform", 99,                    99}; // per cent
constexpr Setting<int, Unread>   kResampleType{"ResampleType",              0,                        {}};
constexpr Setting<bool, Unread>  kUseBackingstore{"UseBackingstore",        false,                    {}};
constexpr Setting<bool, Unread>  kDrawOutline{"DrawOutline",                false,                    {}};
constexpr Setting<QColor, Unread> kOutlineColor{"OutlineColor",             QColor(0, 255, 255, 255), {}};
constexpr Setting<Unread, bool>  kOptimizeNonProgressive{"OptimizeNonProgressive", {},                false}; // kept only
constexpr Setting<Unread, Unread> kLogLevel{"LogLevel",                     {},                       {}}; // of earlier versions
// clang-format on

template <typename Value> Value defaultValue(const Value &value)
{
    return value;
}

inline QString defaultValue(Text text)
{
    return text();
}

template <typename Used, typename Proposed> QString keyOf(const Setting<Used, Proposed> &setting)
{
    return QLatin1String("XRVJP2kLayer/") + QLatin1String(setting.name);
}

/// What is stored, converted as QVariant does it, else \a value.
template <typename Value> Value readFromStore(const QString &key, const Value &value)
{
    const QSettings *store = Korvane::Application::instance()->settings();
    return store->value(key, QVariant::fromValue(value)).template value<Value>();
}

/// For the layer, the SDK and the log sinks. This and what follows: GUI thread.
template <typename Used, typename Proposed> auto read(const Setting<Used, Proposed> &setting)
{
    return readFromStore(keyOf(setting), defaultValue(setting.whenUsed));
}

/// For the preferences page.
template <typename Used, typename Proposed> auto readForPage(const Setting<Used, Proposed> &setting)
{
    return readFromStore(keyOf(setting), defaultValue(setting.onPage));
}

template <typename Used, typename Proposed> void write(const Setting<Used, Proposed> &setting, const QVariant &value)
{
    Korvane::Application::instance()->settings()->setValue(keyOf(setting), value);
}

template <typename Used, typename Proposed> void remove(const Setting<Used, Proposed> &setting)
{
    Korvane::Application::instance()->settings()->remove(keyOf(setting));
}

} // namespace PluginSettings
