#include "Web/WebEnvironment.h"

#include <QByteArray>

#include <unistd.h>

namespace Bralto::WebEnvironment {

void prepare(bool isDark)
{
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
    // The engine's numbers: 0 is dark, 1 is light.
    if (!flags.contains("preferredColorScheme"))
        flags += isDark ? " --blink-settings=preferredColorScheme=0"
                        : " --blink-settings=preferredColorScheme=1";
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags.trimmed());
}

} // namespace Bralto::WebEnvironment
