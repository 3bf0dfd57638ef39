#pragma once

namespace Bralto::Compositing {

/// Whether windows of this screen can be see-through: always but on an X server where no
/// compositing manager runs. Main thread, once the application object is there.
[[nodiscard]] bool isActive();

} // namespace Bralto::Compositing
