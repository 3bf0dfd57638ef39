#include "App/BraltoApp.h"

#include "App/Program.h"
#include "Platform/MainBundle.h"
#include "Platform/ProcessLimits.h"

#include <QApplication>

namespace Bralto::BraltoApp {

int main(int argc, char** argv)
{
    // A page may come later, and its engine asks for this before the application object.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
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
