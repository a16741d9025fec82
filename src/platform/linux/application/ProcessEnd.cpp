#include "platform/linux/application/ProcessEnd.h"

#include <cstdio>
#include <cstdlib>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

void endProcess(int status)
{
    std::fflush(nullptr);
#ifdef __SANITIZE_ADDRESS__
    __lsan_do_leak_check(); // which otherwise runs when all has been taken down
#endif
    std::_Exit(status);
}
