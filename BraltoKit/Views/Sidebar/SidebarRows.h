#pragma once

#include <QString>

#include <vector>

namespace Bralto {

class Workspace;

/// One line of the sidebar.
struct SidebarRow {
    enum class Kind { Section, OpenTab, Folder, File, EmptyTitle, EmptyText };

    Kind kind = Kind::Section;
    QString key; ///< The tab's id, or the path; empty for words.
    QString text;
    QString symbol; ///< Name of the icon, empty for words.
    int depth = 0;  ///< Of the tree: 0 for what lies in the root.
    bool isExpanded = false;
    bool isUnsaved = false;
    bool isSelected = false;

    [[nodiscard]] bool isAction() const { return !key.isEmpty(); }
    /// Whether it is the same thing in the same place as `other`, whatever its state.
    [[nodiscard]] bool isSameAs(const SidebarRow& other) const;

    bool operator==(const SidebarRow&) const = default;
};

namespace SidebarRows {

/// Everything that the sidebar shows, from top to bottom: the section "Open" if there are tabs,
/// then "Files". Lists expanded folders only.
[[nodiscard]] std::vector<SidebarRow> of(const Workspace& workspace);

} // namespace SidebarRows

} // namespace Bralto
