#pragma once

#include "Base/Dialogs.h"

#include <QPointer>
#include <QWidget>

namespace Bralto {

class Theme;

/// The program's questions as cards over its window. Main thread; every call runs an event loop
/// until the user has chosen.
class DialogsView final : public Dialogs {
public:
    /// The theme outlives this object.
    explicit DialogsView(Theme& theme);

    /// Where questions appear: over this window from now on, or over whichever is active.
    void setWindow(QWidget* window) { m_window = window; }

    int show(const Alert& alert) override;
    std::optional<QString> text(const TextPrompt& prompt) override;
    std::optional<QString> openFileOrFolder() override;

private:
    [[nodiscard]] QWidget* window() const;

    Theme& m_theme;
    QPointer<QWidget> m_window;
};

} // namespace Bralto
