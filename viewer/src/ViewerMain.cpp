// vb3-viewer: the reference viewer of libViewerBiz3.
#include <QApplication>
#include <QTimer>

#include <cstdio>

#include "DarkTheme.h"
#include "LibrarySession.h"
#include "MainWindow.h"
#include "ViewerOptions.h"

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("vb3-viewer");
    const ViewerOptions options = ViewerOptions::Parse(QApplication::arguments());
    if (!options.error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(options.error));
        return 2;
    }
    DarkTheme::Apply(application);

    LibrarySession session(options.simulated);
    if (!session.Started()) {
        std::fprintf(stderr, "vb3-viewer: the library did not start\n");
        return 1;
    }
    int result = 0;
    {
        MainWindow window(session, options);
        window.show();
        if (!options.screenshotFile.isEmpty()) {
            QTimer::singleShot(int(options.screenshotAfter * 1000), &window, [&] {
                if (!window.grab().save(options.screenshotFile, "PNG")) {
                    std::fprintf(stderr, "vb3-viewer: could not write %s\n", qPrintable(options.screenshotFile));
                    result = 1;
                }
                QApplication::quit();
            });
        }
        const int exitCode = QApplication::exec();
        result = result != 0 ? result : exitCode;
    }
    return result;
}
