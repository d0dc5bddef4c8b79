#pragma once

#include <QMetaProperty>
#include <QObject>
#include <QVector>

#include <optional>

namespace Korvane {

/// Properties of \a object that a project keeps: readable, writable and stored, of the classes below \a base.
QVector<QMetaProperty> storedProperties(const QObject &object, const QMetaObject &base);

/// The property's value as text; nothing when it is of a type that has no text form here.
std::optional<QString> propertyText(const QObject &object, const QMetaProperty &property);

/// Sets the property to the value that propertyText() wrote as \a text. False when the text is not one of the
/// property's type or the property refused it.
bool setPropertyText(QObject &object, const QMetaProperty &property, const QString &text);

} // namespace Korvane
