#pragma once

/// Whether this process may be the session's one helper. It says so by owning a name on the
/// session bus, which the bus takes back when the process ends, however it ends.
namespace SessionInstance {

enum class Claim {
    Owned,
    Taken, ///< another process of this session has it
    NoBus, ///< nobody can tell
};

Claim claim();

/// Whether some process of this session owns it.
bool isClaimed();

} // namespace SessionInstance
