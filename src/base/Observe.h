#pragma once

#include "base/Disposable.h"

#include <QObject>

#include <utility>

/// Calls `handler` with each value that `signal` of `subject` carries, inside the emission and in
/// the order in which the observations were made, until the token is released. A subject that
/// dies first ends the observation by itself.
template <typename Subject, typename Signal, typename Handler>
[[nodiscard]] Disposable observe(const Subject& subject, Signal signal, Handler&& handler)
{
    const auto connection = QObject::connect(
        &subject, signal, &subject, std::forward<Handler>(handler), Qt::DirectConnection);
    return Disposable([connection] { QObject::disconnect(connection); });
}
