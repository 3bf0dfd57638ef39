#pragma once

#include <QJsonObject>
#include <QSize>
#include <QString>

namespace Bralto {

// What is measured of terminals in a window. Each runs events until it is over. Times are
// milliseconds.

/// A command in each of so many panes. `click...`: how long a click waited for the interface
/// thread while they ran; `work...`: what that thread itself was busy for in that time.
[[nodiscard]] QJsonObject runCommand(const QString& command, int panes, QSize grid);
/// From a key's press on the server to other pixels on the server, with a program that echoes.
[[nodiscard]] QJsonObject measureLatency(QSize grid);
/// Frames a second through a long history, line by line.
[[nodiscard]] QJsonObject measureScrolling(QSize grid);
/// What an open pane costs that nobody writes to and that hasn't the keyboard.
[[nodiscard]] QJsonObject measureIdling(QSize grid);
/// A saved panel until all its shells have shown their prompts.
[[nodiscard]] QJsonObject measureRestoring(int panes);

} // namespace Bralto
