// What the viewer was asked to do on its command line.
#pragma once

#include <QString>
#include <QStringList>

struct ViewerOptions {
    bool simulated = false;     // list the built-in simulated cameras, and only those
    QStringList openCameras;    // cameras to bind to the first views and open, in order
    bool grab = false;          // start grabbing the opened cameras
    QString screenshotFile;     // save the window here and quit
    double screenshotAfter = 3; // seconds after start
    QString error;              // non-empty when the command line was not understood

    static ViewerOptions Parse(const QStringList& arguments);
};
