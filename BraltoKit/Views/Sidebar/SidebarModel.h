#pragma once

#include "Views/Sidebar/SidebarRows.h"

#include <QAbstractListModel>

namespace Bralto {

class Workspace;

/// The rows of the sidebar for a list view. A change touches only the rows that differ, so that
/// the list keeps its place.
class SidebarModel final : public QAbstractListModel {
    Q_OBJECT

public:
    /// Follows `workspace`, which outlives the model.
    explicit SidebarModel(Workspace& workspace, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Null for an index of no row.
    [[nodiscard]] const SidebarRow* row(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex selected() const;
    /// The row of the folder that holds `index`'s, invalid at the top of the tree.
    [[nodiscard]] QModelIndex parentFolder(const QModelIndex& index) const;

public slots:
    void refresh();

private:
    void followTabs();

    Workspace& m_workspace;
    std::vector<SidebarRow> m_rows;
};

} // namespace Bralto
