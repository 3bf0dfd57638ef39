// A screen as one JSON object.

#include "Kovalt/ScreenDump.h"

#include "Kovalt/Terminal.h"

#include <cstdio>
#include <string>
#include <utility>

namespace Kovalt::ScreenDump {

namespace {

constexpr const char* CursorStyles[] = {"blinkBlock",      "steadyBlock", "blinkUnderline",
                                        "steadyUnderline", "blinkBar",    "steadyBar"};
constexpr const char* RenderModes[] = {"single", "doubleWidth", "doubledTop", "doubledDown"};
constexpr const char* UnderlineStyles[] = {"none", "single", "double", "curly", "dotted", "dashed"};
constexpr const char* SemanticNames[] = {
    "none",  "promptInitial", "promptRight", "promptContinuation", "promptSecondary",
    "input", "output"};
constexpr const char* MarkKinds[] = {"prompt", "input", "output", "commandEnd"};
constexpr const char* PromptKinds[] = {"initial", "right", "continuation", "secondary"};
constexpr const char* MouseModes[] = {"off", "x10", "vt200", "buttonEventTracking", "anyEvent"};
constexpr const char* MouseProtocols[] = {"x10", "utf8", "sgr", "urxvt", "sgrPixel"};

std::string quoted(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (byte < 0x20 || byte == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof(escaped), "\\u%04x", unsigned(byte));
            result += escaped;
        } else {
            result += c;
        }
    }
    return result += '"';
}

/// Builds an object or a list, one member after the other.
class Json {
public:
    void add(const char* name, const std::string& value)
    {
        separate();
        m_text += quoted(name) + ":" + value;
    }
    void add(const char* name, int value) { add(name, std::to_string(value)); }
    void add(const char* name, bool value) { add(name, std::string(value ? "true" : "false")); }
    void addText(const char* name, std::string_view value) { add(name, quoted(value)); }
    /// Only if there is something to tell.
    void addSet(const char* name, bool value)
    {
        if (value)
            add(name, value);
    }
    void addItem(const std::string& value)
    {
        separate();
        m_text += value;
    }
    [[nodiscard]] std::string object() const { return "{" + m_text + "}"; }
    [[nodiscard]] std::string list() const { return "[" + m_text + "]"; }

private:
    void separate()
    {
        if (!m_text.empty())
            m_text += ',';
    }
    std::string m_text;
};

void addColor(Json& json, const char* name, const CellColor& color)
{
    using Kind = CellColor::Kind;
    char text[8];
    if (color.kind == Kind::Ansi256) {
        json.add(name, int(color.red));
    } else if (color.kind == Kind::TrueColor) {
        std::snprintf(text, sizeof(text), "#%02x%02x%02x", unsigned(color.red),
                      unsigned(color.green), unsigned(color.blue));
        json.addText(name, text);
    } else if (color.kind == Kind::DefaultInverted) {
        json.addText(name, "inverted");
    }
}

void addLook(Json& json, const CharData& cell)
{
    const Attribute& look = cell.attribute;
    addColor(json, "fg", look.fg);
    addColor(json, "bg", look.bg);
    addColor(json, "underlineColor", look.underlineColor);
    json.addSet("bold", look.has(CharacterStyle::Bold));
    json.addSet("dim", look.has(CharacterStyle::Dim));
    json.addSet("italic", look.has(CharacterStyle::Italic));
    json.addSet("blink", look.has(CharacterStyle::Blink));
    json.addSet("inverse", look.has(CharacterStyle::Inverse));
    json.addSet("invisible", look.has(CharacterStyle::Invisible));
    json.addSet("crossedOut", look.has(CharacterStyle::CrossedOut));
    if (look.has(CharacterStyle::Underline))
        json.addText("underline", UnderlineStyles[static_cast<int>(look.underlineStyle)]);
    if (cell.semantic != SemanticCode::None)
        json.addText("semantic", SemanticNames[static_cast<int>(cell.semantic)]);
    if (const auto target = TinyAtom::target(cell.payload))
        json.addText("link", *target);
}

bool looksLike(const CharData& one, const CharData& other)
{
    return one.attribute == other.attribute && one.payload == other.payload &&
           one.semantic == other.semantic && (one.code == 0) == (other.code == 0) &&
           one.width == other.width;
}

/// The cells from `from` to `to`, which all look like the first; `width` is that of each of them.
std::string runOf(const Terminal& terminal, const BufferLine& line, int from, int to)
{
    const CharData first = line[from];
    std::string text;
    for (int column = from; column < to; ++column) {
        if (line[column].code != 0)
            terminal.graphemes().appendText(text, line[column].code);
    }
    Json run;
    run.add("column", from);
    run.add("count", (to - from) / (first.width == 2 ? 2 : 1));
    run.add("width", int(first.width));
    if (first.code != 0)
        run.addText("text", text);
    addLook(run, first);
    return run.object();
}

std::string cellsOf(const Terminal& terminal, const BufferLine& line)
{
    Json cells;
    for (int column = 0; column < line.size();) {
        const CharData first = line[column];
        const int step = first.width == 2 ? 2 : 1;
        int end = column + step;
        while (end < line.size() && looksLike(first, line[end]))
            end += step;
        end = std::min(end, line.size());
        if (!first.isNull())
            cells.addItem(runOf(terminal, line, column, end));
        column = end;
    }
    return cells.list();
}

std::string marksOf(const BufferLine& line)
{
    Json marks;
    for (const SemanticMark& mark : line.semanticMarks()) {
        Json one;
        one.addText("kind", MarkKinds[static_cast<int>(mark.kind)]);
        if (mark.kind == SemanticMark::Kind::Prompt)
            one.addText("prompt", PromptKinds[static_cast<int>(mark.prompt)]);
        one.add("column", mark.column);
        one.add("group", std::to_string(mark.group));
        marks.addItem(one.object());
    }
    return marks.list();
}

std::string rowOf(const Terminal& terminal, const BufferLine& line)
{
    BufferLine::TextRange whole;
    whole.trimRight = true;
    Json row;
    row.addText("text", line.translateToString(terminal.graphemes(), whole));
    row.addSet("wrapped", line.isWrapped());
    if (line.renderMode() != RenderLineMode::Single)
        row.addText("renderMode", RenderModes[static_cast<int>(line.renderMode())]);
    row.add("cells", cellsOf(terminal, line));
    if (!line.semanticMarks().empty())
        row.add("marks", marksOf(line));
    return row.object();
}

std::string cursorOf(const Terminal& terminal)
{
    Json cursor;
    cursor.add("column", terminal.getCursorLocation().col);
    cursor.add("row", terminal.getCursorLocation().row);
    cursor.add("hidden", terminal.modes().cursorHidden);
    cursor.addText("style", CursorStyles[static_cast<int>(terminal.cursorStyle())]);
    return cursor.object();
}

std::string modesOf(const Terminal& terminal)
{
    const TerminalModes& modes = terminal.modes();
    Json json;
    json.add("applicationCursor", modes.applicationCursor);
    json.add("applicationKeypad", modes.applicationKeypad);
    json.add("reverseColors", modes.reverseColors);
    json.add("cursorBlink", modes.cursorBlink);
    json.add("originMode", modes.originMode);
    json.add("marginMode", modes.marginMode);
    json.add("insertMode", modes.insertMode);
    json.add("wraparound", modes.wraparound);
    json.add("reverseWraparound", modes.reverseWraparound);
    json.add("lineFeedMode", modes.lineFeedMode);
    json.add("smoothScroll", modes.smoothScroll);
    json.add("allow80To132", modes.allow80To132);
    json.add("bracketedPasteMode", modes.bracketedPasteMode);
    json.add("alternateScrollMode", modes.alternateScrollMode);
    json.add("sendFocus", modes.sendFocus);
    json.add("bidiArrowKeySwap", modes.bidiArrowKeySwap);
    json.add("mouseShiftCapture", modes.mouseShiftCapture);
    json.addText("mouseMode", MouseModes[static_cast<int>(modes.mouseMode)]);
    json.addText("mouseProtocol", MouseProtocols[static_cast<int>(modes.mouseProtocol)]);
    json.add("conformance", static_cast<int>(modes.conformance) + 1);
    json.add("send8bit", modes.controlForm == ControlForm::EightBit);
    json.add("synchronizedOutput", terminal.isSynchronizedOutputActive());
    json.add("keyboardFlags", int(terminal.keyboardMode().flags().bits()));
    return json.object();
}

} // namespace

std::string json(const Terminal& terminal, Range range)
{
    const Buffer& buffer = terminal.buffer();
    Json rows;
    for (int row = range == Range::Screen ? buffer.yBase : 0; row < buffer.lines().count(); ++row)
        rows.addItem("\n" + rowOf(terminal, buffer.lines()[row]));

    Json margins;
    margins.add("top", buffer.scrollTop);
    margins.add("bottom", buffer.scrollBottom);
    margins.add("left", buffer.marginLeft);
    margins.add("right", buffer.marginRight);

    Json screen;
    screen.add("cols", terminal.cols());
    screen.add("rows", terminal.rows());
    screen.add("history", buffer.yBase);
    screen.addText("buffer", terminal.isAlternateBufferActive() ? "alternate" : "normal");
    screen.add("cursor", cursorOf(terminal));
    screen.addText("title", terminal.titles().terminalTitle);
    screen.addText("iconTitle", terminal.titles().iconTitle);
    screen.add("modes", modesOf(terminal));
    screen.add("margins", margins.object());
    if (const auto& directory = terminal.hostCurrentDirectory())
        screen.addText("currentDirectory", *directory);
    screen.add("lines", rows.list());
    return screen.object() + "\n";
}

} // namespace Kovalt::ScreenDump
