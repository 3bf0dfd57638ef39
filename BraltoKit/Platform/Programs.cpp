#include "Platform/Programs.h"

#include <QFileInfo>

namespace Bralto::Programs {

bool isProgram(const QString& path)
{
    const QFileInfo file(path);
    return file.isAbsolute() && file.isFile() && file.isExecutable();
}

} // namespace Bralto::Programs
