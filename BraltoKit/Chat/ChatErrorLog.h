#pragma once

#include <QByteArray>
#include <QString>

#include <mutex>
#include <string_view>

namespace Bralto {

/// The end of what the agent wrote to its standard error. May be used from any thread.
class ChatErrorLog {
public:
    static constexpr qsizetype KeptBytes = 4096;
    static constexpr qsizetype TailBytes = 600;

    /// Keeps the last `KeptBytes` of everything that was appended.
    void append(std::string_view bytes);

    /// The last `TailBytes` as text; what is no UTF-8 is replaced with U+FFFD.
    [[nodiscard]] QString tail() const;

    void clear();

private:
    mutable std::mutex m_mutex;
    QByteArray m_bytes;
};

} // namespace Bralto
