#pragma once

#include "Browser/PageProfile.h"

#include <QWebEngineProfile>

#include <memory>

/// The engine's profile of one project, and what its pages may do.
namespace Bralto::WebProfile {

[[nodiscard]] std::unique_ptr<QWebEngineProfile> make(const PageProfile& profile);

/// The engine's own words without the toolkit's name, which sites don't know.
[[nodiscard]] QString userAgent(const QString& engines, const QString& applicationName);

} // namespace Bralto::WebProfile
