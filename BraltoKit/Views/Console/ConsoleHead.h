#pragma once

#include "Base/Shortcuts.h"
#include "Views/Kit/ThemedWidget.h"

#include <QMenu>

#include <memory>
#include <optional>
#include <vector>

namespace Bralto {

class ConsoleDrag;
class Glide;
class GroupChip;
class IconButton;
class TerminalGroup;
class TerminalPanel;

/// The head of the console's tray: a chip for each group, the ways to new panes, and what sizes
/// and hides the console. What is dropped beside the chips becomes the last tab.
class ConsoleHead final : public ThemedWidget {
    Q_OBJECT

public:
    ConsoleHead(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, QWidget* parent);

    [[nodiscard]] const std::vector<GroupChip*>& chips() const { return m_chips; }
    [[nodiscard]] IconButton& newTab() const { return *m_new; }
    [[nodiscard]] IconButton& newPane() const { return *m_more; }
    [[nodiscard]] IconButton& maximize() const { return *m_maximize; }
    [[nodiscard]] IconButton& hideConsole() const { return *m_hide; }
    /// Everything that can be opened: beside the focused pane, and in a tab of its own.
    [[nodiscard]] std::unique_ptr<QMenu> makeNewMenu();
    /// Where the keyboard is, which decides what chords the tips and the menu name.
    void setKeyboard(Shortcuts::Keyboard keyboard);
    /// Where a dragged tab would come to lie: a line between two chips.
    [[nodiscard]] std::optional<QRect> dropLine() const;

signals:
    void groupDragRequested(Bralto::GroupChip* chip, const QPoint& grip);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    enum class Step { AtOnce, Animated };

    void rebuild();
    GroupChip* makeChip(TerminalGroup& group);
    void refresh();
    void place(Step step);
    void popUpNewMenu(const QPoint& globalPosition);

    TerminalPanel& m_panel;
    ConsoleDrag& m_drag;
    std::vector<GroupChip*> m_chips;
    Glide* m_glide;
    IconButton* m_new;
    IconButton* m_more;
    IconButton* m_maximize;
    IconButton* m_hide;
    Shortcuts::Keyboard m_keyboard = Shortcuts::Keyboard::Elsewhere;
};

} // namespace Bralto
