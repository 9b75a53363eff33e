#include "FeatureTree.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <iomanip>
#include <memory>
#include <set>

namespace {

struct DocumentDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

struct XmlTextDeleter {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

std::string ElementName(const xmlNode* element)
{
    return reinterpret_cast<const char*>(element->name);
}

std::string Attribute(const xmlNode* element, const char* name)
{
    std::unique_ptr<xmlChar, XmlTextDeleter> value(xmlGetProp(element, reinterpret_cast<const xmlChar*>(name)));
    return value ? std::string(reinterpret_cast<const char*>(value.get())) : std::string();
}

std::string Text(const xmlNode* element)
{
    std::unique_ptr<xmlChar, XmlTextDeleter> value(xmlNodeGetContent(element));
    std::string text = value ? std::string(reinterpret_cast<const char*>(value.get())) : std::string();
    const auto first = text.find_first_not_of(" \t\r\n");
    const auto last = text.find_last_not_of(" \t\r\n");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

std::string ChildText(const xmlNode* element, const char* childName)
{
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE && ElementName(child) == childName) {
            return Text(child);
        }
    }
    return std::string();
}

// Access modes are followed through pValue references at most this deep.
constexpr int MaxReferenceDepth = 8;

} // namespace

bool FeatureTree::Parse(const std::string& xml, std::string& error)
{
    m_nodes.clear();
    std::unique_ptr<xmlDoc, DocumentDeleter> document(
        xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "description.xml", nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    const xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr || ElementName(root) != "RegisterDescription") {
        error = "the description is not GenICam XML";
        return false;
    }
    // Named nodes sit under the root or inside unnamed grouping elements.
    std::vector<const xmlNode*> containers{root};
    while (!containers.empty()) {
        const xmlNode* container = containers.back();
        containers.pop_back();
        for (const xmlNode* element = container->children; element != nullptr; element = element->next) {
            if (element->type != XML_ELEMENT_NODE) {
                continue;
            }
            const std::string name = Attribute(element, "Name");
            if (name.empty()) {
                containers.push_back(element);
                continue;
            }
            Node node;
            node.element = ElementName(element);
            for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
                if (child->type != XML_ELEMENT_NODE) {
                    continue;
                }
                const std::string childName = ElementName(child);
                if (childName == "pFeature") {
                    node.features.push_back(Text(child));
                } else if (childName == "EnumEntry") {
                    if (ChildText(child, "Visibility") != "Invisible") {
                        node.entries.push_back(Attribute(child, "Name"));
                    }
                } else {
                    node.properties.emplace(childName, Text(child));
                }
            }
            // A StructReg's entries share its address and access unless they declare their own.
            if (ElementName(container) == "StructReg") {
                for (const xmlNode* shared = container->children; shared != nullptr; shared = shared->next) {
                    if (shared->type == XML_ELEMENT_NODE && ElementName(shared) != "StructEntry") {
                        node.properties.emplace(ElementName(shared), Text(shared));
                    }
                }
            }
            m_nodes.emplace(name, std::move(node));
        }
    }
    return true;
}

std::size_t FeatureTree::FeatureCount() const
{
    return static_cast<std::size_t>(std::count_if(
        m_nodes.begin(), m_nodes.end(), [](const auto& entry) { return entry.second.element != "Category"; }));
}

std::string FeatureTree::Property(const Node& node, const std::string& name) const
{
    const auto found = node.properties.find(name);
    return found == node.properties.end() ? std::string() : found->second;
}

std::string FeatureTree::TypeName(const Node& node) const
{
    static const std::map<std::string, std::string> typeOfElement = {
        {"Integer", "Integer"},         {"IntReg", "Integer"},       {"MaskedIntReg", "Integer"},
        {"IntSwissKnife", "Integer"},   {"IntConverter", "Integer"}, {"Float", "Float"},
        {"FloatReg", "Float"},          {"SwissKnife", "Float"},     {"Converter", "Float"},
        {"Enumeration", "Enumeration"}, {"Boolean", "Boolean"},      {"Command", "Command"},
        {"String", "String"},           {"StringReg", "String"},     {"Register", "Register"},
        {"StructEntry", "Integer"},
    };
    const auto found = typeOfElement.find(node.element);
    return found == typeOfElement.end() ? node.element : found->second;
}

std::string FeatureTree::Access(const Node& node, int depth) const
{
    for (const char* declared : {"ImposedAccessMode", "AccessMode"}) {
        const std::string mode = Property(node, declared);
        if (!mode.empty()) {
            return mode;
        }
    }
    const std::string target = Property(node, "pValue");
    const auto referenced = m_nodes.find(target);
    if (!target.empty() && referenced != m_nodes.end() && depth < MaxReferenceDepth) {
        return Access(referenced->second, depth + 1);
    }
    return node.properties.count("Value") != 0 ? "RW" : "RO";
}

std::string FeatureTree::Bound(const Node& node, const std::string& name, const ValueReader& readValue, int depth) const
{
    const std::string literal = Property(node, name);
    if (!literal.empty()) {
        return literal;
    }
    const std::string reference = Property(node, "p" + name);
    std::string value;
    if (!reference.empty() && readValue(reference, value)) {
        return value;
    }
    // A plain Integer or Float without its own bound takes it from the node its value comes from.
    const auto referenced = m_nodes.find(Property(node, "pValue"));
    if ((node.element == "Integer" || node.element == "Float") && referenced != m_nodes.end() &&
        depth < MaxReferenceDepth) {
        return Bound(referenced->second, name, readValue, depth + 1);
    }
    return std::string();
}

void FeatureTree::Print(std::ostream& out, const ValueReader& readValue) const
{
    std::vector<std::string> path;
    if (m_nodes.count("Root") != 0) {
        PrintNode(out, "Root", 0, readValue, path);
        return;
    }
    std::set<std::string> referenced;
    for (const auto& entry : m_nodes) {
        referenced.insert(entry.second.features.begin(), entry.second.features.end());
    }
    for (const auto& entry : m_nodes) {
        if (entry.second.element == "Category" && referenced.count(entry.first) == 0) {
            PrintNode(out, entry.first, 0, readValue, path);
        }
    }
}

void FeatureTree::PrintNode(std::ostream& out, const std::string& name, int depth, const ValueReader& readValue,
                            std::vector<std::string>& path) const
{
    const auto found = m_nodes.find(name);
    const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
    if (found == m_nodes.end()) {
        out << indent << name << "  (not described)\n";
        return;
    }
    const Node& node = found->second;
    if (Property(node, "Visibility") == "Invisible") {
        return;
    }
    if (node.element != "Category") {
        PrintFeature(out, name, node, depth, readValue);
        return;
    }
    // A category listed inside itself would never end.
    if (std::find(path.begin(), path.end(), name) != path.end()) {
        return;
    }
    out << indent << name << "/\n";
    path.push_back(name);
    for (const std::string& feature : node.features) {
        PrintNode(out, feature, depth + 1, readValue, path);
    }
    path.pop_back();
}

void FeatureTree::PrintFeature(std::ostream& out, const std::string& name, const Node& node, int depth,
                               const ValueReader& readValue) const
{
    const std::string type = TypeName(node);
    const std::string access = Access(node, 0);
    out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << std::left << std::setw(std::max(8, 40 - depth * 2))
        << name << ' ' << std::setw(12) << type << ' ' << std::setw(3) << access;
    std::string value;
    if (type == "Command") {
        out << "  (command)";
    } else if (access == "WO") {
        out << "  (write only)";
    } else if (readValue(name, value)) {
        out << "  = " << value;
        const std::string unit = Property(node, "Unit");
        if (!unit.empty()) {
            out << ' ' << unit;
        }
    } else {
        out << "  (not readable now)";
    }
    if (type == "Integer" || type == "Float") {
        const std::string min = Bound(node, "Min", readValue, 0);
        const std::string max = Bound(node, "Max", readValue, 0);
        const std::string inc = Bound(node, "Inc", readValue, 0);
        if (!min.empty() || !max.empty()) {
            out << "  [" << (min.empty() ? "?" : min) << " .. " << (max.empty() ? "?" : max);
            if (!inc.empty() && inc != "1") {
                out << ", step " << inc;
            }
            out << ']';
        }
    } else if (type == "Enumeration" && !node.entries.empty()) {
        out << "  {";
        for (std::size_t i = 0; i < node.entries.size(); ++i) {
            out << (i == 0 ? "" : ", ") << node.entries[i];
        }
        out << '}';
    }
    out << '\n';
}
