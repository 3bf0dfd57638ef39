#pragma once

#include <QStringList>
#include <QWebEnginePage>

namespace Bralto {

class WebContents;

namespace WebFileDialog {

/// Asks the user for files that `page` may read, in an event loop of its own that ends with the
/// page at the latest. Empty if none were chosen.
[[nodiscard]] QStringList choose(WebContents& page, QWebEnginePage::FileSelectionMode mode,
                                 const QStringList& types);

/// What a file dialog shows for the types that a page takes: ".png", "image/*", "text/plain".
[[nodiscard]] QStringList nameFilters(const QStringList& types);

} // namespace WebFileDialog

} // namespace Bralto
