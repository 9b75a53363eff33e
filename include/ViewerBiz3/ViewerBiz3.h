// ViewerBiz3: the business layer of a machine-vision camera viewer.
//
// This is the only header a host includes (<ViewerBiz3/ViewerBiz3.h>). It brings
// the interface enumerations, the fifteen listener interfaces and the image and
// chunk interfaces of delivered frames.
//
// Rules a host follows:
// - Call Init() once before anything else and UnInit() at the end; neither may
//   run concurrently with another call. Init() returns -1 on success and 0 when
//   the library could not start: test the result against 0.
// - Every other function may be called from any host thread. Results are int
//   codes: 0 success, -1 unknown device / not initialised / generic failure,
//   -2 wrong device kind or SDK-side refusal, -10 address conflict at open,
//   -4 to -9 node access errors, -11 / -12 camera node access refused / not open.
//   Nothing is thrown across this interface.
// - Listener callbacks run on library threads: images and statistics on a
//   camera's acquisition threads, device-list and camera-identifier changes on
//   the discovery thread, log lines on any thread, the rest on the calling host
//   thread. Listener objects stay owned by the host and must outlive their
//   registration.
// - Every frame delivered to IImageUpdate::OnImageUpdate (a ZYLGENICAM::IImage*,
//   or null) must be released exactly once with IImage::Release() by every
//   listener that received it; the buffer goes back to the acquisition stream
//   after the last of them released it (at once when no listener is registered).
// - Listeners may be registered and unregistered at any time, also while
//   cameras grab; once an unregister call returned, that listener is not called
//   again. A listener must not register or unregister on the list calling it.
// - A logger listener must not log through VLog... with notify set (it would
//   wait forever on the logger list it is being called from).
// - Settings live in "<application directory>/Configuration.ini" (read by Init,
//   written by UnInit only when the file exists); the log file is
//   "<application directory>/Log/ZYLViewerLog.txt". The application directory is
//   the directory of the running executable.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "ViewerBiz3Types.h"
#include "ViewerBiz3Listeners.h"
#include "ZylImage.h"

#define VIEWERBIZ3_API __attribute__((visibility("default")))

namespace ViewerBiz3 {

// ---- Lifecycle --------------------------------------------------------------

// Starts the camera SDK, the device manager (log file, background timer) and
// loads the settings. -1 when the device manager exists afterwards (success),
// 0 when it does not. Calling it again reloads the settings.
VIEWERBIZ3_API int Init();
// Drops every listener first, closes every device, saves the settings and stops
// the SDK. Returns 0. Afterwards only Init() may be called.
VIEWERBIZ3_API int UnInit();

// ---- Settings, layout and language ------------------------------------------

// -1 for a key outside 0-33. Values are kept as text and written by UnInit.
VIEWERBIZ3_API int SetParamterInfo(PARAMETER_INFO key, std::string value);
// Empty for a key outside 0-33.
VIEWERBIZ3_API std::string GetParamterInfo(PARAMETER_INFO key);
// Stores the layout and notifies ILayoutUpdate listeners. Returns 0.
VIEWERBIZ3_API int SetImgLayout(LAYOUT_TYPE layout);
VIEWERBIZ3_API LAYOUT_TYPE GetImgLayout();
// Stores the language and notifies ILangUpdate listeners. Returns 0.
VIEWERBIZ3_API int SetLang(std::string language);
VIEWERBIZ3_API std::string GetLang();

// ---- Device list and transport-layer selection ------------------------------

// Asks the discovery thread for a pass over the given transport types; the
// result arrives through IDeviceListUpdate. Returns the device manager's code.
VIEWERBIZ3_API int RefreshCameraList(int types);
// The transport-layer mask used by discovery (default 15: bit 1 GigE, 2 USB,
// 4 Camera Link, 8 simulated cameras). All bits set before Init.
VIEWERBIZ3_API unsigned long long GetTLTypeList();
// Stores the mask for the next pass and notifies ITLTypeUpdate listeners. Returns 0.
VIEWERBIZ3_API int SetTLTypeList(unsigned long long mask);
// Gives a GigE camera a new address; persistent is passed to the SDK unchanged.
VIEWERBIZ3_API int ModifyCameraIp(std::string id, const std::string& ip, const std::string& mask,
                                  const std::string& gateway, bool persistent);

// ---- Cameras (id: the identifier from the device list, or the camera's name) -

VIEWERBIZ3_API int OpenCamera(std::string id);
VIEWERBIZ3_API int CloseCamera(std::string id);
VIEWERBIZ3_API int StartGrab(std::string id);
VIEWERBIZ3_API int StopGrab(std::string id);
VIEWERBIZ3_API std::vector<std::string> GetOpenedCameraIds();
// A camera field as text; empty for an unknown camera or field.
VIEWERBIZ3_API std::string GetCameraInfo(std::string id, CAM_INFO field);
// Only fields 40-43, 50-57, 67 and 68 are settable (0 and an IAcqStatisticUpdate
// notification with true); any other field gives -1.
VIEWERBIZ3_API int SetCameraInfo(std::string id, CAM_INFO field, const std::string& value);
// Always 0; types outside 0-3 change nothing.
VIEWERBIZ3_API int SetFocus(FOCUS_TYPE type, std::string id);
// Writes "DeviceUserID" of an opened camera and renames it to newId + "(" + serial + ")".
VIEWERBIZ3_API int ModifyCameraId(std::string oldId, std::string newId);
// Profile cameras only (-2 otherwise).
VIEWERBIZ3_API int SetCameraImageMode(std::string id, int mode, bool notify);
VIEWERBIZ3_API int GetCameraImageMode(std::string id);
// Only notifies ISLImageShowModeUpdate listeners with (id, mode); returns 0.
VIEWERBIZ3_API int SetSLImageShowMode(std::string id, int mode);
VIEWERBIZ3_API int GetSLImageShowMode(std::string id);
// progress and done are written by the library while the upgrade runs.
VIEWERBIZ3_API int FirmwareUpgrade(std::string id, std::string file, int* progress, bool* done);

// ---- Cards and Camera Link ---------------------------------------------------

VIEWERBIZ3_API int GetCLProtocolsAndSerials(std::list<std::string>& protocols, std::list<std::string>& serials);
VIEWERBIZ3_API int OpenCard(std::string id);
VIEWERBIZ3_API int CloseCard(std::string id);
VIEWERBIZ3_API int OpenCLCamera(std::string id, std::string protocol, std::string serialPort);
VIEWERBIZ3_API int CloseCLCamera(std::string id);
VIEWERBIZ3_API std::vector<std::string> GetOpenedCardIds();
VIEWERBIZ3_API std::string GetCardInfo(std::string id, CARD_INFO field);

// ---- Features (node values are text: integers decimal, floats with six
// decimals, booleans read as "True"/"False" and written as integers) -----------

VIEWERBIZ3_API int GetCardNodeValue(std::string id, std::string node, std::string& value);
VIEWERBIZ3_API int SetCardNodeValue(std::string id, std::string node, std::string value);
VIEWERBIZ3_API int GetCameraNodeValue(std::string id, std::string node, std::string& value);
VIEWERBIZ3_API int SetCameraNodeValue(std::string id, std::string node, std::string value);
// The GenICam XML description (zero-terminated text) of an opened device's
// module selected by type (1: module 0, 2: the card's, 3: the feature module).
// Null before Init, for type 0 or an unknown device, or when the module has
// none. Owned by the library; valid while the device stays open.
VIEWERBIZ3_API const char* GetAttrLayoutXML(FOCUS_TYPE type, std::string id);
// An opaque handle: the GenApi_3_4::INodeMap* of an opened device's module
// 0-4 (a card always answers with its module 2). Null before Init or when not
// found. Owned by the library; valid while the device stays open.
VIEWERBIZ3_API void* GetAttrNodeMap(FOCUS_TYPE type, std::string id, NodeMapType which);

// ---- Relays from host to host through the library's listeners ----------------

// IImportUpdate listeners receive text.
VIEWERBIZ3_API void NotifyImportUpdate(std::string text);
// ICorrectionUpdate listeners receive the arguments. Returns 0.
VIEWERBIZ3_API int NotifyCorrection(std::string id, int kind, float value, void* data);
// IROIDrawUpdate listeners receive operation 0 and may write index and result,
// which the caller reads afterwards (untouched when nobody listens). Returns 0.
VIEWERBIZ3_API int DrawROI(std::string id, int x, int y, int width, int height, int& index, bool& result, int extra1,
                           int extra2);
// Operation 1 (move or resize); what listeners write back is discarded. Returns 0.
VIEWERBIZ3_API int SetROIPos(std::string id, int index, int x, int y, int width, int height);
// Operation 2 (remove); what listeners write back is discarded. Returns 0.
VIEWERBIZ3_API int RomoveROI(std::string id, int index);

// ---- Listener registration: 0, or -1 for a null listener. Identifiers, node
// names and intervals given here are not kept: a listener hears every device. --

VIEWERBIZ3_API int RegisterTLTypeUpdateListener(ITLTypeUpdate* listener);
VIEWERBIZ3_API int UnRegisterTLTypeUpdateListerner(ITLTypeUpdate* listener);
VIEWERBIZ3_API int RegisterDeviceListUpdateListener(IDeviceListUpdate* listener);
VIEWERBIZ3_API int UnRegisterDeviceListUpdateListener(IDeviceListUpdate* listener);
VIEWERBIZ3_API int RegisterFocusUpdateListener(IFocusUpdate* listener);
VIEWERBIZ3_API int UnRegisterFocusUpdateListener(IFocusUpdate* listener);
VIEWERBIZ3_API int RegisterLayoutUpdateListener(ILayoutUpdate* listener);
VIEWERBIZ3_API int UnRegisterLayoutUpdateListener(ILayoutUpdate* listener);
VIEWERBIZ3_API int RegisterImageUpdateListener(std::string id, IImageUpdate* listener);
VIEWERBIZ3_API int UnRegisterImageUpdateListener(std::string id, IImageUpdate* listener);
VIEWERBIZ3_API int RegisterImageModeUpdateListener(IImageModeUpdate* listener);
VIEWERBIZ3_API int UnRegisterImageModeUpdateListener(IImageModeUpdate* listener);
VIEWERBIZ3_API int RegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener);
VIEWERBIZ3_API int UnRegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener);
VIEWERBIZ3_API int RegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener);
VIEWERBIZ3_API int UnRegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener);
VIEWERBIZ3_API int RegisterCardTimerNodeUpdateListener(std::string id, std::string node, int interval,
                                                       ITimerNodeUpdate* listener);
VIEWERBIZ3_API int UnRegisterCardTimerNodeUpdateListener(std::string id, std::string node, int interval,
                                                         ITimerNodeUpdate* listener);
VIEWERBIZ3_API int RegisterCameraTimerNodeUpdateListener(std::string id, std::string node, int interval,
                                                         ITimerNodeUpdate* listener);
VIEWERBIZ3_API int UnRegisterCameraTimerNodeUpdateListener(std::string id, std::string node, int interval,
                                                           ITimerNodeUpdate* listener);
VIEWERBIZ3_API int RegisterImportUpdateListener(IImportUpdate* listener);
VIEWERBIZ3_API int UnRegisterImportUpdateListener(IImportUpdate* listener);
VIEWERBIZ3_API int RegisterLoggerUpdateListener(ILoggerUpdate* listener);
VIEWERBIZ3_API int UnRegisterLoggerUpdateListener(ILoggerUpdate* listener);
VIEWERBIZ3_API int RegisterROIUpdateListener(IROIDrawUpdate* listener);
VIEWERBIZ3_API int UnRegisterROIUpdateListener(IROIDrawUpdate* listener);
VIEWERBIZ3_API int RegisterCorrectionUpdateListener(ICorrectionUpdate* listener);
VIEWERBIZ3_API int UnRegisterCorrectionUpdateListener(ICorrectionUpdate* listener);
VIEWERBIZ3_API int RegisterLangUpdateListener(ILangUpdate* listener);
VIEWERBIZ3_API int UnRegisterLangUpdateListener(ILangUpdate* listener);
VIEWERBIZ3_API int RegisterCameraIdUpdateListener(ICameraIdUpdate* listener);
VIEWERBIZ3_API int UnRegisterCameraIdUpdateListener(ICameraIdUpdate* listener);

// ---- Logging from the host into the library's log file; notify non-zero also
// informs ILoggerUpdate listeners. Each returns 0. ------------------------------

VIEWERBIZ3_API int VLogDebug(const std::string& source, const std::string& message, int notify);
VIEWERBIZ3_API int VLogInfo(const std::string& source, const std::string& message, int notify);
VIEWERBIZ3_API int VLogWarning(const std::string& source, const std::string& message, int notify);
VIEWERBIZ3_API int VLogError(const std::string& source, const std::string& message, int notify);
VIEWERBIZ3_API int VLogDeadly(const std::string& source, const std::string& message, int notify);

// ---- Kept for interface compatibility; they do nothing else. -------------------

VIEWERBIZ3_API int SetImgZoom(std::string id, double zoom); // 0
VIEWERBIZ3_API int SetDefaultLoadMode(int mode);            // -1
VIEWERBIZ3_API int GetDefaultLoadMode();                    // -1

} // namespace ViewerBiz3
