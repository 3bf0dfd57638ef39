#pragma once

#include <QFutureWatcher>
#include <QPromise>
#include <QThreadPool>

#include <memory>
#include <type_traits>
#include <utility>

namespace Bralto {

/// Runs `work` on a worker, then `done` with its result on the thread of `context`, which is the
/// caller's, in a later turn of its event loop. If `context` goes first, nobody is told. What
/// `work` holds must not belong to `context`.
template <typename Work, typename Done>
void inBackground(QObject* context, Work work, Done done)
{
    using Result = std::invoke_result_t<Work>;
    // The watcher goes with its parent; a continuation with a context would look for it afterwards.
    auto* watcher = new QFutureWatcher<Result>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, watcher,
                     [watcher, done = std::move(done)]() mutable {
                         watcher->deleteLater();
                         if (watcher->future().isResultReadyAt(0))
                             done(watcher->result());
                     });
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    watcher->setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, work = std::move(work)]() mutable {
        promise->addResult(work());
        promise->finish();
    });
}

} // namespace Bralto
