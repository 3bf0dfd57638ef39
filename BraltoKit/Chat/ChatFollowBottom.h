#pragma once

namespace Bralto {

/// When the transcript keeps to its end. Only the user's own scrolling can end following; growth of
/// the content never does. Every function that may move the list says whether to scroll to the
/// bottom edge now, without animation.
class ChatFollowBottom {
public:
    [[nodiscard]] bool follows() const { return m_follows; }
    [[nodiscard]] bool isUserScrolling() const { return m_isUserScrolling; }

    /// Where the list stands, in logical units; the last 48 count as the bottom.
    void geometryChanged(double offset, double containerHeight, double contentHeight);

    /// The user began to scroll, or the list came to rest again.
    void userScrolls(bool scrolling);

    /// The content changed; whether to scroll to the bottom edge.
    [[nodiscard]] bool contentChanged() const { return m_follows && !m_isUserScrolling; }

    /// The way back to the end: follows from now on. The caller scrolls to the bottom edge.
    void jumpToBottom() { m_follows = true; }

private:
    bool m_follows = true;
    bool m_isAtBottom = true;
    bool m_isUserScrolling = false;
};

} // namespace Bralto
