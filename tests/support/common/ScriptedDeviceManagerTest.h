// Base of the device-manager tests on scripted devices: a fresh test bench (network namespace,
// manager, event recorder) and a scripted SDK emptied of an earlier test's devices. Only the
// program linked with the scripted SDK uses it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/common/DeviceTestBench.h"

class ScriptedDeviceManagerTest : public ::testing::Test {
protected:
    void SetUp() override;

    DeviceManager& Manager() { return bench.Manager(); }
    static bool Contains(const std::vector<std::string>& keys, const std::string& key);

    DeviceTestBench bench;
};
