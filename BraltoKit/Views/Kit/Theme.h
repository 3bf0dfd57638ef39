#pragma once

#include "Projects/SpaceTheme.h"
#include "Views/Kit/Tokens.h"

#include <QObject>

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

    explicit Theme(System system, const SpaceTheme& space = {}, QObject* parent = nullptr);

    [[nodiscard]] const Tokens& tokens() const { return m_tokens; }
    [[nodiscard]] const SpaceTheme& space() const { return m_space; }
    /// Nothing but colours may change without a step between when this is true.
    [[nodiscard]] bool reducedMotion() const { return m_system.reducedMotion; }

    [[nodiscard]] bool isComposited() const { return m_system.composited; }

    void setSpace(const SpaceTheme& space);
    void setSystem(System system);

signals:
    /// The tokens have other values.
    void changed();

private:
    void refresh();

    System m_system;
    SpaceTheme m_space;
    TokenSource m_source;
    Tokens m_tokens;
};

} // namespace Bralto
