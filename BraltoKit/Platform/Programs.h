#pragma once

#include <QString>

namespace Bralto::Programs {

/// Whether `path` is an absolute one of a file that this user may execute.
[[nodiscard]] bool isProgram(const QString& path);

} // namespace Bralto::Programs
