#pragma once

#include "Views/Kit/Control.h"

namespace Bralto {

/// Sends what is written, or stops the agent.
class SendButton final : public Control {
    Q_OBJECT

public:
    enum class Face { Off, Send, Stop };

    SendButton(Theme& theme, QWidget* parent);

    void setFace(Face face);
    [[nodiscard]] Face face() const { return m_face; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Face m_face = Face::Off;
};

} // namespace Bralto
