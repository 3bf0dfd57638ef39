#pragma once

#include "Tests/Support/TerminalViewHarness.h"
#include "Views/Terminal/TerminalInput.h"

#include <QPoint>
#include <QTest>

#include <string>
#include <utility>

namespace Bralto {

/// A terminal's view with somebody at keyboard and pointer.
class TerminalInputHarness : public TerminalViewHarness {
public:
    TerminalInputHarness()
    {
        show();
        view->setFocus();
        sent();
    }

    /// What the program was sent since the last call.
    std::string sent() { return std::exchange(panes.process().sent, {}); }
    /// In the left half of a cell.
    [[nodiscard]] QPoint at(int col, int row) const
    {
        return view->geometryOfCells().rect(col, row).topLeft().toPoint() + QPoint(2, 6);
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(view.get(), Qt::Key(key), modifiers);
    }
    [[nodiscard]] const Kovalt::Buffer& buffer() const { return session.terminal().buffer(); }
    [[nodiscard]] std::string selectedText() { return session.selection().text(); }
    [[nodiscard]] TerminalInput& input() const { return view->input(); }
    /// Lines "1" to `count`, each in a row of its own.
    void writeLines(int count)
    {
        for (int i = 1; i <= count; ++i)
            write(std::to_string(i) + "\r\n");
    }
};

} // namespace Bralto
