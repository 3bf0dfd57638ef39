#include "DemoAgent/AgentSession.h"
#include "DemoAgent/Arguments.h"
#include "DemoAgent/ProcessSignals.h"
#include "DemoAgent/Startup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <unistd.h>

#include <cstdio>

using namespace DemoAgent;

namespace {

using Steps = std::vector<ScriptStep>;

int printed(const QString& text, std::FILE* where, int status)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), where);
    return status;
}

int converse(const Arguments& arguments, const QStringList& words)
{
    Recorder recorder;
    if (arguments.record)
        recorder.open(*arguments.record);
    recorder.started(words);
    const auto home = QDir::homePath();
    Conversation conversation(arguments, Startup::sessionId(arguments), home, QDir::currentPath(),
                              Pace::fromText(qgetenv("BRALTO_DEMO_SPEED")), STDOUT_FILENO);
    auto script = arguments.script ? ScriptPlayer::load(*arguments.script) : Steps();
    if (const auto* error = std::get_if<ScriptError>(&script))
        return printed(error->message + u'\n', stderr, 2);
    if (const auto refusal = Startup::open(arguments, conversation))
        return printed(*refusal + u'\n', stderr, 1);

    AgentSession session(conversation, recorder, STDIN_FILENO);
    if (arguments.script)
        session.playScript(std::move(std::get<Steps>(script)), QFileInfo(*arguments.script).path());
    int status = 0;
    QObject::connect(&session, &AgentSession::ended, &session,
                     [&](int endStatus, const QString& message) {
                         if (!message.isEmpty())
                             printed(message + u'\n', stderr, 0);
                         status = endStatus;
                         QCoreApplication::quit();
                     });
    QCoreApplication::exec();
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList words;
    for (int index = 1; index < argc; ++index)
        words.append(QString::fromLocal8Bit(argv[index]));
    const Arguments arguments = Arguments::parse(words);
    if (arguments.wantsVersion)
        return printed(QString::fromLatin1(Version) + u" (Bralto demo agent)\n", stdout, 0);
    if (arguments.wantsHelp)
        return printed(helpText(), stdout, 0);
    if (!arguments.isHeadless) {
        return printed("The demo agent speaks stream-json over pipes only: start it with -p "
                       "--input-format stream-json --output-format stream-json.\n",
                       stderr, 1);
    }
    ProcessSignals::install();
    const QCoreApplication application(argc, argv);
    return converse(arguments, words);
}
