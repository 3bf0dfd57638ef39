#pragma once

#include "Views/ViewServices.h"

#include <QMenu>

#include <memory>

class QWidget;

namespace Bralto::PageMenuView {

/// The menu of a page, whose entries work after it has gone.
[[nodiscard]] std::unique_ptr<QMenu> make(const PageContext& context, BrowserTab& tab,
                                          const ViewServices& services, QWidget* parent);

} // namespace Bralto::PageMenuView
