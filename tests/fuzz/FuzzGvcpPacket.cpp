// GVCP packets as anything on the network might send them, read as an acknowledge of each code the
// library waits for (with the input's own request id, so header checks pass as often as they can),
// an accepted payload read as discovery data. Nothing reads past the input or outside its field.
#include <cstddef>
#include <cstdint>

#include "FuzzExpect.h"
#include "sdk/aravis/GvcpPacket.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace ZYLGENICAM::Gvcp;
    const uint16_t requestId = size >= kHeaderSize ? uint16_t((data[6] << 8) | data[7]) : 1;
    for (uint16_t code : {DISCOVERY_ACK, FORCEIP_ACK, READREG_ACK}) {
        std::optional<Acknowledge> ack = ParseAcknowledge(data, size, code, requestId);
        if (!ack)
            continue;
        FuzzExpect(size >= kHeaderSize && ack->payload.size() <= size - kHeaderSize, "payload inside the packet");
        std::optional<DiscoveryData> discovery = ParseDiscoveryData(ack->payload);
        if (discovery) {
            FuzzExpect(discovery->model.size() <= 32 && discovery->serialNumber.size() <= 16 &&
                           discovery->userDefinedName.size() <= 16 && discovery->manufacturerInfo.size() <= 48,
                       "texts inside their fields");
            FuzzExpect(MacText(discovery->mac).size() == 17, "a MAC address of six bytes");
        }
    }
    return 0;
}
