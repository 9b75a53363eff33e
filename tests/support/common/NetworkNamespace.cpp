#include "support/common/NetworkNamespace.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "support/common/WaitUntil.h"

namespace {

bool Run(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

std::string UniqueName()
{
    static std::atomic<int> counter{0};
    return "vb3dev-" + std::to_string(getpid()) + "-" + std::to_string(counter.fetch_add(1));
}

} // namespace

NetworkNamespace::NetworkNamespace(const std::vector<Veth>& pairs) : m_name(UniqueName())
{
    if (!Run("ip netns add " + m_name)) {
        m_failure = "cannot create a network namespace (ip netns add " + m_name + " failed)";
        return;
    }
    bool ok = Ip("link set lo up");
    for (const Veth& veth : pairs) {
        std::string address = veth.mac.empty() ? "" : " address " + veth.mac;
        ok = ok && Ip("link add " + veth.name + address + " type veth peer name " + veth.peerName);
        ok = ok &&
             Ip("addr add " + veth.address + "/" + std::to_string(veth.prefixLength) + " broadcast + dev " + veth.name);
        if (!veth.peerAddress.empty())
            ok = ok && Ip("addr add " + veth.peerAddress + "/" + std::to_string(veth.prefixLength) +
                          " broadcast + dev " + veth.peerName);
        ok = ok && Ip("link set " + veth.name + " up") && Ip("link set " + veth.peerName + " up");
    }
    if (!ok) {
        m_failure = "cannot set up veth interfaces in network namespace " + m_name;
        return;
    }
    // The kernel reports a veth running a moment after both ends are up; adapters are listed only then.
    for (const Veth& veth : pairs) {
        for (const std::string& end : {veth.name, veth.peerName}) {
            if (!WaitUntil([&] { return Ip("link show dev " + end + " | grep -q 'state UP'"); })) {
                m_failure = "veth " + end + " in network namespace " + m_name + " never came up";
                return;
            }
        }
    }
    m_ready = true;
}

NetworkNamespace::~NetworkNamespace()
{
    if (m_originalNamespace >= 0) {
        setns(m_originalNamespace, CLONE_NEWNET);
        close(m_originalNamespace);
    }
    // Deleting one end of a veth pair deletes both; the namespace itself may linger a moment.
    for (const std::string& adapter : m_adapters)
        Run("ip link del " + adapter);
    Run("ip netns del " + m_name);
}

bool NetworkNamespace::Ip(const std::string& arguments)
{
    return Run("ip -n " + m_name + " " + arguments);
}

bool NetworkNamespace::LinkFromCaller(const std::string& adapter, const std::string& adapterAddress,
                                      const std::string& peer, const std::string& peerAddress)
{
    if (!m_ready || !Run("ip link add " + adapter + " type veth peer name " + peer + " netns " + m_name))
        return false;
    m_adapters.push_back(adapter);
    return Run("ip addr add " + adapterAddress + " broadcast + dev " + adapter) &&
           Run("ip link set " + adapter + " up") && Ip("addr add " + peerAddress + " broadcast + dev " + peer) &&
           Ip("link set " + peer + " up");
}

bool NetworkNamespace::Enter()
{
    if (!m_ready)
        return false;
    int target = open(("/var/run/netns/" + m_name).c_str(), O_RDONLY | O_CLOEXEC);
    if (target < 0)
        return false;
    if (m_originalNamespace < 0)
        m_originalNamespace = open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC);
    const bool entered = setns(target, CLONE_NEWNET) == 0;
    close(target);
    return entered;
}

bool NetworkNamespace::RunInside(const std::function<std::string()>& work, std::string& output)
{
    // setns moves only the calling thread, so a thread of its own runs the work inside.
    bool entered = false;
    std::thread([&] {
        entered = Enter();
        output = entered ? work() : std::string();
    }).join();
    return entered;
}
