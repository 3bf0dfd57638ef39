#pragma once

#include "Kovalt/Selection/SelectionService.h"
#include "Kovalt/Terminal.h"
#include "Terminals/PanelSnapshot.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <variant>

class QMimeData;

/// What goes from a terminal to the clipboard, and from there to its program. Functions over
/// values.
namespace Bralto::TerminalClipboard {

/// A selection of more rows is copied as plain text only.
inline constexpr int MostRichRows = 2000;

/// The selected cells with their colours and weights, as HTML. Empty if nothing is selected.
[[nodiscard]] QString html(const Kovalt::Terminal& terminal, const Kovalt::SelectionService& cells);
/// The selection as plain and as rich text; null if nothing is selected.
[[nodiscard]] std::unique_ptr<QMimeData> copied(const Kovalt::Terminal& terminal,
                                                const Kovalt::SelectionService& cells);

/// What a pane takes of a clipboard or of what was dropped: text for its program, or a picture that
/// has to become a file first.
using Content = std::variant<QString, QImage>;
/// Files are the quoted paths of their names. A picture is taken by an agent only, and only where
/// there is no text. None if there is nothing for a terminal.
[[nodiscard]] std::optional<Content> content(const QMimeData& data, PaneKind kind);
/// Words for a shell, with a blank behind them.
[[nodiscard]] QString words(const QStringList& paths);

/// Whether the user is asked first: the text has line ends, and the program, on the normal screen,
/// can't tell pasted text from typed.
[[nodiscard]] bool needsWarning(const QString& text, const Kovalt::Terminal& terminal);

/// Writes a picture into a folder of this run, which goes with it. None if that fails. Any thread.
[[nodiscard]] std::optional<QString> savePicture(const QImage& picture);

} // namespace Bralto::TerminalClipboard
