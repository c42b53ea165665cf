/// The module _orvanverb: Room and the measures of responses for Python. The package orvanverb gives them units, names
/// and shapes that people expect.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <array>
#include <atomic>
#include <cmath>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "dsp/console.h"
#include "engine/room_controls.h"
#include "geometry/azimuth_distance_elevation.h"
#include "measure/room_measurement.h"
#include "orvan/version.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "room/control_range.h"
#include "room/room.h"
#include "samples.h"

namespace py = pybind11;

namespace {

using orvanpython::Samples;

constexpr std::size_t vectorSize = 64;  // the program's, so that both sound the same to the last bit

/// Holds an object for the call that uses it. Python's lock is released while rooms compute: without this, two threads
/// could meet in one room.
class Use {
public:
    explicit Use(std::atomic<bool>& newBusy) : busy(newBusy) {
        if (busy.exchange(true))
            throw std::runtime_error("this room is in use on another thread: a room belongs to one thread at a time");
    }
    ~Use() { busy = false; }
    Use(Use const&) = delete;
    Use& operator=(Use const&) = delete;

private:
    std::atomic<bool>& busy;
};

class PythonRoom {
public:
    PythonRoom(unsigned int sources, unsigned int speakers, unsigned int internals, float newRate)
        : room(sources, speakers, internals),
          rate(Checked(newRate)),
          ears(static_cast<int>(rate), program::EarsCache::Fitting::kept) {}

    void Set(std::string const& name, float value) {
        const Use use(busy);
        const std::size_t control = Find(name);
        Lume::RoomControl const& row = Lume::roomControls[control];
        if (!Lume::IsInRange(row, value))
            throw py::value_error(name + ": " + Lume::NumberText(value) + " is not " + Lume::RangeText(row));
        room.Set(control, value);
    }
    float Get(std::string const& name) const { return room.Get(Find(name)); }

    void Place(unsigned int source, float azimuthDeg, float elevationDeg, float distance) {
        const Use use(busy);
        if (source >= room.NumSources())
            throw py::index_error("source " + std::to_string(source) + ": there are " +
                                  std::to_string(room.NumSources()) + ", from 0");
        if (!room.PlaceSource(source, Lume::FromAzimuthDistanceElevation(azimuthDeg, distance, elevationDeg)))
            throw py::value_error("a position that is not a number");
    }
    void PlaceSpeakers(std::vector<std::array<float, 3>> const& places) {
        const Use use(busy);
        std::vector<Lume::CartesianVector> positions;
        for (auto const& [azimuthDeg, elevationDeg, distance] : places)
            positions.push_back(Lume::FromAzimuthDistanceElevation(azimuthDeg, distance, elevationDeg));
        if (!room.PlaceSpeakers(positions))
            throw py::value_error("a room with " + std::to_string(room.NumSpeakers()) +
                                  " loudspeakers needs as many places, all of them numbers");
    }

    /// @param inputs  (sources, frames)
    Samples Process(Samples const& inputs) {
        const Use use(busy);
        if (inputs.ndim() != 2 || inputs.shape(0) != static_cast<py::ssize_t>(room.NumSources()))
            throw py::value_error("a room with " + std::to_string(room.NumSources()) +
                                  " sources takes an array of the shape (" + std::to_string(room.NumSources()) +
                                  ", frames), channels first, not " + orvanpython::ShapeText(inputs));
        const auto numFrames = static_cast<std::size_t>(inputs.shape(1));
        Samples outputs({static_cast<py::ssize_t>(room.NumSpeakers()), inputs.shape(1)});
        std::vector<float const*> in = orvanpython::Channels(inputs);
        const std::vector<float*> out = orvanpython::MutableChannels(outputs);
        const py::gil_scoped_release released;
        Begin();
        room.Process(out.data(), in.data(), numFrames);
        return outputs;
    }

    void Clear() {
        const Use use(busy);
        room.Clear();
    }
    void LoadEars(std::string const& path) {
        const Use use(busy);
        room.LoadEars(ears.Playable(path));
    }

    std::string State() const {
        Lume::RoomState state = room.SaveState();
        state.vectorSize = vectorSize;
        state.ears = ears.Original(state.ears);
        return state.Text();
    }
    void Restore(std::string const& text) {
        const Use use(busy);
        Lume::RoomState state = Lume::RoomState::Parse(text);
        if (state.numSources == 0) state.numSources = room.NumSources();
        if (state.numSpeakers == 0) state.numSpeakers = room.NumSpeakers();
        if (state.numInternals == 0) state.numInternals = room.NumInternals();
        state.ears = ears.Playable(state.ears);
        room.RestoreState(state);
    }

    Lume::Room room;

private:
    /// With the first sound, and not before: a room that was told everything by then sounds from its first sample on as
    /// any other room that was told the same.
    void Begin() {
        if (configured) return;
        room.Configure(rate, vectorSize, vectorSize);
        room.Settle();
        configured = true;
    }

    static float Checked(float rate) {
        if (!(rate >= 1000.0f && rate <= 768000.0f))
            throw py::value_error("rate: " + Lume::NumberText(rate) + " is not from 1000 to 768000 Hz");
        return rate;
    }

    static std::size_t Find(std::string const& name) {
        const auto control = Lume::FindControl(name);
        if (!control) throw py::key_error(name + ": is no control of a room");
        return *control;
    }

    float rate;  // [Hz]
    program::EarsCache ears;
    bool configured = false;
    std::atomic<bool> busy = false;
};

py::dict Controls() {
    constexpr char const* groups[] = {"late", "direct", "room", "early", "cluster"};
    constexpr char const* scales[] = {"linear", "logarithmic", "switch"};
    py::dict controls;
    for (Lume::RoomControl const& row : Lume::roomControls) {
        py::dict control;
        control["label"] = row.label;
        control["usual_name"] = row.usualName;
        control["unit"] = row.unit;
        control["least"] = row.least;
        control["greatest"] = row.greatest;
        control["standard"] = row.standard;
        control["group"] = groups[static_cast<std::size_t>(row.group)];
        control["scale"] = scales[static_cast<std::size_t>(row.scale)];
        controls[row.name] = control;
    }
    return controls;
}

py::object Value(orvanmeasure::Figure const& figure) {
    return figure.IsThere() ? py::object(py::float_(figure.value)) : py::object(py::none());
}

py::dict Figures(orvanmeasure::BandFigures const& band, bool twoEars) {
    py::dict figures;
    figures["edt_s"] = Value(band.edt.seconds);
    figures["t20_s"] = Value(band.t20.seconds);
    figures["t30_s"] = Value(band.t30.seconds);
    figures["t30_correlation"] = band.t30.correlation;
    figures["c50_db"] = Value(band.c50Db);
    figures["c80_db"] = Value(band.c80Db);
    figures["d50"] = Value(band.d50);
    figures["ts_s"] = Value(band.centreSeconds);
    if (twoEars) {
        figures["iacc_early"] = Value(band.iaccEarly);
        figures["iacc_late"] = Value(band.iaccLate);
        figures["iacc_all"] = Value(band.iaccAll);
    }
    return figures;
}

py::dict Measure(Samples const& response, double rate, bool thirds) {
    if (response.ndim() != 2 || response.shape(0) < 1 || response.shape(1) < 1)
        throw py::value_error("a response has the shape (channels, frames), with at least one of each");
    std::vector<std::span<float const>> channels;
    for (py::ssize_t i = 0; i < response.shape(0); ++i)
        channels.emplace_back(response.data(i, 0), static_cast<std::size_t>(response.shape(1)));
    for (auto const& channel : channels)
        for (const float sample : channel)
            if (!std::isfinite(sample)) throw py::value_error("the response holds samples that are not finite");
    orvanmeasure::RoomMeasurement measured;
    {
        const py::gil_scoped_release released;
        measured = orvanmeasure::Measure(channels, rate,
                                         thirds ? orvanmeasure::BandWidth::third : orvanmeasure::BandWidth::octave);
    }
    const bool twoEars = measured.numChannels == 2;
    py::dict result, bands;
    for (orvanmeasure::BandFigures const& band : measured.bands) bands[band.band.name.c_str()] = Figures(band, twoEars);
    result["bands"] = bands;
    result["all"] = Figures(measured.whole, twoEars);
    result["t30_mid_s"] = Value(measured.Mid(&orvanmeasure::BandFigures::t30));
    result["edt_mid_s"] = Value(measured.Mid(&orvanmeasure::BandFigures::edt));
    result["mixing_time_s"] = Value(measured.density.mixingTime);
    result["direct_to_rest_db"] =
        measured.direct ? py::object(py::float_(measured.direct->directToRestDb)) : py::object(py::none());
    return result;
}

}  // namespace

PYBIND11_MODULE(_orvanverb, m) {
    m.doc() = "The engine of the package orvanverb.";
    m.attr("__version__") = ORVAN_VERSION_STRING;
    orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});  // exceptions say it
    orvanpython::AddProgram(m);
    py::class_<PythonRoom>(m, "Room")
        .def(py::init<unsigned int, unsigned int, unsigned int, float>())
        .def("set", &PythonRoom::Set)
        .def("get", &PythonRoom::Get)
        .def("place", &PythonRoom::Place)
        .def("place_speakers", &PythonRoom::PlaceSpeakers)
        .def("process", &PythonRoom::Process)
        .def("clear", &PythonRoom::Clear)
        .def("load_ears", &PythonRoom::LoadEars)
        .def("state", &PythonRoom::State)
        .def("restore", &PythonRoom::Restore)
        .def_property_readonly("latency", [](PythonRoom const& r) { return r.room.Latency(); })
        .def_property_readonly("num_sources", [](PythonRoom const& r) { return r.room.NumSources(); })
        .def_property_readonly("num_speakers", [](PythonRoom const& r) { return r.room.NumSpeakers(); })
        .def_property_readonly("num_internals", [](PythonRoom const& r) { return r.room.NumInternals(); })
        .def_property_readonly("bad_inputs", [](PythonRoom const& r) { return r.room.NumBadInputs(); })
        .def_property_readonly("bad_outputs", [](PythonRoom const& r) { return r.room.NumBadOutputs(); });
    m.def("controls", Controls);
    m.def("measure", Measure);
}
