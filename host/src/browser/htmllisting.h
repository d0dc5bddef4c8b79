#pragma once

#include "listingentry.h"

namespace Korvane::Gui {

/// Reads the links of an HTML page and what stands beside each: one pass over \a page, whatever is in it. Keeps folders
/// and images, in the order of the page, at most ServerListing::kMaxEntries.
class HtmlListing
{
public:
    HtmlListing(QByteArray page, const QUrl &folder);
    ServerListing read();

private:
    void readTag();
    void readAttributes(const QByteArray &tag);
    void skipBlanks();
    QByteArray readValue();
    void onAttribute(const QByteArray &tag, const QByteArray &name, const QByteArray &value);
    void skipElement(const QByteArray &tag);
    void readText();
    void beginEntry(const QByteArray &link);
    void endEntry();

    const QByteArray page;
    const ListingLinks links;
    int position = 0;
    ServerListing listing;
    std::optional<ServerListing::Entry> entry; ///< the one that is being read
    QByteArray beside;                         ///< the text after its link
    bool isInLink = false;
};

} // namespace Korvane::Gui
