// Enumerations of the ViewerBiz3 interface. Member names are ours; the values
// are fixed by the interface and must never change.
#pragma once

namespace ViewerBiz3 {

// Kind of device a focus, description or node-map request is about (valid 0-3).
enum FOCUS_TYPE : int {
    FOCUS_NONE = 0,            // no device node map
    FOCUS_CAMERA = 1,          // a camera: its first SDK node map (module 0)
    FOCUS_CARD = 2,            // a frame-grabber card: the card's node map
    FOCUS_CAMERA_FEATURES = 3, // a camera: its feature node map (module 3)
};

// Which of the five SDK node maps of an opened device is wanted (0-4).
enum NodeMapType : int {
    NODEMAP_MODULE0 = 0,
    NODEMAP_MODULE1 = 1,
    NODEMAP_MODULE2 = 2, // auxiliary (card / transport) node map
    NODEMAP_MODULE3 = 3, // the device's own feature node map
    NODEMAP_MODULE4 = 4,
};

// Image layout chosen by the viewer; the library stores any integer.
enum LAYOUT_TYPE : int {
    LAYOUT_DEFAULT = 1,
};

// Camera fields read by GetCameraInfo and written by SetCameraInfo.
enum CAM_INFO : int {
    CAM_NAME = 0,
    CAM_LIST_KEY = 1,
    CAM_AVAILABLE = 2,
    CAM_ONLINE = 3,
    CAM_OPENED = 4,
    CAM_FLAG3 = 5,
    CAM_KIND = 6,
    CAM_GRABBING = 10,
    CAM_FRAME_COUNT = 11,
    CAM_FRAME_RATE = 12,
    CAM_BANDWIDTH = 13,
    CAM_STAT14 = 14,
    CAM_STAT15 = 15,
    CAM_STAT16 = 16,
    CAM_ERROR_COUNT = 17,
    CAM_STAT18 = 18,
    CAM_STAT19 = 19,
    CAM_STAT20 = 20,
    CAM_STAT21 = 21,
    CAM_DISPLAY_RATE = 22,
    CAM_SAME_SEGMENT = 30,
    CAM_MAC = 31,
    CAM_IP = 32,
    CAM_MASK = 33,
    CAM_GATEWAY = 34,
    CAM_MODEL_NAME = 35,
    CAM_DEVICE_TEXT = 36,
    CAM_DEVICE_TEXT2 = 37,
    CAM_SERIAL = 38,
    CAM_HOST_TEXT40 = 40,
    CAM_HOST_TEXT41 = 41,
    CAM_HOST_TEXT42 = 42,
    CAM_HOST_TEXT43 = 43,
    CAM_IMAGE_BITS = 50,
    CAM_SAMPLING_RATIO = 51,
    CAM_CONTOUR_SPACER = 52,
    CAM_REAL_COLOR = 53,
    CAM_PROFILE_TEXT54 = 54,
    CAM_Z_UP_SIZE = 55,
    CAM_Z_DOWN_SIZE = 56,
    CAM_ACQ_LIMIT = 57,
    CAM_OFFSET_Y = 58,
    CAM_TEXT59 = 59,
    CAM_TEXT60 = 60,
    CAM_TEXT61 = 61,
    CAM_MODEL_NAME_ALT = 62,
    CAM_DEVICE_TEXT_ALT = 63,
    CAM_SERIAL_ALT = 64,
    CAM_CL_PROTOCOL = 65,
    CAM_CL_SERIAL_PORT = 66,
    CAM_TEXT67 = 67,
    CAM_TEXT68 = 68,
};

// Card (frame grabber or network adapter) fields read by GetCardInfo (0-19).
enum CARD_INFO : int {
    CARD_KEY = 0,
    CARD_TYPE = 1,
    CARD_FLAG2 = 2,
    CARD_OPENED = 3,
    CARD_FLAG4 = 4,
    CARD_IN_USE = 5,
    CARD_INTERFACE_NAME = 6,
    CARD_MAC = 7,
    CARD_IP = 8,
    CARD_MASK = 9,
    CARD_GATEWAY = 10,
    CARD_TEXT11 = 11,
    CARD_TEXT12 = 12,
    CARD_TEXT13 = 13,
    CARD_TEXT14 = 14,
    CARD_TEXT15 = 15,
    CARD_TEXT16 = 16,
    CARD_TEXT17 = 17,
    CARD_TEXT18 = 18,
    CARD_TEXT19 = 19,
};

// Keys of the application settings (0-33), in "Configuration.ini" order.
enum PARAMETER_INFO : int {
    PARAM_IMAGE_PATH_AUTO = 0,
    PARAM_IMAGE_PATH = 1,
    PARAM_IMAGE_FILE_SAVE_PREFIX = 2,
    PARAM_IMAGE_FILE_SAVE_FORMAT = 3,
    PARAM_IMAGE_2D_SAVE_FORMAT = 4,
    PARAM_IMAGE_2D_SAVE_QUALITY = 5,
    PARAM_IMAGE_2D_MULTI_SAVE_STRATEGY = 6,
    PARAM_IMAGE_2D_MULTI_SAVE_INTERVAL_FRAME_COUNT = 7,
    PARAM_IMAGE_2D_MULTI_SAVE_INTERVAL_TIME = 8,
    PARAM_IMAGE_2D_MULTI_SAVE_TIME_LIMIT_ENABLE = 9,
    PARAM_IMAGE_2D_MULTI_SAVE_TIME_LIMIT = 10,
    PARAM_IMAGE_2D_MULTI_SAVE_LIMIT_NUMBER_ENABLE = 11,
    PARAM_IMAGE_2D_MULTI_SAVE_LIMIT_NUMBER = 12,
    PARAM_IMAGE_CONTOUR_HIGH_FORMAT_ENABLE = 13,
    PARAM_IMAGE_CONTOUR_HIGH_FORMAT = 14,
    PARAM_IMAGE_CONTOUR_BRIGHTNESS_FORMAT_ENABLE = 15,
    PARAM_IMAGE_CONTOUR_BRIGHTNESS_FORMAT = 16,
    PARAM_IMAGE_3D_HIGH_FORMAT_ENABLE = 17,
    PARAM_IMAGE_3D_HIGH_FORMAT = 18,
    PARAM_IMAGE_3D_BRIGHTNESS_FORMAT_ENABLE = 19,
    PARAM_IMAGE_3D_BRIGHTNESS_FORMAT = 20,
    PARAM_IMAGE_SAVE_COUNT = 21,
    PARAM_ACQUIRE_BUFFER_CACHE_COUNT = 22,
    PARAM_IMAGE_SAVE_BUFFER_CACHE_COUNT = 23,
    PARAM_ATTRIBUTE_VISUAL_LEVEL = 24,
    PARAM_VIDEO_PATH_AUTO = 25,
    PARAM_VIDEO_PATH = 26,
    PARAM_VIDEO_FILE_SAVE_PREFIX = 27,
    PARAM_VIDEO_FILE_SAVE_FORMAT = 28,
    PARAM_VIDEO_SAVE_FORMAT = 29,
    PARAM_VIDEO_SAVE_QUALITY = 30,
    PARAM_VIDEO_RATE_MODE = 31,
    PARAM_VIDEO_RECORD_RATE = 32,
    PARAM_SL_IMAGE_SHOW_MODE = 33,
};

} // namespace ViewerBiz3
