// Walks the area simulated camera's feature node map through the installed
// GenApi interface headers, as a viewer's property grid does.
#pragma once

// Empty on success, else what went wrong.
const char* TourAreaCameraNodeMap();
