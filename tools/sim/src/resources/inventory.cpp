#include "resources/resource.h"
#include "xml.h"

namespace veltasim {
namespace {

// A list of what the device has so many of.
struct List {
    const char* name;
    const char* itemName;
    std::optional<unsigned> Inventory::*count;
    void (*fill)(pugi::xml_node& item, int id, const State& state);
};

void fillVideoInput(pugi::xml_node& item, int id, const State&) {
    addText(item, "input", std::to_string(id));
    addText(item, "name", "Camera " + std::to_string(id));
    addText(item, "enable", "true");
}

// Where the camera is that the channel shows.
void addSource(pugi::xml_node& item, int id) {
    pugi::xml_node source = item.append_child("sourceInput");
    addText(source, "protocol", "VELTA");
    addText(source, "addressingFormatType", "ipaddress");
    addText(source, "ipAddress", "198.51.100." + std::to_string(id % 254 + 1));
    addText(source, "portNo", "8000");
    addText(source, "inputNo", "1");
}

void fillProxyChannel(pugi::xml_node& item, int id, const State&) {
    addText(item, "name", "IP Camera " + std::to_string(id));
    addSource(item, id);
}

void fillProxyStatus(pugi::xml_node& item, int id, const State& state) {
    addSource(item, id);
    addText(item, "online", state.offlineProxies.contains(id) ? "false" : "true");
}

void fillAudioChannel(pugi::xml_node& item, int, const State&) {
    addText(item, "enabled", "true");
}

void fillIoInput(pugi::xml_node& item, int, const State&) {
    addText(item, "activeAt", "low");
}

void fillIoOutput(pugi::xml_node& item, int, const State&) {
    addText(item, "initialState", "low");
}

Reply listReply(const Call& call, const List& list) {
    const auto count = call.state.inventory.*list.count;
    if (!count) return notFound(call);
    pugi::xml_document document;
    pugi::xml_node root = addRoot(document, list.name);
    for (int id = 1; id <= static_cast<int>(*count); ++id) {
        pugi::xml_node item = root.append_child(list.itemName);
        addText(item, "id", std::to_string(id));
        list.fill(item, id, call.state);
    }
    return {200, kXmlType, toText(document)};
}

}  // namespace

Reply getVideoInputs(const Call& call) {
    return listReply(call,
                     {"VideoInputChannelList", "VideoInputChannel", &Inventory::videoInputs, fillVideoInput});
}

Reply getProxyChannels(const Call& call) {
    return listReply(
        call, {"InputProxyChannelList", "InputProxyChannel", &Inventory::proxyChannels, fillProxyChannel});
}

Reply getProxyStatus(const Call& call) {
    return listReply(call, {"InputProxyChannelStatusList", "InputProxyChannelStatus",
                            &Inventory::proxyChannels, fillProxyStatus});
}

Reply getAudioChannels(const Call& call) {
    return listReply(call, {"AudioChannelList", "AudioChannel", &Inventory::audioChannels, fillAudioChannel});
}

Reply getIoInputs(const Call& call) {
    return listReply(call, {"IOInputPortList", "IOInputPort", &Inventory::ioInputs, fillIoInput});
}

Reply getIoOutputs(const Call& call) {
    return listReply(call, {"IOOutputPortList", "IOOutputPort", &Inventory::ioOutputs, fillIoOutput});
}

}  // namespace veltasim
