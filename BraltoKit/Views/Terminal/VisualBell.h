#pragma once

#include "Views/Kit/Animated.h"

#include <QBasicTimer>
#include <QObject>

namespace Bralto {

class Theme;

/// The light that a bell makes: at once, then fading. With reduced motion it goes out in one step.
class VisualBell final : public QObject {
    Q_OBJECT

public:
    VisualBell(const Theme& theme, QObject* parent);

    void ring();
    /// 0 is dark, 1 the brightest.
    [[nodiscard]] double strength() const { return m_strength.value(); }

signals:
    void changed();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    const Theme& m_theme;
    Animated m_strength;
    QBasicTimer m_hold;
};

} // namespace Bralto
