#include "node.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

/// RFC 8259, section 7.
std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            result += escape;
        } else {
            result += c;
        }
    }
    return result + '"';
}

/// "cell type" as scripts have it: cellType.
std::string keyOf(const std::string &name)
{
    std::string key;
    bool isNewWord = false;
    for (const char c : name) {
        if (c == ' ' || c == '-') {
            isNewWord = true;
            continue;
        }
        key += isNewWord && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        isNewWord = false;
    }
    return key;
}

/// The shortest of the usual lengths that reads back as the same number; whole numbers, coordinates among them, in
/// full.
std::string numberText(double value)
{
    char text[40];
    if (value == std::trunc(value) && std::abs(value) < 1e15) {
        std::snprintf(text, sizeof text, "%.0f", value);
        return text;
    }
    for (const int digits : {6, 9, 12, 15, 17}) {
        std::snprintf(text, sizeof text, "%.*g", digits, value);
        double back = 0.0;
        if (std::sscanf(text, "%lf", &back) == 1 && back == value)
            break;
    }
    return text;
}

} // namespace

Node::Node(double value)
    : kind(std::isfinite(value) ? Kind::Literal : Kind::Nothing)
    , text(std::isfinite(value) ? numberText(value) : std::string())
{
}

bool Node::isFlatList() const
{
    return kind == Kind::List && std::all_of(children.begin(), children.end(), [](const auto &child) {
               return child.second.kind != Kind::List && child.second.kind != Kind::Object;
           });
}

std::string Node::flat() const
{
    std::string result = text;
    for (const auto &child : children)
        result += (result.empty() ? "" : ", ") + child.second.text;
    return kind == Kind::Nothing ? "-" : result;
}

void Node::appendJson(int indent, std::string *out) const
{
    if (kind == Kind::Nothing || kind == Kind::Literal || kind == Kind::Text) {
        *out += kind == Kind::Nothing ? "null" : kind == Kind::Literal ? text : quoted(text);
        return;
    }
    const bool isObject = kind == Kind::Object;
    const std::string gap = isFlatList() || children.empty()
                                ? std::string()
                                : "\n" + std::string(static_cast<std::size_t>(indent) + 2, ' ');
    *out += isObject ? '{' : '[';
    for (std::size_t i = 0; i < children.size(); ++i) {
        *out += (i > 0 ? gap.empty() ? ", " : "," : "") + gap;
        if (isObject)
            *out += quoted(keyOf(children[i].first)) + ": ";
        children[i].second.appendJson(indent + 2, out);
    }
    if (!gap.empty())
        *out += "\n" + std::string(static_cast<std::size_t>(indent), ' ');
    *out += isObject ? '}' : ']';
}

std::string Node::json() const
{
    std::string out;
    appendJson(0, &out);
    return out + "\n";
}

std::string Node::lines(int indent) const
{
    std::string out;
    const std::string space(static_cast<std::size_t>(indent), ' ');
    for (std::size_t i = 0; i < children.size(); ++i) {
        const Node &value = children[i].second;
        const std::string name = kind == Kind::List ? std::to_string(i + 1) : children[i].first;
        const bool isDeep = value.kind == Kind::Object || (value.kind == Kind::List && !value.isFlatList());
        out += space + name + ":" + (isDeep ? "\n" + value.lines(indent + 2) : " " + value.flat() + "\n");
    }
    return out;
}
