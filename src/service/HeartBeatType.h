#pragma once

/// The kinds of report; the numbers are what the service knows them by. The helper sends the one
/// of midnight only.
enum class HeartBeatType : int {
    Boot = 1,
    MidNight = 2,
    HeartBeat = 3,
};

/// How a version came to be installed. No request names it.
enum class InstallWay { Update, Reinstall };

/// The ciphers that the service knows. No request names one: all use the same.
enum class KeyAndIv { local, net1, net2, net3, window_net, internalTest };
