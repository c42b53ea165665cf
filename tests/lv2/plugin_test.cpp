#include <gtest/gtest.h>
#include <lilv/lilv.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/units/units.h>
#include <lv2/urid/urid.h>
#include <lv2/worker/worker.h>

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "engine/room_controls.h"
#include "orvanverb/presets/preset.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "realtime/watched_thread.h"
#include "room/room.h"
#include "support/signals.h"

namespace {

/// The host's numbers for URIs.
class UridMap {
public:
    LV2_URID operator()(std::string const& uri) {
        return numbers.try_emplace(uri, static_cast<LV2_URID>(numbers.size() + 1)).first->second;
    }
    char const* Uri(LV2_URID number) const {
        for (auto const& [uri, known] : numbers)
            if (known == number) return uri.c_str();
        return nullptr;
    }

    LV2_URID_Map map{this,
                     [](LV2_URID_Map_Handle self, char const* uri) { return (*static_cast<UridMap*>(self))(uri); }};
    LV2_URID_Unmap unmap{this, [](LV2_URID_Unmap_Handle self, LV2_URID number) {
                             return static_cast<UridMap const*>(self)->Uri(number);
                         }};

private:
    std::map<std::string, LV2_URID> numbers;
};

struct FreeNode {
    void operator()(LilvNode* node) const { lilv_node_free(node); }
};
using Node = std::unique_ptr<LilvNode, FreeNode>;

/// The bundle that was built, and nothing else.
class Bundle {
public:
    Bundle() : world(lilv_world_new()) {
        lilv_world_load_bundle(world, Node(lilv_new_file_uri(world, nullptr, LV2_BUNDLE "/")).get());
    }
    ~Bundle() { lilv_world_free(world); }
    Bundle(Bundle const&) = delete;
    Bundle& operator=(Bundle const&) = delete;

    LilvPlugins const* Plugins() const { return lilv_world_get_all_plugins(world); }
    LilvPlugin const* Plugin(std::string const& symbol) const {
        return lilv_plugins_get_by_uri(Plugins(), Uri("urn:orvanverb:lv2:" + symbol).get());
    }
    Node Uri(std::string const& uri) const { return Node(lilv_new_uri(world, uri.c_str())); }

    LilvWorld* world;
    UridMap urids;
};

/// One plug-in in a host that announces the longest block, and whether all are so long.
class Instance {
public:
    Instance(Bundle& newBundle, LilvPlugin const* newPlugin, double rate, std::int32_t longest, bool steady)
        : bundle(newBundle), plugin(newPlugin) {
        const std::int32_t shortest = steady ? longest : 1;
        const LV2_URID type = bundle.urids("http://lv2plug.in/ns/ext/atom#Int");
        const LV2_Options_Option options[] = {
            {LV2_OPTIONS_INSTANCE, 0, bundle.urids(LV2_BUF_SIZE__minBlockLength), sizeof shortest, type, &shortest},
            {LV2_OPTIONS_INSTANCE, 0, bundle.urids(LV2_BUF_SIZE__maxBlockLength), sizeof longest, type, &longest},
            {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
        const LV2_Feature map{LV2_URID__map, &bundle.urids.map},
            given{LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)}, logs{LV2_LOG__log, &log},
            works{LV2_WORKER__schedule, &schedule};
        LV2_Feature const* const features[] = {&map, &given, &logs, &works, nullptr};
        requests.reserve(1 << 16);
        instance = lilv_plugin_instantiate(plugin, rate, features);
        worker =
            static_cast<LV2_Worker_Interface const*>(lilv_instance_get_extension_data(instance, LV2_WORKER__interface));
        const std::uint32_t numPorts = lilv_plugin_get_num_ports(plugin);
        values.resize(numPorts);
        least.resize(numPorts);
        greatest.resize(numPorts);
        lilv_plugin_get_port_ranges_float(plugin, least.data(), greatest.data(), values.data());
        for (std::uint32_t i = 0; i < numPorts; ++i) {
            LilvPort const* const port = lilv_plugin_get_port_by_index(plugin, i);
            const auto is = [&](char const* kind) { return lilv_port_is_a(plugin, port, bundle.Uri(kind).get()); };
            const bool isInput = is(LILV_URI_INPUT_PORT);
            if (is(LILV_URI_AUDIO_PORT)) (isInput ? inputs : outputs).push_back(i);
            if (is(LILV_URI_ATOM_PORT)) atoms.push_back(i);
            if (is(LILV_URI_ATOM_PORT))
                lilv_instance_connect_port(instance, i, isInput ? events.data() : notices.data());
            if (!is(LILV_URI_CONTROL_PORT)) continue;
            if (isInput) controls.push_back(i);
            lilv_instance_connect_port(instance, i, &values[i]);
        }
        ClearAtoms();
    }
    ~Instance() {
        DoWork();
        lilv_instance_free(instance);
    }
    Instance(Instance const&) = delete;
    Instance& operator=(Instance const&) = delete;

    float& Value(std::string const& symbol) {
        const Node node(lilv_new_string(bundle.world, symbol.c_str()));
        return values[lilv_port_get_index(plugin, lilv_plugin_get_port_by_symbol(plugin, node.get()))];
    }

    /// Runs over a sound and gives what comes out. @param block  the length of the next block
    /// @param shared  outputs stand on inputs, the last one on the first
    template <class Length>
    Sound Play(Sound const& sound, Length&& block, bool shared = false) {
        Sound in = sound, out{std::vector(outputs.size(), std::vector<float>(sound.NumFrames() + 1, 7.0f)),
                              sound.samplerate};  // a loud sample stands behind each
        const auto output = [&](std::size_t i) -> std::vector<float>& {
            const std::size_t source = outputs.size() - 1 - i;
            return shared && source < inputs.size() ? in.samples[source] : out.samples[i];
        };
        for (std::size_t done = 0; done < sound.NumFrames();) {
            const std::size_t count = std::min<std::size_t>(block(), sound.NumFrames() - done);
            for (std::size_t i = 0; i < inputs.size(); ++i)
                lilv_instance_connect_port(instance, inputs[i], in.samples[i].data() + done);
            for (std::size_t i = 0; i < outputs.size(); ++i)
                lilv_instance_connect_port(instance, outputs[i], output(i).data() + done);
            const auto run = [&] {
                lilv_instance_run(instance, static_cast<std::uint32_t>(count));
                for (std::vector<char> const& response : responses)
                    worker->work_response(instance->lv2_handle, static_cast<std::uint32_t>(response.size()),
                                          response.data());
            };
            if (isWatched) {
                const Trespasses seen = WatchThread(run);
                numTrespasses += seen.allocations + seen.frees + seen.locks + seen.systemCalls;
            } else {
                run();
            }
            HearNotices();
            ClearAtoms();
            DoWork();
            done += count;
        }
        for (std::size_t i = 0; i < outputs.size(); ++i) out.samples[i] = output(i);
        for (auto& channel : out.samples) channel.resize(sound.NumFrames());
        return out;
    }

    /// Names a file at the next block, behind which the host's worker reads it. No property: asks which files there
    /// are. @param odd  what is wrong with the message
    enum class Odd : int { nothing, noProperty, noValue, valueIsText };
    void Tell(std::string const& property = {}, std::string const& path = {}, Odd odd = Odd::nothing) {
        LV2_Atom_Forge forge{};
        LV2_Atom_Forge_Frame sequence{}, object{};
        lv2_atom_forge_init(&forge, &bundle.urids.map);
        lv2_atom_forge_set_buffer(&forge, events.data(), events.size());
        lv2_atom_forge_sequence_head(&forge, &sequence, 0);
        lv2_atom_forge_frame_time(&forge, 0);
        lv2_atom_forge_object(&forge, &object, 0, bundle.urids(property.empty() ? LV2_PATCH__Get : LV2_PATCH__Set));
        if (!property.empty() && odd != Odd::noProperty) {
            lv2_atom_forge_key(&forge, bundle.urids(LV2_PATCH__property));
            lv2_atom_forge_urid(&forge, bundle.urids("urn:orvanverb:lv2:" + property));
        }
        if (!property.empty() && odd != Odd::noValue) {
            lv2_atom_forge_key(&forge, bundle.urids(LV2_PATCH__value));
            (odd == Odd::valueIsText ? lv2_atom_forge_string : lv2_atom_forge_path)(
                &forge, path.c_str(), static_cast<std::uint32_t>(path.size()));
        }
        lv2_atom_forge_pop(&forge, &object);
        lv2_atom_forge_pop(&forge, &sequence);
    }

    std::string SavedState() {
        LilvState* const state =
            lilv_state_new_from_instance(plugin, instance, &bundle.urids.map, nullptr, nullptr, nullptr, nullptr,
                                         GetPort, this, LV2_STATE_IS_POD, nullptr);
        char* const text =
            lilv_state_to_string(bundle.world, &bundle.urids.map, &bundle.urids.unmap, state, "urn:x", nullptr);
        std::string result(text);
        lilv_free(text);
        lilv_state_free(state);
        return result;
    }
    void Restore(std::string const& text) {
        Restore(lilv_state_new_from_string(bundle.world, &bundle.urids.map, text.c_str()));
    }
    void RestorePreset(std::string const& name) {
        const Node uri = bundle.Uri(std::string(lilv_node_as_uri(lilv_plugin_get_uri(plugin))) + ":" + name);
        lilv_world_load_resource(bundle.world, uri.get());
        Restore(lilv_state_new_from_world(bundle.world, &bundle.urids.map, uri.get()));
    }

    Bundle& bundle;
    LilvPlugin const* plugin;
    LilvInstance* instance;
    std::vector<float> values, least, greatest;
    std::vector<std::uint32_t> inputs, outputs, controls, atoms;
    bool isWatched = false;                                     // while it runs
    long numTrespasses = 0;                                     // what an audio thread must not do, where it is watched
    std::string said;                                           // in the host's log
    std::vector<std::pair<std::string, std::string>> notified;  // property and path of each notice

private:
    LV2_Log_Log log{this, PrintWords, Print};
    LV2_Worker_Schedule schedule{this, Schedule};
    LV2_Worker_Interface const* worker = nullptr;
    alignas(8) std::array<std::uint8_t, 8192> events{}, notices{};
    std::vector<char> requests;  // to the worker, each behind its length
    std::vector<std::vector<char>> responses;

    /// Atoms as they stand before a block: no event, and room for the plug-in's.
    void ClearAtoms() {
        auto& none = reinterpret_cast<LV2_Atom_Sequence&>(events);
        none.atom = {sizeof none.body, bundle.urids(LV2_ATOM__Sequence)};
        auto& room = reinterpret_cast<LV2_Atom&>(notices);
        room = {static_cast<std::uint32_t>(notices.size() - sizeof room), bundle.urids(LV2_ATOM__Chunk)};
    }
    void HearNotices() {
        auto const& sequence = reinterpret_cast<LV2_Atom_Sequence const&>(notices);
        if (sequence.atom.type != bundle.urids(LV2_ATOM__Sequence)) return;
        LV2_ATOM_SEQUENCE_FOREACH(&sequence, event) {
            LV2_Atom_URID const* property = nullptr;
            LV2_Atom const* value = nullptr;
            lv2_atom_object_get(reinterpret_cast<LV2_Atom_Object const*>(&event->body),
                                bundle.urids(LV2_PATCH__property), &property, bundle.urids(LV2_PATCH__value), &value,
                                0);
            if (property != nullptr && value != nullptr)
                notified.emplace_back(bundle.urids.Uri(property->body),
                                      static_cast<char const*>(LV2_ATOM_BODY_CONST(value)));
        }
    }
    /// As another thread of the host does. The answers wait for the next block.
    void DoWork() {
        responses.clear();
        const std::vector<char> asked = std::exchange(requests, {});
        requests.reserve(1 << 16);
        for (std::size_t at = 0; at < asked.size();) {
            std::uint32_t size = 0;
            std::memcpy(&size, asked.data() + at, sizeof size);
            worker->work(instance->lv2_handle, Respond, this, size, asked.data() + at + sizeof size);
            at += sizeof size + size;
        }
    }
    static LV2_Worker_Status Schedule(LV2_Worker_Schedule_Handle self, std::uint32_t size, void const* data) {
        std::vector<char>& requests = static_cast<Instance*>(self)->requests;
        auto const* const length = reinterpret_cast<char const*>(&size);
        requests.insert(requests.end(), length, length + sizeof size);
        requests.insert(requests.end(), static_cast<char const*>(data), static_cast<char const*>(data) + size);
        return LV2_WORKER_SUCCESS;
    }
    static LV2_Worker_Status Respond(LV2_Worker_Respond_Handle self, std::uint32_t size, void const* data) {
        auto const* const bytes = static_cast<char const*>(data);
        static_cast<Instance*>(self)->responses.emplace_back(bytes, bytes + size);
        return LV2_WORKER_SUCCESS;
    }

    static int PrintWords(LV2_Log_Handle self, LV2_URID type, char const* format, ...) {
        std::va_list given;
        va_start(given, format);
        const int length = Print(self, type, format, given);
        va_end(given);
        return length;
    }
    static int Print(LV2_Log_Handle self, LV2_URID, char const* format, std::va_list given) {
        char line[1000];
        const int length = std::vsnprintf(line, sizeof line, format, given);
        static_cast<Instance*>(self)->said += line;
        return length;
    }
    static void const* GetPort(char const* symbol, void* self, std::uint32_t* size, std::uint32_t* type) {
        auto& instance = *static_cast<Instance*>(self);
        *size = sizeof(float);
        *type = instance.bundle.urids("http://lv2plug.in/ns/ext/atom#Float");
        return &instance.Value(symbol);
    }
    void Restore(LilvState* state) {
        ASSERT_NE(state, nullptr);
        lilv_state_restore(
            state, instance,
            [](char const* symbol, void* self, void const* value, std::uint32_t, std::uint32_t) {
                static_cast<Instance*>(self)->Value(symbol) = *static_cast<float const*>(value);
            },
            this, 0, nullptr);
        lilv_state_free(state);
    }
};

double PeakDb(std::span<float const> samples) {
    float peak = 0.0f;
    for (const float sample : samples) peak = std::max(peak, std::abs(sample));
    return 20.0 * std::log10(static_cast<double>(peak));
}

Sound Noise(unsigned int numChannels, double seconds, int rate = 48000) {
    Sound sound;
    sound.samplerate = rate;
    for (unsigned int c = 0; c < numChannels; ++c)
        sound.samples.push_back(MakeNoise(c + 3, static_cast<std::size_t>(seconds * rate), 0.1f));
    return sound;
}

// Red if outputs change places, if a port's standard isn't the room's, or if the engine runs at another vector.
TEST(Lv2, PlaysWhatTheProgramRenders) {
    struct Case {
        char const *variant, *speakers, *preset;
        std::vector<std::size_t> fileChannels;  // of each output
    };
    Bundle bundle;
    TemporaryDirectory directory;
    for (auto const& [variant, speakers, preset, fileChannels] :
         {Case{"mono-headphones", "2", "", {0, 1}}, Case{"stereo-5.0", "5", "hall", {0, 2, 1, 3, 4}},
          Case{"stereo-ring8", "8", "", {0, 1, 2, 3, 4, 5, 6, 7}},
          Case{"mono-ring6", "6", "cathedral", {0, 1, 2, 3, 4, 5}}}) {
        Instance plugin(bundle, bundle.Plugin(variant), 48000.0, 256, true);
        const Sound sound = Noise(static_cast<unsigned int>(plugin.inputs.size()), 0.7);
        WriteSound(directory / "in.wav", sound);
        std::vector<std::string> words{
            "render", directory / "in.wav", "-o",   directory / "out.wav", "--speakers", speakers, "--tail",
            "0",      "--format",           "float"};
        if (*preset != '\0') {
            plugin.RestorePreset(preset);
            words.insert(words.end(), {"--preset", ROOMS "/" + std::string(preset) + ".room"});
        }
        RunWell(words);
        const Sound rendered = ReadSound(directory / "out.wav");
        lilv_instance_activate(plugin.instance);
        const Sound played = plugin.Play(sound, [] { return 256u; });
        EXPECT_EQ(plugin.Value("latency"), 0.0f);
        for (std::size_t i = 0; i < played.samples.size(); ++i)
            EXPECT_NEAR(plugin.Value("level_" + std::to_string(i + 1)),
                        PeakDb(std::span(played.samples[i]).last(played.NumFrames() % 256)), 0.001);
        ASSERT_EQ(rendered.samples.size(), played.samples.size());
        for (std::size_t i = 0; i < played.samples.size(); ++i)
            for (std::size_t k = 0; k < played.NumFrames(); ++k)
                ASSERT_EQ(played.samples[i][k], rendered.samples[fileChannels[i]][k])
                    << variant << " " << i << " " << k;
        lilv_instance_deactivate(plugin.instance);
        std::filesystem::remove(directory / "out.wav");
    }
}

// Red if a room gets lost or another one's name on its way to hosts, or a value or the number of channels does.
TEST(Lv2, EveryRoomIsAPresetOfEveryPlugIn) {
    Bundle bundle;
    std::map<std::string, std::unique_ptr<Lume::Room>> rooms;
    for (auto const& file : std::filesystem::directory_iterator(ROOMS))
        rooms[file.path().stem()] = program::MakeRoom(program::ReadPreset(file.path()));
    const Node preset = bundle.Uri("http://lv2plug.in/ns/ext/presets#Preset");
    LILV_FOREACH(plugins, i, bundle.Plugins()) {
        LilvPlugin const* const plugin = lilv_plugins_get(bundle.Plugins(), i);
        LilvNodes* const presets = lilv_plugin_get_related(plugin, preset.get());
        EXPECT_EQ(lilv_nodes_size(presets), rooms.size());
        lilv_nodes_free(presets);
        Instance instance(bundle, plugin, 48000.0, 64, true);
        for (auto const& [name, room] : rooms) {
            instance.RestorePreset(name);
            for (std::size_t c = 0; c < Lume::roomControls.size(); ++c)
                EXPECT_FLOAT_EQ(instance.Value(Lume::roomControls[c].name), room->Get(c)) << name;
            lilv_instance_activate(instance.instance);
            instance.Play(Noise(static_cast<unsigned int>(instance.inputs.size()), 0.01), [] { return 64u; });
            const std::string internals = "numinternals " + std::to_string(room->NumInternals());
            EXPECT_NE(instance.SavedState().find(internals), std::string::npos) << name;
            lilv_instance_deactivate(instance.instance);
        }
    }
}

// Red if a host that finds no vocabulary but the bundle, as those of people who build no plug-ins, shows bare numbers.
TEST(Lv2, UnitsComeWithTheBundle) {
    Bundle bundle;
    LilvPlugin const* const plugin = bundle.Plugin("mono-headphones");
    const Node unit = bundle.Uri(LV2_UNITS__unit), render = bundle.Uri(LV2_UNITS__render);
    std::map<std::string, int> shown;
    for (std::uint32_t i = 0; i < lilv_plugin_get_num_ports(plugin); ++i) {
        const Node own(lilv_port_get(plugin, lilv_plugin_get_port_by_index(plugin, i), unit.get()));
        const Node text(own ? lilv_world_get(bundle.world, own.get(), render.get(), nullptr) : nullptr);
        if (text) ++shown[lilv_node_as_string(text.get())];
    }
    for (char const* const text : {"%f dB", "%f Hz", "%f ms", "%f s", "%f deg", "%f m"})
        EXPECT_GT(shown[text], 0) << text;
}

// Red if a plug-in that a host connects by halves, or tells what isn't meant for it, ends, is silent, or says a word.
TEST(Lv2, TakesHalfOfAHostAndOddMessages) {
    Bundle bundle;
    const Sound sound = Noise(1, 0.1);
    const auto every64 = [] { return 64u; };
    Instance whole(bundle, bundle.Plugin("mono-headphones"), 48000.0, 64, true);
    Instance half(bundle, bundle.Plugin("mono-headphones"), 48000.0, 64, true);
    half.Value("enabled") = half.Value("tr0") = std::numeric_limits<float>::quiet_NaN();  // as it was made
    for (const std::uint32_t port : half.atoms) lilv_instance_connect_port(half.instance, port, nullptr);
    lilv_instance_connect_port(half.instance, static_cast<std::uint32_t>(half.values.size()),
                               nullptr);  // there is none
    for (Instance* const each : {&whole, &half}) lilv_instance_activate(each->instance);
    Sound silence = sound;
    std::fill(silence.samples[0].begin(), silence.samples[0].end(), 0.0f);
    whole.Play(silence, every64);
    EXPECT_EQ(whole.Value("level_1"), -90.0f);
    half.Play(silence, every64);
    EXPECT_TRUE(half.Play(sound, every64).samples == whole.Play(sound, every64).samples);
    for (const auto odd : {Instance::Odd::noProperty, Instance::Odd::noValue, Instance::Odd::valueIsText}) {
        whole.Tell("ears", "/no/such/set.hrtf", odd);
        whole.Play(sound, every64);
    }
    whole.Tell("voice", "/no/such/set.hrtf");
    whole.Play(sound, every64);
    whole.Tell("ears", std::string(5000, 'x'));
    whole.Play(sound, every64);
    whole.Play(sound, every64);
    EXPECT_TRUE(whole.said.empty() && whole.notified.empty()) << whole.said;
    whole.Tell("speakers", "/no/such/file");
    whole.Play(sound, every64);
    EXPECT_NE(whole.said.find("loudspeakers are not for headphones"), std::string::npos) << whole.said;
}

// Blocks of any length give the same samples, later by the latency that the plug-in reports, and off is dry.
TEST(Lv2, RunsInBlocksOfAnyLength) {
    Bundle bundle;
    const Sound sound = Noise(1, 0.5);
    Instance steady(bundle, bundle.Plugin("mono-headphones"), 48000.0, 64, true);
    Instance varying(bundle, bundle.Plugin("mono-headphones"), 48000.0, 8192, false);
    lilv_instance_activate(steady.instance);
    lilv_instance_activate(varying.instance);
    std::mt19937 random(5);
    const Sound a = steady.Play(sound, [] { return 64u; });
    const Sound b =
        varying.Play(sound, [&] { return static_cast<std::size_t>(1 + random() % (random() % 4 == 0 ? 8192 : 90)); });
    const auto latency = static_cast<std::size_t>(varying.Value("latency"));
    EXPECT_GT(latency, 0u);
    for (std::size_t k = 0; k + latency < sound.NumFrames(); ++k)
        ASSERT_EQ(a.samples[0][k], b.samples[0][k + latency]) << k;
    varying.Value("enabled") = 0.0f;
    varying.Play(Noise(1, 10.0), [] { return 500u; });
    Sound silence = sound;
    std::fill(silence.samples[0].begin(), silence.samples[0].end(), 0.0f);
    varying.Play(silence, [] { return 500u; });
    for (int i = 0; i < 20; ++i) varying.Play(silence, [] { return 500u; });
    const Sound dry = varying.Play(sound, [] { return 500u; });
    for (std::size_t k = latency; k < sound.NumFrames(); ++k)
        ASSERT_NEAR(dry.samples[1][k], sound.samples[0][k - latency], 1e-6f) << k;
}

// Every variant at odd rates under ports at their ends, beyond them, and without a number; on the audio thread no heap,
// lock or file.
TEST(Lv2, SurvivesWhateverItsPortsSay) {
    Bundle bundle;
    std::mt19937 random(11);
    LILV_FOREACH(plugins, i, bundle.Plugins()) {
        LilvPlugin const* const plugin = lilv_plugins_get(bundle.Plugins(), i);
        for (const double rate : {8000.0, 44100.0, 192000.0}) {
            Instance instance(bundle, plugin, rate, 2048, false);
            ASSERT_NE(instance.instance, nullptr);
            lilv_instance_activate(instance.instance);
            instance.isWatched = true;
            const Sound sound =
                Noise(static_cast<unsigned int>(instance.inputs.size()), 200.0 / rate, static_cast<int>(rate));
            for (int step = 0; step < 12; ++step) {
                for (const std::uint32_t port : instance.controls) {
                    const auto choice = static_cast<unsigned int>(random() % 6);
                    if (choice == 0) instance.values[port] = instance.least[port];
                    if (choice == 1) instance.values[port] = instance.greatest[port];
                    if (choice == 2) instance.values[port] = std::numeric_limits<float>::quiet_NaN();
                    if (choice == 3) instance.values[port] = 1e30f;
                }
                const Sound out = instance.Play(sound, [&] { return static_cast<std::size_t>(1 + random() % 2048); });
                for (auto const& channel : out.samples)
                    for (const float sample : channel) ASSERT_TRUE(std::abs(sample) < 1e6f);
            }
            EXPECT_EQ(instance.numTrespasses, 0) << lilv_node_as_uri(lilv_plugin_get_uri(plugin)) << " " << rate;
            lilv_instance_deactivate(instance.instance);
        }
    }
}

// A session from another machine, whose ears aren't here, opens and plays; what is no state changes nothing.
TEST(Lv2, OpensWithWhatIsThere) {
    Bundle bundle;
    LilvPlugin const* const plugin = bundle.Plugin("mono-headphones");
    const Sound sound = Noise(1, 0.2);
    const auto play = [&](std::string const& text) {
        Instance instance(bundle, plugin, 48000.0, 64, true);
        if (!text.empty()) instance.Restore(text);
        lilv_instance_activate(instance.instance);
        return instance.Play(sound, [] { return 64u; }).samples;
    };
    const auto expected = play("");
    const auto expectSame = [&](std::vector<std::vector<float>> const& played) {
        for (std::size_t i = 0; i < expected.size(); ++i)
            for (std::size_t k = 0; k < expected[i].size(); ++k) ASSERT_NEAR(played[i][k], expected[i][k], 1e-4f) << k;
    };
    Instance fresh(bundle, plugin, 48000.0, 64, true);
    std::string saved = fresh.SavedState();
    const std::string ears =
        "state:state [ <urn:orvanverb:lv2:ears> \"/no/such/set.hrtf\"^^<http://lv2plug.in/ns/ext/atom#Path> ; ";
    const std::size_t at = saved.find("state:state [");
    ASSERT_NE(at, saved.npos);
    expectSame(play(saved.replace(at, 13, ears)));
    // Sizes that a state leaves out are those of the plug-in.
    std::string unsized = saved;
    for (char const* const size : {"numsources 1", "numspeakers 2", "numinternals 8"})
        unsized[unsized.find(size)] = '#';
    Instance taken(bundle, plugin, 48000.0, 64, true);
    taken.Restore(unsized);
    EXPECT_EQ(taken.said.find("can't be restored"), std::string::npos) << taken.said;
    const std::size_t first = saved.find("orvanverb-state 1");
    expectSame(play(saved.replace(first, 17, "orvanverb-state 9")));
}

TEST(Lv2, StateComesBackByteForByte) {
    Bundle bundle;
    LilvPlugin const* const plugin = bundle.Plugin("stereo-headphones");
    const Sound sound = Noise(2, 0.1);
    Instance first(bundle, plugin, 48000.0, 64, true), second(bundle, plugin, 48000.0, 64, true);
    first.RestorePreset("cathedral");
    first.Value("tr0") = 3.25f;
    first.Value("source_2_azimuth") = -77.5f;
    first.Value("source_2_elevation") = 10.0f * (first.Value("source_2_distance") = 2.5f);
    lilv_instance_activate(first.instance);
    first.Play(sound, [] { return 64u; });
    const std::string saved = first.SavedState();
    ExpectContains(saved, "numinternals 16");
    second.Restore(saved);
    for (char const* const digit : {"source_1_azimuth", "source_2_azimuth"}) second.Value(digit) *= 1.000004f;
    lilv_instance_activate(second.instance);
    const auto played = second.Play(sound, [] { return 64u; }).samples;
    second.Restore(saved);  // while it runs
    EXPECT_TRUE(second.Play(sound, [] { return 64u; }).samples == played);
    for (char const* const azimuth : {"source_1_azimuth", "source_2_azimuth"})
        second.Value(azimuth) = first.Value(azimuth);  // what hosts write down and read again moves nothing
    EXPECT_EQ(second.SavedState(), saved);
}

// Red if a file that a host names while it plays doesn't reach the room by the worker, gets to other outputs than its
// lines say, costs the audio thread memory, isn't told, or is lost on the way to the next session.
TEST(Lv2, FilesAreTakenWhileItPlaysAndComeBackWithTheState) {
    Bundle bundle;
    TemporaryDirectory directory;
    const auto every64 = [] { return 64u; };
    const Sound sound = Noise(1, 0.4);
    WriteSound(directory / "in.wav", sound);
    std::filesystem::copy_file(ORVAN_SET, directory / "my.coll");
    WriteText(directory / "seven.speakers", "-60 # left\n0\n60\n\n-100\n100 0 2\n-150\n150\n");
    WriteText(directory / "clockwise.speakers", "-60\n0\n60\n100 0 2\n150\n-150\n-100\n");  // as the program has them
    WriteText(directory / "few.speakers", "-60 0 1e5\n60\n");
    struct Case {
        char const *variant, *property, *file, *option, *programFile, *reason;
        std::vector<std::size_t> programChannels;  // of each output
    };
    for (auto const& [variant, property, file, option, programFile, reason, programChannels] :
         {Case{"mono-headphones", "ears", "my.coll", "--hrtf", "my.coll", "few.speakers", {0, 1}},
          Case{"mono-7.0",
               "speakers",
               "seven.speakers",
               "--speakers",
               "clockwise.speakers",
               "has 2 loudspeakers, the plug-in 7",
               {0, 1, 2, 6, 3, 5, 4}}}) {
        LilvPlugin const* const plugin = bundle.Plugin(variant);
        Instance first(bundle, plugin, 48000.0, 64, true), second(bundle, plugin, 48000.0, 64, true);
        first.Value("source_1_azimuth") = 120.0f;  // among those whose order is another than the engine's
        lilv_instance_activate(first.instance);
        first.isWatched = true;
        const Sound before = first.Play(sound, every64);
        const std::pair<std::string, std::string> notice{std::string("urn:orvanverb:lv2:") + property,
                                                         directory / file};
        first.Tell(property, notice.second);
        first.Play(sound, every64);
        EXPECT_EQ(first.notified, std::vector{notice});
        const Sound changed = first.Play(sound, every64);
        // What isn't there, or doesn't fit, is said and changes nothing, and the host hears what there is.
        EXPECT_EQ(first.said, "");
        for (auto const& [wrong, words] :
             {std::pair<std::string, std::string>{"nothing.coll", "nothing.coll"}, {"few.speakers", reason}}) {
            first.said.clear();
            first.Tell(property, directory / wrong);
            first.Play(sound, every64);
            ExpectContains(first.said, words);
        }
        first.Tell();
        first.Play(sound, every64);
        EXPECT_EQ(first.notified, (std::vector{notice, notice, notice, notice}));
        EXPECT_EQ(first.numTrespasses, 0);
        const std::string saved = first.SavedState();
        ExpectContains(saved, file);

        second.Restore(saved);
        EXPECT_EQ(second.SavedState(), saved);
        lilv_instance_activate(second.instance);
        // As the program does, from the same file; of places its coordinates have another last bit. What glided there
        // while it played ends a fraction of a sample beside that, -60 dB of the sound.
        const Sound played = second.Play(sound, every64);
        RunWell({"render", directory / "in.wav", "-o", directory / "out.wav", option, directory / programFile,
                 "--source", "1", "120", "0", "1", "--tail", "0", "--format", "float", "--force"});
        const Sound rendered = ReadSound(directory / "out.wav");
        ASSERT_EQ(rendered.samples.size(), played.samples.size());
        second.Play(sound, every64);
        const Sound wanted = second.Play(sound, every64);
        for (std::size_t i = 0; i < played.samples.size(); ++i)
            for (std::size_t k = 0; k < played.NumFrames(); ++k) {
                ASSERT_NEAR(played.samples[i][k], rendered.samples[programChannels[i]][k], 1e-6f)
                    << variant << " " << i << " " << k;
                ASSERT_NEAR(changed.samples[i][k], wanted.samples[i][k], 2e-4f) << variant << " " << i << " " << k;
            }
        EXPECT_TRUE(played.samples != before.samples);
        // A host may start it again when the file has gone.
        lilv_instance_deactivate(second.instance);
        std::filesystem::remove(directory / file);
        lilv_instance_activate(second.instance);
        EXPECT_GT(LevelDb(second.Play(sound, every64).samples[0]), -80.0);
        // Or open a session that names it.
        Instance without(bundle, plugin, 48000.0, 64, true);
        without.Restore(saved);
        ExpectContains(without.said, file);
        lilv_instance_activate(without.instance);
        EXPECT_GT(LevelDb(without.Play(sound, every64).samples[0]), -80.0);
    }
}

// Red if switching off jumps, takes another time than 20 ms, or cuts the tail.
TEST(Lv2, FadesOutIn20MillisecondsAndLetsTheTailRing) {
    Bundle bundle;
    const auto every64 = [] { return 64u; };
    LilvPlugin const* const plugin = bundle.Plugin("stereo-headphones");
    Instance quiet(bundle, plugin, 48000.0, 64, true);
    for (char const* const layer : {"direct_gain", "room_gain", "early_gain", "cluster_gain", "gain"})
        quiet.Value(layer) = -60.0f;
    lilv_instance_activate(quiet.instance);
    Sound constant = Noise(2, 0.2);
    for (auto& channel : constant.samples) std::fill(channel.begin(), channel.end(), 0.5f);
    quiet.Play(constant, every64);
    quiet.Play(constant, every64);
    quiet.Value("enabled") = 0.0f;
    const Sound off = quiet.Play(constant, every64);
    for (std::size_t k = 0; k < 2000; ++k)
        ASSERT_NEAR(off.samples[0][k], 0.5f * std::min(1.0f, static_cast<float>(k + 1) / 960.0f), 0.01f) << k;

    Instance on(bundle, plugin, 48000.0, 64, true), bypassed(bundle, plugin, 48000.0, 64, true);
    const Sound noise = Noise(2, 0.2);
    Sound silence = noise;
    for (auto& channel : silence.samples) std::fill(channel.begin(), channel.end(), 0.0f);
    for (Instance* const each : {&on, &bypassed}) {
        lilv_instance_activate(each->instance);
        each->Play(noise, every64);
    }
    bypassed.Value("enabled") = 0.0f;
    const Sound tail = on.Play(silence, every64);
    EXPECT_GT(LevelDb(tail.samples[0]), -60.0);
    EXPECT_TRUE(bypassed.Play(silence, every64).samples == tail.samples);
}

// Red if an output is written before every input was read, or if the thread flushes denormal numbers afterwards.
TEST(Lv2, SharesArraysAndLeavesTheProcessorAsItWas) {
    Bundle bundle;
    const auto denormalsCount = [] {
        volatile float tiny = 1e-40f;
        return tiny * 1.0f != 0.0f;
    };
    for (char const* const variant : {"stereo-headphones", "8-ring8"}) {
        Instance apart(bundle, bundle.Plugin(variant), 48000.0, 512, false);
        Instance shared(bundle, bundle.Plugin(variant), 48000.0, 512, false);
        const Sound sound = Noise(static_cast<unsigned int>(apart.inputs.size()), 0.3);
        for (Instance* const each : {&apart, &shared}) lilv_instance_activate(each->instance);
        std::size_t block = 0;
        const auto length = [&] { return 1 + (block++ * 37) % 512; };
        const Sound wanted = apart.Play(sound, length);
        block = 0;
        EXPECT_TRUE(shared.Play(sound, length, true).samples == wanted.samples) << variant;
        EXPECT_TRUE(denormalsCount());
    }
}

}  // namespace
