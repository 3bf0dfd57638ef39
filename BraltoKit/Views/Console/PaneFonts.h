#pragma once

#include <QStringList>

namespace Bralto::PaneFonts {

/// The fixed-pitch families of this computer, sorted, none twice. Worked out once.
[[nodiscard]] const QStringList& installed();

/// Of all families as the system names them, those on offer: private ones, which begin with a dot,
/// are left out, and so are doubles.
[[nodiscard]] QStringList offered(const QStringList& families);

} // namespace Bralto::PaneFonts
