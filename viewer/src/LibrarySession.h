// The library from Init to UnInit with the viewer's listeners registered in
// between: the notifications, the frame hub (registered before any grab and
// removed after the views stopped theirs) and the ROI registry.
#pragma once

#include <QString>

#include <memory>

#include "FrameHub.h"
#include "LibraryEvents.h"
#include "RoiRegistry.h"

class LibrarySession {
public:
    // simulated: list the built-in simulated cameras and search nothing else.
    explicit LibrarySession(bool simulated);
    ~LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;

    bool Started() const { return m_started; }
    LibraryEvents& Events() { return *m_events; }
    FrameHub& Frames() { return m_frames; }
    RoiRegistry& Rois() { return *m_rois; }

    // The library keeps its settings here only when the file exists, so the
    // viewer puts an empty one in place on its first start.
    static QString SettingsFile();

private:
    bool m_started = false;
    FrameHub m_frames;
    std::unique_ptr<LibraryEvents> m_events;
    std::unique_ptr<RoiRegistry> m_rois;
};
