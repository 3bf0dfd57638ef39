#pragma once

#include "Base/Clock.h"
#include "Chat/ChatFileIndex.h"
#include "Chat/ClaudeChat.h"
#include "Views/Kit/ThemedWidget.h"

#include <QUrl>

class QVBoxLayout;

namespace Bralto {

class ChatComposer;
class ChatDraft;
class ChatList;
class ChatMissingAgentCard;
class ChatPermissionCard;
class ChatQuestionCard;
class ChatStrip;
class ChatTranscriptView;
class ImageOverlay;
class JumpButton;

/// What fills a chat pane: the transcript, the cards and lists above the composer, the composer,
/// and the strip. It shows a conversation and its draft, and calls their verbs.
class ChatView final : public ThemedWidget {
    Q_OBJECT

public:
    /// All but `parent` outlive the view.
    ChatView(ClaudeChat& chat, Theme& theme, const Clock& clock, ChatFileIndex& files,
             QWidget* parent = nullptr);
    ~ChatView() override;

    void setZoom(double zoom);
    [[nodiscard]] ChatTranscriptView& transcriptView() const { return *m_transcript; }
    [[nodiscard]] ChatComposer& composer() const { return *m_composer; }

signals:
    void openFileRequested(const QString& path);
    void openUrlRequested(const QUrl& url);
    void useDemoAgentRequested();
    void installHelpRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void connectChat();
    void connectDraft();
    void showState();
    void showCards();
    void showLists();
    void showFacts();
    void placeJump();

    ClaudeChat& m_chat;
    ChatDraft& m_draft;
    ChatFileIndex& m_files;
    ChatTranscriptView* m_transcript;
    QWidget* m_foot; ///< Everything below the transcript, in its column.
    ChatMissingAgentCard* m_missing;
    ChatPermissionCard* m_permission;
    ChatQuestionCard* m_question;
    ChatList* m_palette;
    ChatList* m_mentions;
    ChatComposer* m_composer;
    ChatStrip* m_strip;
    JumpButton* m_jump;
    ImageOverlay* m_overlay;
};

} // namespace Bralto
