// The dialogue with a shell that marks its prompts (OSC 133).

#include "Kovalt/Ascii.h"
#include "Kovalt/SemanticPromptOptions.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/Utf8.h"

#include <algorithm>

namespace Kovalt {

namespace {

SemanticCode promptContent(SemanticPromptKind kind)
{
    switch (kind) {
    case SemanticPromptKind::Initial:
        return SemanticCode::PromptInitial;
    case SemanticPromptKind::Right:
        return SemanticCode::PromptRight;
    case SemanticPromptKind::Continuation:
        return SemanticCode::PromptContinuation;
    case SemanticPromptKind::Secondary:
        return SemanticCode::PromptSecondary;
    }
    return SemanticCode::None;
}

bool isOpen(const SemanticState& state)
{
    return state.activeGroup != 0 &&
           (state.input == SemanticInputState::Prompt || state.input == SemanticInputState::Armed);
}

/// As at the start, but groups go on counting, so that no number is used twice.
void restart(SemanticState& state)
{
    const auto counter = state.groupCounter;
    state = {};
    state.groupCounter = counter;
}

} // namespace

void Terminal::oscSemanticPrompt(std::span<const std::uint8_t> data)
{
    auto fields = Ascii::view(data);
    if (!Utf8::isValid(fields))
        return;
    const auto action = Ascii::takeField(fields, ';');
    if (action.size() != 1)
        return;
    // A shell that says something unknown of its prompt still has one.
    const auto options = parseSemanticPromptOptions(fields).value_or(SemanticPromptOptions());
    switch (action[0]) {
    case 'A':
        freshLine();
        return beginSemanticPrompt(options);
    case 'N':
        return beginSemanticPrompt(options);
    case 'P':
        return continueSemanticPrompt(options);
    case 'B':
        return beginSemanticInput(false);
    case 'I':
        return beginSemanticInput(true);
    case 'C':
        clearEchoedEnterContinuationBeforeOutput();
        return beginSemanticOutput();
    case 'D':
        return endSemanticCommand();
    case 'L':
        return freshLine();
    default:
        return;
    }
}

void Terminal::freshLine()
{
    if (m_buffer->x == 0)
        return;
    cmdCarriageReturn();
    cmdLineFeedBasic();
}

std::int64_t Terminal::cursorRowInHistory() const
{
    return m_buffer->linesTop + m_buffer->yBase + m_buffer->y;
}

bool Terminal::canReuseSemanticGroup(SemanticPromptKind kind) const
{
    const SemanticState& state = m_buffer->semantic;
    if (!isOpen(state))
        return false;
    if (kind != SemanticPromptKind::Initial)
        return true;
    // Another first prompt in the same place is the old one, painted again. Its mark may have been
    // erased with the row, and its row may have another number since the width changed.
    const auto marks = m_buffer->cursorLine().semanticMarks();
    return state.promptStartRow == cursorRowInHistory() ||
           std::any_of(marks.begin(), marks.end(), [&](const SemanticMark& mark) {
               return mark.kind == SemanticMark::Kind::Prompt && mark.group == state.activeGroup &&
                      mark.prompt == SemanticPromptKind::Initial;
           });
}

void Terminal::beginSemanticPromptGroup()
{
    SemanticState& state = m_buffer->semantic;
    restart(state);
    state.activeGroup = ++state.groupCounter;
    state.promptStartRow = cursorRowInHistory();
    m_buffer->cursorLine().setSemanticHardContinuationGroup(std::nullopt);
}

void Terminal::beginSemanticPrompt(const SemanticPromptOptions& options)
{
    if (!canReuseSemanticGroup(options.kind))
        beginSemanticPromptGroup();
    else if (options.kind == SemanticPromptKind::Initial)
        forgetMarksFromCursor();
    applySemanticOptions(options);
    markCurrentSemanticPrompt(options.kind);
}

void Terminal::continueSemanticPrompt(const SemanticPromptOptions& options)
{
    if (!isOpen(m_buffer->semantic))
        beginSemanticPromptGroup();
    applySemanticOptions(options);
    markCurrentSemanticPrompt(options.kind);
}

/// A prompt that is painted again sets its marks again.
void Terminal::forgetMarksFromCursor()
{
    for (int row = m_buffer->y; row < m_rows; ++row)
        m_buffer->screenLine(row).destroySemanticState();
}

void Terminal::applySemanticOptions(const SemanticPromptOptions& options)
{
    SemanticState& state = m_buffer->semantic;
    state.clickMode = options.clickMode.value_or(state.clickMode);
    state.usesSpecialCursorKeys =
        options.usesSpecialCursorKeys.value_or(state.usesSpecialCursorKeys);
}

void Terminal::setSemanticMark(SemanticMark::Kind kind, SemanticPromptKind prompt)
{
    const int column = std::clamp(m_buffer->x, 0, m_cols - 1);
    m_buffer->cursorLine().setSemanticMark({kind, prompt, column, m_buffer->semantic.activeGroup});
}

void Terminal::markCurrentSemanticPrompt(SemanticPromptKind kind)
{
    SemanticState& state = m_buffer->semantic;
    setSemanticMark(SemanticMark::Kind::Prompt, kind);
    state.content = promptContent(kind);
    state.input = SemanticInputState::Prompt;
    state.inputEndsWithLine = false;
}

void Terminal::beginSemanticInput(bool endsWithLine)
{
    SemanticState& state = m_buffer->semantic;
    if (!isOpen(state))
        beginSemanticPromptGroup();
    setSemanticMark(SemanticMark::Kind::Input);
    state.content = SemanticCode::Input;
    state.input = SemanticInputState::Armed;
    state.inputEndsWithLine = endsWithLine;
}

/// The line feed of the enter key came before the shell said that its output begins.
void Terminal::clearEchoedEnterContinuationBeforeOutput()
{
    BufferLine& line = m_buffer->cursorLine();
    const bool goesOn = m_buffer->semantic.activeGroup != 0 &&
                        line.semanticHardContinuationGroup() == m_buffer->semantic.activeGroup;
    if (goesOn && m_buffer->x == 0 && line.getTrimmedLength() == 0)
        line.setSemanticHardContinuationGroup(std::nullopt);
}

void Terminal::beginSemanticOutput()
{
    SemanticState& state = m_buffer->semantic;
    if (state.activeGroup != 0)
        setSemanticMark(SemanticMark::Kind::Output);
    state.content = SemanticCode::Output;
    state.input = SemanticInputState::Submitted;
    state.inputEndsWithLine = false;
}

void Terminal::endSemanticCommand()
{
    if (m_buffer->semantic.activeGroup != 0)
        setSemanticMark(SemanticMark::Kind::CommandEnd);
    restart(m_buffer->semantic);
}

void Terminal::finishSemanticLineAdvance()
{
    SemanticState& state = m_buffer->semantic;
    if (!isOpen(state))
        return;
    BufferLine& line = m_buffer->cursorLine();
    if (line.isWrapped())
        return;
    if (state.inputEndsWithLine)
        return beginSemanticOutput();
    line.setSemanticHardContinuationGroup(state.activeGroup);
}

void Terminal::resetSemanticPromptState(bool clearingScreenMarks)
{
    restart(m_buffer->semantic);
    if (!clearingScreenMarks)
        return;
    for (int row = 0; row < m_rows; ++row)
        m_buffer->screenLine(row).destroySemanticState();
}

void Terminal::semanticNoteAlternateScreenSwitch()
{
    // The prompt of the normal screen waits until its program is back; a program on the alternate
    // screen finds and leaves nothing.
    restart(m_altBuffer.semantic);
}

} // namespace Kovalt
