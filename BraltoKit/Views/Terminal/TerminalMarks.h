#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Search/SearchService.h"
#include "Views/Terminal/TerminalScrollBar.h"

#include <vector>

/// What a terminal's scroll bar marks.
namespace Bralto::TerminalMarks {

enum class Prompts { Without, With };

/// At most one mark of a kind for each pixel of the track, hits before the current one.
[[nodiscard]] std::vector<ScrollMark>
of(const Kovalt::Buffer& buffer, const Kovalt::SearchService& search, int track, Prompts prompts);

} // namespace Bralto::TerminalMarks
