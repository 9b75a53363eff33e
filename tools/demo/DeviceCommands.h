// The demo's commands. Each returns the process exit code (0 success, 1 failure).
#pragma once

#include <string>

#include "LibrarySession.h"

// How long a grab runs: a number of frames counted by the camera, or seconds.
struct GrabLimit {
    bool bySeconds = true;
    double amount = 2.0;
};

int ListDevices(LibrarySession& session);
int ShowCameraInfo(LibrarySession& session, const std::string& camera);
int GetFeature(LibrarySession& session, const std::string& camera, const std::string& feature);
int SetFeature(LibrarySession& session, const std::string& camera, const std::string& feature,
               const std::string& value);
// A GigE camera's new address: forced until the camera restarts, or also stored in it.
struct AddressChange {
    std::string address;
    std::string mask;
    std::string gateway;
    bool persistent = false;
};
int ChangeAddress(LibrarySession& session, const std::string& camera, const AddressChange& change);
int RenameCamera(LibrarySession& session, const std::string& camera, const std::string& newName);
// Saves the last delivered frame to pngPath (empty: a name from the serial number).
int GrabToPng(LibrarySession& session, const std::string& camera, const GrabLimit& limit, const std::string& pngPath);
// The tour: list, then for the area and the profile camera open, info, grab
// for two seconds, save a PNG, close; finally the files the run produced.
int RunDemo(LibrarySession& session);
