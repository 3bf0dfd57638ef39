#pragma once

#include "Views/Kit/ThemedWidget.h"

namespace Bralto {

class ConsolePane;
class TerminalPanel;

/// The head of a pane: its symbol, its name, and the button that closes it.
class PaneHead final : public ThemedWidget {
    Q_OBJECT

public:
    PaneHead(Theme& theme, TerminalPanel& panel, ConsolePane& pane, QWidget* parent);

    void setFocusedPane(bool focused);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    TerminalPanel& m_panel;
    ConsolePane& m_pane;
    class IconButton* m_close;
    bool m_isFocused = false;
};

} // namespace Bralto
