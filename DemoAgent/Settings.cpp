#include "DemoAgent/Settings.h"

#include "DemoAgent/Models.h"

#include <QStringList>

namespace DemoAgent {

Settings Settings::fromArguments(const Arguments& arguments)
{
    Settings result;
    result.mayBypass =
        arguments.maySkipPermissions || arguments.permissionMode == u"bypassPermissions";
    result.model = Models::resolved(arguments.model.isEmpty() ? "default" : arguments.model);
    result.effort = Models::effortLevels().contains(arguments.effort) ? arguments.effort : "medium";
    const QString usual = arguments.maySkipPermissions ? "bypassPermissions" : "default";
    result.permissionMode = PermissionModes::known(arguments.permissionMode).value_or(usual);
    return result;
}

namespace PermissionModes {

std::optional<QString> known(const QString& name)
{
    if (name == u"manual")
        return "default";
    static const QStringList modes{"default", "acceptEdits", "plan", "bypassPermissions"};
    if (modes.contains(name))
        return name;
    return std::nullopt;
}

bool asks(const QString& mode, Permission permission)
{
    switch (permission) {
    case Permission::Never:
        return false;
    case Permission::Interactive:
        return true;
    case Permission::Edit:
        return mode != u"bypassPermissions" && mode != u"acceptEdits";
    case Permission::Command:
        return mode != u"bypassPermissions";
    }
    return true;
}

} // namespace PermissionModes

} // namespace DemoAgent
