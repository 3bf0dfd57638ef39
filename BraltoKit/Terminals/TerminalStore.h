#pragma once

#include "Base/AppPaths.h"
#include "Terminals/PanelSnapshot.h"

#include <QString>

#include <optional>

/// One file a project, which keeps its panel between runs. Main thread.
namespace Bralto::TerminalStore {

/// Where the panel of `folder` is kept. The name is the escaped path's last 200 characters, so two
/// deep folders whose paths end alike share a file.
[[nodiscard]] QString file(const AppPaths& paths, const QString& folder);

/// The panel that was saved for `folder`; absent if there is none or it can't be read.
[[nodiscard]] std::optional<PanelSnapshot> load(const AppPaths& paths, const QString& folder);

/// Writes in one step, and only what differs from the file. A failure leaves the old file.
void save(const AppPaths& paths, const QString& folder, const PanelSnapshot& snapshot);

} // namespace Bralto::TerminalStore
