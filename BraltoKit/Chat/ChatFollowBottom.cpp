#include "Chat/ChatFollowBottom.h"

namespace Bralto {

namespace {

constexpr double Slack = 48;

} // namespace

void ChatFollowBottom::geometryChanged(double offset, double containerHeight, double contentHeight)
{
    const bool isAtBottom = offset + containerHeight >= contentHeight - Slack;
    if (isAtBottom == m_isAtBottom)
        return;
    m_isAtBottom = isAtBottom;
    if (m_isUserScrolling)
        m_follows = isAtBottom;
}

void ChatFollowBottom::userScrolls(bool scrolling)
{
    m_isUserScrolling = scrolling;
    if (!scrolling)
        m_follows = m_isAtBottom;
}

} // namespace Bralto
