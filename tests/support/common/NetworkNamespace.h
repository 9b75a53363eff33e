// A named network namespace made for one test ("ip netns add"), holding veth pairs with link-local
// addresses, so adapter code sees known interfaces and nothing reaches the machine's own network.
#pragma once

#include <functional>
#include <string>
#include <vector>

class NetworkNamespace {
public:
    struct Veth {
        std::string name;     // the end the code under test looks at
        std::string peerName; // the other end, without address unless peerAddress is set
        std::string address;  // e.g. "169.254.10.1"
        int prefixLength = 16;
        std::string peerAddress; // optional
        std::string mac;         // optional, e.g. "02:00:00:00:10:01"
    };

    // Creates the namespace with loopback up and the given veth pairs (both ends up).
    explicit NetworkNamespace(const std::vector<Veth>& pairs);
    ~NetworkNamespace();
    NetworkNamespace(const NetworkNamespace&) = delete;
    NetworkNamespace& operator=(const NetworkNamespace&) = delete;

    // False (with the reason) when the namespace could not be made.
    bool IsReady() const { return m_ready; }
    const std::string& Failure() const { return m_failure; }
    const std::string& Name() const { return m_name; }

    // Moves the calling thread (and every thread it starts later) into the namespace.
    bool Enter();
    // Runs the work on a thread inside the namespace and hands back the text it returned; false
    // when the thread could not enter the namespace.
    bool RunInside(const std::function<std::string()>& work, std::string& output);
    // Runs an "ip" command inside the namespace; true on exit status 0.
    bool Ip(const std::string& arguments);
    // A veth pair from the calling thread's namespace into this one: the adapter end stays with the
    // caller, the peer end moves here; each gets its address ("a.b.c.d/prefix") and comes up. Both
    // ends go away with this object.
    bool LinkFromCaller(const std::string& adapter, const std::string& adapterAddress, const std::string& peer,
                        const std::string& peerAddress);

private:
    std::string m_name;
    bool m_ready = false;
    int m_originalNamespace = -1;
    std::string m_failure;
    std::vector<std::string> m_adapters;
};
