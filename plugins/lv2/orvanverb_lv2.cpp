/// The plug-ins orvanverb for LV2: what a host calls of the shared object. No exception leaves it.

#include <exception>
#include <list>
#include <string>
#include <vector>

#include "lv2/room_plugin.h"

namespace {

using lv2::RoomPlugin;

RoomPlugin& Plugin(LV2_Handle handle) {
    return *static_cast<RoomPlugin*>(handle);
}

LV2_Handle Instantiate(LV2_Descriptor const* descriptor, double sampleRate, char const* /*bundlePath*/,
                       LV2_Feature const* const* features) {
    for (lv2::Variant const& variant : lv2::Variants()) {
        if (variant.Uri() != descriptor->URI) continue;
        try {
            return new RoomPlugin(variant, sampleRate, features);
        } catch (std::exception const&) {
            return nullptr;  // all that the host lets us say
        }
    }
    return nullptr;
}

void ConnectPort(LV2_Handle handle, std::uint32_t port, void* data) {
    Plugin(handle).Connect(port, data);
}

void Activate(LV2_Handle handle) {
    Plugin(handle).Activate();
}

void Run(LV2_Handle handle, std::uint32_t numSamples) {
    Plugin(handle).Run(numSamples);
}

void Deactivate(LV2_Handle handle) {
    Plugin(handle).Deactivate();
}

void Cleanup(LV2_Handle handle) {
    delete &Plugin(handle);
}

LV2_Worker_Status Work(LV2_Handle handle, LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle respondHandle,
                       std::uint32_t size, void const* data) {
    return Plugin(handle).Work(respond, respondHandle, size, data);
}

LV2_Worker_Status WorkResponse(LV2_Handle handle, std::uint32_t size, void const* body) {
    return Plugin(handle).WorkResponse(size, body);
}

LV2_State_Status Save(LV2_Handle handle, LV2_State_Store_Function store, LV2_State_Handle stateHandle,
                      std::uint32_t /*flags*/, LV2_Feature const* const* features) {
    return Plugin(handle).Save(store, stateHandle, features);
}

LV2_State_Status Restore(LV2_Handle handle, LV2_State_Retrieve_Function retrieve, LV2_State_Handle stateHandle,
                         std::uint32_t /*flags*/, LV2_Feature const* const* features) {
    return Plugin(handle).Restore(retrieve, stateHandle, features);
}

void const* ExtensionData(char const* uri) {
    static constexpr LV2_Worker_Interface worker{Work, WorkResponse, nullptr};
    static constexpr LV2_State_Interface state{Save, Restore};
    if (uri == std::string_view(LV2_WORKER__interface)) return &worker;
    if (uri == std::string_view(LV2_STATE__interface)) return &state;
    return nullptr;
}

/// One descriptor a variant, with the URI that it points to.
struct Descriptors {
    Descriptors() {
        for (lv2::Variant const& variant : lv2::Variants()) {
            uris.push_back(variant.Uri());
            descriptors.push_back(
                {uris.back().c_str(), Instantiate, ConnectPort, Activate, Run, Deactivate, Cleanup, ExtensionData});
        }
    }
    std::list<std::string> uris;
    std::vector<LV2_Descriptor> descriptors;
};

}  // namespace

LV2_SYMBOL_EXPORT LV2_Descriptor const* lv2_descriptor(std::uint32_t index) {
    static const Descriptors all;
    return index < all.descriptors.size() ? &all.descriptors[index] : nullptr;
}
