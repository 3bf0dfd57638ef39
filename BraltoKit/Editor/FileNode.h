#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

/// One entry of the file tree. A folder lists itself when its children are first asked for, and
/// the list then stays; a new root is how the tree is refreshed. Main thread.
class FileNode {
public:
    FileNode(QString path, bool isDirectory, bool showHidden, bool isPackage = false);

    [[nodiscard]] const QString& path() const { return m_path; } ///< Standardised.
    [[nodiscard]] QString name() const;
    [[nodiscard]] bool isDirectory() const { return m_isDirectory; }
    [[nodiscard]] bool showHidden() const { return m_showHidden; }
    /// Name of the icon.
    [[nodiscard]] QString symbol() const;

    /// Folders first, each group in natural order; empty for a file and for a folder that can't be
    /// read. Lists the folder on first use.
    [[nodiscard]] const std::vector<std::unique_ptr<FileNode>>& children() const;
    [[nodiscard]] bool isListed() const { return m_children.has_value(); }

    /// The entries of a folder in tree order.
    [[nodiscard]] static std::vector<std::unique_ptr<FileNode>> contents(const QString& folder,
                                                                         bool showHidden);

private:
    QString m_path;
    bool m_isDirectory;
    bool m_showHidden;
    bool m_isPackage;
    mutable std::optional<std::vector<std::unique_ptr<FileNode>>> m_children;
};

} // namespace Bralto
