#pragma once

/// Ends the process as it is. Taking everything down would wait for decoders, and for name servers
/// that do not answer, to no end: all has been said and saved, and the system takes back the rest.
[[noreturn]] void endProcess(int status);
