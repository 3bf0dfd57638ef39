#include "Tests/Journeys/DesktopSession.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QTimer>

#include <csignal>
#include <unistd.h>

namespace Bralto::Journeys {

namespace {

constexpr auto Support = "Library/Application Support/Bralto";

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
}

} // namespace

DesktopSession::DesktopSession(const QString& screen)
{
    // Xvfb chooses a free number itself and tells it on the descriptor that is named.
    m_server.setProcessChannelMode(QProcess::SeparateChannels);
    m_server.start("Xvfb", {"-displayfd", "1", "-screen", "0", screen, "-nolisten", "tcp"});
    if (!m_server.waitForStarted())
        return;
    QByteArray number;
    while (!number.endsWith('\n') && m_server.waitForReadyRead(10000))
        number += m_server.readAllStandardOutput();
    if (number.trimmed().isEmpty())
        return;
    m_display = ":" + QString::fromLatin1(number.trimmed());

    m_windowManager.setProcessEnvironment(environment());
    m_windowManager.start("openbox", {"--sm-disable"});
    if (!m_windowManager.waitForStarted())
        return;

    writeFile(project() + "/README.md", "# Tides\n\nA small project for a journey.\n");
    writeFile(project() + "/src/main.cpp", "int main()\n{\n    return 0;\n}\n");
    writeFile(project() + "/src/clock.cpp", "// what time it is\n");
    m_ready = true;
}

DesktopSession::~DesktopSession()
{
    for (QProcess* process : {m_program.get(), &m_windowManager, &m_server}) {
        if (!process || process->state() == QProcess::NotRunning)
            continue;
        process->terminate();
        if (!process->waitForFinished(10000)) {
            process->kill();
            process->waitForFinished(5000);
        }
    }
}

QString DesktopSession::project() const
{
    return home() + "/work/tidal api";
}

void DesktopSession::useDemoAgent(const QString& extraArguments)
{
    useAgent(QStringLiteral("'%1/bralto-demo-agent' %2").arg(BRALTO_BIN, extraArguments).trimmed());
}

void DesktopSession::useAgent(const QString& command)
{
    const QJsonObject defaults{
        {"claudeCommand", command}, {"firstRun.checked", true}, {"migrated.v1", true}};
    writeFile(preferences("com.tolvane.bralto.shared"), QJsonDocument(defaults).toJson());
}

QString DesktopSession::preferences(const QString& domain) const
{
    return QStringLiteral("%1/%2/Preferences/%3.json").arg(home(), Support, domain);
}

QProcessEnvironment DesktopSession::environment() const
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    result.insert("DISPLAY", m_display);
    result.remove("WAYLAND_DISPLAY");
    result.insert("QT_QPA_PLATFORM", "xcb");
    result.insert("HOME", home());
    result.insert("XDG_RUNTIME_DIR", m_runtime.path());
    result.remove("XDG_CONFIG_HOME");
    result.remove("XDG_DATA_HOME");
    result.insert("XDG_CACHE_HOME", home() + "/.cache");
    result.insert("BRALTO_REDUCE_MOTION", "1");
    result.insert("BRALTO_DEMO_SPEED", "20");
    result.insert("LC_ALL", "C.UTF-8");
    return result;
}

bool DesktopSession::openProject()
{
    return start({project()});
}

bool DesktopSession::openHome()
{
    return start({});
}

bool DesktopSession::start(const QStringList& arguments)
{
    const QString frame = home() + "/first-frame.png";
    QFile::remove(frame);
    m_program = std::make_unique<QProcess>();
    QProcessEnvironment variables = environment();
    variables.insert("BRALTO_SCREENSHOT", frame);
    m_program->setProcessEnvironment(variables);
    m_program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_program->start(QStringLiteral(BRALTO_BIN "/../Bralto.app/Contents/MacOS/Bralto"), arguments);
    if (!m_program->waitForStarted())
        return false;
    if (!waitFor([&] { return QFile::exists(frame) || !isRunning(); }) || !isRunning())
        return false;
    const QString pid = QString::number(m_program->processId());
    return waitFor([&] {
        m_window =
            run("xdotool", {"search", "--onlyvisible", "--pid", pid}).section('\n', 0, 0).trimmed();
        if (m_window.isEmpty())
            return false;
        run("xdotool", {"windowactivate", "--sync", m_window});
        return run("xdotool", {"getactivewindow"}).trimmed() == m_window;
    });
}

bool DesktopSession::quit()
{
    if (!isRunning())
        return true;
    m_program->terminate();
    return m_program->waitForFinished(20000);
}

void DesktopSession::killProgram()
{
    m_program->kill();
    m_program->waitForFinished(5000);
}

void DesktopSession::type(const QString& text)
{
    run("xdotool", {"type", "--delay", "4", "--clearmodifiers", text});
}

void DesktopSession::press(const QString& chord)
{
    run("xdotool", {"key", "--clearmodifiers", chord});
}

bool DesktopSession::awaitDialog()
{
    return waitFor([&] {
        const QString focused = run("xdotool", {"getwindowfocus"}).trimmed();
        const QString owner = run("xdotool", {"getwindowpid", focused}).trimmed();
        return focused != m_window && owner == QString::number(m_program->processId());
    });
}

void DesktopSession::clickAt(int x, int y)
{
    run("xdotool",
        {"mousemove", "--window", m_window, QString::number(x), QString::number(y), "click", "1"});
}

void DesktopSession::resizeWindow(int width, int height)
{
    run("xdotool",
        {"windowsize", "--sync", m_window, QString::number(width), QString::number(height)});
}

void DesktopSession::picture(const QString& name)
{
    const QString folder = qEnvironmentVariable("BRALTO_JOURNEY_PICTURES");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    run("import", {"-window", "root", folder + "/" + name + ".png"});
}

QString DesktopSession::run(const QString& program, const QStringList& arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(program, arguments);
    process.waitForFinished(15000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool DesktopSession::waitFor(const std::function<bool()>& condition, int seconds)
{
    const QDeadlineTimer deadline(std::chrono::seconds{seconds});
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

QByteArray DesktopSession::read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList DesktopSession::conversations() const
{
    QStringList result;
    QDirIterator files(home() + "/.claude/projects", {"*.jsonl"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        result.append(files.next());
    return result;
}

} // namespace Bralto::Journeys
