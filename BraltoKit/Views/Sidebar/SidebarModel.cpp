#include "Views/Sidebar/SidebarModel.h"

#include "Workspace/Workspace.h"

namespace Bralto {

SidebarModel::SidebarModel(Workspace& workspace, QObject* parent)
    : QAbstractListModel(parent)
    , m_workspace(workspace)
{
    connect(&workspace, &Workspace::rootChanged, this, &SidebarModel::refresh);
    connect(&workspace, &Workspace::expandedFoldersChanged, this, &SidebarModel::refresh);
    connect(&workspace, &Workspace::sidebarSelectionChanged, this, &SidebarModel::refresh);
    connect(&workspace, &Workspace::tabsChanged, this, &SidebarModel::followTabs);
    followTabs();
}

void SidebarModel::followTabs()
{
    for (const WorkspaceTab& tab : m_workspace.tabs()) {
        if (const EditorDocument* document = tab.document()) {
            connect(document, &EditorDocument::textChanged, this, &SidebarModel::refresh,
                    Qt::UniqueConnection);
            connect(document, &EditorDocument::savedTextChanged, this, &SidebarModel::refresh,
                    Qt::UniqueConnection);
            connect(document, &EditorDocument::pathChanged, this, &SidebarModel::refresh,
                    Qt::UniqueConnection);
        } else if (const BrowserTab* page = tab.browser()) {
            connect(page, &BrowserTab::titleChanged, this, &SidebarModel::refresh,
                    Qt::UniqueConnection);
            connect(page, &BrowserTab::urlChanged, this, &SidebarModel::refresh,
                    Qt::UniqueConnection);
        }
    }
    refresh();
}

void SidebarModel::refresh()
{
    std::vector<SidebarRow> next = SidebarRows::of(m_workspace);
    if (next == m_rows)
        return;
    const int oldCount = int(m_rows.size());
    const int newCount = int(next.size());
    const auto same = [&](int oldRow, int newRow) {
        return m_rows[std::size_t(oldRow)].isSameAs(next[std::size_t(newRow)]);
    };
    int head = 0;
    while (head < oldCount && head < newCount && same(head, head))
        ++head;
    int tail = 0;
    while (tail < oldCount - head && tail < newCount - head &&
           same(oldCount - 1 - tail, newCount - 1 - tail))
        ++tail;

    if (const int gone = oldCount - head - tail; gone > 0) {
        beginRemoveRows({}, head, head + gone - 1);
        m_rows.erase(m_rows.begin() + head, m_rows.begin() + head + gone);
        endRemoveRows();
    }
    if (const int added = newCount - head - tail; added > 0) {
        beginInsertRows({}, head, head + added - 1);
        m_rows.insert(m_rows.begin() + head, next.begin() + head, next.begin() + head + added);
        endInsertRows();
    }
    m_rows = std::move(next);
    if (!m_rows.empty())
        emit dataChanged(index(0), index(int(m_rows.size()) - 1));
}

int SidebarModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

const SidebarRow* SidebarModel::row(const QModelIndex& index) const
{
    const auto at = std::size_t(index.row());
    return index.isValid() && at < m_rows.size() ? &m_rows[at] : nullptr;
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const
{
    const SidebarRow* line = row(index);
    if (!line)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return line->text;
    case Qt::ToolTipRole:
        return line->kind == SidebarRow::Kind::File || line->kind == SidebarRow::Kind::Folder
                   ? m_workspace.relativePath(line->key)
                   : QString();
    case Qt::AccessibleTextRole:
        return line->isUnsaved ? tr("%1, unsaved changes").arg(line->text) : line->text;
    default:
        return {};
    }
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex& index) const
{
    const SidebarRow* line = row(index);
    return line && line->isAction() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QModelIndex SidebarModel::selected() const
{
    for (std::size_t at = 0; at < m_rows.size(); ++at) {
        if (m_rows[at].isSelected)
            return index(int(at));
    }
    return {};
}

QModelIndex SidebarModel::parentFolder(const QModelIndex& index) const
{
    const SidebarRow* line = row(index);
    if (!line)
        return {};
    for (int at = index.row() - 1; at >= 0; --at) {
        const SidebarRow& above = m_rows[std::size_t(at)];
        if (above.kind == SidebarRow::Kind::Folder && above.depth == line->depth - 1)
            return this->index(at);
        if (above.kind == SidebarRow::Kind::Section)
            break;
    }
    return {};
}

} // namespace Bralto
