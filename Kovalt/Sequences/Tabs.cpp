// Tab stops, and the ways between them.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

void Terminal::cmdTab()
{
    endWaiting();
    m_buffer->x = m_buffer->nextTabStop(-1, m_modes.marginMode);
}

void Terminal::cmdTabForward(int n)
{
    for (n = std::min(n, m_cols - 1); n > 0; --n)
        cmdTab();
}

void Terminal::cmdTabBackward(int n)
{
    if (m_buffer->x > m_cols)
        return;
    endWaiting();
    for (n = std::min(n, m_cols - 1); n > 0; --n)
        m_buffer->x = m_buffer->previousTabStop();
}

void Terminal::cmdTabClear(int what)
{
    if (what == 0)
        m_buffer->tabClear(m_buffer->standingColumn());
    else if (what == 3)
        m_buffer->tabClearAll();
}

} // namespace Kovalt
