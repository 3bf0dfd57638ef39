#pragma once

/// What the page engine reads from the environment of the process.
namespace Bralto::WebEnvironment {

/// Sets what must be set before the first page, and only what the user hasn't: pages are drawn
/// without a graphics driver, and as root, for whom the sandbox can't work, without it.
/// `isDark` is the look of pages that have two. Main thread.
void prepare(bool isDark);

} // namespace Bralto::WebEnvironment
