#pragma once

#include <mutex>

namespace GenApi_3_4 {

// Aravis's GenICam document parser is not safe to run on two threads at once: two cameras opened
// together (each parses its description while Aravis creates the device) crash or come back with
// half a node tree. Every place that makes Aravis parse a description holds this lock meanwhile.
std::unique_lock<std::mutex> LockGenicamParsing();

} // namespace GenApi_3_4
