#pragma once

#include "Views/Kit/Theme.h"
#include "Views/Window/WindowBar.h"

#include <QPixmap>
#include <QWidget>

namespace Bralto {

class Animated;
class DropFrame;
class SpaceBackdrop;

/// The one window of a process: the frame in the project's colour, the bar, and below it what it
/// is given as content. It takes files that are dropped anywhere on it.
class WindowChrome final : public QWidget {
    Q_OBJECT

public:
    /// Who draws the frame around the window.
    enum class Frame { Own, WindowManager };

    /// As `BRALTO_SYSTEM_FRAME` says.
    [[nodiscard]] static Frame wantedFrame();

    /// The theme and the workspace outlive the window; the theme follows the workspace's space.
    WindowChrome(Theme& theme, Workspace& workspace, const WindowButtonLayout& buttons, Frame frame,
                 QWidget* parent = nullptr);
    ~WindowChrome() override;

    /// Fills the window below the bar.
    void setContent(QWidget* content);
    /// The menu behind the bar's ellipsis and F10.
    void setMenu(QMenu* menu) { m_bar->setMenu(menu); }
    [[nodiscard]] WindowBar& bar() const { return *m_bar; }
    [[nodiscard]] bool isDropTargeted() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void place();
    void followSpace();
    void followProject();
    void fadeFrame();

    Theme& m_theme;
    Workspace& m_workspace;
    SpaceBackdrop* m_backdrop;
    Animated* m_fade;
    QPixmap m_oldFrame; ///< What the frame fades from, null at rest.
    WindowBar* m_bar;
    QWidget* m_content = nullptr;
    DropFrame* m_dropFrame;
};

} // namespace Bralto
