#pragma once

#include <mpv/client.h>

#include <cstdint>

/// Turns the pictures of files that ask to be shown turned, as phones write them. libmpv's own way
/// does not work where the CPU draws: its software renderer ends the process on a quarter turn
/// (libmpv 0.35) and leaves out a half turn. So libmpv is told not to turn anything, and files that
/// need it, and only those, get a filter before they begin.
///
/// libmpv waits with a file that it has opened until the hook is answered. The answer takes three
/// asynchronous steps, so that nobody waits for the core: ask for the file's tracks, set the
/// filter, go on. Main thread only.
class UprightFilter {
public:
    /// Uses the two request numbers from `firstRequest` on. The core must outlive it.
    UprightFilter(mpv_handle& core, std::uint64_t firstRequest);
    static constexpr std::uint64_t requestCount = 2;

    void handle(const mpv_event& event);

private:
    void askForTracks(std::uint64_t hook);
    void setFilter(const mpv_node& tracks);
    void goOn();

    mpv_handle& m_core;
    std::uint64_t m_trackRequest;
    std::uint64_t m_filterRequest;
    std::uint64_t m_hook = 0; // the one that is being answered
};
