#pragma once

#include <termios.h>

#include <optional>

namespace KovaltTool {

/// Opens what the caller closed of standard input, output and error, so that nothing else gets
/// their numbers.
void openStandardStreams();

/// While it lives, a terminal on standard input hands over each key as it is pressed, those for
/// signals too. What is written to that terminal looks as before. Without a terminal there, or in
/// the background, it does nothing.
class RawInput {
public:
    RawInput();
    ~RawInput();
    RawInput(const RawInput&) = delete;
    RawInput& operator=(const RawInput&) = delete;

private:
    std::optional<termios> m_former;
};

} // namespace KovaltTool
