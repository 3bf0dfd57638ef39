#include "Launch/Demo.h"

#include "Base/Paths.h"

#include <algorithm>

namespace Bralto::Demo {

namespace {

/// The value behind the first launch argument of that name, invalid without one.
QVariant argument(const QStringList& arguments, const QString& name)
{
    const qsizetype index = arguments.indexOf(name, 1);
    return index > 0 && index + 1 < arguments.size() ? QVariant(arguments[index + 1]) : QVariant();
}

} // namespace

bool isTruthy(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::LongLong:
    case QMetaType::Double:
        return value.toBool();
    case QMetaType::QString: {
        const QStringList truths{QStringLiteral("1"), QStringLiteral("yes"), QStringLiteral("true"),
                                 QStringLiteral("on")};
        return truths.contains(value.toString().toLower());
    }
    default:
        return false;
    }
}

bool isActive(const QString& environment, const QStringList& arguments, const LaunchRole& role,
              const DefaultsStore& shared)
{
    if (isTruthy(environment) || isTruthy(argument(arguments, QStringLiteral("-BraltoDemo"))))
        return true;
    if (!role.folder)
        return false;
    const QStringList folders =
        shared.strings(QStringLiteral("demoFolders")).value_or(QStringList());
    return std::ranges::any_of(folders, [&role](const QString& folder) {
        return Paths::standardised(folder) == *role.folder;
    });
}

} // namespace Bralto::Demo
