// One live view: the camera bound to it, its controls, the picture (or the
// profile plot) and a status line with the acquisition statistics.
//
// Frames reach it from the frame hub on the acquisition thread. The view
// converts a frame there, while the library's buffer is valid, and hands the
// result to the GUI thread through a queued signal. While a converted frame
// waits to be shown, newer frames are skipped: the screen never falls behind.
// No more than about 40 frames a second are converted; a screen shows no more.
#pragma once

#include <QFrame>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>

#include "DisplayFrame.h"
#include "FrameHub.h"
#include "RangeImageStack.h"

class ImageCanvas;
class LibrarySession;
class ProfilePlot;
class QLabel;
class QStackedWidget;
class ViewToolBar;

class CameraView : public QFrame, public FrameSink {
    Q_OBJECT
public:
    CameraView(LibrarySession& session, int number, QWidget* parent = nullptr);
    ~CameraView() override;

    const QString& Camera() const { return m_camera; }
    void Bind(const QString& camera);
    void SetFocused(bool focused);
    void SetKnownCameras(const QStringList& cameras);

    int Open();
    int Close();
    int StartGrab();
    int StopGrab();
    // The shown picture (or the plot) as PNG; false when nothing is shown or writing failed.
    bool SaveShownFrame(const QString& file) const;
    // "<image folder>/<camera>-<frame id>.png", the folder from the library's settings.
    QString SuggestedFileName() const;

    ImageCanvas* Canvas() const { return m_canvas; }
    ProfilePlot* Plot() const { return m_plot; }
    ViewToolBar* Controls() const { return m_controls; }
    quint64 ShownFrames() const { return m_shownFrames; }
    QString StatusText() const;

    void Consume(ZYLGENICAM::IImage& image, int imageMode) override;

public slots:
    void RefreshState();
    void OnStatistics(const QString& camera);
    void OnImageMode(const QString& camera, int mode);
    void OnShowMode(const QString& camera, int mode);
    void OnRenamed(const QString& oldId, const QString& newId);

signals:
    void focusRequested(CameraView* view);
    // Before CloseCamera: the camera's node map is about to go.
    void aboutToClose(const QString& camera);
    // After an open, close, start or stop.
    void cameraStateChanged(const QString& camera);
    void message(const QString& text);
    void frameReady(const DisplayFrame& frame);

private:
    void Show(const DisplayFrame& frame);
    void Report(const char* action, int result);
    void SaveWithDialog();
    void UpdateRegions();

    LibrarySession& m_session;
    const int m_number;
    QString m_camera;
    QStringList m_knownCameras;
    int m_kind = 0;
    int m_showMode = 0;
    bool m_focused = false;
    std::atomic<bool> m_framePending{false};
    std::atomic<std::int64_t> m_lastConversion{0}; // steady clock, ns
    std::atomic<bool> m_profileCamera{false};
    quint64 m_shownFrames = 0;
    quint64 m_shownFrameId = 0;
    RangeImageStack m_rangeImage;
    ViewToolBar* m_controls;
    QStackedWidget* m_pages;
    ImageCanvas* m_canvas;
    ProfilePlot* m_plot;
    QLabel* m_statistics;
    QLabel* m_cursor;
};
