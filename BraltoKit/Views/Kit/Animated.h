#pragma once

#include "Base/Motion.h"

#include <QObject>
#include <QVariantAnimation>

#include <chrono>

namespace Bralto {

class Theme;

/// How the views move.
namespace Motions {

/// A spring, and the time after which nothing of its way is left to see.
struct Course {
    Spring spring;
    std::chrono::milliseconds length;
};

/// Panels and columns that come and go.
inline constexpr Course Toggle{Motion::ToggleSpring, std::chrono::milliseconds(340)};
/// Panes that come and go, and what gives way to them.
inline constexpr Course Panel{{std::chrono::milliseconds(320), 1.0},
                              std::chrono::milliseconds(480)};
/// Panes and tabs that were dragged to another place.
inline constexpr Course Drag{{std::chrono::milliseconds(350), 0.82},
                             std::chrono::milliseconds(480)};
/// A pane that shows its conversation in another way.
inline constexpr Course Swap{{std::chrono::milliseconds(250), 1.0}, std::chrono::milliseconds(370)};
/// The frame when its colour changes.
inline constexpr Course Frame{{std::chrono::milliseconds(350), 1.0},
                              std::chrono::milliseconds(500)};
inline constexpr std::chrono::milliseconds Hover{90};

} // namespace Motions

/// One number on its way to a goal. With reduced motion it is there at once.
class Animated final : public QObject {
    Q_OBJECT

public:
    Animated(const Theme& theme, const Motions::Course& course, double value, QObject* parent);

    [[nodiscard]] double value() const { return m_value; }
    [[nodiscard]] double goal() const { return m_goal; }
    [[nodiscard]] bool isMoving() const
    {
        return m_animation.state() == QAbstractAnimation::Running;
    }

    void moveTo(double goal);
    void jumpTo(double value);

signals:
    void valueChanged(double value);
    /// The goal is reached; after `jumpTo` as well.
    void settled();

private:
    const Theme& m_theme;
    double m_value;
    double m_start;
    double m_goal;
    QVariantAnimation m_animation;
};

} // namespace Bralto
