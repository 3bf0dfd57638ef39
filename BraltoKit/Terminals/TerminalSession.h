#pragma once

#include "Base/Clock.h"
#include "Base/Scheduler.h"
#include "Kovalt/Search/SearchService.h"
#include "Kovalt/Selection/SelectionService.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/TerminalTimer.h"
#include "Terminals/PaneProcess.h"
#include "Terminals/PanelSnapshot.h"
#include "Terminals/ProcessInspector.h"
#include "Terminals/TerminalHost.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace Bralto {

/// One terminal pane's program: a login shell on a pseudo-terminal, and the emulator that shows
/// what it writes. For a Claude pane the agent's command is typed into that shell. It begins when
/// it is made and is over when its shell ends. Main thread.
class TerminalSession final : public QObject,
                              private Kovalt::TerminalDelegate,
                              private Kovalt::LocalProcessDelegate {
    Q_OBJECT

public:
    /// Everything outlives the session.
    struct Services {
        TerminalHost& host;
        ProcessInspector& processes;
        Scheduler& scheduler;
        const Clock& clock;
        /// Makes the process of a pane. It tells the delegate, which outlives it.
        std::function<std::unique_ptr<PaneProcess>(Kovalt::LocalProcessDelegate&)> makeProcess;
    };
    struct Start {
        PaneKind kind = PaneKind::Shell; ///< `Shell` or `Claude`.
        QString directory;
        QString project;
        std::optional<PaneSnapshot> snapshot;
    };
    /// What the view shows text with: programs may ask for the colours, and set them.
    struct Colors {
        Kovalt::BaseColors base;
        Kovalt::Color foreground;
        Kovalt::Color background;
        std::optional<Kovalt::Color> cursor;

        bool operator==(const Colors&) const = default;
    };
    /// The size of the screen, as its view has room for it.
    struct Grid {
        int cols = 80;
        int rows = 25;
        QSize cell; ///< Device pixels; empty until a view knows.

        bool operator==(const Grid&) const = default;
    };

    TerminalSession(const Start& start, Services services);
    ~TerminalSession() override;

    [[nodiscard]] const QString& id() const { return m_id; } ///< A UUID, new at each start.
    [[nodiscard]] PaneKind kind() const { return m_kind; }
    /// The conversation of a Claude pane, in lower case; absent in a plain shell.
    [[nodiscard]] const std::optional<QString>& claudeSessionId() const
    {
        return m_claudeSessionId;
    }
    /// What hooks know the pane by: the conversation, else the session.
    [[nodiscard]] QString paneId() const { return m_claudeSessionId.value_or(m_id); }
    [[nodiscard]] const QString& startDirectory() const { return m_startDirectory; }
    /// Where the shell stands now; where it was started once it has gone.
    [[nodiscard]] QString currentDirectory() const;
    [[nodiscard]] const QString& title() const { return m_title; }
    [[nodiscard]] bool isRunning() const { return m_process->isRunning(); }

    /// The emulator. Read it, but change it by the verbs below only.
    [[nodiscard]] Kovalt::Terminal& terminal() { return m_terminal; }
    [[nodiscard]] const Kovalt::Terminal& terminal() const { return m_terminal; }
    [[nodiscard]] Kovalt::SelectionService& selection() { return m_selection; }
    [[nodiscard]] Kovalt::SearchService& search() { return m_search; }

    /// Bytes for the program, as if typed.
    void send(std::string_view bytes);
    /// Text from the user: line ends as the enter key sends them, in brackets if the program asked
    /// for them.
    void paste(const QString& text);
    void resize(const Grid& grid);
    void setColors(const Colors& colors);
    /// The pane has, or lost, the keyboard.
    void setFocused(bool focused);
    /// Moves the view of the history, in rows of the ring; held within it.
    void scrollTo(int topRow);

    /// Ends what runs under the shell, at the latest after five seconds; then calls `done`, never
    /// in this turn, and not at all once the session has gone.
    void endClaude(std::function<void()> done);
    /// Ends the shell. Neither waits nor tells `ended`.
    void terminate();

    [[nodiscard]] PaneSnapshot snapshot() const;
    /// The recent text of the normal screen, without what a restart writes by itself.
    [[nodiscard]] QString scrollbackText() const;

signals:
    /// There is something else to show. Comes with every piece of output, so look once a frame.
    void changed();
    void titleChanged();
    void colorsChanged();
    void modesChanged(); ///< Mouse reports, cursor shape, focus: what a view asks the modes for.
    void rang();
    /// A program wants the clipboard to hold this.
    void clipboardCopied(const QString& text);
    /// A program wants to tell the user something.
    void notified(const QString& title, const QString& body);
    void ended();

private:
    class Timer;

    // Kovalt::TerminalDelegate
    void setTerminalTitle(Kovalt::Terminal& source, const std::string& title) override;
    void send(Kovalt::Terminal& source, std::span<const std::uint8_t> data) override;
    void sizeChanged(Kovalt::Terminal& source) override;
    void bufferActivated(Kovalt::Terminal& source) override;
    void synchronizedOutputChanged(Kovalt::Terminal& source, bool active) override;
    void bell(Kovalt::Terminal& source) override;
    [[nodiscard]] std::optional<std::pair<int, int>>
    cellSizeInPixels(Kovalt::Terminal& source) override;
    void mouseModeChanged(Kovalt::Terminal& source) override;
    void cursorStyleChanged(Kovalt::Terminal& source, Kovalt::CursorStyle style) override;
    void showCursor(Kovalt::Terminal& source) override;
    void hideCursor(Kovalt::Terminal& source) override;
    void colorChanged(Kovalt::Terminal& source, std::optional<int> index) override;
    void setForegroundColor(Kovalt::Terminal& source, Kovalt::Color color) override;
    void setBackgroundColor(Kovalt::Terminal& source, Kovalt::Color color) override;
    void setCursorColor(Kovalt::Terminal& source, std::optional<Kovalt::Color> color) override;
    void clipboardCopy(Kovalt::Terminal& source, std::span<const std::uint8_t> content) override;
    void notify(Kovalt::Terminal& source, std::string_view title, std::string_view body) override;
    // Kovalt::LocalProcessDelegate
    void processTerminated(Kovalt::LocalProcess& source,
                           std::optional<std::int32_t> exitCode) override;
    void dataReceived(std::span<const std::uint8_t> slice) override;
    winsize getWindowSize() override;

    [[nodiscard]] Kovalt::TerminalOptions options() const;
    void replay(const QString& scrollback);
    void startShell(const QString& project);
    void awaitChildren(int round, const std::function<void()>& done);
    void finish();

    Services m_services;
    const QString m_id;
    const PaneKind m_kind;
    std::optional<QString> m_claudeSessionId;
    QString m_startDirectory;
    QString m_title;
    Grid m_grid = {};
    std::unique_ptr<Timer> m_timer;
    Kovalt::Terminal m_terminal;
    Kovalt::SelectionService m_selection;
    Kovalt::SearchService m_search;
    std::unique_ptr<PaneProcess> m_process;
    bool m_hasEnded = false;
};

} // namespace Bralto
