#include "xmlsize.h"

namespace Viewer {

namespace {

constexpr int kMaxAttributes = 1000; ///< of an element

/// Goes over a text from mark to mark; nothing is kept.
class XmlMeter
{
public:
    explicit XmlMeter(QByteArray xml)
        : text(std::move(xml))
    {
    }

    bool isModest()
    {
        for (at = text.indexOf('<'); at >= 0; at = text.indexOf('<', at)) {
            if (!skipPlain("<!--", "-->") && !skipPlain("<![CDATA[", "]]>"))
                passTag();
            if (depth > kMaxXmlDepth || parts > kMaxXmlParts || attributes > kMaxAttributes || at < 0)
                break;
        }
        return depth <= kMaxXmlDepth && parts <= kMaxXmlParts && attributes <= kMaxAttributes;
    }

private:
    bool startsWith(const char *mark) const { return qstrncmp(text.constData() + at, mark, qstrlen(mark)) == 0; }

    bool skipPlain(const char *begin, const char *end)
    {
        if (!startsWith(begin))
            return false;
        at = text.indexOf(end, at);
        return true;
    }

    /// Up to the bracket that ends it, which may stand in values.
    void passTag()
    {
        const char first = text.size() > at + 1 ? text.at(at + 1) : '>';
        char quote = 0;
        attributes = 0;
        for (++at; at < text.size() && (quote != 0 || text.at(at) != '>'); ++at) {
            const char c = text.at(at);
            attributes += c == '=' && quote == 0 ? 1 : 0;
            if (quote == c)
                quote = 0;
            else if (quote == 0 && (c == '"' || c == '\''))
                quote = c;
        }
        parts += 1 + attributes;
        if (first == '/')
            --depth;
        else if (first != '?' && first != '!' && text.at(at - 1) != '/')
            ++depth;
    }

    const QByteArray text;
    int at = 0;
    int depth = 0, parts = 0, attributes = 0;
};

} // namespace

bool isModestXml(const QByteArray &text)
{
    // Of two bytes for each character, one is 0.
    return XmlMeter(QByteArray(text).replace('\0', "")).isModest();
}

} // namespace Viewer
