// A profile camera's own settings ("CameraParameters.ini") read into and
// written from the camera object; the settings layer knows only the values.
#pragma once

class Camera;

// Both ignore a null camera and every kind of camera but the profile camera.
void LoadProfileCameraSettings(Camera* camera);
void SaveProfileCameraSettings(Camera* camera);
