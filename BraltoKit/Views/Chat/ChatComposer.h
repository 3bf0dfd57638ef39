#pragma once

#include "Chat/ChatDraft.h"
#include "Views/Kit/ThemedWidget.h"

#include <QTextEdit>

class QHBoxLayout;

namespace Bralto {

class IconButton;

/// The field in which a turn is written. It asks the draft first what a key means.
class ComposerField final : public QTextEdit {
    Q_OBJECT

public:
    ComposerField(Theme& theme, ChatDraft& draft, QWidget* parent);

    /// The height that the text has, at most eight lines.
    [[nodiscard]] int textHeight() const;
    void setZoom(double zoom);

signals:
    void heightChanged();
    void focusChanged(bool hasFocus);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void applyTheme();
    void report();

    Theme& m_theme;
    ChatDraft& m_draft;
    double m_zoom = 1;
    int m_height = 0;
    bool m_isReplacing = false;
};

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
    class SendButton* m_send;
    bool m_isBusy = false;
};

} // namespace Bralto
