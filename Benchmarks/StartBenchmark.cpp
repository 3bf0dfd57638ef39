// How long a start takes until the first frame is painted: of the real program with a project of
// 100,000 files, and of an empty window. What is between the two is ours.

#include "Benchmarks/BenchApplication.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileSystemWatcher>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <sys/prctl.h>
#include <vector>

using namespace Bralto;

namespace {

constexpr int Folders = 100;
constexpr int FilesInFolder = 1000;
constexpr int Starts = 9;
constexpr auto Patience = std::chrono::seconds{20};

qint64 monotonicNanoseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

void end(QProcess& process)
{
    process.kill();
    process.waitForFinished();
}

/// A home folder with nothing in it but the project; what the program starts finds no other.
class Desk {
public:
    Desk()
    {
        benchApplication();
        QDir().mkpath(home());
        for (int folder = 0; folder < Folders; ++folder) {
            const QString path = project() + QStringLiteral("/folder%1").arg(folder);
            QDir().mkpath(path);
            for (int file = 0; file < FilesInFolder; ++file)
                QFile(path + QStringLiteral("/file%1.txt").arg(file)).open(QIODevice::WriteOnly);
        }
        m_environment.insert(QStringLiteral("HOME"), home());
        m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.path());
        m_environment.insert(QStringLiteral("BRALTO_FIRST_FRAME"), moment());
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            m_environment.remove(QLatin1String(name));
        startServices();
    }

    ~Desk()
    {
        end(m_server);
        end(m_bus);
    }

    [[nodiscard]] QString project() const { return m_folder.filePath(QStringLiteral("project")); }
    /// What the windows are shown on: "xcb" on a server without a screen, else "offscreen".
    [[nodiscard]] QString platform() const
    {
        return m_environment.value(QStringLiteral("QT_QPA_PLATFORM"));
    }

    /// Milliseconds from the start of a process to its first frame; 0 if none came.
    [[nodiscard]] double firstFrame(const QString& program, const QStringList& arguments)
    {
        QFile::remove(moment());
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        QFileSystemWatcher watcher({m_folder.path()});
        QEventLoop loop;
        QTimer::singleShot(Patience, &loop, [&loop] { loop.exit(1); });
        QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &loop, [&] {
            if (QFile::exists(moment()))
                loop.exit(0);
        });
        const qint64 start = monotonicNanoseconds();
        process.start(program, arguments);
        const bool isShown = loop.exec() == 0;
        end(process);
        QFile file(moment());
        if (!isShown || !file.open(QIODevice::ReadOnly))
            return 0;
        return double(file.readAll().toLongLong() - start) / 1e6;
    }

private:
    [[nodiscard]] QString home() const { return m_folder.filePath(QStringLiteral("home")); }
    [[nodiscard]] QString moment() const { return m_folder.filePath(QStringLiteral("moment")); }

    /// A display and a bus of our own, as a desktop has them.
    void startServices()
    {
        for (QProcess* service : {&m_server, &m_bus})
            service->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        m_server.start(QStringLiteral("Xvfb"),
                       {QStringLiteral("-displayfd"), QStringLiteral("1"),
                        QStringLiteral("-screen"), QStringLiteral("0"),
                        QStringLiteral("1440x900x24"), QStringLiteral("-nolisten"),
                        QStringLiteral("tcp")});
        if (m_server.waitForStarted() && m_server.waitForReadyRead()) {
            const QString number = QString::fromLatin1(m_server.readLine()).trimmed();
            m_environment.insert(QStringLiteral("DISPLAY"), u':' + number);
            m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        }
        m_bus.start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--session"), QStringLiteral("--nofork"),
                     QStringLiteral("--nopidfile"), QStringLiteral("--print-address"),
                     QStringLiteral("--address=unix:dir=") + m_folder.path()});
        QString address = QStringLiteral("disabled:");
        if (m_bus.waitForStarted() && m_bus.waitForReadyRead())
            address = QString::fromUtf8(m_bus.readLine()).trimmed();
        m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    }

    const QTemporaryDir m_folder;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_server;
    QProcess m_bus;
};

double median(std::vector<double> values)
{
    std::ranges::nth_element(values, values.begin() + std::ptrdiff_t(values.size() / 2));
    return values[values.size() / 2];
}

/// Starts both programs in turn. The time is our program's; the counters are medians in
/// milliseconds: `total` of ours, `empty` of the empty window, `ours` what is between them.
void startToFirstFrame(benchmark::State& state)
{
    Desk desk;
    const QString program = QStringLiteral(BRALTO_PROGRAM);
    const QStringList arguments{desk.project()};
    // The first start makes the project's own application; those after it find it there.
    if (desk.firstFrame(program, arguments) == 0 ||
        desk.firstFrame(QStringLiteral(EMPTY_PROGRAM), {}) == 0) {
        state.SkipWithError("No frame came");
        return;
    }
    std::vector<double> totals;
    std::vector<double> empties;
    for (auto step : state) {
        empties.push_back(desk.firstFrame(QStringLiteral(EMPTY_PROGRAM), {}));
        totals.push_back(desk.firstFrame(program, arguments));
        state.SetIterationTime(totals.back() / 1000);
    }
    state.SetLabel(desk.platform().toStdString());
    state.counters["total"] = median(totals);
    state.counters["empty"] = median(empties);
    state.counters["ours"] = median(totals) - median(empties);
}
BENCHMARK(startToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(Starts);

} // namespace
