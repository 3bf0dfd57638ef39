#pragma once

#include <QString>

#include <optional>

namespace DemoAgent::Files {

/// A path that a tool was given, made absolute; absent if it leads out of the folder, also by way
/// of a symbolic link.
[[nodiscard]] std::optional<QString> below(const QString& folder, const QString& path);

/// The first 64 KiB as text, or why it can't be read.
struct Reading {
    QString text;
    QString error;
};
[[nodiscard]] Reading read(const QString& path);

/// Empty when it worked, else why not. Missing folders are made.
[[nodiscard]] QString write(const QString& path, const QString& text);

} // namespace DemoAgent::Files
