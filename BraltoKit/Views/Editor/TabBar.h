#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <vector>

namespace Bralto {

class EditorTab;
class IconButton;

/// The tabs of a project from left to right. They give way to each other down to a least width,
/// and are scrolled beyond that; the active one is always in view.
class TabBar final : public ThemedWidget {
    Q_OBJECT

public:
    TabBar(const ViewServices& services, QWidget* parent);

    [[nodiscard]] const std::vector<EditorTab*>& tabs() const { return m_tabs; }
    [[nodiscard]] IconButton* newTabButton() const { return m_newTab; } ///< Null without pages.

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void rebuild();
    void refresh();
    void place();
    void revealActive();

    ViewServices m_services;
    QWidget* m_strip; ///< Clips the tabs.
    std::vector<EditorTab*> m_tabs;
    IconButton* m_newTab = nullptr;
    int m_scroll = 0;
    int m_overflow = 0;
};

} // namespace Bralto
