#pragma once

/// @file
/// The rows of a transcript view: which there are, how high each is, where it begins.

#include "Chat/ChatRowItems.h"
#include "Chat/ChatTranscript.h"
#include "Chat/ChatWorkingRow.h"
#include "Views/Chat/ChatScene.h"

#include "Chat/ChatMarkdown.h"

namespace Bralto {

/// A row that is laid out. A reply has a part for each of its blocks, so that a growing one lays
/// out its last block only.
struct ChatRowLayout {
    struct Part {
        double top = 0;
        std::shared_ptr<const ChatScene> scene;
        /// What it was made of, of a reply only; absent too if it has to be made anew.
        std::optional<MarkdownBlock> block;
        bool isPlain = true; ///< Nothing in it depends on more than its block.
    };

    std::vector<Part> parts;
    double height = 0; ///< Whole units, margins included.
    QRectF caret;      ///< Of a streaming reply; empty without one.
    bool hasSpinner = false;
    bool waitsForImages = false;
    MarkdownParser::Settled settled; ///< Of a reply's text: what needs no second reading.
    QString text;                    ///< What this was told of.
};

/// A stretch of a row, or of the content: from `top` to above `bottom`.
struct ChatStretch {
    double top = 0;
    double bottom = 0;
};

/// Where two layouts of a row look different, in the row's coordinates; absent if they look the
/// same.
[[nodiscard]] std::optional<ChatStretch> differenceOf(const ChatRowLayout& before,
                                                      const ChatRowLayout& after);

struct ChatRow {
    enum class Kind { Banner, Turn, Notice, Reply, Thinking, Image, Call, Group, Working };

    Kind kind = Kind::Reply;
    QString id;
    std::size_t message = 0; ///< Index in the transcript; of rows that belong to one.
    qsizetype first = 0;     ///< The row's blocks in the message.
    qsizetype count = 1;

    QList<ChatBlock> blocks; ///< What the layout shows, to see whether it still holds.
    bool isStreaming = false;
    double top = 0;
    double height = 0;       ///< An estimate until `isMeasured`.
    bool isMeasured = false; ///< `height` is that of the present content and width.
    std::optional<ChatRowLayout> layout;
};

class ChatRows {
public:
    [[nodiscard]] const std::vector<ChatRow>& all() const { return m_rows; }
    [[nodiscard]] ChatRow& at(std::size_t index) { return m_rows[index]; }
    [[nodiscard]] std::size_t size() const { return m_rows.size(); }
    /// From the first row's top to the last row's bottom.
    [[nodiscard]] double height() const;

    /// Makes all rows anew, for a column of this width.
    void reset(const ChatTranscript& transcript, bool hasBanner, double width);
    /// Follows a change; what stayed the same keeps its layout. Whether only rows behind the old
    /// ones were added, so that indexes kept by others still hold.
    bool apply(const ChatTranscript& transcript, const ChatTranscriptChange& change, double width);
    void setWorking(bool shows);
    void setBanner(bool shows);

    /// The layout of a row no longer holds; its height stays as the estimate.
    void invalidate(std::size_t index);
    void invalidateAll();
    /// Drops the layouts of rows outside [first, last), which keep their heights.
    void keepLayouts(std::size_t first, std::size_t last);
    void setLayout(std::size_t index, ChatRowLayout layout);
    /// Recomputes the tops behind changed heights. The top of the first row that moved; absent if
    /// none did.
    std::optional<double> settle();
    /// The row at a vertical place; the last one below the end. Only if there are rows.
    [[nodiscard]] std::size_t rowAt(double y) const;

private:
    void syncMessage(const ChatTranscript& transcript, std::size_t message, double width);
    [[nodiscard]] std::vector<ChatRow> rowsOf(const ChatMessage& message, std::size_t index) const;
    void replace(std::size_t first, std::size_t last, std::vector<ChatRow> rows,
                 std::size_t message);

    std::vector<ChatRow> m_rows;
    std::vector<std::size_t> m_starts; ///< The first row of each message.
    std::vector<QString> m_ids;        ///< The id of each message.
    bool m_hasBanner = false;
    bool m_hasWorking = false;
    std::size_t m_unsettled = 0; ///< The first row whose top may be wrong.
};

} // namespace Bralto
