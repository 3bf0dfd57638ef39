#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace Bralto {

/// Notices the first frame that a window paints.
///
/// With `BRALTO_FIRST_FRAME=FILE` in the environment it writes the monotonic clock at that moment,
/// in nanoseconds, to FILE; with `BRALTO_SCREENSHOT=FILE` a picture of the window a moment later,
/// when what loads at once has shown. Both files appear whole or not at all.
class FirstFrame final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `window`, and goes once it has done its work.
    explicit FirstFrame(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void writeMoment() const;
    void takePicture();

    QWidget* m_window;
};

} // namespace Bralto
