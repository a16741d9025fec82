#include "app/AppDelegate.h"
#include "app/Translation.h"

int main(int argc, char** argv)
{
    // Static, so that it is destroyed after the shared components, which come into being later.
    static int argumentCount = argc; // Qt keeps a reference to it
    static Application application(argumentCount, argv);
    const Translation translation(Bundle::main());
    const AppDelegate delegate(application);
    return application.run();
}
