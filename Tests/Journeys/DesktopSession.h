#pragma once

/// @file
/// A desktop for one test: an X server without a screen, a window manager, a home folder, and the
/// program in it, driven with real key and mouse events.

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace Bralto::Journeys {

/// Starts everything in the constructor and ends it, by its own handles, in the destructor.
class DesktopSession {
public:
    /// `screen` as Xvfb takes it, for example "1440x900x24".
    explicit DesktopSession(const QString& screen = QStringLiteral("1280x860x24"));
    ~DesktopSession();

    [[nodiscard]] bool isReady() const { return m_ready; }
    [[nodiscard]] QString home() const { return m_home.path(); }
    /// A project folder with a few files in it.
    [[nodiscard]] QString project() const;

    /// Writes the shared defaults that make conversations run the demo agent.
    void useDemoAgent(const QString& extraArguments = {});
    /// Writes the shared defaults so that conversations run `command`.
    void useAgent(const QString& command);

    /// Starts the program on the project and waits for its window.
    bool openProject();
    /// Starts the program without a project and waits for its window.
    bool openHome();
    /// Asks the program to end as the desktop does when a session ends, and waits for it.
    bool quit();
    /// Kills the program with no chance to clean up.
    void killProgram();
    [[nodiscard]] qint64 programId() const { return m_program ? m_program->processId() : 0; }
    [[nodiscard]] bool isRunning() const
    {
        return m_program && m_program->state() == QProcess::Running;
    }

    /// Types text into whatever has the keyboard.
    void type(const QString& text);
    /// Presses chords in xdotool's spelling, for example "ctrl+j" or "Return".
    void press(const QString& chord);
    /// Waits until another window of the program has the keyboard.
    bool awaitDialog();
    void clickAt(int x, int y);
    void resizeWindow(int width, int height);

    /// A picture of the screen, written to $BRALTO_JOURNEY_PICTURES/NAME.png if that is set.
    void picture(const QString& name);

    /// Waits until `condition` holds, asking every 50 ms. Gives up after `seconds`.
    static bool waitFor(const std::function<bool()>& condition, int seconds = 30);

    /// The text of a file, empty if it isn't there.
    static QByteArray read(const QString& path);
    /// The conversation files that the agent stored.
    [[nodiscard]] QStringList conversations() const;
    [[nodiscard]] QString preferences(const QString& domain) const;

private:
    bool start(const QStringList& arguments);
    QString run(const QString& program, const QStringList& arguments) const;
    [[nodiscard]] QProcessEnvironment environment() const;

    QTemporaryDir m_home;
    QTemporaryDir m_runtime;
    QProcess m_server;
    QProcess m_windowManager;
    QString m_display;
    std::unique_ptr<QProcess> m_program;
    QString m_window;
    bool m_ready = false;
};

} // namespace Bralto::Journeys
