#include "Browser/BrowserConsole.h"

namespace Bralto {

void BrowserConsole::append(const QString& level, const QString& text, const QDateTime& date)
{
    m_entries.push_back({level, text, date});
    if (m_entries.size() > Capacity)
        m_entries.pop_front();
}

} // namespace Bralto
