#pragma once

#include <QString>

#include <optional>

/// What the running helper tells other programs of the session about itself: on Linux the read-only
/// object `/com/zemra/tavelor/Helper` of the session's one helper, interface
/// `com.zemra.tavelor.Helper`. Main thread only.
namespace HelperStatus {

/// For the helper: why people may see no wallpaper though it is switched on, as a sentence; empty
/// where they do.
void setProblem(const QString& problem);

/// The same, asked of the helper. None where there is no helper or it does not answer within a
/// second.
std::optional<QString> problem();

} // namespace HelperStatus
