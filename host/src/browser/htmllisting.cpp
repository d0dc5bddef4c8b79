#include "htmllisting.h"

#include <QHash>

#include <utility>

namespace Korvane::Gui {

namespace {

/// Date and size stand close to the link.
constexpr int kMaxTextBeside = 400;
/// No tag name or attribute name of interest is longer.
constexpr int kMaxNameLength = 32;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool isNamePart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

/// The text of a character reference without its "&" and ";", in UTF-8; empty when it is not known.
QByteArray referenced(const QByteArray &reference)
{
    if (reference.startsWith('#')) {
        const bool isHex = reference.size() > 1 && (reference[1] == 'x' || reference[1] == 'X');
        bool ok = false;
        const uint code = reference.mid(isHex ? 2 : 1).toUInt(&ok, isHex ? 16 : 10);
        const bool isCharacter = ok && code > 0 && code < 0x110000 && (code < 0xD800 || code > 0xDFFF);
        return isCharacter ? QString::fromUcs4(&code, 1).toUtf8() : QByteArray();
    }
    static const QHash<QByteArray, QByteArray> kNames = {{"amp", "&"},   {"lt", "<"},   {"gt", ">"},
                                                         {"quot", "\""}, {"apos", "'"}, {"nbsp", " "}};
    return kNames.value(reference);
}

QByteArray withoutReferences(const QByteArray &text)
{
    constexpr int kMaxReferenceLength = 10;
    QByteArray result;
    for (int i = 0; i < text.size(); ++i) {
        const int end = text[i] == '&' ? text.mid(i, kMaxReferenceLength).indexOf(';') : -1;
        const QByteArray found = end > 0 ? referenced(text.mid(i + 1, end - 1)) : QByteArray();
        if (found.isEmpty()) {
            result += text[i];
        } else {
            result += found;
            i += end;
        }
    }
    return result;
}

/// Servers head their lists so, or link to the folder above.
bool looksLikeListing(const QByteArray &page)
{
    const QByteArray head = page.left(64 * 1024).toLower();
    return head.contains("index of") || head.contains("directory listing") || head.contains("href=\"../\"") ||
           head.contains("href=\"..\"");
}

} // namespace

HtmlListing::HtmlListing(QByteArray html, const QUrl &folder)
    : page(std::move(html))
    , links(folder)
{
    listing.isListing = looksLikeListing(page);
}

ServerListing HtmlListing::read()
{
    while (position < page.size() && !listing.isCutOff) {
        if (page[position] == '<')
            readTag();
        else
            readText();
    }
    endEntry();
    return listing;
}

void HtmlListing::readText()
{
    const int next = page.indexOf('<', position);
    const int end = next < 0 ? page.size() : next;
    if (entry && !isInLink && beside.size() < kMaxTextBeside)
        beside += ' ' + page.mid(position, qMin(end - position, kMaxTextBeside));
    position = end;
}

void HtmlListing::readTag()
{
    if (page.mid(position, 4) == "<!--") {
        const int end = page.indexOf("-->", position + 4);
        position = end < 0 ? page.size() : end + 3;
        return;
    }
    int end = position + 1;
    if (end < page.size() && page[end] == '/')
        ++end;
    while (end < page.size() && isNamePart(page[end]) && end - position < kMaxNameLength)
        ++end;
    const QByteArray tag = page.mid(position + 1, end - position - 1).toLower();
    position = end;
    if (tag.isEmpty()) // a bare "<"
        return;
    readAttributes(tag);
    if (tag == "/a")
        isInLink = false;
    else if (tag == "/tr" || tag == "/li")
        endEntry();
    else if (tag == "script" || tag == "style")
        skipElement(tag);
}

void HtmlListing::readAttributes(const QByteArray &tag)
{
    while (position < page.size() && page[position] != '>') {
        const int start = position;
        while (position < page.size() && isNamePart(page[position]))
            ++position;
        if (position == start) {
            ++position;
            continue;
        }
        const QByteArray name = page.mid(start, qMin(position - start, kMaxNameLength)).toLower();
        skipBlanks();
        if (position >= page.size() || page[position] != '=')
            continue;
        ++position;
        skipBlanks();
        onAttribute(tag, name, readValue());
    }
    if (position < page.size())
        ++position;
}

void HtmlListing::skipBlanks()
{
    while (position < page.size() && isBlank(page[position]))
        ++position;
}

/// An attribute's value, in quotation marks or up to the next blank.
QByteArray HtmlListing::readValue()
{
    const char quote = position < page.size() ? page[position] : '\0';
    int start = position;
    int end = position;
    if (quote == '"' || quote == '\'') {
        ++start;
        end = page.indexOf(quote, start);
        if (end < 0)
            end = page.size();
        position = qMin(end + 1, page.size());
    } else {
        while (end < page.size() && !isBlank(page[end]) && page[end] != '>')
            ++end;
        position = end;
    }
    return page.mid(start, end - start);
}

void HtmlListing::onAttribute(const QByteArray &tag, const QByteArray &name, const QByteArray &value)
{
    if (tag == "a" && name == "href") {
        beginEntry(value.trimmed());
    } else if (entry && value.size() < kMaxTextBeside && (name == "data-size" || name == "data-order")) {
        // Exact, where the text beside is rounded.
        bool ok = false;
        const qint64 size = value.toLongLong(&ok);
        if (ok && size >= 0)
            entry->size = size;
    } else if (entry && value.size() < kMaxTextBeside && name == "datetime") {
        entry->modified = dateIn(QString::fromLatin1(value));
    }
}

void HtmlListing::skipElement(const QByteArray &tag)
{
    // In a script, "<a href=" means nothing.
    int end = page.indexOf("</", position);
    while (end >= 0 && page.mid(end + 2, tag.size()).toLower() != tag)
        end = page.indexOf("</", end + 2);
    position = end < 0 ? page.size() : end;
}

void HtmlListing::beginEntry(const QByteArray &link)
{
    endEntry();
    entry = links.entryOf(withoutReferences(link.left(64 * 1024)));
    isInLink = true;
}

void HtmlListing::endEntry()
{
    if (entry && (entry->isFolder || isImageName(entry->name))) {
        if (listing.entries.size() == ServerListing::kMaxEntries) {
            listing.isCutOff = true;
            return;
        }
        const QString text = QString::fromUtf8(withoutReferences(beside)).simplified();
        if (!entry->modified.isValid())
            entry->modified = dateIn(text);
        if (entry->size < 0 && !entry->isFolder)
            entry->size = sizeIn(text);
        if (entry->isFolder)
            entry->size = -1;
        listing.entries.append(*entry);
    }
    entry.reset();
    beside.clear();
}

} // namespace Korvane::Gui
