#pragma once

#include "Projects/SpaceTheme.h"
#include "Views/Kit/Tokens.h"

#include <QObject>

#include <functional>

namespace Bralto {

/// The look of one window: its current tokens, and the news that they are others now. Every view
/// gets the theme of its window at construction and reads the tokens when it paints, so that a
/// change of colour or appearance is one repaint. Main thread.
class Theme final : public QObject {
    Q_OBJECT

public:
    /// What the desktop asks for.
    struct System {
        bool dark = true;
        bool reducedMotion = false;
        bool composited = true; ///< Windows can be see-through.

        bool operator==(const System&) const = default;
    };

    /// What one part of a window makes of the window's tokens.
    using Dress = std::function<Tokens(const Tokens&)>;

    explicit Theme(System system, const SpaceTheme& space = {}, QObject* parent = nullptr);
    /// The look of a part of `window`, which outlives it and whose changes it follows.
    Theme(const Theme& window, Dress dress, QObject* parent = nullptr);

    [[nodiscard]] const Tokens& tokens() const { return m_tokens; }
    [[nodiscard]] const SpaceTheme& space() const { return m_space; }
    /// Nothing but colours may change without a step between when this is true.
    [[nodiscard]] bool reducedMotion() const { return system().reducedMotion; }

    [[nodiscard]] bool isComposited() const { return system().composited; }

    void setSpace(const SpaceTheme& space);
    void setSystem(System system);
    void setDress(Dress dress); ///< Of a part of a window.

signals:
    /// The tokens have other values.
    void changed();

private:
    void refresh();
    [[nodiscard]] const System& system() const { return m_window ? m_window->system() : m_system; }

    const Theme* m_window = nullptr; ///< Null for the look of a whole window.
    Dress m_dress;
    System m_system;
    SpaceTheme m_space;
    TokenSource m_source;
    Tokens m_tokens;
};

} // namespace Bralto
