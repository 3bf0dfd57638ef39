#include "Session.h"

#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"
#include "Kovalt/Process/ProcessEnvironment.h"
#include "Kovalt/ScreenDump.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace KovaltTool {
namespace {

constexpr int CannotRead = 1;
constexpr int NotFound = 127;
constexpr int TimedOut = 124;
constexpr std::size_t SliceSize = 65536;

std::span<const std::uint8_t> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The file that a shell would run for this name; none if there is none.
std::optional<std::string> find(const std::string& command)
{
    if (command.find('/') != std::string::npos)
        return command;
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string candidate = std::string(rest.substr(0, colon)) + '/' + command;
        if (access(candidate.c_str(), X_OK) == 0 && !std::filesystem::is_directory(candidate))
            return candidate;
        if (colon == std::string_view::npos)
            break;
        rest.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

/// This process's environment with the terminal's own variables in it.
std::vector<std::string> environmentFor(const std::string& term)
{
    std::vector<std::string> lines;
    for (char** line = environ; *line; ++line) {
        const std::string_view text(*line);
        if (!text.starts_with("TERM=") && !text.starts_with("COLORTERM=") &&
            !text.starts_with("COLUMNS=") && !text.starts_with("LINES="))
            lines.emplace_back(text);
    }
    lines.push_back("TERM=" + term);
    lines.emplace_back("COLORTERM=truecolor");
    return lines;
}

int statusOf(std::int32_t waitStatus)
{
    return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

Kovalt::TerminalOptions terminalOptions(const Options& options, Kovalt::TerminalTimer* timer)
{
    Kovalt::TerminalOptions result;
    result.cols = options.cols;
    result.rows = options.rows;
    result.scrollback = options.scrollback;
    result.termName = options.term;
    result.timer = timer;
    return result;
}

} // namespace

Session::Session(const Options& options, std::vector<KeyStep> keys)
    : m_options(options)
    , m_keys(std::move(keys))
    , m_window(options.cols, options.rows)
    , m_terminal(this, terminalOptions(options, this))
    , m_specialColors(m_terminal)
    , m_process(*this, m_loop)
{
    // Standard output is for the screen.
    m_terminal.setSilentLog(true);
    if (options.recordFile)
        m_record.open(*options.recordFile, std::ios::binary | std::ios::trunc);
}

Session::~Session()
{
    if (m_signals >= 0)
        close(m_signals);
}

int Session::run()
{
    if (m_options.recordFile && !m_record) {
        std::cerr << "kovalt: can't write " << *m_options.recordFile << '\n';
        return CannotRead;
    }
    if (m_options.replayFile)
        return replay();
    watchSignals();
    if (m_options.after)
        m_loop.startTimer(*m_options.after, [this] { end(0); });
    if (m_options.timeout)
        m_loop.startTimer(*m_options.timeout, [this] { end(TimedOut); });
    launch();
    if (!m_status) {
        watchInput();
        type(0);
        m_loop.run();
    }
    writeDump();
    return m_status.value_or(0);
}

int Session::replay()
{
    std::ifstream file(*m_options.replayFile, std::ios::binary);
    std::array<char, SliceSize> slice{};
    if (!file) {
        std::cerr << "kovalt: can't read " << *m_options.replayFile << '\n';
        return CannotRead;
    }
    while (file.read(slice.data(), std::streamsize(slice.size())) || file.gcount() > 0)
        m_terminal.feed(std::string_view(slice.data(), std::size_t(file.gcount())));
    writeDump();
    return 0;
}

void Session::launch()
{
    const auto program = find(m_options.command.front());
    if (!program) {
        std::cerr << "kovalt: there is no " << m_options.command.front() << '\n';
        end(NotFound);
        return;
    }
    Kovalt::ProcessStart start;
    start.executable = *program;
    start.arguments.assign(m_options.command.begin() + 1, m_options.command.end());
    start.execName = m_options.command.front();
    start.environment = environmentFor(m_options.term);
    m_process.startProcess(start);
    if (!m_process.isRunning()) {
        std::cerr << "kovalt: " << *program << " can't be started\n";
        end(NotFound);
    }
}

void Session::watchInput()
{
    m_input = m_loop.watch(STDIN_FILENO, POLLIN, [this](short) {
        std::array<std::uint8_t, 4096> keys{};
        const ssize_t length = read(STDIN_FILENO, keys.data(), keys.size());
        if (length > 0)
            m_process.send(std::span(keys).first(std::size_t(length)));
        else if (length == 0 || (errno != EAGAIN && errno != EINTR))
            m_loop.unwatch(m_input);
    });
}

void Session::watchSignals()
{
    sigset_t wanted;
    sigemptyset(&wanted);
    for (const int signal : {SIGUSR1, SIGTERM, SIGINT, SIGHUP})
        sigaddset(&wanted, signal);
    sigprocmask(SIG_BLOCK, &wanted, nullptr);
    m_signals = signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_signals < 0)
        return;
    m_loop.watch(m_signals, POLLIN, [this](short) {
        signalfd_siginfo info{};
        while (read(m_signals, &info, sizeof info) == ssize_t(sizeof info)) {
            if (info.ssi_signo == SIGUSR1)
                writeDump();
            else
                end(128 + int(info.ssi_signo));
        }
    });
}

/// Does the steps from this one on, up to the next time to wait.
void Session::type(std::size_t step)
{
    for (; step < m_keys.size(); ++step) {
        if (const auto* time = std::get_if<std::chrono::milliseconds>(&m_keys[step])) {
            m_loop.startTimer(*time, [this, next = step + 1] { type(next); });
            return;
        }
        if (const auto* text = std::get_if<std::string>(&m_keys[step])) {
            m_process.send(bytesOf(*text));
            continue;
        }
        const Kovalt::TerminalModes& modes = m_terminal.modes();
        const auto bytes = Kovalt::KittyKeyboardEncoder::encode(
            m_terminal.keyboardMode().flags(), std::get<Kovalt::KittyKeyEvent>(m_keys[step]),
            {.applicationCursor = modes.applicationCursor,
             .applicationKeypad = modes.applicationKeypad});
        if (bytes)
            m_process.send(bytesOf(*bytes));
    }
}

void Session::end(int status)
{
    if (m_status)
        return;
    m_status = status;
    m_process.terminate();
    m_loop.stop();
}

void Session::writeDump() const
{
    if (!m_options.dump)
        return;
    const auto range = m_options.withHistory ? Kovalt::ScreenDump::Range::ScreenAndHistory
                                             : Kovalt::ScreenDump::Range::Screen;
    std::string dump;
    switch (*m_options.dump) {
    case DumpForm::Text:
        dump = Kovalt::ScreenDump::text(m_terminal, range);
        break;
    case DumpForm::Sgr:
        dump = Kovalt::ScreenDump::sgr(m_terminal, range) + '\n';
        break;
    case DumpForm::Json:
        dump = Kovalt::ScreenDump::json(m_terminal, range) + '\n';
        break;
    }
    std::cout << dump << std::flush;
}

// The terminal's

std::optional<std::string> Session::windowCommand(Kovalt::Terminal& source,
                                                  const Kovalt::WindowManipulationCommand& command)
{
    const auto answer = m_window.handle(command);
    if (m_window.cols() != source.cols() || m_window.rows() != source.rows()) {
        source.resize(m_window.cols(), m_window.rows());
        m_process.updateWindowSize();
    }
    if (!answer)
        return std::nullopt;
    const bool isEightBit = source.modes().controlForm == Kovalt::ControlForm::EightBit;
    return (isEightBit ? "\x9b" : "\x1b[") + *answer + 't';
}

void Session::sizeChanged(Kovalt::Terminal& source)
{
    using Command = Kovalt::WindowManipulationCommand;
    (void)m_window.handle({Command::Kind::ResizeTo, source.cols(), source.rows()});
    m_process.updateWindowSize();
}

void Session::send(Kovalt::Terminal& /*source*/, std::span<const std::uint8_t> data)
{
    m_process.send(data);
}

std::optional<std::pair<int, int>> Session::cellSizeInPixels(Kovalt::Terminal& /*source*/)
{
    return std::pair(PretendWindow::Cell.width, PretendWindow::Cell.height);
}

void Session::clipboardCopy(Kovalt::Terminal& /*source*/, std::span<const std::uint8_t> content)
{
    m_clipboard.emplace(content.begin(), content.end());
}

std::optional<std::vector<std::uint8_t>> Session::clipboardRead(Kovalt::Terminal& /*source*/)
{
    return m_clipboard;
}

// The program's

void Session::processTerminated(Kovalt::LocalProcess& /*source*/,
                                std::optional<std::int32_t> exitCode)
{
    end(exitCode ? statusOf(*exitCode) : 0);
}

void Session::dataReceived(std::span<const std::uint8_t> slice)
{
    if (m_record.is_open())
        m_record.write(reinterpret_cast<const char*>(slice.data()), std::streamsize(slice.size()));
    m_terminal.feed(slice);
}

winsize Session::getWindowSize()
{
    winsize size{};
    size.ws_col = static_cast<unsigned short>(m_terminal.cols());
    size.ws_row = static_cast<unsigned short>(m_terminal.rows());
    size.ws_xpixel = static_cast<unsigned short>(m_terminal.cols() * PretendWindow::Cell.width);
    size.ws_ypixel = static_cast<unsigned short>(m_terminal.rows() * PretendWindow::Cell.height);
    return size;
}

// The timer

void Session::start(std::chrono::milliseconds delay, std::function<void()> elapsed)
{
    cancel();
    m_timer = m_loop.startTimer(delay, [this, elapsed = std::move(elapsed)] {
        m_timer = 0;
        elapsed();
    });
}

void Session::cancel()
{
    if (m_timer != 0)
        m_loop.cancelTimer(std::exchange(m_timer, 0));
}

} // namespace KovaltTool
