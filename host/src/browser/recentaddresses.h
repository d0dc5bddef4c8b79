#pragma once

#include <QStringList>

namespace Korvane::Gui {

/// Addresses of streams used last, newest first, in the host's settings. Without user names and passwords. GUI thread.
class RecentAddresses
{
public:
    static QStringList entries();
    static void add(const QString &address);
    static void remove(const QString &address);
    static void clear();

    static constexpr int kMaxAddresses = 15;
};

} // namespace Korvane::Gui
