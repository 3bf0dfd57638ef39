#pragma once

#include <QString>

namespace Bralto {

class PageEngines;

/// What the pages of one project are made with.
struct PageProfile {
    QString storage; ///< Folder of cookies and what pages store; made if missing. Empty: memory.
    QString cache;   ///< Folder of what may be fetched again.
    QString applicationName = {}; ///< Ends the user agent; empty: that of a plain browser.
    bool isDark = false;          ///< The look of the first page; `setDark` is for a later one.
};

/// The entry point of the library with the page engine, and its type. The caller owns the result,
/// which is gone before the application object is. Main thread, with an application object that
/// has `Qt::AA_ShareOpenGLContexts`.
inline constexpr char MakePageEnginesEntry[] = "braltoMakePageEngines";
using MakePageEngines = PageEngines* (*)(const PageProfile&);

} // namespace Bralto
