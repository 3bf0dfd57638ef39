#pragma once

class QApplication;

namespace Bralto {

/// The application object that all benchmarks share, with no screen; made when first asked for.
QApplication& benchApplication();

} // namespace Bralto
