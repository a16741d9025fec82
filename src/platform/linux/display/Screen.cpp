#include "platform/Screen.h"

#include "platform/linux/display/DisplayServer.h"

std::vector<Screen> Screen::screens()
{
    return DisplayServer::shared().screens();
}
