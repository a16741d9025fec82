#include <netdb.h>
#include <unistd.h>

/// Preloaded, it is a name server that does not answer for a long time.
extern "C" int getaddrinfo(
    const char* /*name*/, const char* /*service*/, const addrinfo* /*hints*/, addrinfo** /*result*/)
{
    sleep(60);
    return EAI_AGAIN;
}
