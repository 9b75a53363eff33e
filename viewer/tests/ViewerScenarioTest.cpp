// A user's first session with the viewer on the simulated cameras: grab the
// area camera and watch it, change its width in the property grid, switch the
// profile camera's image mode, keep a screenshot.
#include <QAction>
#include <QComboBox>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>

#include <algorithm>

#include "CameraView.h"
#include "DarkTheme.h"
#include "DeviceTree.h"
#include "FeatureTree.h"
#include "ImageCanvas.h"
#include "LibrarySession.h"
#include "MainWindow.h"
#include "ViewGrid.h"
#include "ViewToolBar.h"

namespace {

constexpr int Patience = 20000;  // ms; generous for a loaded machine

quint64 FramesInStatus(const CameraView& view)
{
    const QString text = view.StatusText();
    return text.startsWith("Frames ") ? text.section(' ', 1, 1).toULongLong() : 0;
}

bool ShowsStructure(const QImage& picture)
{
    if (picture.isNull()) {
        return false;
    }
    const QImage gray = picture.convertToFormat(QImage::Format_Grayscale8);
    const uchar* first = gray.constScanLine(0);
    const auto [low, high] = std::minmax_element(first, first + gray.width());
    return *high - *low > 32;
}

void Click(CameraView& view, const char* button)
{
    QTest::mouseClick(view.Controls()->findChild<QToolButton*>(button), Qt::LeftButton);
}

std::string NodeValue(const QString& camera, const char* node)
{
    std::string value;
    ViewerBiz3::GetCameraNodeValue(camera.toStdString(), node, value);
    return value;
}

} // namespace

class ViewerScenario : public QObject {
    Q_OBJECT
private slots:
    void aUserGrabsConfiguresAndSwitchesModes();
};

void ViewerScenario::aUserGrabsConfiguresAndSwitchesModes()
{
    qRegisterMetaType<DisplayFrame>();
    DarkTheme::Apply(*qApp);
    LibrarySession session(true);
    QVERIFY(session.Started());
    MainWindow window(session, ViewerOptions{});
    window.show();
    QTRY_VERIFY_WITH_TIMEOUT(window.Devices()->Cameras().size() >= 3, Patience);
    const QString area = window.Devices()->Resolve("SimArea");
    const QString profile = window.Devices()->Resolve("SimProfile");
    QVERIFY(!area.isEmpty() && !profile.isEmpty());

    CameraView& areaView = *window.Grid()->View(0);
    window.ShowInFocusedView(area);
    Click(areaView, "viewStart");
    QTRY_VERIFY_WITH_TIMEOUT(ShowsStructure(areaView.Canvas()->Picture()), Patience);
    QTRY_VERIFY_WITH_TIMEOUT(FramesInStatus(areaView) > 0, Patience);
    const quint64 counted = FramesInStatus(areaView);
    QTRY_VERIFY_WITH_TIMEOUT(FramesInStatus(areaView) > counted, Patience);
    Click(areaView, "viewStop");

    auto* width = qobject_cast<QSpinBox*>(window.Features()->EditorOf("Width"));
    QVERIFY(width != nullptr && width->isEnabled());
    width->setValue(320);
    QCOMPARE(NodeValue(area, "Width"), std::string("320"));
    QCOMPARE(window.Features()->LastMessage(), QString());

    window.findChild<QAction*>("layout2")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(window.Grid()->ViewCount(), 2, Patience);
    CameraView& profileView = *window.Grid()->View(1);
    window.Grid()->Select(&profileView);
    window.ShowInFocusedView(profile);
    QComboBox* mode = profileView.Controls()->ImageModeBox();
    QVERIFY(mode->isVisible());
    emit mode->activated(0);
    QCOMPARE(ViewerBiz3::GetCameraImageMode(profile.toStdString()), 0);
    Click(profileView, "viewStart");
    Click(areaView, "viewStart");
    QTRY_VERIFY_WITH_TIMEOUT(ShowsStructure(profileView.Canvas()->Picture()) && profileView.ShownFrames() > 8, Patience);
    QTRY_VERIFY_WITH_TIMEOUT(areaView.Canvas()->Picture().width() == 320, Patience);

    const QString screenshot = qEnvironmentVariable("VB3_VIEWER_SCREENSHOT");
    QVERIFY(window.grab().save(screenshot, "PNG"));
}

QTEST_MAIN(ViewerScenario)
#include "ViewerScenarioTest.moc"
