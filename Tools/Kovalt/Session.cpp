#include "Session.h"

#include "Kovalt/Ascii.h"
#include "ProgramStart.h"

#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"
#include "Kovalt/ScreenDump.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <utility>

namespace KovaltTool {
namespace {

constexpr int Failed = 1;
constexpr int TimedOut = 124;
constexpr std::size_t SliceSize = 65536;

void complain(const std::string& text)
{
    std::cerr << "kovalt: " + text + '\n';
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
    , m_process(*this, m_loop, Kovalt::Delivery::Sliced,
                [](const std::string& line) { complain(line); })
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
        complain("can't write " + *m_options.recordFile);
        return Failed;
    }
    if (m_options.replayFile)
        return replay();
    watchSignals();
    if (m_options.after)
        m_loop.startTimer(*m_options.after, [this] { end(0); });
    if (m_options.timeout)
        m_loop.startTimer(*m_options.timeout, [this] { end(TimedOut); });
    m_rawInput.emplace();
    launch();
    if (!m_status) {
        watchInput();
        type(0);
        m_loop.run();
    }
    m_rawInput.reset();
    return finish(m_status.value_or(Failed));
}

int Session::replay()
{
    std::ifstream file(*m_options.replayFile, std::ios::binary);
    std::array<char, SliceSize> slice{};
    while (file.read(slice.data(), std::streamsize(slice.size())) || file.gcount() > 0)
        m_terminal.feed(std::string_view(slice.data(), std::size_t(file.gcount())));
    // A file that can't be opened never comes to its end; a folder fails when it is read.
    if (file.bad() || !file.eof()) {
        complain("can't read " + *m_options.replayFile);
        return Failed;
    }
    m_lastScreen = dump();
    return finish(0);
}

/// Writes what is to be kept. The status, unless that fails.
int Session::finish(int status)
{
    bool isWritten = bool(std::cout << m_lastScreen << std::flush);
    if (!isWritten)
        complain("can't write the screen");
    if (m_record.is_open() && !m_record.flush()) {
        complain("can't write " + *m_options.recordFile);
        isWritten = false;
    }
    return isWritten || status != 0 ? status : Failed;
}

void Session::launch()
{
    const auto start = programStart(m_options.command, m_options.term);
    if (const auto* failure = std::get_if<StartFailure>(&start)) {
        complain(failure->text);
        m_status = failure->status;
        return;
    }
    m_process.startProcess(std::get<Kovalt::ProcessStart>(start));
    if (!m_process.isRunning()) {
        complain(m_options.command.front() + " can't be started");
        m_status = Failed;
    }
}

/// Standard input is read no faster than the program takes it.
void Session::watchInput()
{
    m_input = m_loop.watch(STDIN_FILENO, POLLIN, [this](short) {
        std::array<std::uint8_t, 4096> keys{};
        const ssize_t length = read(STDIN_FILENO, keys.data(), keys.size());
        if (length > 0)
            m_process.send(std::span(keys).first(std::size_t(length)));
        const bool isAtEnd = length == 0 || (length < 0 && errno != EAGAIN && errno != EINTR);
        m_waitsForProgram = m_process.isSendWaiting();
        if (isAtEnd || m_waitsForProgram)
            m_loop.unwatch(m_input);
    });
}

void Session::watchSignals()
{
    sigset_t wanted;
    sigemptyset(&wanted);
    for (const int signal : {SIGUSR1, SIGTERM, SIGINT, SIGHUP, SIGQUIT})
        sigaddset(&wanted, signal);
    sigprocmask(SIG_BLOCK, &wanted, nullptr);
    m_signals = signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_signals < 0)
        return;
    m_loop.watch(m_signals, POLLIN, [this](short) {
        signalfd_siginfo info{};
        while (read(m_signals, &info, sizeof info) == ssize_t(sizeof info)) {
            if (info.ssi_signo == SIGUSR1)
                std::cout << dump() << std::flush;
            else
                end(128 + int(info.ssi_signo));
        }
    });
}

/// Does the steps from this one on, up to the next one that waits.
void Session::type(std::size_t step)
{
    for (; step < m_keys.size(); ++step) {
        const KeyStep& key = m_keys[step];
        if (const auto* text = std::get_if<std::string>(&key)) {
            m_process.send(Kovalt::Ascii::bytes(*text));
        } else if (const auto* event = std::get_if<Kovalt::KittyKeyEvent>(&key)) {
            press(*event);
        } else if (const auto* time = std::get_if<std::chrono::milliseconds>(&key)) {
            m_loop.startTimer(*time, [this, next = step + 1] { type(next); });
            return;
        } else {
            m_awaitedStep = step;
            return goOnIfShown();
        }
    }
}

void Session::press(const Kovalt::KittyKeyEvent& key)
{
    const Kovalt::TerminalModes& modes = m_terminal.modes();
    const auto bytes =
        Kovalt::KittyKeyboardEncoder::encode(m_terminal.keyboardMode().flags(), key,
                                             {.applicationCursor = modes.applicationCursor,
                                              .applicationKeypad = modes.applicationKeypad});
    if (bytes)
        m_process.send(Kovalt::Ascii::bytes(*bytes));
}

void Session::goOnIfShown()
{
    const auto& awaited = std::get<AwaitedText>(m_keys[*m_awaitedStep]);
    if (Kovalt::ScreenDump::text(m_terminal).find(awaited.text) == std::string::npos)
        return;
    const std::size_t next = *std::exchange(m_awaitedStep, std::nullopt) + 1;
    type(next);
}

void Session::end(int status)
{
    if (m_status)
        return;
    m_status = status;
    // What the program says to its end is not what was asked for.
    m_lastScreen = dump();
    m_process.terminate();
    m_loop.stop();
}

std::string Session::dump() const
{
    const auto range = m_options.withHistory ? Kovalt::ScreenDump::Range::ScreenAndHistory
                                             : Kovalt::ScreenDump::Range::Screen;
    switch (m_options.dump) {
    case DumpForm::None:
        break;
    case DumpForm::Text:
        return Kovalt::ScreenDump::text(m_terminal, range);
    case DumpForm::Sgr:
        return Kovalt::ScreenDump::sgr(m_terminal, range) + '\n';
    case DumpForm::Json:
        return Kovalt::ScreenDump::json(m_terminal, range);
    }
    return {};
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
    end(exitCode ? statusOf(*exitCode) : Failed);
}

void Session::sendCompleted(Kovalt::LocalProcess& /*source*/)
{
    if (m_waitsForProgram && !m_process.isSendWaiting()) {
        m_waitsForProgram = false;
        watchInput();
    }
}

void Session::dataReceived(std::span<const std::uint8_t> slice)
{
    if (m_record.is_open())
        m_record.write(reinterpret_cast<const char*>(slice.data()), std::streamsize(slice.size()));
    m_terminal.feed(slice);
    if (m_awaitedStep)
        goOnIfShown();
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
