#include "Views/Terminal/TerminalClipboard.h"

#include "Base/ShellQuote.h"
#include "Kovalt/LogicalLine.h"
#include "Views/Chat/ChatAttachments.h"
#include "Views/Terminal/TerminalPalette.h"

#include <QColor>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUuid>

#include <algorithm>
#include <string>

namespace Bralto::TerminalClipboard {

namespace {

using Kovalt::CharacterStyle::Bold;
using Kovalt::CharacterStyle::CrossedOut;
using Kovalt::CharacterStyle::Invisible;
using Kovalt::CharacterStyle::Italic;

QString hex(QRgb color)
{
    return QColor::fromRgb(color).name();
}

/// What a text looks like beyond the ground that all of it stands on.
QString css(const Kovalt::Attribute& attribute, const TerminalPalette& palette)
{
    const TerminalPalette::Inks inks = palette.inks(attribute);
    QString css;
    if (inks.text != palette.text())
        css += QStringLiteral("color:%1;").arg(hex(inks.text));
    if (inks.ground != palette.ground())
        css += QStringLiteral("background-color:%1;").arg(hex(inks.ground));
    if (attribute.has(Bold))
        css += QStringLiteral("font-weight:bold;");
    if (attribute.has(Italic))
        css += QStringLiteral("font-style:italic;");
    QStringList lines;
    if (attribute.underlineStyle != Kovalt::UnderlineStyle::None)
        lines.append(QStringLiteral("underline"));
    if (attribute.has(CrossedOut))
        lines.append(QStringLiteral("line-through"));
    if (!lines.isEmpty())
        css += QStringLiteral("text-decoration:%1;").arg(lines.join(u' '));
    return css;
}

/// Appends the cells of one row, a span for each run that looks the same.
void appendRow(QString& html, const Kovalt::Terminal& terminal, const TerminalPalette& palette,
               int row, Kovalt::ColumnRange columns)
{
    const Kovalt::Buffer& buffer = terminal.buffer();
    const auto cellAt = [&](int col) { return buffer.getCharAtBufferRelative({col, row}); };
    for (int col = columns.begin; col < columns.end;) {
        const Kovalt::Attribute attribute = cellAt(col).attribute;
        std::string text;
        for (; col < columns.end && cellAt(col).attribute == attribute; ++col) {
            const Kovalt::CharData cell = cellAt(col);
            if (cell.width == 0)
                continue;
            terminal.graphemes().appendText(text, attribute.has(Invisible) ? 0 : cell.code);
        }
        const QString escaped = QString::fromStdString(text).toHtmlEscaped();
        const QString style = css(attribute, palette);
        html += style.isEmpty()
                    ? escaped
                    : QStringLiteral("<span style=\"%1\">%2</span>").arg(style, escaped);
    }
}

const QTemporaryDir& pictureFolder()
{
    static const QTemporaryDir folder;
    return folder;
}

} // namespace

QString html(const Kovalt::Terminal& terminal, const Kovalt::SelectionService& cells)
{
    const auto selection = cells.selection();
    if (!selection)
        return {};
    const Kovalt::Buffer& buffer = terminal.buffer();
    const TerminalPalette palette(terminal.colors(), terminal.modes().reverseColors);
    const int first = int(selection->range.begin.row - buffer.linesTop);
    const int last = int(selection->lastRow() - buffer.linesTop);
    QString html = QStringLiteral("<pre style=\"color:%1;background-color:%2;"
                                  "font-family:monospace;\">")
                       .arg(hex(palette.text()), hex(palette.ground()));
    for (int row = first; row <= last; ++row) {
        const bool goesOn = !selection->isBlock() && Kovalt::LogicalLine::continues(buffer, row);
        if (row > first && !goesOn)
            html += u'\n';
        Kovalt::ColumnRange columns = cells.columnsInRow(row);
        const bool isWrapped =
            !selection->isBlock() && Kovalt::LogicalLine::continues(buffer, row + 1);
        if (!isWrapped)
            columns.end =
                std::min(columns.end, Kovalt::LogicalLine::lengthWithoutBlanks(buffer, row));
        appendRow(html, terminal, palette, row, columns);
    }
    return html + QStringLiteral("</pre>");
}

std::unique_ptr<QMimeData> copied(const Kovalt::Terminal& terminal,
                                  const Kovalt::SelectionService& cells)
{
    const auto selection = cells.selection();
    if (!selection)
        return nullptr;
    auto data = std::make_unique<QMimeData>();
    data->setText(QString::fromStdString(cells.text()));
    if (selection->lastRow() - selection->range.begin.row < MostRichRows)
        data->setHtml(html(terminal, cells));
    return data;
}

QString words(const QStringList& paths)
{
    return paths.isEmpty() ? QString() : ShellQuote::joined(paths) + u' ';
}

std::optional<Content> content(const QMimeData& data, PaneKind kind)
{
    const ChatAttachments::Source source = ChatAttachments::read(data);
    if (!source.paths.isEmpty())
        return words(source.paths);
    if (data.hasText() && !data.text().isEmpty())
        return data.text();
    if (kind == PaneKind::Claude && !source.image.isNull())
        return source.image;
    return std::nullopt;
}

bool needsWarning(const QString& text, const Kovalt::Terminal& terminal)
{
    if (terminal.modes().bracketedPasteMode || terminal.isAlternateBufferActive())
        return false;
    return text.contains(u'\n') || text.contains(u'\r');
}

std::optional<QString> savePicture(const QImage& picture)
{
    const QTemporaryDir& folder = pictureFolder();
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString path = folder.filePath(QStringLiteral("picture-%1.png").arg(name.left(8)));
    if (!folder.isValid() || !picture.save(path, "PNG"))
        return std::nullopt;
    return path;
}

} // namespace Bralto::TerminalClipboard
