#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// A value of a report: a text, a number, yes or no, nothing, a list, or named values in their order.
class Node
{
public:
    enum class Kind { Nothing, Text, Literal, List, Object };

    Node() = default;
    Node(const char *text)
        : Node(std::string(text))
    {
    }
    Node(std::string text)
        : kind(Kind::Text)
        , text(std::move(text))
    {
    }
    Node(bool value)
        : kind(Kind::Literal)
        , text(value ? "true" : "false")
    {
    }
    Node(double value);
    Node(std::uint64_t value)
        : kind(Kind::Literal)
        , text(std::to_string(value))
    {
    }
    Node(std::uint32_t value)
        : Node(std::uint64_t(value))
    {
    }
    Node(int value)
        : kind(Kind::Literal)
        , text(std::to_string(value))
    {
    }

    static Node list() { return Node(Kind::List); }
    static Node object() { return Node(Kind::Object); }
    /// To an object.
    void add(const std::string &name, Node value) { children.emplace_back(name, std::move(value)); }
    /// To a list.
    void add(Node value) { children.emplace_back(std::string(), std::move(value)); }

    /// With the names in one word each: "cell type" is cellType.
    std::string json() const;
    /// Lines for a person, "name: value", indented.
    std::string lines(int indent = 0) const;

private:
    explicit Node(Kind kind)
        : kind(kind)
    {
    }
    bool isFlatList() const;
    std::string flat() const;
    void appendJson(int indent, std::string *out) const;

    Kind kind = Kind::Nothing;
    std::string text;
    std::vector<std::pair<std::string, Node>> children;
};
