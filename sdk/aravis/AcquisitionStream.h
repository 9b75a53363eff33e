// One acquisition's Aravis stream and its buffer pool. Images share ownership of it, so a frame
// stays valid after StopGrabbing and can be released after the camera is gone: the stream (and
// its buffers) is freed when the camera and the last image have let go of it.
#pragma once

#include <arv.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "sdk/aravis/GObjectPtr.h"

namespace ZYLGENICAM {

class AcquisitionStream {
public:
    // Takes the stream's reference and queues poolSize buffers of bufferSize bytes. Images share
    // ownership; once the device is lost, the last owner, whichever thread it is on, hands the
    // stream to the teardown worker, since Aravis's teardown retries the dead device for seconds.
    static std::shared_ptr<AcquisitionStream> Create(ArvStream* stream, std::size_t bufferSize, unsigned poolSize);

    AcquisitionStream(const AcquisitionStream&) = delete;
    AcquisitionStream& operator=(const AcquisitionStream&) = delete;

    // Null when no frame came within the timeout.
    ArvBuffer* Pop(uint64_t timeoutMs);
    void Push(ArvBuffer* buffer);

    ArvStream* Stream() const { return m_stream.get(); }

    // The device went away: the stream is to be torn down on the worker, under this device key.
    void MarkDeviceLost(std::string teardownKey);

    // A 64-bit id for a device frame id: GigE Vision block ids are 16-bit and wrap from 65535
    // to 1, so each wrap adds 65535 and the ids keep counting.
    uint64_t ContinuousFrameId(uint64_t deviceFrameId);

private:
    AcquisitionStream(ArvStream* stream, std::size_t bufferSize, unsigned poolSize);
    static void Destroy(AcquisitionStream* stream);

    GObjectPtr<ArvStream> m_stream;
    // Written once, before m_deviceLost is set.
    std::string m_teardownKey;
    std::atomic<bool> m_deviceLost{false};
    std::mutex m_frameIdMutex;
    bool m_hasPreviousId = false;
    uint64_t m_previousDeviceId = 0;
    uint64_t m_wrapOffset = 0;
};

} // namespace ZYLGENICAM
