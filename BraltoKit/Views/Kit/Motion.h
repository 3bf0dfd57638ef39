#pragma once

#include <QObject>
#include <QVariantAnimation>

#include <functional>

namespace Bralto {

class Theme;

/// A spring by its response (seconds of one swing without damping) and damping (1 is critical).
struct Spring {
    double response = 0.24;
    double damping = 0.85;

    /// How far the spring has come `seconds` after its start: 0 at rest, 1 at its goal.
    [[nodiscard]] double value(double seconds) const;
    /// After how many seconds nothing of its way is left to see.
    [[nodiscard]] double duration() const;

    bool operator==(const Spring&) const = default;
};

namespace Motions {

/// Panels and columns that come and go.
inline constexpr Spring Toggle{0.24, 0.85};
inline constexpr int HoverMs = 90;

} // namespace Motions

/// One number on its way to a goal. With reduced motion it is there at once.
class Animated final : public QObject {
    Q_OBJECT

public:
    Animated(const Theme& theme, Spring spring, double value, QObject* parent);

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
    Spring m_spring;
    double m_value;
    double m_start;
    double m_goal;
    QVariantAnimation m_animation;
};

} // namespace Bralto
