// Base of the device-manager tests on scripted devices: a fresh test bench (network namespace,
// manager, event recorder) and a scripted SDK emptied of an earlier test's devices. Only the
// program linked with the scripted SDK uses it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/common/DeviceTestBench.h"
#include "support/common/RequireEnvironment.h"
#include "support/scripted/ScriptedSdk.h"

class ScriptedDeviceManagerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        VB3_REQUIRE(bench.Ready(), bench.Failure());
        Scripted::ScriptedSdk::Instance().Reset();
    }

    DeviceManager& Manager() { return bench.Manager(); }
    static bool Contains(const std::vector<std::string>& keys, const std::string& key)
    {
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    }

    DeviceTestBench bench;
};
