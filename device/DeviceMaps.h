// Lookups and clean-up shared by every map of the device manager.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "camera/Camera.h"
#include "device/Card.h"

// The text a device is also known by besides its map key.
inline std::string DeviceNameOf(Camera* camera)
{
    return camera->GetName();
}

inline std::string DeviceNameOf(Card* card)
{
    return card->GetKey();
}

// The object of the key, else the first object whose name equals the key,
// else null; the caller holds the map's mutex.
template <typename T, typename Map, typename Key>
T* FindInMap(Map& map, const Key& key)
{
    auto found = map.find(key);
    if (found != map.end())
        return found->second;
    for (auto& entry : map) {
        if (entry.second != nullptr && DeviceNameOf(entry.second) == key)
            return entry.second;
    }
    return nullptr;
}

// FindInMap under the map's mutex. So every operation accepts a key or a name.
template <typename T, typename Map, typename Mutex, typename Key>
T* GetPointerFromMap(Map& map, Mutex& mutex, Key& key)
{
    std::lock_guard<Mutex> lock(mutex);
    return FindInMap<T>(map, key);
}

// Whether the map holds the key, under its mutex.
template <typename Map, typename Mutex>
bool HasKey(Map& map, Mutex& mutex, const std::string& key)
{
    std::lock_guard<Mutex> lock(mutex);
    return map.count(key) != 0;
}

// Removes every entry that holds the object, whatever its key.
template <typename Map, typename T>
void EraseObject(Map& map, T* object)
{
    for (auto entry = map.begin(); entry != map.end();) {
        if (entry->second == object)
            entry = map.erase(entry);
        else
            ++entry;
    }
}

// Deletes every object of the map under its mutex and empties it.
template <typename Map, typename Mutex>
void ClearMap(Map& map, Mutex& mutex)
{
    std::lock_guard<Mutex> lock(mutex);
    for (auto& entry : map)
        delete entry.second;
    map.clear();
}

// The keys of a map, under its mutex, in the map's iteration order.
template <typename Map, typename Mutex>
void AppendKeys(Map& map, Mutex& mutex, std::vector<std::string>& keys)
{
    std::lock_guard<Mutex> lock(mutex);
    for (auto& entry : map)
        keys.push_back(entry.first);
}
