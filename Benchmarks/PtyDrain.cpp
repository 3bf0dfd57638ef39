/// @file
/// What is timed inside a terminal:
///
///     bralto-pty-drain make KIND MB FILE             output of that kind, as a program writes it
///     bralto-pty-drain drain COLSxROWS FILE RESULT   writes the file to this terminal
///     bralto-pty-drain bare COLSxROWS FILE RESULT    the same on a terminal that is only read
///
/// `drain` ends once the terminal has answered a question that stands behind the file, so that all
/// of it was understood, and appends a line to the result: megabytes a second, columns, rows.

#include "Benchmarks/TerminalStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

/// What `cat` writes at a time.
constexpr std::size_t Piece = 131'072;
constexpr std::string_view Question = "\033[6n";
constexpr std::chrono::seconds AnswerPatience{180};
constexpr std::chrono::milliseconds GridPatience{5000};

struct Grid {
    int cols = 0;
    int rows = 0;

    bool operator==(const Grid&) const = default;
};

Grid gridOf(int terminal)
{
    winsize size{};
    ::ioctl(terminal, TIOCGWINSZ, &size);
    return {size.ws_col, size.ws_row};
}

/// A terminal may take its size only after it has started its program.
void awaitGrid(const Grid& wanted)
{
    const auto end = Clock::now() + GridPatience;
    while (gridOf(STDOUT_FILENO) != wanted && Clock::now() < end)
        ::poll(nullptr, 0, 5);
}

bool writeAll(int file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = ::write(file, bytes.data(), std::min(bytes.size(), Piece));
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Whether the answer came: ESC [ row ; column R.
bool awaitAnswer()
{
    const auto end = Clock::now() + AnswerPatience;
    while (Clock::now() < end) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        char byte = 0;
        if (::poll(&input, 1, 1000) <= 0)
            continue;
        if (::read(STDIN_FILENO, &byte, 1) != 1)
            return false;
        if (byte == 'R')
            return true;
    }
    return false;
}

/// Answers come at once and unseen; what is written is treated as for any other program.
void takeAnswersUnseen()
{
    termios modes{};
    ::tcgetattr(STDIN_FILENO, &modes);
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

std::optional<std::string> contents(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool drain(const Grid& grid, const char* path, const char* result)
{
    const auto text = contents(path);
    if (!text)
        return false;
    takeAnswersUnseen();
    awaitGrid(grid);
    const auto start = Clock::now();
    if (!writeAll(STDOUT_FILENO, *text) || !writeAll(STDOUT_FILENO, Question) || !awaitAnswer())
        return false;
    const std::chrono::duration<double> time = Clock::now() - start;
    const Grid had = gridOf(STDOUT_FILENO);
    std::ofstream(result, std::ios::app)
        << double(text->size()) / 1e6 / time.count() << ' ' << had.cols << ' ' << had.rows << '\n';
    return true;
}

/// Reads until the other side is closed and answers the question, wherever it is cut.
void readOnly(int terminal)
{
    std::vector<char> buffer(Piece);
    std::string last;
    while (true) {
        const auto count = ::read(terminal, buffer.data(), buffer.size());
        if (count <= 0)
            return;
        const auto size = static_cast<std::size_t>(count);
        const auto kept = std::min(size, Question.size());
        last.append(buffer.data() + size - kept, kept);
        if (last.ends_with(Question) && !writeAll(terminal, "\033[1;1R"))
            return;
        last.erase(0, last.size() - std::min(last.size(), Question.size() - 1));
    }
}

bool bare(const Grid& grid, const char* path, const char* result)
{
    winsize size{};
    size.ws_col = static_cast<unsigned short>(grid.cols);
    size.ws_row = static_cast<unsigned short>(grid.rows);
    int terminal = -1;
    const auto child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child < 0)
        return false;
    if (child == 0)
        std::_Exit(drain(grid, path, result) ? 0 : 1);
    readOnly(terminal);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    return status == 0;
}

bool make(const std::string& kind, std::size_t megabytes, const char* path)
{
    const auto streams = Kovalt::terminalStreams();
    const auto stream = std::ranges::find(streams, kind, &Kovalt::TerminalStream::name);
    if (stream == streams.end())
        return false;
    std::string text = Kovalt::makeStream(*stream, megabytes * 1'000'000);
    // The terminal's line discipline adds those of a program's output.
    std::erase(text, '\r');
    return bool(std::ofstream(path, std::ios::binary) << text);
}

Grid parseGrid(const std::string& text)
{
    const auto by = text.find('x');
    if (by == std::string::npos)
        return {};
    return {std::atoi(text.c_str()), std::atoi(text.c_str() + by + 1)};
}

} // namespace

int main(int argc, char** argv)
{
    const std::string verb = argc == 5 ? argv[1] : "";
    bool done = false;
    if (verb == "make") {
        done = make(argv[2], std::size_t(std::max(0, std::atoi(argv[3]))), argv[4]);
    } else if (verb == "drain") {
        done = drain(parseGrid(argv[2]), argv[3], argv[4]);
    } else if (verb == "bare") {
        done = bare(parseGrid(argv[2]), argv[3], argv[4]);
    } else {
        std::cerr << "bralto-pty-drain make KIND MB FILE | drain COLSxROWS FILE RESULT | bare "
                     "COLSxROWS FILE RESULT\n";
        return 2;
    }
    return done ? 0 : 1;
}
