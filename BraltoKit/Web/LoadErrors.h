#pragma once

#include "Browser/PageEngine.h"

#include <QUrl>

/// What went wrong with a load, in the user's words.
namespace Bralto::LoadErrors {

/// For the engine's number (negative) of a failed load of `url`.
[[nodiscard]] PageLoadError forNetwork(int code, const QUrl& url);

/// For an answer with this status and nothing to show.
[[nodiscard]] PageLoadError forStatus(int status, const QUrl& url);

/// Whether the engine has pages at addresses of this kind, and the program lets one be asked for.
[[nodiscard]] bool isForPages(const QUrl& url);
/// For an address of another kind.
[[nodiscard]] PageLoadError forScheme(const QUrl& url);

/// The server at `url` took longer than a load may.
[[nodiscard]] PageLoadError timedOut(const QUrl& url);

/// Whether the number is one of a certificate that is not to be trusted.
[[nodiscard]] bool isCertificate(int code);

} // namespace Bralto::LoadErrors
