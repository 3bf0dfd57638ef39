#include "DemoAgent/ProcessSignals.h"

#include "DemoAgent/Behaviours/ShellCommand.h"

#include <unistd.h>

#include <csignal>

namespace DemoAgent::ProcessSignals {

namespace {

// Only calls that are safe within a signal.
void end(int signal)
{
    if (const int group = ShellCommand::runningGroup(); group > 0)
        ::kill(-group, SIGKILL);
    ::_exit(signal == SIGINT ? 0 : 128 + SIGTERM);
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, nullptr);
}

} // namespace

void install()
{
    // Made now, since a handler can't make it.
    (void)ShellCommand::runningGroup();
    handle(SIGTERM, end);
    handle(SIGINT, end);
    handle(SIGPIPE, SIG_IGN);
}

void ignoreTermination()
{
    handle(SIGTERM, SIG_IGN);
}

void ignoreInterrupt()
{
    handle(SIGINT, SIG_IGN);
}

} // namespace DemoAgent::ProcessSignals
