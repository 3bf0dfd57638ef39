#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

/// The strip that says that the project's folder is not there any more. Nothing that is open is
/// lost by it; a folder that comes back is taken up again.
class MissingFolder final : public ThemedWidget {
    Q_OBJECT

public:
    MissingFolder(const ViewServices& services, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();

    Workspace& m_workspace;
    QString m_words;
};

} // namespace Bralto
