#include "support/common/ScriptedDeviceManagerTest.h"

#include <algorithm>

#include "support/scripted/ScriptedSdk.h"
#include "support/common/RequireEnvironment.h"

void ScriptedDeviceManagerTest::SetUp()
{
    VB3_REQUIRE(bench.Ready(), bench.Failure());
    Scripted::ScriptedSdk::Instance().Reset();
}

bool ScriptedDeviceManagerTest::Contains(const std::vector<std::string>& keys, const std::string& key)
{
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}
