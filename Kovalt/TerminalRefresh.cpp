// What changed since the last painting, and when to paint.

#include "Kovalt/Terminal.h"
#include "Kovalt/TerminalTimer.h"

#include <algorithm>

namespace Kovalt {

std::optional<Terminal::RowRange> Terminal::getUpdateRange() const
{
    if (m_refresh.end < 0)
        return std::nullopt;
    return RowRange{m_refresh.start, m_refresh.end};
}

std::optional<Terminal::RowRange> Terminal::getScrollInvariantUpdateRange() const
{
    if (m_refresh.scrollInvariantEnd < 0)
        return std::nullopt;
    return RowRange{m_refresh.scrollInvariantStart, m_refresh.scrollInvariantEnd};
}

void Terminal::clearUpdateRange()
{
    m_refresh = {};
}

void Terminal::updateRows(int first, int last)
{
    updateRange(first);
    updateRange(last);
}

void Terminal::updateFullScreen()
{
    updateRows(0, m_rows);
}

void Terminal::refresh(int startRow, int endRow)
{
    updateRows(std::min(startRow, endRow), std::max(startRow, endRow));
}

void Terminal::setSynchronizedOutput(bool on)
{
    if (!on) {
        endSynchronizedOutput();
        return;
    }
    const bool begins = !m_synchronizedOutputActive;
    m_synchronizedOutputActive = true;
    if (m_options.timer)
        m_options.timer->start(SynchronizedOutputTimeout, [this] { endSynchronizedOutput(); });
    if (begins && m_delegate)
        m_delegate->synchronizedOutputChanged(*this, true);
}

void Terminal::endSynchronizedOutput()
{
    if (!m_synchronizedOutputActive)
        return;
    m_synchronizedOutputActive = false;
    if (m_options.timer)
        m_options.timer->cancel();
    updateFullScreen();
    if (m_delegate)
        m_delegate->synchronizedOutputChanged(*this, false);
}

} // namespace Kovalt
