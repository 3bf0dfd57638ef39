#pragma once

#include <QByteArray>

#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

namespace Bralto {

/// Cuts a stream of bytes, which may come in any pieces, into lines. May be used from any thread,
/// one call at a time goes through. Every byte is looked at once, however long a line grows.
class ChatLineReader {
public:
    /// The lines that `bytes` completes, in order, without their line feed; empty ones are left
    /// out.
    [[nodiscard]] std::vector<QByteArray> feed(std::string_view bytes);

    /// What was never ended by a line feed, if anything; the reader is empty afterwards.
    [[nodiscard]] std::optional<QByteArray> finish();

private:
    std::mutex m_mutex;
    QByteArray m_rest; ///< The beginning of a line; holds no line feed.
};

} // namespace Bralto
