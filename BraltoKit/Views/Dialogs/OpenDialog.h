#pragma once

#include "Views/Kit/Theme.h"

#include <QFileDialog>

namespace Bralto {

/// Picks one existing file or one existing folder. A folder that is marked is taken by "Open";
/// a double click goes into it.
class OpenDialog final : public QFileDialog {
    Q_OBJECT

public:
    OpenDialog(Theme& theme, const QString& startFolder, QWidget* window);

    /// What is picked: the marked file or folder, else the folder that shows.
    [[nodiscard]] QString path() const;

protected:
    void accept() override;
};

} // namespace Bralto
