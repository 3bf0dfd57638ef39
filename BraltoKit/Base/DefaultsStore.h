#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace Bralto {

/// One domain of small settings: a key is a string, a value is one of the types below, and the
/// types are kept apart (a stored `true` is no integer, a stored 1 is no double):
///
///     bool, qlonglong, double, QString, QByteArray, QDateTime, QVariantList, QVariantMap
///
/// Lives on the main thread. Reading costs no file access.
class DefaultsStore : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// The value under `key`, invalid if there is none.
    [[nodiscard]] virtual QVariant value(const QString& key) const = 0;

    /// Stores `value`; a type that is not in the list above is a mistake in the program. An equal
    /// value writes nothing. What can't be written to disk stays in memory.
    virtual void set(const QString& key, const QVariant& value) = 0;

    virtual void remove(const QString& key) = 0;

    /// Returns once other processes can see what was set. Before starting a program that reads it.
    virtual void synchronise() {}

    [[nodiscard]] bool contains(const QString& key) const { return value(key).isValid(); }
    void setStrings(const QString& key, const QStringList& strings);

    /// The value if it has this very type, else nothing. `number` takes integers and doubles.
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const;
    [[nodiscard]] std::optional<double> number(const QString& key) const;
    [[nodiscard]] std::optional<QString> string(const QString& key) const;
    [[nodiscard]] std::optional<QByteArray> data(const QString& key) const;
    /// The strings of an array; elements of another type make the whole absent.
    [[nodiscard]] std::optional<QStringList> strings(const QString& key) const;
    [[nodiscard]] std::optional<QVariantMap> dictionary(const QString& key) const;

    /// Whether `value`, with all that it contains, has one of the types above.
    [[nodiscard]] static bool isStorable(const QVariant& value);
    /// Equal in type and value, all the way down; a comparison of `QVariant` takes 1, 1.0 and true
    /// for the same. Two invalid values are the same.
    [[nodiscard]] static bool isSame(const QVariant& left, const QVariant& right);

signals:
    /// `key` has another value than before, whichever process wrote it.
    void changed(const QString& key);
};

/// The two domains that every model gets.
struct Defaults {
    DefaultsStore& shared;   ///< What all processes of the program have in common.
    DefaultsStore& standard; ///< This process's own; a project has one for itself.
};

} // namespace Bralto
