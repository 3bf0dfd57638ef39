#include "Views/Terminal/TerminalChords.h"

#include <QKeySequence>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace Bralto::TerminalChords {

namespace {

using Shortcuts::Command;

constexpr auto ChordModifiers =
    Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

using Chord = std::pair<int, Command>;

const std::vector<Chord>& chords()
{
    static const std::vector<Chord> all = [] {
        std::vector<Chord> made;
        for (const Shortcuts::Entry& entry : Shortcuts::all()) {
            const QKeySequence keys(QString::fromLatin1(entry.terminalKeys),
                                    QKeySequence::PortableText);
            if (!keys.isEmpty())
                made.emplace_back(keys[0].toCombined(), entry.command);
        }
        return made;
    }();
    return all;
}

std::optional<Command> find(int key, Qt::KeyboardModifiers modifiers)
{
    const int combined = QKeyCombination(modifiers, Qt::Key(key)).toCombined();
    const auto found = std::ranges::find(chords(), combined, &Chord::first);
    return found == chords().end() ? std::nullopt : std::optional(found->second);
}

/// The toolkit names a key by its capital letter.
int keyOf(char32_t character)
{
    return int(QChar::toUpper(character));
}

} // namespace

std::optional<Command> command(const TerminalKeyPress& press)
{
    const Qt::KeyboardModifiers held = press.modifiers & ChordModifiers;
    if (!held)
        return std::nullopt;
    if (press.key == Qt::Key_Backtab)
        return find(Qt::Key_Tab, held | Qt::ShiftModifier);
    if (const auto found = find(press.key, held))
        return found;
    if (press.symbols.plain != 0) {
        if (const auto found = find(keyOf(press.symbols.plain), held))
            return found;
    }
    const bool hasLatinKey = press.symbols.plain > 0 && press.symbols.plain < 0x80;
    if (!hasLatinKey && press.symbols.base != 0) {
        if (const auto found = find(keyOf(press.symbols.base), held))
            return found;
    }
    const bool isSign = press.key > 0x20 && press.key < 0x100 && !QChar::isLetter(uint(press.key));
    if (isSign && held.testFlag(Qt::ShiftModifier))
        return find(press.key, held & ~Qt::ShiftModifier);
    return std::nullopt;
}

bool isOfView(Command command)
{
    using enum Command;
    constexpr std::array Own{Copy,           Paste,          PasteSelection, SelectAll,
                             Find,           ScrollPageUp,   ScrollPageDown, ScrollToTop,
                             ScrollToBottom, PreviousPrompt, NextPrompt};
    return std::ranges::find(Own, command) != Own.end();
}

bool needsHistory(Command command)
{
    using enum Command;
    constexpr std::array Scrolling{ScrollPageUp,   ScrollPageDown, ScrollToTop,
                                   ScrollToBottom, PreviousPrompt, NextPrompt};
    return std::ranges::find(Scrolling, command) != Scrolling.end();
}

} // namespace Bralto::TerminalChords
