#pragma once

#include "Base/DefaultsStore.h"
#include "Terminals/PaneStyle.h"
#include "Views/Kit/ThemedWidget.h"

#include <vector>

namespace Bralto {

class ConsolePane;
class FontPicker;
class IconButton;
class Label;
class StylePreview;
class TextButton;
class ThemeSwatch;

/// The popover that changes a pane's look while one watches. It is open as long as the pane says
/// that its look is being changed; Escape and a click elsewhere close it, and it goes by itself.
class PaneStyleEditor final : public ThemedWidget {
    Q_OBJECT

public:
    /// Points at zoom 1.
    static constexpr double SmallestSize = 8;
    static constexpr double LargestSize = 24;
    static constexpr double SizeStep = 0.5;

    /// `theme` is the window's. `shared` keeps what new panes look like. All outlive the editor.
    PaneStyleEditor(Theme& theme, DefaultsStore& shared, ConsolePane& pane, QWidget* parent);

    /// Shows it with its top right corner there, or as near as the screen allows.
    void open(const QPoint& globalTopRight);

    [[nodiscard]] const std::vector<ThemeSwatch*>& swatches() const { return m_swatches; }
    [[nodiscard]] FontPicker& fonts() const { return *m_font; }
    [[nodiscard]] IconButton& smaller() const { return *m_smaller; }
    [[nodiscard]] IconButton& larger() const { return *m_larger; }
    [[nodiscard]] Label& size() const { return *m_size; }
    [[nodiscard]] TextButton& useAsDefault() const { return *m_useAsDefault; }

    /// The size as the editor writes it: "12.0 pt".
    [[nodiscard]] static QString sizeText(double points);
    /// The next size in a direction, within the limits.
    [[nodiscard]] static double stepped(double points, int direction);

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void build();
    void refresh();
    void change(const PaneStyle& style);
    void step(int direction);
    void saveAsDefault();
    [[nodiscard]] QWidget* row(const QString& title, QWidget* control);

    DefaultsStore& m_shared;
    ConsolePane& m_pane;
    std::vector<ThemeSwatch*> m_swatches;
    FontPicker* m_font;
    IconButton* m_smaller;
    IconButton* m_larger;
    Label* m_size;
    StylePreview* m_preview;
    TextButton* m_useAsDefault;
};

} // namespace Bralto
