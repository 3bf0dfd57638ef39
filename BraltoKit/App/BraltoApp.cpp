#include "App/BraltoApp.h"

#include "App/Program.h"
#include "Platform/MainBundle.h"
#include "Platform/ProcessLimits.h"

#include <QApplication>

#include <optional>

namespace Bralto::BraltoApp {

namespace {

constexpr char GlIntegration[] = "QT_XCB_GL_INTEGRATION";

/// For the making of the application object: keeps the platform from loading a graphics driver for
/// contexts that nobody draws with, which is more than half of a window's memory. Pages are drawn
/// without one too, unless the user chose another backend. Programs in panes don't see it.
class WithoutGraphicsDriver {
public:
    WithoutGraphicsDriver()
        : m_isWanted(!qEnvironmentVariableIsSet(GlIntegration) &&
                     qEnvironmentVariable("QT_QUICK_BACKEND", QStringLiteral("software")) ==
                         QLatin1String("software"))
    {
        if (!m_isWanted)
            return;
        qputenv(GlIntegration, "none");
        previousHandler = qInstallMessageHandler(&WithoutGraphicsDriver::report);
    }
    ~WithoutGraphicsDriver()
    {
        if (!m_isWanted)
            return;
        qInstallMessageHandler(previousHandler);
        qunsetenv(GlIntegration);
    }
    WithoutGraphicsDriver(const WithoutGraphicsDriver&) = delete;
    WithoutGraphicsDriver& operator=(const WithoutGraphicsDriver&) = delete;

private:
    /// Keeps the platform from complaining of what is meant to be so.
    static void report(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (!text.startsWith(QLatin1String("QXcbIntegration: Cannot create platform OpenGL")))
            previousHandler(type, context, text);
    }

    static inline QtMessageHandler previousHandler = nullptr;
    bool m_isWanted;
};

} // namespace

int main(int argc, char** argv)
{
    // A page may come later, and its engine asks for this before the application object.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    std::optional<WithoutGraphicsDriver> withoutDriver(std::in_place);
    QApplication application(argc, argv);
    withoutDriver.reset();
    const LaunchRole role = MainBundle::role(MainBundle::executable());
    QCoreApplication::setApplicationName(QStringLiteral("Bralto"));
    QCoreApplication::setApplicationVersion(role.shortVersion);
    // Windows of one project are found together, and apart from those of another.
    QGuiApplication::setDesktopFileName(role.bundleIdentifier);
    QApplication::setQuitOnLastWindowClosed(false);

    Program program(application, role);
    ProcessLimits::raiseOpenFileLimit();
    return program.run(QCoreApplication::arguments().mid(1));
}

} // namespace Bralto::BraltoApp
