#pragma once

#include "Views/ViewServices.h"

#include "Views/Kit/ThemedWidget.h"

#include <QHash>

namespace Bralto {

class Seam;
class Sheet;
class TabBar;

/// The editor area of a project: the tab bar over the active tab, and the split tab beside it.
/// The view of a tab lives as long as the tab, so that it keeps its place.
class EditorPanes final : public ThemedWidget {
    Q_OBJECT

public:
    EditorPanes(const ViewServices& services, QWidget* parent);

    [[nodiscard]] TabBar& tabBar() const { return *m_tabBar; }
    /// The view of a tab that is on show, else null.
    [[nodiscard]] QWidget* screenOf(const QString& tabId) const;
    [[nodiscard]] Seam& seam() const { return *m_seam; }

    /// Gives the keyboard to the view of a tab.
    void focusTab(const QString& tabId);
    /// Gives the keyboard to the active tab, or without one to the window itself, so that it isn't
    /// left to whatever comes next.
    void takeFocus();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeScreen(const WorkspaceTab& tab);
    QWidget* ensureScreen(const QString& tabId);
    void refresh();
    void place();
    void dropClosed();

    ViewServices m_services;
    Sheet* m_first;
    QWidget* m_firstContent;
    TabBar* m_tabBar;
    QWidget* m_overview;
    Sheet* m_second;
    QWidget* m_secondContent;
    Seam* m_seam;
    double m_fractionAtStart = 0;
    ResizeHold m_hold;
    QHash<QString, QWidget*> m_screens; ///< By tab id.
};

} // namespace Bralto
