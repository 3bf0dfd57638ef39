#pragma once

#include "Base/Expected.h"
#include "Base/LaunchRole.h"

#include <QString>
#include <QStringList>

namespace Bralto {

/// The library with everything that needs a window system. It is loaded once it is known that a
/// window is wanted, so that nothing else pays for it.
namespace DesktopLibrary {

/// The entry point's name and type: what `main` gets, and the process's exit status.
inline constexpr char EntryPoint[] = "bralto_desktop_main";
using Entry = int (*)(int argc, char** argv);

/// Where the library may lie, best first: in the host's bundle, which an update replaces, then
/// beside the running executable.
[[nodiscard]] QStringList candidates(const LaunchRole& role, const QString& executableFolder);

/// The entry point of the first candidate that is there; on failure the system's own words.
[[nodiscard]] Expected<Entry, QString> load(const QStringList& candidates);

} // namespace DesktopLibrary

} // namespace Bralto
