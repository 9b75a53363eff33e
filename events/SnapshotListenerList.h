// A listener list on the frame path: notifying reads an immutable snapshot without taking a lock,
// so a camera's thread never waits for a host thread, while registering and unregistering copy
// the list and publish a new snapshot at any time. A change returns only once no notification
// still walks an older snapshot: after an unregister call returned, that listener is not called.
//
// Notifications count themselves in one of two reader counters, chosen by the parity of the
// publication generation; a change flips the generation and waits for the old side to empty.
// New notifications go to the other side meanwhile, so a steady stream of them cannot hold a
// change up. A listener must not change the list that is calling it: that would wait for itself.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

template <typename Listener>
class SnapshotListenerList {
public:
    SnapshotListenerList() = default;
    ~SnapshotListenerList() { delete m_current.load(); }
    SnapshotListenerList(const SnapshotListenerList&) = delete;
    SnapshotListenerList& operator=(const SnapshotListenerList&) = delete;

    // Both refuse a null listener with -1 and answer 0 otherwise. A listener added twice is
    // called twice; removing takes every occurrence and keeps the others' order.
    int Add(Listener* listener)
    {
        return Change(listener, [listener](Snapshot& next) { next.push_back(listener); });
    }

    int Remove(Listener* listener)
    {
        return Change(listener, [listener](Snapshot& next) {
            next.erase(std::remove(next.begin(), next.end(), listener), next.end());
        });
    }

    void Clear()
    {
        std::lock_guard<std::mutex> lock(m_changeMutex);
        Publish(std::make_unique<Snapshot>());
    }

    // Calls every listener of the current snapshot; returns how many were called. The arguments
    // are passed as lvalues, so by-value parameters get a fresh copy per listener.
    template <typename... Params, typename... Args>
    std::size_t Notify(void (Listener::*callback)(Params...), Args&... args)
    {
        const Reader reader(*this);
        const Snapshot* snapshot = m_current.load();
        for (Listener* listener : *snapshot)
            (listener->*callback)(args...);
        return snapshot->size();
    }

private:
    using Snapshot = std::vector<Listener*>;

    // Counts a notification in for its whole run, also when a listener throws.
    class Reader {
    public:
        explicit Reader(SnapshotListenerList& list) : m_counter(list.EnterReader()) {}
        ~Reader() { m_counter.fetch_sub(1); }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

    private:
        std::atomic<uint32_t>& m_counter;
    };

    std::atomic<uint32_t>& EnterReader()
    {
        for (;;) {
            const uint64_t generation = m_generation.load();
            std::atomic<uint32_t>& counter = m_readers[generation & 1];
            counter.fetch_add(1);
            if (m_generation.load() == generation)
                return counter;
            counter.fetch_sub(1);
        }
    }

    template <typename Edit>
    int Change(Listener* listener, Edit edit)
    {
        if (listener == nullptr)
            return -1;
        std::lock_guard<std::mutex> lock(m_changeMutex);
        auto next = std::make_unique<Snapshot>(*m_current.load());
        edit(*next);
        Publish(std::move(next));
        return 0;
    }

    // The caller holds the change mutex.
    void Publish(std::unique_ptr<Snapshot> next)
    {
        std::unique_ptr<const Snapshot> previous(m_current.exchange(next.release()));
        const uint64_t generation = m_generation.fetch_add(1);
        while (m_readers[generation & 1].load() != 0)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }

    std::mutex m_changeMutex;
    std::atomic<const Snapshot*> m_current{new Snapshot};
    std::atomic<uint64_t> m_generation{0};
    std::atomic<uint32_t> m_readers[2] = {};
};
