#include "Base/DefaultsStore.h"

#include <QMetaType>
#include <QtNumeric>

#include <algorithm>

namespace Bralto {

namespace {

/// The value as a `Type` if it is one, without any conversion.
template <typename Type>
std::optional<Type> exactly(const QVariant& value)
{
    if (value.metaType() != QMetaType::fromType<Type>())
        return std::nullopt;
    return value.value<Type>();
}

bool isSameList(const QVariantList& left, const QVariantList& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), DefaultsStore::isSame);
}

bool isSameMap(const QVariantMap& left, const QVariantMap& right)
{
    return std::equal(left.keyValueBegin(), left.keyValueEnd(), right.keyValueBegin(),
                      right.keyValueEnd(), [](const auto& one, const auto& other) {
                          return one.first == other.first &&
                                 DefaultsStore::isSame(one.second, other.second);
                      });
}

} // namespace

void DefaultsStore::setStrings(const QString& key, const QStringList& strings)
{
    set(key, QVariantList(strings.begin(), strings.end()));
}

std::optional<bool> DefaultsStore::boolean(const QString& key) const
{
    return exactly<bool>(value(key));
}

std::optional<double> DefaultsStore::number(const QString& key) const
{
    const QVariant stored = value(key);
    if (const auto integer = exactly<qlonglong>(stored))
        return double(*integer);
    return exactly<double>(stored);
}

std::optional<QString> DefaultsStore::string(const QString& key) const
{
    return exactly<QString>(value(key));
}

std::optional<QByteArray> DefaultsStore::data(const QString& key) const
{
    return exactly<QByteArray>(value(key));
}

std::optional<QStringList> DefaultsStore::strings(const QString& key) const
{
    const auto list = exactly<QVariantList>(value(key));
    if (!list)
        return std::nullopt;
    QStringList strings;
    strings.reserve(list->size());
    for (const QVariant& element : *list) {
        auto string = exactly<QString>(element);
        if (!string)
            return std::nullopt;
        strings.append(*std::move(string));
    }
    return strings;
}

std::optional<QVariantMap> DefaultsStore::dictionary(const QString& key) const
{
    return exactly<QVariantMap>(value(key));
}

bool DefaultsStore::isStorable(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::LongLong:
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return true;
    case QMetaType::Double:
        return qIsFinite(value.toDouble());
    case QMetaType::QDateTime:
        return value.toDateTime().isValid();
    case QMetaType::QVariantList:
        return std::ranges::all_of(value.toList(), isStorable);
    case QMetaType::QVariantMap:
        return std::ranges::all_of(value.toMap(), isStorable);
    default:
        return false;
    }
}

bool DefaultsStore::isSame(const QVariant& left, const QVariant& right)
{
    if (left.metaType() != right.metaType())
        return false;
    switch (left.typeId()) {
    case QMetaType::QVariantList:
        return isSameList(left.toList(), right.toList());
    case QMetaType::QVariantMap:
        return isSameMap(left.toMap(), right.toMap());
    default:
        return left == right;
    }
}

} // namespace Bralto
