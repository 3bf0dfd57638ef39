#include "Kovalt/SpecialColors.h"

#include "Kovalt/Ascii.h"
#include "Kovalt/Terminal.h"

namespace Kovalt {

namespace {

constexpr int PaletteCode = 4;
constexpr int StyleCode = 5;
constexpr int FirstPartCode = 13;
/// What is added to the code of a colour that is set in the one that takes it back.
constexpr int Reset = 100;
constexpr int ForegroundCode = 10;
constexpr int BackgroundCode = 11;
/// The palette's entry of the first style.
constexpr std::size_t FirstStyleEntry = 256;

std::optional<std::size_t> numberOf(std::string_view text)
{
    const auto number = parseDecimal(Ascii::bytes(text));
    return number && *number >= 0 ? std::optional(std::size_t(*number)) : std::nullopt;
}

bool isStyleEntry(std::optional<std::size_t> entry)
{
    return entry && *entry >= FirstStyleEntry &&
           *entry < FirstStyleEntry + SpecialColors::StyleCount;
}

bool isOfBackground(std::size_t part)
{
    using Part = SpecialColors::Part;
    const auto which = static_cast<Part>(part);
    return which == Part::PointerBackground || which == Part::DrawingBackground ||
           which == Part::SelectionForeground;
}

} // namespace

SpecialColors::SpecialColors(Terminal& terminal)
    : m_terminal(terminal)
    , m_foreground(terminal.colors().foreground)
    , m_background(terminal.colors().background)
{
    const auto handle = [this](int code, auto handler) {
        m_terminal.registerOscHandler(code, std::move(handler));
    };
    handle(PaletteCode, [this](Data data) { changePalette(data); });
    handle(PaletteCode + Reset, [this](Data data) { resetPalette(data); });
    handle(StyleCode, [this](Data data) { changeStyles(data); });
    handle(StyleCode + Reset, [this](Data data) { resetStyles(data); });
    for (std::size_t part = 0; part < PartCount; ++part) {
        const int code = FirstPartCode + int(part);
        handle(code, [this, part](Data data) { changeParts(part, data); });
        handle(code + Reset, [this, part](Data) { m_parts[part].reset(); });
    }
    const auto takeBack = [this](int code, Color color) {
        m_terminal.performOsc(code, Ascii::bytes(Colors::formatAsXcolor(color)));
    };
    handle(ForegroundCode + Reset,
           [this, takeBack](Data) { takeBack(ForegroundCode, m_foreground); });
    handle(BackgroundCode + Reset,
           [this, takeBack](Data) { takeBack(BackgroundCode, m_background); });
}

SpecialColors::~SpecialColors()
{
    for (const int code : {PaletteCode, StyleCode, ForegroundCode, BackgroundCode}) {
        m_terminal.registerOscHandler(code + Reset, nullptr);
        if (code == PaletteCode || code == StyleCode)
            m_terminal.registerOscHandler(code, nullptr);
    }
    for (int part = 0; part < int(PartCount); ++part) {
        m_terminal.registerOscHandler(FirstPartCode + part, nullptr);
        m_terminal.registerOscHandler(FirstPartCode + part + Reset, nullptr);
    }
}

/// Pairs of an entry and a colour, of which the terminal knows the first 256 entries.
void SpecialColors::changePalette(Data data)
{
    auto rest = Ascii::view(data);
    while (!rest.empty()) {
        const auto pair = rest;
        const auto entry = Ascii::takeField(rest, ';');
        const auto specification = Ascii::takeField(rest, ';');
        const auto number = numberOf(entry);
        if (isStyleEntry(number))
            changeStyle("4;" + std::string(entry), *number - FirstStyleEntry, specification);
        else
            m_terminal.performOsc(
                PaletteCode, Ascii::bytes(pair.substr(0, entry.size() + 1 + specification.size())));
    }
}

void SpecialColors::resetPalette(Data data)
{
    bool wasStyle = false;
    for (auto rest = Ascii::view(data); !rest.empty();) {
        const auto number = numberOf(Ascii::takeField(rest, ';'));
        if (!isStyleEntry(number))
            continue;
        m_styles[*number - FirstStyleEntry].reset();
        wasStyle = true;
    }
    // A list that has styles in it may have others too, but not one that means all of them.
    if (!wasStyle || data.size() > std::string_view("256").size())
        m_terminal.performOsc(PaletteCode + Reset, data);
}

void SpecialColors::changeStyles(Data data)
{
    auto rest = Ascii::view(data);
    while (!rest.empty()) {
        const auto name = Ascii::takeField(rest, ';');
        const auto specification = Ascii::takeField(rest, ';');
        if (const auto style = numberOf(name); style && *style < StyleCount)
            changeStyle("5;" + std::string(name), *style, specification);
    }
}

void SpecialColors::resetStyles(Data data)
{
    auto rest = Ascii::view(data);
    if (rest.empty())
        m_styles = {};
    while (!rest.empty()) {
        if (const auto style = numberOf(Ascii::takeField(rest, ';')); style && *style < StyleCount)
            m_styles[*style].reset();
    }
}

void SpecialColors::changeStyle(std::string_view report, std::size_t style,
                                std::string_view specification)
{
    if (specification == "?")
        m_terminal.sendOsc(
            std::string(report) + ';' +
            Colors::formatAsXcolor(m_styles[style].value_or(m_terminal.colors().foreground)));
    else if (const auto color = Colors::parseColor(specification))
        m_styles[style] = *color;
}

/// One colour for each of the parts, from the first on.
void SpecialColors::changeParts(std::size_t first, Data data)
{
    auto rest = Ascii::view(data);
    for (std::size_t part = first; part < PartCount && !rest.empty(); ++part) {
        const auto specification = Ascii::takeField(rest, ';');
        const auto& colors = m_terminal.colors();
        const Color usual = isOfBackground(part) ? colors.background : colors.foreground;
        if (specification == "?")
            m_terminal.sendOsc(std::to_string(FirstPartCode + int(part)) + ';' +
                               Colors::formatAsXcolor(m_parts[part].value_or(usual)));
        else if (const auto color = Colors::parseColor(specification))
            m_parts[part] = *color;
    }
}

} // namespace Kovalt
