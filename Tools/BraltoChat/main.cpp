// A conversation without a window: for looking at what the chat makes of the agent's lines.

#include "Replay.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <optional>

using namespace Bralto;

namespace {

constexpr char Usage[] =
    "Usage: bralto-chat --replay FILE [--stored | --stream]\n"
    "\n"
    "Prints the transcript that the lines in FILE give, as JSON. FILE is a conversation that the\n"
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

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.contains(QStringLiteral("--help"))) {
        std::fputs(Usage, stdout);
        return 0;
    }
    if (const auto replayed = replayArguments(arguments))
        return replay(replayed->file, replayed->source);
    std::fputs(Usage, stderr);
    return 2;
}
