#include "Terminals/TerminalSession.h"

#include "Base/Paths.h"
#include "Base/Uuid.h"
#include "Kovalt/Ascii.h"
#include "Kovalt/Paste.h"
#include "Terminals/SessionScrollback.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QLoggingCategory>

#include <algorithm>
#include <utility>

#include <sys/wait.h>

namespace Bralto {

namespace {

Q_LOGGING_CATEGORY(terminalLog, "bralto.terminal")

constexpr int EndRounds = 50;
constexpr std::chrono::milliseconds EndRound{100};
constexpr int CannotExecute = 127; ///< How a program ends that could not be executed.

/// What the pane's snapshot says it was, if it was that.
std::optional<QString> conversationOf(const TerminalSession::Start& start)
{
    if (start.kind != PaneKind::Claude)
        return std::nullopt;
    if (start.snapshot && start.snapshot->claudeSessionId)
        return start.snapshot->claudeSessionId->toLower();
    return newUuid();
}

QString directoryOf(const TerminalSession::Start& start)
{
    if (start.snapshot && QFileInfo::exists(start.snapshot->directory))
        return start.snapshot->directory;
    return start.directory;
}

} // namespace

/// The emulator's one timer on the program's scheduler.
class TerminalSession::Timer final : public Kovalt::TerminalTimer {
public:
    Timer(Scheduler& scheduler, QObject* context)
        : m_scheduler(scheduler)
        , m_context(context)
    {
    }

    void start(std::chrono::milliseconds delay, std::function<void()> elapsed) override
    {
        cancel();
        m_call = m_scheduler.after(delay, m_context, std::move(elapsed));
    }
    void cancel() override { m_scheduler.cancel(std::exchange(m_call, 0)); }

private:
    Scheduler& m_scheduler;
    QObject* m_context;
    quint64 m_call = 0;
};

TerminalSession::TerminalSession(const Start& start, Services services)
    : m_services(std::move(services))
    , m_id(newUuid())
    , m_kind(start.kind)
    , m_claudeSessionId(conversationOf(start))
    , m_startDirectory(directoryOf(start))
    , m_timer(std::make_unique<Timer>(m_services.scheduler, this))
    , m_terminal(this, options())
    , m_selection(m_terminal.buffer(), m_terminal.graphemes())
    , m_search(m_terminal.buffer(), m_terminal.graphemes())
{
    m_terminal.setSilentLog(true);
    m_terminal.registerSelection(&m_selection);
    if (start.snapshot && start.snapshot->scrollback && !start.snapshot->scrollback->isEmpty())
        replay(*start.snapshot->scrollback);
    m_services.host.clearAttention(paneId());
    startShell(start.project.isEmpty() ? start.directory : start.project);
}

TerminalSession::~TerminalSession()
{
    m_terminal.unregisterSelection(&m_selection);
}

Kovalt::TerminalOptions TerminalSession::options() const
{
    Kovalt::TerminalOptions options;
    options.cols = m_grid.cols;
    options.rows = m_grid.rows;
    options.scrollback = m_services.host.historyRows();
    options.timer = m_timer.get();
    return options;
}

void TerminalSession::replay(const QString& scrollback)
{
    // There is no process yet: whatever the text asks the terminal, nobody is answered.
    const QString now = SessionScrollback::stamp(QLocale(), m_services.clock.now().toLocalTime());
    const QByteArray text = SessionScrollback::replayed(scrollback, now).toUtf8();
    m_terminal.feed(std::string_view(text.constData(), std::size_t(text.size())));
}

void TerminalSession::startShell(const QString& project)
{
    const QString shell = m_services.host.shell();
    const QString name = Paths::lastComponent(shell);
    m_title = name;
    Kovalt::ProcessStart program;
    program.executable = QFile::encodeName(shell).toStdString();
    program.arguments = {"-l"};
    program.execName = "-" + QFile::encodeName(name).toStdString();
    program.currentDirectory = QFile::encodeName(m_startDirectory).toStdString();
    std::vector<std::string> environment;
    for (const QString& variable : m_services.host.environment(paneId(), project, shell))
        environment.push_back(QFile::encodeName(variable).toStdString());
    program.environment = std::move(environment);

    m_process = m_services.makeProcess(*this);
    m_process->start(program);
    if (!m_process->isRunning()) {
        qCWarning(terminalLog) << "No process for" << shell << "in" << m_startDirectory;
        QMetaObject::invokeMethod(
            this, [this] { finish(); }, Qt::QueuedConnection);
        return;
    }
    if (m_kind != PaneKind::Claude)
        return;
    // A profile of these shells can push the program's folder back in the search path.
    const bool mayPushBack = name == QStringLiteral("bash") || name == QStringLiteral("sh");
    const QString line = (mayPushBack ? QStringLiteral("PATH=\"$BRALTO_BIN:$PATH\" ") : QString()) +
                         m_services.host.claudeCommand(*m_claudeSessionId) + u'\n';
    send(line.toStdString());
}

// --- what the user does

void TerminalSession::send(std::string_view bytes)
{
    m_process->send(Kovalt::Ascii::bytes(bytes));
}

void TerminalSession::paste(const QString& text)
{
    const auto bracketed = m_terminal.modes().bracketedPasteMode ? Kovalt::BracketedPaste::On
                                                                 : Kovalt::BracketedPaste::Off;
    const QByteArray utf8 = text.toUtf8();
    send(Kovalt::encodePaste(std::string_view(utf8.constData(), std::size_t(utf8.size())),
                             bracketed));
}

void TerminalSession::resize(const Grid& grid)
{
    if (grid == m_grid)
        return;
    m_grid = grid;
    m_terminal.resize(grid.cols, grid.rows);
    m_process->updateWindowSize();
    emit changed();
}

void TerminalSession::setColors(const Colors& colors)
{
    m_terminal.installPalette(colors.base);
    m_terminal.setForegroundColor(colors.foreground);
    m_terminal.setBackgroundColor(colors.background);
    m_terminal.setCursorColor(colors.cursor);
}

void TerminalSession::setFocused(bool focused)
{
    m_terminal.setTerminalFocus(focused);
}

void TerminalSession::scrollTo(int topRow)
{
    Kovalt::Buffer& buffer = m_terminal.buffer();
    const int top = std::clamp(topRow, 0, std::max(0, buffer.yBase));
    m_terminal.setUserScrolling(top < buffer.yBase);
    if (top == buffer.yDisp)
        return;
    buffer.yDisp = top;
    emit changed();
}

// --- how it ends

void TerminalSession::endClaude(std::function<void()> done)
{
    const pid_t shell = m_process->pid();
    if (m_process->isRunning() && shell > 0) {
        for (const pid_t child : m_services.processes.childPids(shell))
            m_services.processes.end(child, ProcessInspector::Ending::Ask);
    }
    m_services.scheduler.after(std::chrono::milliseconds(0), this,
                               [this, done = std::move(done)] { awaitChildren(0, done); });
}

void TerminalSession::awaitChildren(int round, const std::function<void()>& done)
{
    const pid_t shell = m_process->pid();
    const bool isRunning = m_process->isRunning() && shell > 0;
    const auto children = isRunning ? m_services.processes.childPids(shell) : std::vector<pid_t>();
    if (children.empty()) {
        done();
        return;
    }
    if (round < EndRounds) {
        m_services.scheduler.after(EndRound, this,
                                   [this, round, done] { awaitChildren(round + 1, done); });
        return;
    }
    for (const pid_t child : children)
        m_services.processes.end(child, ProcessInspector::Ending::Force);
    done();
}

void TerminalSession::terminate()
{
    m_process->terminate();
}

void TerminalSession::finish()
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_services.host.clearAttention(paneId());
    emit ended();
}

void TerminalSession::processTerminated(Kovalt::LocalProcess& /*source*/,
                                        std::optional<std::int32_t> exitCode)
{
    if (exitCode && WIFEXITED(*exitCode) && WEXITSTATUS(*exitCode) == CannotExecute)
        qCWarning(terminalLog) << "The shell ended with" << CannotExecute
                               << "which is how one ends that can't be executed:"
                               << m_services.host.shell();
    finish();
}

// --- what is kept of it

QString TerminalSession::currentDirectory() const
{
    const pid_t shell = m_process->pid();
    if (!m_process->isRunning() || shell <= 0)
        return m_startDirectory;
    return m_services.processes.currentDirectory(shell).value_or(m_startDirectory);
}

PaneSnapshot TerminalSession::snapshot() const
{
    PaneSnapshot snapshot;
    const pid_t shell = m_process->pid();
    const bool isRunning = m_process->isRunning() && shell > 0;
    snapshot.directory = currentDirectory();
    if (m_kind == PaneKind::Claude && isRunning &&
        !m_services.processes.childNames(shell).isEmpty()) {
        snapshot.kind = PaneKind::Claude;
        snapshot.claudeSessionId = m_claudeSessionId;
        return snapshot;
    }
    snapshot.kind = PaneKind::Shell;
    snapshot.scrollback = scrollbackText();
    return snapshot;
}

QString TerminalSession::scrollbackText() const
{
    return SessionScrollback::kept(
        m_terminal.getBufferAsData(Kovalt::Terminal::BufferKind::Normal));
}

// --- what the program does

void TerminalSession::dataReceived(std::span<const std::uint8_t> slice)
{
    m_terminal.feed(slice);
    emit changed();
}

winsize TerminalSession::getWindowSize()
{
    const auto shortened = [](int value) {
        return static_cast<unsigned short>(std::clamp(value, 0, 0xFFFF));
    };
    winsize size{};
    size.ws_row = shortened(m_grid.rows);
    size.ws_col = shortened(m_grid.cols);
    size.ws_xpixel = shortened(std::max(0, m_grid.cell.width()) * m_grid.cols);
    size.ws_ypixel = shortened(std::max(0, m_grid.cell.height()) * m_grid.rows);
    return size;
}

void TerminalSession::setTerminalTitle(Kovalt::Terminal& /*source*/, const std::string& title)
{
    const QString text = QString::fromStdString(title).trimmed();
    if (text.isEmpty() || text == m_title)
        return;
    m_title = text;
    emit titleChanged();
}

void TerminalSession::send(Kovalt::Terminal& /*source*/, std::span<const std::uint8_t> data)
{
    if (m_process)
        m_process->send(data);
}

void TerminalSession::sizeChanged(Kovalt::Terminal& /*source*/)
{
    // The pane decides how wide its text is. The terminal may not be resized while it tells.
    QMetaObject::invokeMethod(
        this, [this] { m_terminal.resize(m_grid.cols, m_grid.rows); }, Qt::QueuedConnection);
}

void TerminalSession::bufferActivated(Kovalt::Terminal& source)
{
    m_selection.setBuffer(source.buffer());
    m_search.setBuffer(source.buffer());
    source.setUserScrolling(false);
    emit modesChanged();
}

void TerminalSession::synchronizedOutputChanged(Kovalt::Terminal& /*source*/, bool active)
{
    // It may end by the clock, when no output tells of a change.
    if (!active)
        emit changed();
}

void TerminalSession::bell(Kovalt::Terminal& /*source*/)
{
    if (m_process)
        emit rang();
}

std::optional<std::pair<int, int>> TerminalSession::cellSizeInPixels(Kovalt::Terminal& /*source*/)
{
    if (m_grid.cell.isEmpty())
        return std::nullopt;
    return std::pair(m_grid.cell.width(), m_grid.cell.height());
}

void TerminalSession::mouseModeChanged(Kovalt::Terminal& /*source*/)
{
    emit modesChanged();
}

void TerminalSession::cursorStyleChanged(Kovalt::Terminal& /*source*/,
                                         Kovalt::CursorStyle /*style*/)
{
    emit modesChanged();
}

void TerminalSession::showCursor(Kovalt::Terminal& /*source*/)
{
    emit modesChanged();
}

void TerminalSession::hideCursor(Kovalt::Terminal& /*source*/)
{
    emit modesChanged();
}

void TerminalSession::colorChanged(Kovalt::Terminal& /*source*/, std::optional<int> /*index*/)
{
    emit colorsChanged();
}

void TerminalSession::setForegroundColor(Kovalt::Terminal& /*source*/, Kovalt::Color /*color*/)
{
    emit colorsChanged();
}

void TerminalSession::setBackgroundColor(Kovalt::Terminal& /*source*/, Kovalt::Color /*color*/)
{
    emit colorsChanged();
}

void TerminalSession::setCursorColor(Kovalt::Terminal& /*source*/,
                                     std::optional<Kovalt::Color> /*color*/)
{
    emit colorsChanged();
}

void TerminalSession::clipboardCopy(Kovalt::Terminal& /*source*/,
                                    std::span<const std::uint8_t> content)
{
    if (m_process)
        emit clipboardCopied(QString::fromUtf8(reinterpret_cast<const char*>(content.data()),
                                               qsizetype(content.size())));
}

void TerminalSession::notify(Kovalt::Terminal& /*source*/, std::string_view title,
                             std::string_view body)
{
    const auto text = [](std::string_view utf8) {
        return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    };
    if (m_process)
        emit notified(text(title), text(body));
}

} // namespace Bralto
