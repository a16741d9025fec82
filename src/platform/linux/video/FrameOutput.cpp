#include "platform/linux/video/FrameOutput.h"

namespace {

FrameOutput* current = nullptr;

} // namespace

FrameOutput::FrameOutput()
{
    current = this;
}

FrameOutput::~FrameOutput()
{
    if (current == this)
        current = nullptr;
}

FrameOutput& FrameOutput::shared()
{
    if (!current)
        qFatal("No display has been chosen.");
    return *current;
}
