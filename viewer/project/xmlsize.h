#pragma once

#include <QByteArray>

namespace Viewer {

constexpr int kMaxXmlParts = 500000; ///< elements and attributes
constexpr int kMaxXmlDepth = 64;     ///< levels of elements

/// Whether a document can be made of \a text without harm: each element and attribute takes some hundred bytes there,
/// each level of elements a piece of the stack, and the attributes of an element are compared with each other. Says
/// nothing about whether it is sound XML.
bool isModestXml(const QByteArray &text);

} // namespace Viewer
