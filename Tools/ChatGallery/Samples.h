#pragma once

#include "Chat/ChatTranscript.h"

/// Conversations that show every kind of row, for looking at.
namespace Bralto::Samples {

/// A turn with thinking, folded and open tools, an edit, a table, a picture.
[[nodiscard]] ChatTranscript work();
/// Every tool's row.
[[nodiscard]] ChatTranscript tools();
/// Every block of Markdown.
[[nodiscard]] ChatTranscript markdown();
/// The longest and strangest texts that can come.
[[nodiscard]] ChatTranscript hostile();
/// A reply in mid-stream.
[[nodiscard]] ChatTranscript streaming();

/// What is open in `work`.
[[nodiscard]] QStringList openInWork();

} // namespace Bralto::Samples
