#pragma once

#include <QString>

namespace Bralto::Paths {

/// The identity of a file: absolute, without ".", ".." or a trailing "/" (the root alone is "/").
/// Symbolic links stay as they are. An empty path names nothing and stays empty.
[[nodiscard]] QString standardised(const QString& path);

/// Whether `path` lies below `folder`; the folder itself doesn't. Both are standardised paths, so
/// that "/a/src2" is never taken for a file below "/a/src".
[[nodiscard]] bool isBelow(const QString& path, const QString& folder);

/// The part of a standardised path behind its last "/".
[[nodiscard]] QString lastComponent(const QString& path);

/// The folder that holds a standardised path; "/" for the root.
[[nodiscard]] QString parent(const QString& path);

/// `path` with `home` at its start replaced by "~".
[[nodiscard]] QString abbreviatingHome(const QString& path, const QString& home);

} // namespace Bralto::Paths
