// Which graphic sets the bytes below 0x80 mean.

#include "Kovalt/Terminal.h"

namespace Kovalt {

void Terminal::setgLevel(int level)
{
    m_charsets.gLevel = static_cast<std::uint8_t>(level & 3);
}

void Terminal::setgCharset(int index, CharSetId set)
{
    m_charsets.gCharsets[static_cast<std::size_t>(index & 3)] = set;
}

void Terminal::selectCharset(std::uint8_t intermediate, std::uint8_t code)
{
    const auto set = CharSets::forDesignator(code);
    if (!set)
        return;
    switch (intermediate) {
    case '(':
        setgCharset(0, *set);
        break;
    case ')':
    case '-':
        setgCharset(1, *set);
        break;
    case '*':
    case '.':
        setgCharset(2, *set);
        break;
    default:
        setgCharset(3, *set);
    }
}

} // namespace Kovalt
