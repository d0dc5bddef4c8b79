#pragma once

#include "serveraddress.h"

namespace Korvane::Gui {

/// Credentials with which servers listed folders in this process: addresses picked from a list are shown without them
/// and get them back when they are handed out. In memory only. GUI thread.
class ServerCredentials
{
public:
    static void remember(const QUrl &url, const QString &credentials);
    /// For the server of \a url; empty when there are none.
    static QString of(const QUrl &url);
};

} // namespace Korvane::Gui
