// How the characters to come look.

#include "Kovalt/Terminal.h"

#include <algorithm>
#include <string>

namespace Kovalt {

namespace {

/// The parameters of one sequence, and what stands between them.
class Parameters {
public:
    explicit Parameters(const CsiSequence& sequence)
        : m_values(sequence.parameters)
        , m_separators(sequence.separators)
    {
    }

    [[nodiscard]] std::size_t count() const { return m_values.size(); }
    [[nodiscard]] int operator[](std::size_t index) const { return m_values[index]; }
    /// Whether a colon binds the parameter to the one before it.
    [[nodiscard]] bool isBound(std::size_t index) const
    {
        return index > 0 && index < count() && m_separators[index - 1] == ':';
    }
    /// The parameter behind those that are bound to this one.
    [[nodiscard]] std::size_t groupEnd(std::size_t index) const
    {
        do
            ++index;
        while (isBound(index));
        return index;
    }
    [[nodiscard]] std::uint8_t byteAt(std::size_t index) const
    {
        return std::uint8_t(std::min(m_values[index], 255));
    }
    [[nodiscard]] CellColor rgbAt(std::size_t index) const
    {
        return CellColor::trueColor(byteAt(index), byteAt(index + 1), byteAt(index + 2));
    }

private:
    std::span<const std::int32_t> m_values;
    std::span<const std::uint8_t> m_separators;
};

/// A colour behind 38, 48 or 58. Returns the index of the parameter behind it; of a colour that is
/// not whole only its kind is taken, and nothing changes.
std::size_t parseExtendedColor(const Parameters& parameters, std::size_t start, CellColor& color)
{
    const std::size_t kind = start + 1;
    if (parameters.isBound(kind)) {
        const std::size_t end = parameters.groupEnd(start);
        const std::size_t size = end - kind;
        if (parameters[kind] == 5 && size >= 2)
            color = CellColor::ansi256(parameters.byteAt(kind + 1));
        else if (parameters[kind] == 2 && size >= 4)
            color = parameters.rgbAt(size == 4 ? kind + 1 : kind + 2);
        return end;
    }
    if (kind + 1 < parameters.count() && parameters[kind] == 5) {
        color = CellColor::ansi256(parameters.byteAt(kind + 1));
        return kind + 2;
    }
    if (kind + 3 < parameters.count() && parameters[kind] == 2) {
        color = parameters.rgbAt(kind + 1);
        return kind + 4;
    }
    return parameters.groupEnd(kind);
}

void setUnderline(Attribute& attribute, UnderlineStyle style)
{
    attribute.underlineStyle = style;
    if (style == UnderlineStyle::None)
        attribute.style &= std::uint8_t(~CharacterStyle::Underline);
    else
        attribute.style |= CharacterStyle::Underline;
}

UnderlineStyle underlineStyleOf(int parameter)
{
    switch (parameter) {
    case 0:
        return UnderlineStyle::None;
    case 2:
        return UnderlineStyle::Double;
    case 3:
        return UnderlineStyle::Curly;
    case 4:
        return UnderlineStyle::Dotted;
    case 5:
        return UnderlineStyle::Dashed;
    default:
        return UnderlineStyle::Single;
    }
}

/// The bit that a parameter from 1 to 9 sets, and the one 20 above it clears.
std::uint8_t styleBit(int parameter)
{
    constexpr std::uint8_t Bits[] = {0,
                                     CharacterStyle::Bold,
                                     CharacterStyle::Dim,
                                     CharacterStyle::Italic,
                                     CharacterStyle::Underline,
                                     CharacterStyle::Blink,
                                     0,
                                     CharacterStyle::Inverse,
                                     CharacterStyle::Invisible,
                                     CharacterStyle::CrossedOut};
    return Bits[parameter];
}

/// Carries out a parameter that stands alone. False if it is unknown.
bool applyParameter(Attribute& attribute, int parameter)
{
    const auto within = [parameter](int first, int last) {
        return parameter >= first && parameter <= last;
    };
    const auto indexed = [parameter](int base) {
        return CellColor::ansi256(std::uint8_t(parameter - base));
    };
    if (within(30, 37)) {
        attribute.fg = indexed(30);
    } else if (within(40, 47)) {
        attribute.bg = indexed(40);
    } else if (within(90, 97)) {
        attribute.fg = indexed(90 - 8);
    } else if (within(100, 107)) {
        attribute.bg = indexed(100 - 8);
    } else if (parameter == 0) {
        attribute.resetLooks();
    } else if (parameter == 39) {
        attribute.fg = {};
    } else if (parameter == 49) {
        attribute.bg = {};
    } else if (parameter == 59) {
        attribute.underlineColor = CellColor::none();
    } else if (parameter == 4) {
        setUnderline(attribute, UnderlineStyle::Single);
    } else if (parameter == 21) {
        setUnderline(attribute, UnderlineStyle::Double);
    } else if (parameter == 24) {
        setUnderline(attribute, UnderlineStyle::None);
    } else if (within(1, 9) && styleBit(parameter) != 0) {
        attribute.style |= styleBit(parameter);
    } else if (parameter == 22) {
        attribute.style &= std::uint8_t(~(CharacterStyle::Bold | CharacterStyle::Dim));
    } else if (within(23, 29) && styleBit(parameter - 20) != 0) {
        attribute.style &= std::uint8_t(~styleBit(parameter - 20));
    } else {
        return false;
    }
    return true;
}

} // namespace

void Terminal::cmdSelectGraphicRendition(const CsiSequence& sequence)
{
    if (sequence.parameters.size() == 1 && sequence.parameters[0] == 0) {
        m_curAttr.resetLooks();
        return;
    }
    const Parameters parameters(sequence);
    for (std::size_t i = 0; i < parameters.count();) {
        const int parameter = parameters[i];
        if (parameter == 38) {
            i = parseExtendedColor(parameters, i, m_curAttr.fg);
        } else if (parameter == 48) {
            i = parseExtendedColor(parameters, i, m_curAttr.bg);
        } else if (parameter == 58) {
            i = parseExtendedColor(parameters, i, m_curAttr.underlineColor);
        } else if (parameter == 4 && parameters.isBound(i + 1)) {
            setUnderline(m_curAttr, underlineStyleOf(parameters[i + 1]));
            i = parameters.groupEnd(i);
        } else {
            if (!applyParameter(m_curAttr, parameter) && !m_silentLog)
                log({"Unknown SGR attribute: ", std::to_string(parameter), " ",
                     describe(sequence.parameters)});
            i = parameters.groupEnd(i);
        }
    }
}

} // namespace Kovalt
