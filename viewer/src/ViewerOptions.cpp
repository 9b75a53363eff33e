#include "ViewerOptions.h"

#include <QCommandLineParser>

ViewerOptions ViewerOptions::Parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Reference viewer of libViewerBiz3");
    parser.addHelpOption();
    const QCommandLineOption simulated("simulated", "Show the built-in simulated cameras (no network).");
    const QCommandLineOption open(
        "open", "Open <camera> (identifier, serial or name) in the next view; may be repeated.", "camera");
    const QCommandLineOption grab("grab", "Start grabbing the cameras given with --open.");
    const QCommandLineOption screenshot("screenshot", "Save the window as <file.png> and quit.", "file.png");
    const QCommandLineOption after("after", "Seconds before the screenshot (default 3).", "seconds");
    parser.addOptions({simulated, open, grab, screenshot, after});

    ViewerOptions options;
    if (!parser.parse(arguments)) {
        options.error = parser.errorText();
        return options;
    }
    if (parser.isSet("help")) {
        options.error = parser.helpText();
        return options;
    }
    options.simulated = parser.isSet(simulated);
    options.openCameras = parser.values(open);
    options.grab = parser.isSet(grab);
    options.screenshotFile = parser.value(screenshot);
    if (parser.isSet(after)) {
        bool ok = false;
        options.screenshotAfter = parser.value(after).toDouble(&ok);
        if (!ok || options.screenshotAfter < 0) {
            options.error = "--after needs a number of seconds";
        }
    }
    if (options.grab && options.openCameras.isEmpty()) {
        options.error = "--grab needs --open <camera>";
    }
    return options;
}
