#pragma once

#include <QObject>

namespace Bralto {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal on the main thread, so that the program ends as
/// it does by its menu: with its state saved. At most one object at a time.
class QuitSignals final : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject* parent = nullptr);
    ~QuitSignals() override;

signals:
    void quitRequested();
};

} // namespace Bralto
