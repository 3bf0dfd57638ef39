// Starts its arguments as an agent, prints the agent's process id once it has said something, and
// then waits to be killed. For tests of what happens when the program dies.

#include "Platform/ChildProcess.h"

#include <QProcessEnvironment>

#include <cstdio>
#include <unistd.h>

int main(int argc, char** argv)
{
    using namespace Bralto;
    AgentLaunch launch;
    launch.program = QString::fromLocal8Bit(argv[1]);
    for (int index = 2; index < argc; ++index)
        launch.arguments.append(QString::fromLocal8Bit(argv[index]));
    launch.environment = QProcessEnvironment::systemEnvironment().toStringList();
    launch.folder = "/";
    AgentPipes pipes;
    pipes.output = [](std::string_view bytes) { (void)!write(1, bytes.data(), bytes.size()); };
    pipes.outputEnded = [] {};
    pipes.errors = [](std::string_view) {};
    pipes.ended = [](int) {};
    ChildProcessLauncher launcher;
    const auto process = launcher.launch(launch, pipes);
    if (!process)
        return 1;
    for (;;)
        pause();
}
