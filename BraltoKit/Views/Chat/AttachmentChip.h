#pragma once

#include "Chat/ChatMessage.h"
#include "Views/Kit/Control.h"

namespace Bralto {

/// One attachment above the field; a click takes it away.
class AttachmentChip final : public Control {
    Q_OBJECT

public:
    AttachmentChip(Theme& theme, const ChatAttachment& attachment, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_name;
    QString m_symbol;
};

} // namespace Bralto
