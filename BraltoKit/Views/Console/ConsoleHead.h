#pragma once

#include "Views/Kit/ThemedWidget.h"

#include <vector>

namespace Bralto {

class GroupChip;
class IconButton;
class TerminalPanel;

/// The head of the console's tray: a chip for each group, the way to a new conversation, and what
/// sizes and hides the console.
class ConsoleHead final : public ThemedWidget {
    Q_OBJECT

public:
    ConsoleHead(Theme& theme, TerminalPanel& panel, QWidget* parent);

    [[nodiscard]] const std::vector<GroupChip*>& chips() const { return m_chips; }
    [[nodiscard]] IconButton& newChat() const { return *m_new; }
    [[nodiscard]] IconButton& maximize() const { return *m_maximize; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void rebuild();
    void refresh();
    void place();

    TerminalPanel& m_panel;
    std::vector<GroupChip*> m_chips;
    IconButton* m_new;
    IconButton* m_maximize;
    IconButton* m_hide;
};

} // namespace Bralto
