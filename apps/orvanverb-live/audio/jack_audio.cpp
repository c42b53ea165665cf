#include "orvanverb-live/audio/jack_audio.h"

#include <jack/jack.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <utility>

#include "dsp/constants.h"
#include "orvanverb-live/audio/recorder.h"
#include "orvanverb/common/program_error.h"

namespace live {

namespace {

using namespace std::chrono_literals;

/// What the library has to say about a server that isn't there this program says, once.
void KeepQuiet() {
    jack_set_error_function([](char const*) {});
    jack_set_info_function([](char const*) {});
}

struct ClientCloser {
    void operator()(jack_client_t* client) const { jack_client_close(client); }
};
using OwnedClient = std::unique_ptr<jack_client_t, ClientCloser>;

/// What is written of all that sounds: both begin with the first block that the room plays.
struct Recorders {
    std::optional<Recorder> inputs, outputs;
    int rate = 0;  // of the files [Hz]; 0: there are none yet
};

void Begin(Recorders& recorders, JackOptions const& options, unsigned int numSources, int rate) {
    recorders.rate = rate;
    if (options.recordInputs)
        recorders.inputs.emplace(*options.recordInputs, rate, program::SpeakerLayout::Channels(numSources, 0));
    if (options.record) recorders.outputs.emplace(*options.record, rate, options.layout);
}

/// @throws program::WorkError for what couldn't be written; the other one is whole all the same
void Finish(Recorders& recorders) {
    std::optional<program::WorkError> failure;
    for (std::optional<Recorder>* const recorder : {&recorders.inputs, &recorders.outputs}) {
        try {
            if (*recorder) (*recorder)->Finish();
        } catch (program::WorkError const& error) {
            failure = error;
        }
    }
    if (failure) throw *failure;
}

/// A client as long as its server lives.
class JackClient {
public:
    JackClient(OwnedClient opened, JackOptions const& newOptions, Desk& newDesk, Recorders& newRecorders)
        : options(newOptions), desk(newDesk), recorders(newRecorders), client(std::move(opened)) {
        jack_set_process_callback(
            client.get(), [](jack_nframes_t frames, void* self) { return From(self).Process(frames); }, this);
        jack_set_xrun_callback(
            client.get(), [](void* self) { return ++From(self).xruns, 0; }, this);
        jack_set_freewheel_callback(
            client.get(), [](int on, void* self) { From(self).freewheels = on != 0; }, this);
        jack_set_buffer_size_callback(
            client.get(), [](jack_nframes_t, void* self) { return From(self).resized = true, 0; }, this);
        jack_on_shutdown(
            client.get(), [](void* self) { From(self).shutDown = true; }, this);
        Register(inputs, desk.NumSources(), "in_", JackPortIsInput);
        Register(outputs, desk.NumOutputs(), "out_", JackPortIsOutput);
    }

    ~JackClient() {
        if (!shutDown) jack_deactivate(client.get());
        client.reset();  // no callback comes from here on
        desk.Detach();
    }

    /// Plays until the server goes or the program is to end.
    void Run(StopSignal const& stop) {
        MakePlayer();
        if (jack_activate(client.get()) != 0) return;
        Connect(options.connectIn, inputs, JackPortIsOutput);
        Connect(options.connectOut, outputs, JackPortIsInput);
        long toldXruns = 0;
        auto lastTold = std::chrono::steady_clock::now() - 10s;
        while (!shutDown) {
            if (resized.exchange(false)) MakePlayer();
            const long now = xruns;
            if (now != toldXruns && std::chrono::steady_clock::now() - lastTold > 10s) {
                desk.Remark("JACK: " + std::to_string(now) + (now == 1 ? " xrun" : " xruns") + " since the beginning");
                toldXruns = now;
                lastTold = std::chrono::steady_clock::now();
            }
            desk.SetStatus(freewheels ? "JACK, freewheeling" : "JACK", now);
            if (stop.WaitFor(100ms)) return;
        }
    }

private:
    static JackClient& From(void* self) { return *static_cast<JackClient*>(self); }

    void Register(std::vector<jack_port_t*>& ports, unsigned int count, std::string const& name, unsigned long flags) {
        for (unsigned int i = 1; i <= count; ++i) {
            jack_port_t* const port =
                jack_port_register(client.get(), (name + std::to_string(i)).c_str(), JACK_DEFAULT_AUDIO_TYPE, flags, 0);
            if (port == nullptr) throw std::runtime_error("JACK gives no more ports");
            ports.push_back(port);
        }
    }

    /// Anew whenever the blocks have another size; JACK also tells the one that they begin with. The audio thread plays
    /// silence meanwhile.
    void MakePlayer() {
        const std::size_t wanted = jack_get_buffer_size(client.get());
        if (wanted == std::exchange(blockSize, wanted)) return;
        player = nullptr;
        while (busy) std::this_thread::sleep_for(1ms);
        desk.Detach();
        player = &desk.Attach(static_cast<int>(jack_get_sample_rate(client.get())), blockSize);
    }

    int Process(jack_nframes_t frames) {
        std::array<float const*, orvandsp::MaxNumChannels> in{};
        std::array<float*, orvandsp::MaxNumChannels> out{};
        for (std::size_t i = 0; i < inputs.size(); ++i)
            in[i] = static_cast<float const*>(jack_port_get_buffer(inputs[i], frames));
        for (std::size_t i = 0; i < outputs.size(); ++i)
            out[i] = static_cast<float*>(jack_port_get_buffer(outputs[i], frames));
        Record(recorders.inputs, in.data(), frames);
        busy = true;
        if (Player* const now = player)
            now->Process(out.data(), in.data(), frames);
        else
            for (std::size_t i = 0; i < outputs.size(); ++i) std::fill_n(out[i], frames, 0.0f);
        busy = false;
        Record(recorders.outputs, out.data(), frames);
        return 0;
    }

    void Record(std::optional<Recorder>& recorder, float const* const* channels, jack_nframes_t frames) {
        if (!recorder) return;
        if (freewheels) recorder->WaitForPlace(frames);
        recorder->Add(channels, frames);
    }

    /// Port after port with those of others whose names begin so, in the server's order.
    void Connect(std::vector<std::string> const& prefixes, std::vector<jack_port_t*> const& ports,
                 unsigned long flags) {
        std::vector<std::string> others;
        for (std::string const& prefix : prefixes) {
            const std::unique_ptr<char const*[], void (*)(void*)> names(
                jack_get_ports(client.get(), nullptr, JACK_DEFAULT_AUDIO_TYPE, flags), jack_free);
            const std::size_t before = others.size();
            for (std::size_t i = 0; names && names[i] != nullptr; ++i)
                if (std::string_view(names[i]).starts_with(prefix)) others.emplace_back(names[i]);
            if (others.size() == before) desk.Remark("--connect " + prefix + ": JACK has no such port");
        }
        for (std::size_t i = 0; i < others.size() && i < ports.size(); ++i) {
            char const* const own = jack_port_name(ports[i]);
            char const* const other = others[i].c_str();
            const bool isInput = flags == JackPortIsOutput;
            if (jack_connect(client.get(), isInput ? other : own, isInput ? own : other) != 0)
                desk.Remark("JACK can't connect " + std::string(own) + " and " + other);
        }
    }

    JackOptions const& options;
    Desk& desk;
    Recorders& recorders;
    OwnedClient client;
    std::vector<jack_port_t*> inputs, outputs;
    std::size_t blockSize = 0;  // of the player
    std::atomic<Player*> player = nullptr;
    std::atomic<bool> busy = false, resized = false, freewheels = false, shutDown = false;
    std::atomic<long> xruns = 0;
};

}  // namespace

int JackRate(std::string const& name) {
    constexpr int usual = 48000;
    KeepQuiet();
    const OwnedClient client(jack_client_open(name.c_str(), JackNoStartServer, nullptr));
    return client ? static_cast<int>(jack_get_sample_rate(client.get())) : usual;
}

void PlayJack(JackOptions const& options, Desk& desk, StopSignal const& stop) {
    KeepQuiet();
    Recorders recorders, none;
    for (bool told = false; !stop.IsRequested();) {
        OwnedClient opened(jack_client_open(options.name.c_str(), JackNoStartServer, nullptr));
        if (!opened) {
            if (!told) desk.Remark("waiting for a JACK server; --audio file:IN:OUT needs none");
            told = true;
            desk.SetStatus("waiting for JACK", -1);
            stop.WaitFor(500ms);
            continue;
        }
        const auto rate = static_cast<int>(jack_get_sample_rate(opened.get()));
        desk.Remark("JACK: client " + std::string(jack_get_client_name(opened.get())) + ", " + std::to_string(rate) +
                    " Hz, blocks of " + std::to_string(jack_get_buffer_size(opened.get())));
        if (recorders.rate == 0) Begin(recorders, options, desk.NumSources(), rate);
        const bool records = recorders.rate == rate;
        if (!records && (options.record || options.recordInputs))
            desk.Remark("the recording has " + std::to_string(recorders.rate) + " Hz: it goes on when JACK has, too");
        JackClient(std::move(opened), options, desk, records ? recorders : none).Run(stop);
        told = false;
        if (!stop.IsRequested()) desk.Remark("JACK has gone away");
    }
    Finish(recorders);
}

}  // namespace live
