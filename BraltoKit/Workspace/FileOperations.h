#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Changes on the disk that the user asks for. Each gives the system's words if it failed, and
/// then leaves the disk as it was. Any thread.
namespace Bralto::FileOperations {

/// An empty file; fails if something has that name.
[[nodiscard]] std::optional<QString> createFile(const QString& path);

/// A folder with all folders above it; one that is there already is no failure.
[[nodiscard]] std::optional<QString> createFolder(const QString& path);

/// Gives a file or folder another name; never takes the place of something else.
[[nodiscard]] std::optional<QString> rename(const QString& from, const QString& to);

/// Copies a file, or a folder with all that it contains, to the first free of the names for a copy.
[[nodiscard]] std::optional<QString> duplicate(const QString& path);

/// The `number`th name for a copy, from 1: "a copy.txt", "a copy 2.txt", ...
[[nodiscard]] QString copyName(const QString& name, int number);

} // namespace Bralto::FileOperations
