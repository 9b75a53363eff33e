// vb3-demo: a command-line host of libViewerBiz3. Without arguments it tours
// the built-in simulated cameras, which send nothing on any network.
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "DeviceCommands.h"
#include "LibrarySession.h"

namespace {

constexpr unsigned long long TransportGigE = 1;
constexpr unsigned long long TransportUsb = 2;
constexpr unsigned long long TransportSimulated = 8;

const char* const Usage =
    "Usage: vb3-demo [--transport sim|gige|usb[,...]] [--verbose] [command]\n"
    "Commands:\n"
    "  demo                                   tour the simulated cameras (the default)\n"
    "  list                                   the device list\n"
    "  info <camera>                          camera details and its feature tree\n"
    "  get <camera> <feature>                 read a feature\n"
    "  set <camera> <feature> <value>         write a feature\n"
    "  rename <camera> <name>                 give the camera a new user name\n"
    "  ip <camera> <address> <mask> <gateway> [--persistent]\n"
    "                                         give a GigE camera a new address (even on a foreign\n"
    "                                         subnet); --persistent also stores it in the camera\n"
    "  grab <camera> (--frames N | --seconds S) [--output file.png]\n"
    "                                         grab with live statistics, save the last frame\n"
    "<camera> is the identifier from the list, the serial number or the name.\n"
    "Only simulated cameras are searched unless --transport names gige or usb.\n";

struct Options {
    unsigned long long transports = TransportSimulated;
    bool verbose = false;
    std::vector<std::string> words; // the command and its arguments
    GrabLimit limit;
    bool hasLimit = false;
    bool persistent = false;
    std::string output;
};

bool ParseTransports(const std::string& text, unsigned long long& mask)
{
    mask = 0;
    std::istringstream list(text);
    std::string name;
    while (std::getline(list, name, ',')) {
        if (name == "sim") {
            mask |= TransportSimulated;
        } else if (name == "gige") {
            mask |= TransportGigE;
        } else if (name == "usb") {
            mask |= TransportUsb;
        } else {
            return false;
        }
    }
    return mask != 0;
}

bool ParsePositiveNumber(const std::string& text, double& value)
{
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0' && value > 0;
}

bool ParseOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool hasValue = i + 1 < argc;
        if (word == "--verbose") {
            options.verbose = true;
        } else if (word == "--persistent") {
            options.persistent = true;
        } else if (word == "--transport" && hasValue) {
            if (!ParseTransports(argv[++i], options.transports)) {
                return false;
            }
        } else if ((word == "--frames" || word == "--seconds") && hasValue) {
            options.limit.bySeconds = word == "--seconds";
            options.hasLimit = ParsePositiveNumber(argv[++i], options.limit.amount);
            if (!options.hasLimit) {
                return false;
            }
        } else if (word == "--output" && hasValue) {
            options.output = argv[++i];
        } else if (word.rfind("--", 0) == 0) {
            return false;
        } else {
            options.words.push_back(word);
        }
    }
    return true;
}

// The expected number of words for each command, the command included.
bool ArgumentsFit(const std::vector<std::string>& words)
{
    const std::string& command = words[0];
    const std::size_t count = words.size();
    return ((command == "demo" || command == "list") && count == 1) ||
           ((command == "info" || command == "grab") && count == 2) || (command == "get" && count == 3) ||
           (command == "rename" && count == 3) || (command == "set" && count == 4) || (command == "ip" && count == 5);
}

int RunCommand(LibrarySession& session, const Options& options)
{
    const std::vector<std::string>& words = options.words;
    const std::string& command = words[0];
    if (command == "demo") {
        return RunDemo(session);
    }
    if (command == "list") {
        return ListDevices(session);
    }
    if (command == "info") {
        return ShowCameraInfo(session, words[1]);
    }
    if (command == "get") {
        return GetFeature(session, words[1], words[2]);
    }
    if (command == "set") {
        return SetFeature(session, words[1], words[2], words[3]);
    }
    if (command == "rename") {
        return RenameCamera(session, words[1], words[2]);
    }
    if (command == "ip") {
        return ChangeAddress(session, words[1], {words[2], words[3], words[4], options.persistent});
    }
    return GrabToPng(session, words[1], options.limit, options.output);
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        std::cerr << Usage;
        return 2;
    }
    if (options.words.empty()) {
        options.words.push_back("demo");
    }
    if (!ArgumentsFit(options.words) || (options.words[0] == "grab" && !options.hasLimit)) {
        std::cerr << Usage;
        return 2;
    }
    if ((options.transports & TransportSimulated) != 0) {
        // All three simulated kinds (area, show-mode, profile); kept if the user chose.
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 0);
    }

    LibrarySession session(options.transports, options.verbose);
    if (!session.Started()) {
        std::cerr << "The library did not start.\n";
        return 1;
    }
    if (!session.RefreshDeviceList(std::chrono::seconds(20))) {
        std::cerr << "No device list arrived within 20 s.\n";
        return 1;
    }
    return RunCommand(session, options);
}
