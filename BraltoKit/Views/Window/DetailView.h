#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

class Animated;
class EditorPanes;
class MissingFolder;
class Seam;
class TerminalPanelView;

/// The editor area over the console, with the seam between them.
class DetailView final : public ThemedWidget {
    Q_OBJECT

public:
    DetailView(const ViewServices& services, QWidget* parent);
    ~DetailView() override;

    [[nodiscard]] EditorPanes& panes() const { return *m_panes; }
    [[nodiscard]] TerminalPanelView& console() const { return *m_console; }
    [[nodiscard]] EditorLayout layoutInForce() const { return m_layout; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Step { AtOnce, Animated };

    void followPanel();
    void settleEditor(Step step);
    void place();
    void dropEditor();
    void holdPanes();
    void releasePanes();
    void showMissing();
    [[nodiscard]] EditorLayout target() const;
    [[nodiscard]] double wantedShare() const;

    ViewServices m_services;
    MissingFolder* m_missing;
    EditorPanes* m_panes;
    TerminalPanelView* m_console = nullptr;
    Seam* m_seam;
    EditorLayout m_layout = EditorLayout::Full;
    Animated* m_share;    ///< The editor's part of the height: 1 is all of it.
    Animated* m_fraction; ///< The seam on its way back to the middle.
    quint64 m_motion = 0; ///< The hold while terminals change their height; 0 if they don't.
    double m_fractionAtStart = 0;
    ResizeHold m_hold;
};

} // namespace Bralto
