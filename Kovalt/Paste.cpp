#include "Kovalt/Paste.h"

#include <cstddef>

namespace Kovalt {

namespace {

constexpr std::string_view Begin = "\x1b[200~";
constexpr std::string_view End = "\x1b[201~";
/// The introducer of the end marker has three forms.
constexpr std::string_view EndOfUtf8Introducer = "\xc2\x9b"
                                                 "201~";
constexpr std::string_view EndOfByteIntroducer = "\x9b"
                                                 "201~";

/// The size of the end marker that these bytes end with, 0 if there is none.
std::size_t endMarkerSize(std::string_view bytes)
{
    if (bytes.ends_with(End))
        return End.size();
    if (bytes.ends_with(EndOfUtf8Introducer))
        return EndOfUtf8Introducer.size();
    if (!bytes.ends_with(EndOfByteIntroducer))
        return 0;
    // Behind another byte above 0x7F it is the rest of a character.
    bytes.remove_suffix(EndOfByteIntroducer.size());
    const auto isCharacter = !bytes.empty() && static_cast<unsigned char>(bytes.back()) >= 0x80;
    return isCharacter ? 0 : EndOfByteIntroducer.size();
}

} // namespace

std::string encodePaste(std::string_view text, BracketedPaste bracketed)
{
    const auto inBrackets = bracketed == BracketedPaste::On;
    std::string bytes;
    bytes.reserve(text.size() + Begin.size() + End.size());
    if (inBrackets)
        bytes = Begin;
    const auto start = bytes.size();
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\n') {
            bytes += text[at];
        } else if (at == 0 || text[at - 1] != '\r') {
            bytes += '\r';
        }
        // Markers are taken off as they are completed, so none can be put together from the rest.
        if (inBrackets && text[at] == '~')
            bytes.resize(bytes.size() - endMarkerSize(std::string_view(bytes).substr(start)));
    }
    if (inBrackets)
        bytes += End;
    return bytes;
}

} // namespace Kovalt
