// The controls above one view: which camera it shows, open/close/start/stop,
// the profile camera's image mode, the show-mode camera's show mode, the ROI
// tool, fit and save.
#pragma once

#include <QStringList>
#include <QWidget>

class QComboBox;
class QToolButton;

class ViewToolBar : public QWidget {
    Q_OBJECT
public:
    // Camera kinds as the library reports them (CAM_INFO kind).
    static constexpr int ProfileKind = 1;
    static constexpr int ShowModeKind = 5;

    explicit ViewToolBar(QWidget* parent = nullptr);

    void SetCameras(const QStringList& cameras, const QString& current);
    void SetState(bool bound, bool opened, bool grabbing);
    void SetKind(int kind);
    void SetImageMode(int mode);
    void SetShowMode(int mode);
    QComboBox* ImageModeBox() const { return m_imageMode; }

signals:
    void cameraChosen(const QString& camera);
    void openClicked();
    void closeClicked();
    void startClicked();
    void stopClicked();
    void imageModeChosen(int mode);
    void showModeChosen(int mode);
    void roiToolToggled(bool on);
    void fitClicked();
    void saveClicked();

private:
    QToolButton* AddButton(const QString& text, const QString& tip, const char* name);

    QComboBox* m_camera;
    QToolButton* m_open;
    QToolButton* m_close;
    QToolButton* m_start;
    QToolButton* m_stop;
    QComboBox* m_imageMode;
    QComboBox* m_showMode;
    QToolButton* m_roi;
    QToolButton* m_save;
};
