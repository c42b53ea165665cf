#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/log/logger.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "lv2/fade.h"
#include "lv2/speakers_file.h"
#include "lv2/variants.h"
#include "room/room.h"

namespace lv2 {

/// The host's numbers for the URIs that the plug-in speaks of.
struct Urids {
    explicit Urids(LV2_URID_Map& map);

    LV2_URID atomPath, atomString, atomUrid, patchGet, patchSet, patchProperty, patchValue;
    LV2_URID ears, speakers, state;  // of this plug-in
    LV2_URID maxBlockLength, minBlockLength, atomInt;
};

/// One plug-in as a host runs it: a room, its ports and the ways between them.
///
/// Threads as the host's API has it: Run on the audio thread, without heap, lock or file; Work beside it; everything
/// else while the plug-in doesn't run.
class RoomPlugin {
public:
    /// A host without numbers for URIs gets a plug-in with ports alone: no files, no state.
    /// @throws std::exception if there is no memory
    RoomPlugin(Variant const& variant, double sampleRate, LV2_Feature const* const* features);

    void Connect(std::uint32_t port, void* data);
    void Activate();
    void Deactivate();
    void Run(std::uint32_t numSamples);

    LV2_Worker_Status Work(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle, std::uint32_t size,
                           void const* data);
    LV2_Worker_Status WorkResponse(std::uint32_t size, void const* body);
    LV2_State_Status Save(LV2_State_Store_Function store, LV2_State_Handle handle, LV2_Feature const* const* features);
    LV2_State_Status Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                             LV2_Feature const* const* features);

private:
    /// What the worker made of a file, nothing if it is none; on its way back what is to be deleted.
    struct Loaded {
        LV2_URID none;  // 0, where a request has its property
        Lume::Ears* ears;
        SpeakersFile* speakers;
    };
    struct Source {
        float azimuthDeg, elevationDeg, distance;
        Fade fade;
    };

    void Configure();
    void Renew(Lume::RoomState state);
    float const* Value(std::size_t port) const { return static_cast<float const*>(data[port]); }
    void ReadEvents();
    void TellFiles();
    void Tell(LV2_URID property, char const* path);
    void ScheduleFile(LV2_URID key, LV2_Atom const& path);
    /// Loudspeakers in the order of the outputs to where the engine has them.
    bool PlaceSpeakers(std::span<Lume::CartesianVector const> positions);
    void ReadPorts();
    void ReadSource(unsigned int source, float azimuthDeg, float elevationDeg, float distance);
    void Process(std::size_t begin, std::size_t count);
    void AddDry(std::size_t begin, std::size_t count);

    Variant const& variant;
    double sampleRate;
    LV2_Log_Logger logger{};
    LV2_Worker_Schedule* schedule = nullptr;
    std::unique_ptr<Urids> urids;  // null if the host has none
    LV2_Atom_Forge forge{};
    std::size_t blockLength = 0;  // the longest that the host announced [samples]
    bool steadyBlocks = false;    // all blocks have that length

    std::vector<Port> ports;
    std::vector<void*> data;      // what each port is connected to
    std::vector<float> lastSeen;  // of each port with a value

    std::unique_ptr<Lume::Room> room;
    bool configured = false;  // the room is
    bool active = false;
    std::vector<Source> sources;
    Fade wet, dry;
    std::vector<std::vector<float>> inputs;   // faded, a block each
    std::vector<std::vector<float>> waiting;  // dry samples on their way past the room's latency, oldest first
    std::vector<float const*> roomInputs;
    std::vector<float*> roomOutputs;
    std::vector<float> peaks;
    bool tellFiles = false;
    std::string speakersPath;  // empty: nobody named a file
    std::mutex besideAudio;    // ears are prepared while the room isn't configured anew; Run never takes it
};

}  // namespace lv2
