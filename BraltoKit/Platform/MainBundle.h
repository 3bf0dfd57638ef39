#pragma once

#include "Base/LaunchRole.h"

#include <QString>

/// The application bundle that an executable lies in.
namespace Bralto::MainBundle {

/// The bundle of `executable`, an absolute path: the folder `X.app` if the executable lies in its
/// `Contents/MacOS`, else empty.
[[nodiscard]] QString path(const QString& executable);

/// The part that `executable` plays, from its bundle's description. A bundle that can't describe
/// itself is one of the home application.
[[nodiscard]] LaunchRole role(const QString& executable);

/// The executable of this process, also if its file was replaced after the start.
[[nodiscard]] QString executable();

} // namespace Bralto::MainBundle
