#include "Benchmarks/TerminalDesk.h"

#include "Platform/LocalPaneProcess.h"

#include <QFile>
#include <QGridLayout>
#include <QProcessEnvironment>
#include <QScreen>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>

namespace Bralto {
namespace {

constexpr int StripHeight = 20;
/// Less than this machine's smallest screen by what a window manager puts around a window.
constexpr QSize Frame{40, 60};
constexpr int SettlingMs = 500;

} // namespace

BenchWindow::BenchWindow()
    : m_panes(new QWidget(this))
    , m_strip(new QWidget(this))
{
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(m_panes, 0, 0);
    layout->addWidget(m_strip, 1, 0);
    layout->setRowStretch(0, 1);
    m_strip->setFixedHeight(StripHeight);
    m_strip->setFocusPolicy(Qt::StrongFocus);
}

bool BenchWindow::event(QEvent* event)
{
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::UpdateRequest) {
        ++m_frames;
        if (painted)
            painted();
    }
    return result;
}

TerminalDesk::TerminalDesk(const QString& script, int historyRows, bool isOpen)
    : m_historyRows(historyRows)
    , m_services(m_views.openProject())
{
    ::mkfifo(QFile::encodeName(gate()).constData(), 0600);
    m_gate = ::open(QFile::encodeName(gate()).constData(), O_RDWR | O_CLOEXEC);
    QFile file(shell());
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write("#!/bin/sh\n");
    if (!isOpen)
        file.write("read -r go < " + QFile::encodeName(gate()) + '\n');
    file.write(script.toUtf8() + '\n');
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
}

TerminalDesk::~TerminalDesk()
{
    ::close(m_gate);
}

void TerminalDesk::open(int panes) const
{
    const std::string lines(std::size_t(panes), '\n');
    if (::write(m_gate, lines.data(), lines.size()) < 0)
        qWarning("The panes stay shut");
}

TerminalSession::Services TerminalDesk::sessionServices()
{
    return {.host = *this,
            .processes = m_processes,
            .scheduler = m_scheduler,
            .clock = m_clock,
            .makeProcess = [this](Kovalt::LocalProcessDelegate& delegate) {
                return std::make_unique<LocalPaneProcess>(delegate, m_runLoop);
            }};
}

TerminalPanel::Services TerminalDesk::panelServices()
{
    TerminalPanel::Services services = m_views.desk.panes.panelServices();
    services.makeSession = [this](const TerminalSession::Start& start) {
        return std::make_unique<TerminalSession>(start, sessionServices());
    };
    return services;
}

QStringList TerminalDesk::environment(const QString& /*pane*/, const QString& /*project*/,
                                      const QString& /*shell*/) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TERM", "xterm-256color");
    return environment.toStringList();
}

PaneWindow::PaneWindow(TerminalDesk& desk, int count)
{
    auto* layout = new QGridLayout(&m_window.panes());
    layout->setContentsMargins({});
    layout->setSpacing(0);
    const int columns = int(std::ceil(std::sqrt(count)));
    for (int i = 0; i < count; ++i) {
        m_sessions.push_back(std::make_unique<TerminalSession>(
            TerminalSession::Start{PaneKind::Shell, "/", "/", std::nullopt},
            desk.sessionServices()));
        QObject::connect(m_sessions.back().get(), &TerminalSession::ended, &m_window,
                         [this] { --m_running; });
        ++m_running;
        m_views.push_back(
            new TerminalView(desk.viewServices(), *m_sessions.back(), &m_window.panes()));
        layout->addWidget(m_views.back(), i / columns, i % columns);
    }
}

void PaneWindow::show(int cols, int rows)
{
    const TerminalView& first = *m_views.front();
    const QSizeF cell = first.geometryOfCells().cell;
    QSize size(int(std::ceil(cols * cell.width() + 2 * TerminalGeometry::Side)),
               int(std::ceil(rows * cell.height() + TerminalGeometry::Bottom)) +
                   m_window.strip().height());
    if (m_views.size() > 1)
        size = m_window.screen()->size() - Frame;
    m_window.resize(size);
    m_window.show();
    m_window.activateWindow();
    (void)await([this] { return m_window.frames() > 0; }, 10'000);
    // A window manager may have its say, and the fonts be read.
    (void)await([] { return false; }, SettlingMs);
}

bool PaneWindow::await(const std::function<bool()>& condition, int milliseconds)
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(milliseconds);
    while (!condition() && limit.isActive())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return condition();
}

} // namespace Bralto
