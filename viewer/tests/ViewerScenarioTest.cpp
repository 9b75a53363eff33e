// A user's first session with the viewer on the simulated cameras: grab the
// area camera and watch it, change its width in the property grid, switch the
// profile camera's image mode, keep a screenshot.
#include <QAction>
#include <QComboBox>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <utility>

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

constexpr int Patience = 20000; // ms; generous for a loaded machine

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
    areaView.Controls()->findChild<QToolButton*>("viewRoi")->setChecked(true);
    const QPoint middle = areaView.Canvas()->rect().center();
    QTest::mousePress(areaView.Canvas(), Qt::LeftButton, {}, middle - QPoint(60, 40));
    QTest::mouseMove(areaView.Canvas(), middle + QPoint(60, 40));
    QTest::mouseRelease(areaView.Canvas(), Qt::LeftButton, {}, middle + QPoint(60, 40));
    QCOMPARE(session.Rois().Regions(area).size(), 1);
    Click(areaView, "viewStop");

    auto* width = qobject_cast<QSpinBox*>(window.Features()->EditorOf("Width"));
    QVERIFY(width != nullptr && width->isEnabled());
    width->setValue(320);
    QCOMPARE(NodeValue(area, "Width"), std::string("320"));
    QCOMPARE(window.Features()->LastMessage(), QString());

    // Sixteen-bit frames keep their sensor values for the cursor; Bayer frames come out in colour.
    const std::pair<const char*, bool (*)(const ImageCanvas&)> formats[] = {
        {"Mono16", [](const ImageCanvas& canvas) { return !canvas.SensorValues().isNull(); }},
        {"BayerRG8", [](const ImageCanvas& canvas) { return canvas.Picture().format() == QImage::Format_RGB888; }}};
    for (const auto& [format, shownRight] : formats) {
        auto* pixelFormat = qobject_cast<QComboBox*>(window.Features()->EditorOf("PixelFormat"));
        emit pixelFormat->activated(pixelFormat->findText(format));
        QCOMPARE(NodeValue(area, "PixelFormat"), std::string(format));
        Click(areaView, "viewStart");
        QTRY_VERIFY_WITH_TIMEOUT(shownRight(*areaView.Canvas()) && ShowsStructure(areaView.Canvas()->Picture()),
                                 Patience);
        Click(areaView, "viewStop");
    }

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
    QTRY_VERIFY_WITH_TIMEOUT(ShowsStructure(profileView.Canvas()->Picture()) && profileView.ShownFrames() > 8,
                             Patience);
    QTRY_VERIFY_WITH_TIMEOUT(areaView.Canvas()->Picture().width() == 320, Patience);

    const QString screenshot = qEnvironmentVariable("VB3_VIEWER_SCREENSHOT");
    QVERIFY(window.grab().save(screenshot, "PNG"));
}

QTEST_MAIN(ViewerScenario)
#include "ViewerScenarioTest.moc"
