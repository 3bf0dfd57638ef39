#pragma once

#include "Base/DefaultsStore.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Which tabs a project had, kept in the shared defaults under the project's path. A tab is a
/// token: a prefix that tells its kind, then where it is.
namespace Bralto::SessionStore {

inline constexpr char FilePrefix[] = "file:";
inline constexpr char WebPrefix[] = "web:";
/// Conversations were tabs once; today they are panes.
inline constexpr char ChatPrefix[] = "chat:";

struct Session {
    QStringList tabs;              ///< In display order.
    std::optional<QString> active; ///< One of `tabs`.
    std::optional<QString> split;  ///< One of `tabs`.

    bool operator==(const Session&) const = default;
};

/// The key of the session of `folder`; with ".split" behind it, the key of its split tab.
[[nodiscard]] QString key(const QString& folder);

/// Never fails: what is missing or has another type is left out.
[[nodiscard]] Session load(const DefaultsStore& shared, const QString& folder);
void save(DefaultsStore& shared, const Session& session, const QString& folder);

/// The conversations among the tokens: each once, in lower case, in their order.
[[nodiscard]] QStringList chatSessions(const QStringList& tokens);

} // namespace Bralto::SessionStore
