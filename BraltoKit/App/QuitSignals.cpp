#include "App/QuitSignals.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Bralto {

namespace {

constexpr std::array Signals = {SIGTERM, SIGINT, SIGHUP};

// A handler can reach nothing but globals, and may only write to a descriptor.
std::atomic<int> writeEnd = -1;
int readEnd = -1;

void noteSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(writeEnd.load(), &byte, 1);
}

} // namespace

QuitSignals::QuitSignals(QObject* parent)
    : QObject(parent)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    readEnd = ends[0];
    writeEnd = ends[1];
    auto* notifier = new QSocketNotifier(readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (read(readEnd, bytes, sizeof bytes) > 0)
            continue;
        emit quitRequested();
    });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : Signals)
        sigaction(number, &action, nullptr);
}

QuitSignals::~QuitSignals()
{
    for (const int number : Signals)
        signal(number, SIG_DFL);
    if (const int end = writeEnd.exchange(-1); end >= 0) {
        close(end);
        close(readEnd);
    }
}

} // namespace Bralto
