#pragma once

#include "Views/Chat/ComposerField.h"
#include "Views/Kit/ThemedWidget.h"

class QHBoxLayout;

namespace Bralto {

class IconButton;
class SendButton;

/// The composer: what is attached, the field, and the buttons beside it.
class ChatComposer final : public ThemedWidget {
    Q_OBJECT

public:
    ChatComposer(Theme& theme, ChatDraft& draft, QWidget* parent);

    [[nodiscard]] ComposerField& field() const { return *m_field; }
    /// While the agent works and nothing is written, the button stops it.
    void setBusy(bool busy);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void showAttachments();
    void showSend();
    void chooseFiles();

    ChatDraft& m_draft;
    ComposerField* m_field;
    QWidget* m_attachments;
    QHBoxLayout* m_attachmentRow;
    IconButton* m_attach;
    SendButton* m_send;
    bool m_isBusy = false;
};

} // namespace Bralto
