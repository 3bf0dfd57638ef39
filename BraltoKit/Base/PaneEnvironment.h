#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace Bralto::PaneEnvironment {

/// The variables that name a pane to the processes in it.
inline constexpr char Pane[] = "BRALTO_PANE";
inline constexpr char Project[] = "BRALTO_PROJECT";
inline constexpr char BundleId[] = "BRALTO_BUNDLE_ID";

/// Where a pane finds what the program puts in its way: the folder of programs, and the user's own
/// folder of start-up files while zsh reads the program's.
inline constexpr char Bin[] = "BRALTO_BIN";
inline constexpr char UserZshDirectory[] = "BRALTO_USER_ZDOTDIR";

/// What a pane is told of itself.
struct Identity {
    QString pane;    ///< The pane's identifier.
    QString project; ///< The project's folder.
};

/// The environment of a pane without what its shell is given on top, made from a copy of the
/// program's own: `own` and the result are "NAME=value", each name once. Variables of an agent or
/// an editor that started the program are left out, so that an agent in the pane doesn't take
/// itself for a nested one.
[[nodiscard]] QStringList build(const QStringList& own, const Identity& identity);

/// `environment` with the variable `name` set to `value`, in its old place if it had one.
[[nodiscard]] QStringList setting(QStringList environment, const QString& name,
                                  const QString& value);

/// The value of `name`, absent if the variable isn't set.
[[nodiscard]] std::optional<QString> value(const QStringList& environment, const QString& name);

} // namespace Bralto::PaneEnvironment
