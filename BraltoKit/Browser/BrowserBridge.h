#pragma once

#include "Base/AppPaths.h"
#include "Base/LaunchRole.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace Bralto {

/// Makes web links in panes open in the project's own window: a pane's search path begins with a
/// folder of small programs that stand in for the desktop's opener, and a login zsh, which would
/// reorder that path, reads start-up files that put the folder first again. Nothing of the user's
/// own is changed. What can't be written is left out: a pane works without it. Main thread.
class BrowserBridge {
public:
    BrowserBridge(const AppPaths& paths, const LaunchRole& role);

    [[nodiscard]] const QString& bin() const { return m_bin; } ///< The folder of the programs.
    [[nodiscard]] const QString& zshDirectory() const { return m_zsh; }
    /// The identifier that links are delivered to; absent outside a bundle.
    [[nodiscard]] std::optional<QString> bundleIdentifier() const;

    /// The environment of a pane ("NAME=value", each name once) with what its shell needs, `shell`
    /// being that shell's path. The first call writes the files.
    [[nodiscard]] QStringList configure(QStringList environment, const QString& shell) const;

    /// Writes all the files, those that differ from what they should be.
    void install() const;

    /// Makes the file hold `text`, and its folder where that is missing. An executable one gets
    /// mode 0755 even if it is not written. Failures are ignored.
    static void write(const QByteArray& text, const QString& path, bool executable);

private:
    QString m_bin;
    QString m_zsh;
    QString m_home;
    LaunchRole m_role;
    mutable bool m_isInstalled = false; ///< The files are as this program wants them.
};

} // namespace Bralto
