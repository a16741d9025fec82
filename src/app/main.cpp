#include "app/AppDelegate.h"
#include "app/Translation.h"

int main(int argc, char** argv)
{
    Application application(argc, argv);
    const Translation translation(Bundle::main());
    const AppDelegate delegate(application);
    application.run();
}
