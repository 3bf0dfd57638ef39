#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QKeyEvent;

namespace Bralto {

/// Two keystrokes that zoom in front of the menu: Ctrl and "+", which a layout may have on any key,
/// and Ctrl with the minus of the numeric pad.
class ZoomKeys final : public QObject {
    Q_OBJECT

public:
    enum class Direction { In, Out };

    /// Watches the key presses of `application`. `hasProject` is asked at each of them; without a
    /// project every event passes through.
    ZoomKeys(QObject* application, std::function<bool()> hasProject);

    /// What `event` asks for, if it is one of the two.
    [[nodiscard]] static std::optional<Direction> direction(const QKeyEvent& event);

signals:
    void zoomRequested(Bralto::ZoomKeys::Direction direction);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<bool()> m_hasProject;
};

} // namespace Bralto
