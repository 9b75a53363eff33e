// The feature tree of a device as its GenICam description declares it:
// categories, and per feature its type, declared access, range or entries.
// Values are not in the description; Print asks for them through a reader.
#pragma once

#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

class FeatureTree {
public:
    // Reads a node's current value as text; false when it cannot be read.
    using ValueReader = std::function<bool(const std::string& name, std::string& value)>;

    // Builds the tree from the description text; false with a reason when the
    // text is not a GenICam description.
    bool Parse(const std::string& xml, std::string& error);
    // Prints every category reachable from "Root" (or every top category when
    // the description has no "Root") with the visible features under it.
    void Print(std::ostream& out, const ValueReader& readValue) const;
    std::size_t FeatureCount() const;

private:
    struct Node {
        std::string element;                           // the XML element: Category, Integer, IntReg, ...
        std::map<std::string, std::string> properties; // first text of each child element
        std::vector<std::string> features;             // a category's pFeature list
        std::vector<std::string> entries;              // an enumeration's entry names
    };

    std::string Property(const Node& node, const std::string& name) const;
    std::string TypeName(const Node& node) const;
    std::string Access(const Node& node, int depth) const;
    std::string Bound(const Node& node, const std::string& name, const ValueReader& readValue, int depth) const;
    void PrintNode(std::ostream& out, const std::string& name, int depth, const ValueReader& readValue,
                   std::vector<std::string>& path) const;
    void PrintFeature(std::ostream& out, const std::string& name, const Node& node, int depth,
                      const ValueReader& readValue) const;

    std::map<std::string, Node> m_nodes;
};
