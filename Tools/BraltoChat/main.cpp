// A conversation without a window: for looking at what the chat makes of the agent's lines.

#include "LiveChat.h"
#include "LiveReport.h"
#include "Replay.h"

#include "Platform/ChildProcess.h"
#include "Platform/MainBundle.h"
#include "Platform/ProcessDefaults.h"
#include "Platform/ProgramChatHost.h"
#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QStringList>

#include <cstdio>
#include <optional>
#include <unistd.h>

using namespace Bralto;

namespace {

constexpr char Usage[] =
    "Usage: bralto-chat FOLDER [--command COMMAND] [--session ID]\n"
    "       bralto-chat --replay FILE [--stored | --stream]\n"
    "\n"
    "Runs a conversation in FOLDER: a new one, or the stored one with this id. COMMAND starts the\n"
    "agent in place of the one in the settings. Each line of the standard input is a command:\n"
    "\n"
    "%s"
    "\n"
    "Each line of the standard output tells what changed:\n"
    "\n"
    "%s"
    "\n"
    "After the last command the running turn is finished; then the program ends.\n"
    "\n"
    "With --replay it\n"
    "prints the transcript that the lines in FILE give, as JSON. FILE is a conversation that the\n"
    "agent stored, or what it wrote to its standard output, either its plain lines or a recording\n"
    "of entries such as {\"from\":\"agent\",\"line\":{...}}. Which of them it is, its lines tell.\n"
    "\n"
    "  --stored   FILE is a stored conversation\n"
    "  --stream   FILE is what the agent wrote\n"
    "  --help     this text\n";

struct ReplayArguments {
    QString file;
    ReplaySource source = ReplaySource::Unknown;
};

/// The arguments of a replay, nothing if they ask for something else.
std::optional<ReplayArguments> replayArguments(const QStringList& arguments)
{
    if (arguments.size() < 2 || arguments.size() > 3 || arguments[0] != u"--replay")
        return std::nullopt;
    if (arguments.size() == 2)
        return ReplayArguments{arguments[1], ReplaySource::Unknown};
    if (arguments[2] == u"--stored")
        return ReplayArguments{arguments[1], ReplaySource::Stored};
    if (arguments[2] == u"--stream")
        return ReplayArguments{arguments[1], ReplaySource::Stream};
    return std::nullopt;
}

struct LiveArguments {
    QString folder;
    std::optional<QString> command;
    std::optional<QString> sessionId;
};

/// The arguments of a live conversation, nothing if they make no sense.
std::optional<LiveArguments> liveArguments(const QStringList& arguments)
{
    LiveArguments result;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const QString& argument = arguments[index];
        const bool hasValue = index + 1 < arguments.size();
        if (argument == u"--command" && hasValue)
            result.command = arguments[++index];
        else if (argument == u"--session" && hasValue)
            result.sessionId = arguments[++index];
        else if (!argument.startsWith(u'-') && result.folder.isEmpty())
            result.folder = QDir(argument).absolutePath();
        else
            return std::nullopt;
    }
    return result.folder.isEmpty() ? std::nullopt : std::optional(result);
}

int converse(const LiveArguments& arguments)
{
    if (!QFileInfo(arguments.folder).isDir()) {
        std::fprintf(stderr, "bralto-chat: %s is no folder\n", qUtf8Printable(arguments.folder));
        return 1;
    }
    const AppPaths paths = AppPaths::current();
    const LaunchRole role = MainBundle::role(MainBundle::executable());
    const ProcessDefaults defaults(paths, role);
    ProgramChatHost host(defaults.defaults(),
                         {paths, role, QProcessEnvironment::systemEnvironment().toStringList(),
                          false, arguments.command});
    ChildProcessLauncher launcher;
    QtScheduler scheduler;
    const SystemClock clock;
    ChatCommandMemory commandMemory;
    LiveChat chat(arguments.folder, arguments.sessionId,
                  {host, launcher, scheduler, clock, commandMemory}, STDIN_FILENO);
    QObject::connect(&chat, &LiveChat::finished, &chat, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    chat.start();
    return QCoreApplication::exec();
}

void printUsage(std::FILE* where)
{
    std::fprintf(where, Usage, liveCommandHelp(), LiveReport::help());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.contains(QStringLiteral("--help"))) {
        printUsage(stdout);
        return 0;
    }
    if (const auto replayed = replayArguments(arguments))
        return replay(replayed->file, replayed->source);
    if (const auto live = liveArguments(arguments))
        return converse(*live);
    printUsage(stderr);
    return 2;
}
