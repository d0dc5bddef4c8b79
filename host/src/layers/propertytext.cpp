#include "propertytext.h"

#include <QColor>

#include <cstring>

namespace Korvane {

namespace {

bool isEnumeration(int type)
{
    return (QMetaType::typeFlags(type) & QMetaType::IsEnumeration) && QMetaType::sizeOf(type) == sizeof(int);
}

bool isIntegerVector(int type)
{
    return type == qMetaTypeId<QVector<int>>();
}

QString integersToText(const QVector<int> &values)
{
    QStringList words;
    for (int value : values)
        words.append(QString::number(value));
    return words.join(QLatin1Char(' '));
}

QVariant integersFromText(const QString &text)
{
    QVector<int> values;
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : words) {
        bool isNumber = false;
        values.append(word.toInt(&isNumber));
        if (!isNumber)
            return QVariant();
    }
    return QVariant::fromValue(values);
}

QVariant colorFromText(const QString &text)
{
    const QColor color(text);
    return text.isEmpty() || color.isValid() ? QVariant(color) : QVariant();
}

QVariant scalarFromText(const QString &text, int type)
{
    QVariant value(text);
    if (type == QMetaType::Bool && text != QLatin1String("true") && text != QLatin1String("false"))
        return QVariant();
    return value.convert(type) ? value : QVariant();
}

QVariant valueFromText(const QString &text, int type)
{
    if (isIntegerVector(type))
        return integersFromText(text);
    if (type == QMetaType::QColor)
        return colorFromText(text);
    if (isEnumeration(type)) {
        bool isNumber = false;
        const int value = text.toInt(&isNumber);
        return isNumber ? QVariant(type, &value) : QVariant();
    }
    return scalarFromText(text, type);
}

} // namespace

QVector<QMetaProperty> storedProperties(const QObject &object, const QMetaObject &base)
{
    QVector<QMetaProperty> properties;
    for (int i = base.propertyCount(); i < object.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = object.metaObject()->property(i);
        if (property.isReadable() && property.isWritable() && property.isStored(&object))
            properties.append(property);
    }
    return properties;
}

std::optional<QString> propertyText(const QObject &object, const QMetaProperty &property)
{
    const QVariant value = property.read(&object);
    const int type = value.userType();
    if (isIntegerVector(type))
        return integersToText(value.value<QVector<int>>());
    if (isEnumeration(type)) {
        int number = 0;
        std::memcpy(&number, value.constData(), sizeof(number));
        return QString::number(number);
    }
    switch (type) {
    case QMetaType::Double:
        return QString::number(value.toDouble(), 'g', 17);
    case QMetaType::QColor: {
        const auto color = value.value<QColor>();
        return color.isValid() ? color.name(QColor::HexArgb) : QString();
    }
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::QString:
        return value.toString();
    default:
        return std::nullopt;
    }
}

bool setPropertyText(QObject &object, const QMetaProperty &property, const QString &text)
{
    const QVariant value = valueFromText(text, property.userType());
    return value.isValid() && property.write(&object, value);
}

} // namespace Korvane
