#pragma once

#include <QByteArray>

#include <optional>
#include <string_view>

namespace Bralto::Base64 {

/// The bytes that `text` spells in the standard alphabet, absent if anything else stands in it.
/// The padding may be missing. Pictures come this way by the megabyte, so this is fast.
[[nodiscard]] std::optional<QByteArray> decode(std::string_view text);

} // namespace Bralto::Base64
