#pragma once

#include <QString>

/// Characters as a reader counts them: an accent belongs to its letter, a family is one emoji.
namespace Bralto::Graphemes {

/// The first `count` characters of `text`, or all of it.
[[nodiscard]] QString prefix(const QString& text, qsizetype count);

/// As many of the first characters as `bytes` bytes of UTF-8 hold.
[[nodiscard]] QString prefixInBytes(const QString& text, qsizetype bytes);

} // namespace Bralto::Graphemes
