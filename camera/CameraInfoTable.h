// The texts a host reads from a camera by CAM_INFO number (identity, addresses, host and profile
// texts), stored by number with each number's default and who may write it. The flags and the
// statistics are not texts: Camera and AcquisitionStatistics answer for them.
#pragma once

#include <array>
#include <mutex>
#include <string>

#include "ViewerBiz3Types.h"

class CameraInfoTable {
public:
    CameraInfoTable();

    // The text under the number; empty for a number that holds no text.
    std::string Get(ViewerBiz3::CAM_INFO info) const;
    // Writes any text field, name and list key included; false for a number that holds no text.
    bool Put(ViewerBiz3::CAM_INFO info, const std::string& text);
    // The texts the host may write through SetInfo.
    static bool IsHostSettable(ViewerBiz3::CAM_INFO info);
    // The texts SetText may write: every text field but name, list key and the read-only aliases.
    static bool IsWritable(ViewerBiz3::CAM_INFO info);
    // The host texts 40-43 go back to their placeholders when the camera closes.
    void ResetHostTexts();
    // Renames the camera to prefix and its virtual suffix, its key too, and marks its device texts
    // as unknown; returns the new key.
    std::string BecomePlaceholder(const std::string& prefix);

    // Texts that no CAM_INFO number reaches; they sit behind the numbered ones.
    enum Unnumbered : std::size_t {
        KEY = ViewerBiz3::CAM_TEXT68 + 1,
        HOST_INTERFACE_ADDRESS,
        VIRTUAL_SUFFIX,
    };
    std::string Get(Unnumbered slot) const;
    void Put(Unnumbered slot, const std::string& text);

private:
    static constexpr std::size_t SLOT_COUNT = VIRTUAL_SUFFIX + 1;
    // The number whose text an alias reads; the number itself when it is no alias.
    static std::size_t SlotOf(ViewerBiz3::CAM_INFO info);
    static bool IsText(ViewerBiz3::CAM_INFO info);

    mutable std::mutex m_mutex;
    std::array<std::string, SLOT_COUNT> m_texts;
};
