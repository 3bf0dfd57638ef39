#pragma once

#include <optional>

namespace Bralto {

/// How much of the detail area the editor has: all of it, a share beside the console, or none.
enum class EditorLayout { Full, Shared, Hidden };

/// What the window decides about its areas. Pure functions.
namespace WindowLayout {

/// What fills the window.
enum class Screen { Home, Welcome, Project };

enum class Role { HomeApplication, FolderApplication };

inline constexpr double SmallestSidebar = 190;
inline constexpr double LargestSidebar = 420;
inline constexpr double DefaultSidebar = 244;

/// The home screen without a project; a project's own application whose folder has gone welcomes.
[[nodiscard]] Screen screen(Role role, bool hasProject);

/// The layout that the panel and the tabs ask for.
[[nodiscard]] EditorLayout target(bool isPanelVisible, bool isPanelMaximized, bool hasActiveTab);

/// Whether the editor has less room in `next` than in `present`.
[[nodiscard]] bool shrinksEditor(EditorLayout present, EditorLayout next);

/// A stored width, or the default for one that can't be.
[[nodiscard]] double sidebarWidth(std::optional<double> stored);

/// The width after a drag by `translation` units.
[[nodiscard]] double draggedSidebar(double atStart, double translation);

/// The share after a drag by `translation` units of `total`, within its limits; nothing where
/// there is no extent to share.
[[nodiscard]] std::optional<double> draggedShare(double atStart, double translation, double total,
                                                 double smallest, double largest);

} // namespace WindowLayout

} // namespace Bralto
