#pragma once

#include "Tests/Support/FakePanes.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Terminal/TerminalScrollBar.h"
#include "Views/Terminal/TerminalView.h"

#include <QEventLoop>
#include <QPaintEvent>

#include <string_view>

namespace Bralto {

/// A terminal's view on a session whose program does what a test says.
class TerminalViewHarness {
public:
    explicit TerminalViewHarness(const QSize& size = {24 + 40 * 7 + 3, 10 + 10 * 18 + 5})
        : services(views.openProject())
        , session({PaneKind::Shell, "/", "/", std::nullopt}, panes.sessionServices())
        , view(std::make_unique<TerminalView>(services, session))
    {
        view->resize(size);
    }

    void show()
    {
        view->show();
        view->activateWindow();
        settle();
    }
    void write(std::string_view bytes) { panes.process().write(bytes); }

    /// Lets events run until no frame is due.
    void settle() const
    {
        do {
            ViewHarness::settle();
            if (view->pacer().isWaiting())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        } while (view->pacer().isWaiting());
        ViewHarness::settle();
    }
    /// What the view shows, without asking it to paint anew.
    [[nodiscard]] QImage picture() const { return view->grab().toImage(); }
    /// The colour in the upper left corner of a cell.
    [[nodiscard]] QRgb corner(int col, int row) const
    {
        const QRectF cell = view->geometryOfCells().rect(col, row);
        return picture().pixel(cell.topLeft().toPoint());
    }

    PaneMaker panes;
    ViewHarness views;
    ViewServices services;
    TerminalSession session;
    std::unique_ptr<TerminalView> view;
};

/// What a widget was asked to paint.
class PaintedRegions final : public QObject {
public:
    explicit PaintedRegions(QWidget& widget) { widget.installEventFilter(this); }

    int events = 0;
    QRegion region;
    void clear()
    {
        events = 0;
        region = {};
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++events;
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
};

} // namespace Bralto
