#include "support/scripted/ScriptedTypes.h"

#include <utility>

namespace Scripted {

FrameStep FrameStep::Frame(uint64_t frameId, uint64_t width, uint64_t height, uint64_t pixelFormat)
{
    FrameStep step;
    step.frameId = frameId;
    step.width = width;
    step.height = height;
    step.pixelFormat = pixelFormat;
    return step;
}

FrameStep FrameStep::Timeout()
{
    FrameStep step;
    step.kind = Kind::Timeout;
    step.code = ZYLGENICAM::SDK_TIMEOUT;
    return step;
}

FrameStep FrameStep::Code(int code)
{
    FrameStep step;
    step.kind = Kind::Code;
    step.code = code;
    return step;
}

FrameStep& FrameStep::Invalid()
{
    valid = false;
    return *this;
}

FrameStep& FrameStep::WithImage()
{
    withImage = true;
    return *this;
}

FrameStep& FrameStep::Chunks(std::vector<uint64_t> sizes)
{
    chunkSizes = std::move(sizes);
    return *this;
}

FrameStep& FrameStep::After(std::chrono::milliseconds wait)
{
    delay = wait;
    return *this;
}

FrameScript FrameScript::Empty()
{
    FrameScript script;
    script.steps.clear();
    return script;
}

FrameScript& FrameScript::Add(FrameStep step)
{
    steps.push_back(std::move(step));
    return *this;
}

FrameScript& FrameScript::AddFrames(uint64_t firstId, uint64_t count, uint64_t width, uint64_t height,
                                    uint64_t pixelFormat)
{
    for (uint64_t i = 0; i < count; ++i) {
        steps.push_back(FrameStep::Frame(firstId + i, width, height, pixelFormat));
    }
    return *this;
}

FrameScript& FrameScript::Then(WhenExhausted behaviour)
{
    whenExhausted = behaviour;
    return *this;
}

FrameScript& FrameScript::Period(std::chrono::milliseconds period)
{
    framePeriod = period;
    return *this;
}

} // namespace Scripted
