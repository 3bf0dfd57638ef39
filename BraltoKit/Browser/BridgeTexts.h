#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// The scripts that carry web links from a pane to its project's window, and keep them in reach.
namespace Bralto::BridgeTexts {

struct File {
    QString name;
    QByteArray text;
};

/// The program that `BROWSER` names. It hands each web link to the pane's project through
/// `executable`, a program of ours, and everything else to the desktop's opener.
[[nodiscard]] QByteArray browserShim(const QString& executable);

/// What stands in for the desktop's opener. Plain web links go to the browser shim beside it,
/// everything else to the program that it hides.
[[nodiscard]] QByteArray openShim();

/// The start-up files of zsh, which run the user's own and then put the shims' folder first again.
/// Their order is zsh's.
[[nodiscard]] std::vector<File> zshSources();

} // namespace Bralto::BridgeTexts
