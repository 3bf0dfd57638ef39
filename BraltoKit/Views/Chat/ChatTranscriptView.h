#pragma once

#include "Base/Clock.h"
#include "Chat/ChatFollowBottom.h"
#include "Chat/ChatThinkingTimes.h"
#include "Views/Chat/ChatImageStore.h"
#include "Views/Chat/ChatRows.h"
#include "Views/Kit/Theme.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QSet>
#include <QTimer>
#include <QUrl>

namespace Bralto {

/// The transcript of one conversation: a list of rows that it paints itself. Only rows in view are
/// laid out; the others keep the height they had or an estimate. Changes add up and are shown once
/// a frame.
class ChatTranscriptView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// `clock` measures how long the agent thinks, and outlives the view.
    ChatTranscriptView(Theme& theme, const Clock& clock, QWidget* parent = nullptr);
    ~ChatTranscriptView() override;

    /// Shows another transcript from its end; null for none. It outlives the view, or its place
    /// here is taken by another before it goes.
    void setTranscript(const ChatTranscript* transcript);
    /// The transcript changed. Shown with the next frame.
    void transcriptChanged(const ChatTranscriptChange& change);
    void setWorkingRow(const std::optional<ChatWorkingRow>& row);
    [[nodiscard]] const std::optional<ChatWorkingRow>& workingRow() const { return m_working; }
    /// The facts above the first message; empty for none.
    void setBanner(const QStringList& parts);
    /// The project, in which relative paths are looked up.
    void setFolder(const QString& folder);
    void setZoom(double zoom);

    void scrollToBottom();
    [[nodiscard]] bool isFollowing() const { return m_follow.follows(); }
    /// Shows what has changed now instead of with the next frame.
    void flush();

    [[nodiscard]] bool hasSelection() const;
    [[nodiscard]] QString selectedText() const;
    void copySelection();

    /// Opens or closes what a part of a row names: a call, a group, a thought.
    void toggle(const QString& key);
    [[nodiscard]] const ChatRows& rows() const { return m_rows; }

    [[nodiscard]] QSize minimumSizeHint() const override { return {120, 60}; }

signals:
    void openFileRequested(const QString& path);
    void openUrlRequested(const QUrl& url);
    void showImageRequested(const QImage& image);
    void followingChanged(bool follows);
    /// A key that types was pressed here; it belongs to the composer.
    void typed(QKeyEvent* event);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    /// Room above the first row and below the last one.
    static constexpr double TopRoom = 4;
    static constexpr double BottomRoom = 10;

    /// A place in the transcript, for selecting.
    struct Place {
        std::size_t row = 0;
        std::size_t part = 0;
        ChatTextPosition text;

        auto operator<=>(const Place&) const = default;
    };
    /// A part of a row that can be clicked.
    struct HotPlace {
        std::size_t row = 0;
        std::size_t part = 0;
        int hot = -1;

        bool operator==(const HotPlace&) const = default;
    };
    struct Under {
        std::size_t row = 0;
        std::size_t part = 0;
        QPointF point; ///< In the part's coordinates.
    };

    // Layout (ChatTranscriptView.cpp)
    [[nodiscard]] double columnWidth() const;
    [[nodiscard]] double columnLeft() const;
    [[nodiscard]] QRect paintedColumn() const;
    [[nodiscard]] int contentTop() const; ///< Of the viewport's first line in the content.
    void scheduleFlush();
    void layOutVisible();
    void layOutRow(std::size_t index);
    bool layOutFrom(double top, double bottom);
    void layOutLast();
    void settle();
    void updateChanged(int oldTop);
    void updateRange(int value);
    void reportGeometry();
    void paintPart(QPainter& painter, const QRectF& clip);
    void applyTheme();
    void restartSpinner();
    void updateSpinners();
    void observeThinking(const ChatTranscriptChange& change);
    [[nodiscard]] ChatPicture findImage(const QString& key, const ChatImage& image);
    void imageReady();

    // Pointing and selecting (ChatTranscriptPointer.cpp)
    [[nodiscard]] std::optional<Under> partUnder(const QPointF& point) const;
    [[nodiscard]] std::optional<HotPlace> hotUnder(const QPointF& point) const;
    [[nodiscard]] std::optional<ChatAction> linkUnder(const QPointF& point) const;
    [[nodiscard]] std::optional<Place> placeNear(const QPointF& point) const;
    [[nodiscard]] std::pair<Place, Place> selection() const;
    void setSelection(const Place& anchor, const Place& head);
    void clearSelection();
    void perform(const ChatAction& action);
    void setHovered(const std::optional<HotPlace>& hovered);
    void updateHover(const QPointF& point);
    void extendSelection(const QPointF& point);
    void selectAll();
    [[nodiscard]] QRectF hotRect(const HotPlace& place) const;
    [[nodiscard]] const ChatScene::Hot* hotAt(const HotPlace& place) const;
    bool moveFocus(bool forward);
    void updateRow(std::size_t row);

    Theme& m_theme;
    const Clock& m_clock;
    const ChatTranscript* m_transcript = nullptr;
    ChatRows m_rows;
    ChatThinkingTimes m_thinking;
    ChatImageStore m_images;
    std::optional<ChatWorkingRow> m_working;
    QStringList m_banner;
    QString m_folder;
    double m_zoom = 1;
    QSet<QString> m_open;
    QString m_copied; ///< The copy button that was pressed last.
    QTimer m_copiedTimer;

    ChatTranscriptChange m_pending;
    bool m_needsLayout = false;
    std::vector<ChatStretch> m_changed; ///< What has to be painted again, in the content.
    bool m_changedAll = false;
    double m_shownHeight = 0; ///< Of the rows when they were last laid out.
    QTimer m_frame;
    QElapsedTimer m_sinceFrame;

    ChatFollowBottom m_follow;
    bool m_isScrollingItself = false;
    QTimer m_scrollIdle;
    double m_laidWidth = 0;

    std::optional<HotPlace> m_hovered;
    std::optional<HotPlace> m_focused;
    std::optional<HotPlace> m_pressed;
    std::optional<ChatAction> m_pressedLink;
    Place m_anchor;
    Place m_head;
    bool m_isSelecting = false;
    QTimer m_selectScroll;
};

} // namespace Bralto
