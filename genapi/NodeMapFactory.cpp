#include "genapi/NodeMapFactory.h"

#include <cstring>

#include "genapi/ArvNodeMap.h"
#include "genapi/GenicamParsing.h"

namespace GenApi_3_4 {

namespace {

// ArvGc's parser keeps whatever it read before a syntax error, so a truncated document would load
// silently; GLib's strict markup parser tells us whether the whole document is well formed.
void RequireWellFormed(const std::string& genicamXml, const std::string& deviceName)
{
    static const char kByteOrderMark[] = "\xEF\xBB\xBF";
    const std::size_t start = genicamXml.compare(0, 3, kByteOrderMark) == 0 ? 3 : 0;
    const GMarkupParser noCallbacks{};
    GMarkupParseContext* context =
        g_markup_parse_context_new(&noCallbacks, G_MARKUP_TREAT_CDATA_AS_TEXT, nullptr, nullptr);
    GError* error = nullptr;
    const bool wellFormed = g_markup_parse_context_parse(context, genicamXml.data() + start,
                                                         static_cast<gssize>(genicamXml.size() - start), &error) &&
                            g_markup_parse_context_end_parse(context, &error);
    g_markup_parse_context_free(context);
    if (!wellFormed) {
        const std::string reason = error != nullptr ? error->message : "unknown syntax error";
        g_clear_error(&error);
        throw GenICam_3_4::RuntimeException("The GenICam XML document of '" + deviceName +
                                            "' is not well formed: " + reason);
    }
}

} // namespace

std::unique_ptr<INodeMap> CreateNodeMapFromXml(const std::string& genicamXml, const std::string& deviceName)
{
    RequireWellFormed(genicamXml, deviceName);
    ArvGc* genicam = nullptr;
    {
        const auto parsing = LockGenicamParsing();
        genicam = arv_gc_new(nullptr, genicamXml.data(), genicamXml.size());
    }
    ArvDomElement* root =
        genicam != nullptr ? arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(genicam)) : nullptr;
    if (root == nullptr || std::strcmp(arv_dom_element_get_tag_name(root), "RegisterDescription") != 0) {
        if (genicam != nullptr) {
            g_object_unref(genicam);
        }
        throw GenICam_3_4::RuntimeException("The document of '" + deviceName + "' is not a GenICam description.");
    }
    auto nodeMap = std::make_unique<ArvNodeMap>(genicam, nullptr, deviceName);
    g_object_unref(genicam);
    return nodeMap;
}

std::unique_ptr<INodeMap> CreateNodeMapForDevice(ArvDevice* device)
{
    if (device == nullptr) {
        throw GenICam_3_4::LogicalErrorException("No device to build a node map for.");
    }
    ArvGc* genicam = arv_device_get_genicam(device);
    if (genicam == nullptr) {
        throw GenICam_3_4::RuntimeException("The device has no GenICam description.");
    }
    return std::make_unique<ArvNodeMap>(genicam, device, "Device");
}

} // namespace GenApi_3_4
