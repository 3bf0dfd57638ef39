// The window around the terminal, and its titles.

#include "Kovalt/Hex.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/Utf8.h"

#include <algorithm>

namespace Kovalt {

namespace {

using Kind = WindowManipulationCommand::Kind;

/// What follows the first parameter of a list.
constexpr int Any = -1; ///< A value for the command.
constexpr int End = -2; ///< Nothing.

/// A list of parameters that is matched whole.
struct WindowRow {
    int operation;
    int second;
    int third;
    Kind kind;
};

constexpr WindowRow WindowTable[] = {
    {1, End, End, Kind::DeiconifyWindow},
    {2, End, End, Kind::IconifyWindow},
    {3, Any, Any, Kind::MoveWindowTo},
    {4, Any, Any, Kind::ResizeWindowTo},
    {5, End, End, Kind::BringToFront},
    {6, End, End, Kind::SendToBack},
    {7, End, End, Kind::RefreshWindow},
    {8, Any, Any, Kind::ResizeTo},
    {9, 0, End, Kind::RestoreMaximizedWindow},
    {9, 1, End, Kind::MaximizeWindow},
    {9, 2, End, Kind::MaximizeWindowVertically},
    {9, 3, End, Kind::MaximizeWindowHorizontally},
    {10, 0, End, Kind::UndoFullScreen},
    {10, 1, End, Kind::SwitchToFullScreen},
    {10, 2, End, Kind::ToggleFullScreen},
    {11, End, End, Kind::ReportTerminalState},
    {13, End, End, Kind::ReportTerminalPosition},
    {13, 2, End, Kind::ReportTextAreaPosition},
    {14, End, End, Kind::ReportTextAreaPixelDimension},
    {14, 2, End, Kind::ReportTerminalWindowPixelDimension},
    {15, End, End, Kind::ReportSizeOfScreenInPixels},
    {16, End, End, Kind::ReportCellSizeInPixels},
    {18, End, End, Kind::ReportTextAreaCharacters},
    {19, End, End, Kind::ReportScreenSizeCharacters},
    {20, End, End, Kind::ReportIconLabel},
    {21, End, End, Kind::ReportWindowTitle},
};

/// From here on a single parameter is the number of a page's lines (DECSLPP).
constexpr int FewestPageLines = 24;
constexpr int PushTitle = 22;
constexpr int PopTitle = 23;

bool matches(const WindowRow& row, std::span<const std::int32_t> parameters)
{
    const int expected[] = {row.operation, row.second, row.third};
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const bool isThere = i < parameters.size();
        if (expected[i] == End)
            return !isThere;
        if (!isThere || (expected[i] != Any && expected[i] != parameters[i]))
            return false;
    }
    return parameters.size() == std::size(expected);
}

WindowManipulationCommand commandOf(const WindowRow& row, std::span<const std::int32_t> parameters)
{
    WindowManipulationCommand command{row.kind, 0, 0};
    if (row.second == Any) {
        command.first = parameters[1];
        command.second = parameters[2];
    }
    // The list names rows first, the command columns.
    if (row.kind == Kind::ResizeTo)
        std::swap(command.first, command.second);
    return command;
}

void pushBounded(std::vector<std::string>& stack, const std::string& title)
{
    if (stack.size() >= TitleState::MaximumStack)
        stack.erase(stack.begin());
    stack.push_back(title);
}

std::optional<std::string> popped(std::vector<std::string>& stack)
{
    if (stack.empty())
        return std::nullopt;
    std::string title = std::move(stack.back());
    stack.pop_back();
    return title;
}

} // namespace

void Terminal::cmdWindowOptions(const CsiSequence& sequence)
{
    const auto parameters = sequence.parameters;
    const auto row = std::find_if(std::begin(WindowTable), std::end(WindowTable),
                                  [&](const WindowRow& r) { return matches(r, parameters); });
    if (row != std::end(WindowTable)) {
        const auto command = commandOf(*row, parameters);
        const auto reply = m_delegate ? m_delegate->windowCommand(*this, command) : std::nullopt;
        if (reply)
            sendResponse(*reply);
        else
            reportWindow(command.kind);
        return;
    }
    if (parameters.size() == 1 && parameters[0] >= FewestPageLines)
        return requestSize(m_cols, parameters[0]);
    const bool isTitle = parameters.size() == 2 && parameters[1] <= 2;
    if (isTitle && parameters[0] == PushTitle)
        pushTitles(parameters[1] != 2, parameters[1] != 1);
    else if (isTitle && parameters[0] == PopTitle)
        popTitles(parameters[1] != 2, parameters[1] != 1);
    else
        log({"Unhandled Window command: ", describe(parameters)});
}

void Terminal::requestSize(int cols, int rows)
{
    if (m_delegate)
        (void)m_delegate->windowCommand(*this, {Kind::ResizeTo, cols, rows});
}

void Terminal::reportWindow(WindowManipulationCommand::Kind kind)
{
    constexpr std::pair<int, int> UnknownCell = {10, 16};
    const auto cell = m_delegate ? m_delegate->cellSizeInPixels(*this) : std::nullopt;
    const auto [cellWidth, cellHeight] = cell.value_or(UnknownCell);
    const auto sendSize = [this](int what, int height, int width) {
        sendCsi(std::to_string(what) + ';' + std::to_string(height) + ';' + std::to_string(width) +
                't');
    };
    switch (kind) {
    case Kind::ReportTextAreaPixelDimension:
    case Kind::ReportTerminalWindowPixelDimension:
        return sendSize(4, cellHeight * m_rows, cellWidth * m_cols);
    case Kind::ReportSizeOfScreenInPixels:
        return sendSize(5, cellHeight * m_rows, cellWidth * m_cols);
    case Kind::ReportCellSizeInPixels:
        return sendSize(6, cellHeight, cellWidth);
    case Kind::ReportTextAreaCharacters:
        return sendSize(8, m_rows, m_cols);
    case Kind::ReportScreenSizeCharacters:
        return sendSize(9, m_rows, m_cols);
    case Kind::ReportIconLabel:
        return sendOsc('L' + titleReport(m_titles.iconTitle));
    case Kind::ReportWindowTitle:
        return sendOsc('l' + titleReport(m_titles.terminalTitle));
    default:
        return;
    }
}

std::string Terminal::titleReport(const std::string& title) const
{
    const auto clean = Utf8::withoutControls(title);
    return m_titles.queryHex ? Hex::encode(clean) : clean;
}

void Terminal::pushTitles(bool icon, bool window)
{
    if (window)
        pushBounded(m_titles.terminalTitleStack, m_titles.terminalTitle);
    if (icon)
        pushBounded(m_titles.terminalIconStack, m_titles.iconTitle);
}

void Terminal::popTitles(bool icon, bool window)
{
    if (window)
        if (auto title = popped(m_titles.terminalTitleStack))
            setTitle(std::move(*title));
    if (icon)
        if (auto title = popped(m_titles.terminalIconStack))
            setIconTitle(std::move(*title));
}

void Terminal::setTitle(std::string text)
{
    m_titles.terminalTitle = std::move(text);
    if (m_delegate)
        m_delegate->setTerminalTitle(*this, m_titles.terminalTitle);
}

void Terminal::setIconTitle(std::string text)
{
    m_titles.iconTitle = std::move(text);
    if (m_delegate)
        m_delegate->setTerminalIconTitle(*this, m_titles.iconTitle);
}

void Terminal::cmdSetTitleModes(const CsiSequence& sequence, bool on)
{
    for (const std::int32_t mode : sequence.parameters) {
        if (mode == 0)
            m_titles.setHex = on;
        else if (mode == 1)
            m_titles.queryHex = on;
        else if (mode == 2)
            m_titles.setUtf = on;
        else if (mode == 3)
            m_titles.queryUtf = on;
    }
}

} // namespace Kovalt
