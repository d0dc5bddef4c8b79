#pragma once

#include "serverlisting.h"

#include <optional>

namespace Korvane::Gui {

/// The entry that a link leads to; nothing when it leads out of \a folder, deeper than one step, to another server or
/// scheme, or bears a name that no honest file has.
class ListingLinks
{
public:
    explicit ListingLinks(const QUrl &folder);
    std::optional<ServerListing::Entry> entryOf(const QByteArray &link) const;

private:
    QUrl folder;
    QByteArray folderPath; ///< percent-encoded, with a slash at its end
};

/// A date in one of the forms that servers use in their lists, somewhere in \a text; invalid when there is none.
QDateTime dateIn(const QString &text);
/// A number of bytes, also as "1.2M" or "3 KiB", that stands alone in \a text after a date was taken out; -1 when
/// there is none.
qint64 sizeIn(const QString &text);

} // namespace Korvane::Gui
