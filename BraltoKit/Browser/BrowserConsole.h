#pragma once

#include <QDateTime>
#include <QString>

#include <deque>

namespace Bralto {

/// What a page wrote to its console, the newest 300 of it.
class BrowserConsole {
public:
    static constexpr std::size_t Capacity = 300;

    struct Entry {
        QString level; ///< "log", "info", "warn", "error" or "debug".
        QString text;
        QDateTime date;
    };

    [[nodiscard]] const std::deque<Entry>& entries() const { return m_entries; } ///< Oldest first.
    void append(const QString& level, const QString& text, const QDateTime& date);
    void clear() { m_entries.clear(); }

private:
    std::deque<Entry> m_entries;
};

} // namespace Bralto
