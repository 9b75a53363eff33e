// The five level functions through which every part of the library reports
// what happens: one record in the rolling log file and, when asked, the same
// event forwarded to the host's logger listeners.
#pragma once

#include <cstddef>
#include <string>

// The application directory: filled by SetUpLogging, read by logging and by
// both settings files.
extern char libraryPath[1024];

namespace Utilities {

void LogDebug(const std::string& source, const std::string& message, int notify);
void LogInfo(const std::string& source, const std::string& message, int notify);
void LogWarning(const std::string& source, const std::string& message, int notify);
void LogError(const std::string& source, const std::string& message, int notify);
void LogDeadly(const std::string& source, const std::string& message, int notify);

// Computes the application directory into libraryPath and starts the rolling
// file "<dir>/Log/ZYLViewerLog.txt" (at most 20 files of maxFileBytes each).
// Until it runs, records are dropped but listeners are still notified.
void SetUpLogging(std::size_t maxFileBytes = 20971520);

// Starts (or restarts) the rolling file under "<directory>/Log" without
// touching libraryPath.
void StartLogFile(const std::string& directory, std::size_t maxFileBytes);

// The contents of libraryPath, or, before it is filled, the directory
// SetUpLogging would put there.
std::string ApplicationDirectory();

} // namespace Utilities
