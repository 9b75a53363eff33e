#pragma once

// Opaque GLib/Aravis types named by the internal headers of this folder; the definitions come from <arv.h>
// in the .cpp files only, so nothing outside genapi/ sees them.
typedef struct _GError GError;
typedef struct _ArvGc ArvGc;
typedef struct _ArvGcFeatureNode ArvGcFeatureNode;
typedef struct _ArvDevice ArvDevice;
