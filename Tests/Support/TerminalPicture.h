#pragma once

#include "Kovalt/Terminal.h"
#include "Views/Terminal/TerminalRows.h"

#include <QImage>
#include <QPainter>

#include <optional>
#include <string_view>
#include <vector>

namespace Bralto {

/// A terminal without a process or a widget, and the picture of it.
class TerminalPicture {
public:
    static constexpr QRgb Ground = 0xFF101010U;
    static constexpr QRgb Text = 0xFFF0F0F0U;

    explicit TerminalPicture(int cols = 20, int rows = 4, TerminalFonts::Face face = {},
                             std::optional<int> scrollback = 500)
        : terminal(nullptr, options(cols, rows, scrollback))
        , painter(TerminalFonts::shared(face))
        , source{.terminal = terminal}
    {
        terminal.setSilentLog(true);
        terminal.setForegroundColor(Kovalt::Color::fromBytes(0xF0, 0xF0, 0xF0));
        terminal.setBackgroundColor(Kovalt::Color::fromBytes(0x10, 0x10, 0x10));
        painted.setSize(cols, rows, painter.fonts().cell());
    }

    void feed(std::string_view bytes) { terminal.feed(bytes); }

    /// Paints what changed, and shows all of it.
    QImage image()
    {
        const TerminalPalette palette(terminal.colors(), terminal.modes().reverseColors);
        if (!(palette == painter.palette()))
            painted.forget();
        painter.setPalette(palette);
        changed = painted.refresh(painter, source);
        const QSize cell = painter.fonts().cell();
        QImage result(cell.width() * terminal.cols(), cell.height() * terminal.rows(),
                      QImage::Format_RGB32);
        result.fill(Qt::magenta);
        QPainter shown(&result);
        painted.draw(shown, {});
        return result;
    }
    /// The part that is one cell, or several.
    QImage cell(int col, int row, int cols = 1)
    {
        const QSize size = painter.fonts().cell();
        return image().copy(col * size.width(), row * size.height(), cols * size.width(),
                            size.height());
    }
    /// How many pixels of a cell have this colour.
    int count(int col, int row, QRgb color)
    {
        const QImage picture = cell(col, row);
        int result = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                result += picture.pixel(x, y) == color;
        }
        return result;
    }
    [[nodiscard]] int pixelsOfCell() const
    {
        return painter.fonts().cell().width() * painter.fonts().cell().height();
    }
    /// The colour in the upper left corner of a cell, where no letter reaches.
    QRgb corner(int col, int row) { return cell(col, row).pixel(0, 0); }

    Kovalt::Terminal terminal;
    TerminalPainter painter;
    TerminalRows painted;
    TerminalRows::Source source;
    std::vector<int> changed; ///< The rows that the last picture showed again.

private:
    static Kovalt::TerminalOptions options(int cols, int rows, std::optional<int> scrollback)
    {
        Kovalt::TerminalOptions result;
        result.cols = cols;
        result.rows = rows;
        result.scrollback = scrollback;
        return result;
    }
};

} // namespace Bralto
