#pragma once

#include "Views/Kit/Animated.h"

#include <QPointer>
#include <QRect>
#include <QWidget>

#include <optional>
#include <vector>

namespace Bralto {

/// Widgets of one parent on their way to new places, all with one spring. With reduced motion they
/// are there at once.
class Glide final : public QObject {
    Q_OBJECT

public:
    struct Way {
        QPointer<QWidget> widget;
        QRect goal;
        /// Where a widget begins that hasn't been here yet; else where it is.
        std::optional<QRect> start = {};
    };

    Glide(const Theme& theme, QObject* parent);

    [[nodiscard]] bool isMoving() const
    {
        return m_animation.state() == QAbstractAnimation::Running;
    }
    /// From where the widgets are. Does nothing if they are there or on that very way.
    void moveTo(std::vector<Way> ways, const Motions::Course& course);
    void jumpTo(const std::vector<Way>& ways);

signals:
    void started();
    /// After each `started`, once all have arrived.
    void settled();

private:
    [[nodiscard]] bool goesWhereItWent(const std::vector<Way>& ways) const;
    void advance(double seconds);
    void arrive();

    const Theme& m_theme;
    std::vector<Way> m_ways;
    Spring m_spring;
    QVariantAnimation m_animation;
};

} // namespace Bralto
