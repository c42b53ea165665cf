/// The module _orvanverb: Room and the measures of responses for Python. The package orvanverb gives them units, names
/// and shapes that people expect.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "dsp/console.h"
#include "engine/room_controls.h"
#include "geometry/azimuth_distance_elevation.h"
#include "measure/room_measurement.h"
#include "orvan/version.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/measure/figure_columns.h"
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

/// Loudspeaker of the room for each channel that comes out; none for one that stays silent.
using Order = std::vector<std::optional<std::size_t>>;

class PythonRoom {
public:
    /// @param newOrder  empty: the channels are the loudspeakers
    PythonRoom(unsigned int sources, unsigned int speakers, unsigned int internals, float newRate, Order newOrder)
        : room(sources, speakers, internals),
          order(std::move(newOrder)),
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
    void PlaceSpeakers(std::vector<std::array<float, 3>> const& coordinates) {
        const Use use(busy);
        std::vector<Lume::CartesianVector> positions;
        positions.reserve(coordinates.size());
        for (auto const& [x, y, z] : coordinates) positions.push_back({x, y, z});
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
        Samples outputs({static_cast<py::ssize_t>(NumOutputs()), inputs.shape(1)});
        std::vector<float const*> in = orvanpython::Channels(inputs);
        std::vector<float*> out = orvanpython::MutableChannels(outputs);
        if (!order.empty()) {
            const std::vector<float*> channels = std::exchange(out, std::vector<float*>(room.NumSpeakers()));
            for (std::size_t c = 0; c < channels.size(); ++c)
                if (order[c])
                    out[*order[c]] = channels[c];
                else
                    std::fill_n(channels[c], numFrames, 0.0f);
        }
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

    std::size_t NumOutputs() const { return order.empty() ? room.NumSpeakers() : order.size(); }

    Lume::Room room;
    Order order;

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

/// Loudspeakers by the words that the program takes, or by azimuths, elevations [degrees] and distances [m].
/// @return their coordinates, and what the channels are
std::pair<std::vector<std::array<float, 3>>, Order> Layout(
    std::variant<std::string, std::vector<std::array<float, 3>>> const& speakers) {
    program::SpeakerLayout layout;
    if (auto const* const text = std::get_if<std::string>(&speakers))
        layout = program::SpeakerLayout::Parse(*text);
    else
        for (auto const& [azimuthDeg, elevationDeg, distance] : std::get<1>(speakers))
            layout.positions.push_back(Lume::FromAzimuthDistanceElevation(azimuthDeg, distance, elevationDeg));
    std::vector<std::array<float, 3>> coordinates;
    for (Lume::CartesianVector const& p : layout.positions) coordinates.push_back({p.x, p.y, p.z});
    Order order;
    for (const std::size_t index : layout.fileOrder)
        order.push_back(index < coordinates.size() ? std::optional(index) : std::nullopt);
    return {coordinates, order};
}

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

/// A figure's name in Python, always with its unit: that of Ts is the second, as everywhere here.
std::string KeyOf(program::FigureColumn const& column) {
    const std::string key = column.key;
    if (key == "ts_ms") return "ts_s";
    return key == "edt" || key == "t20" || key == "t30" ? key + "_s" : key;
}

py::array_t<float> Curve(std::vector<float> const& values) {
    return py::array_t<float>(static_cast<py::ssize_t>(values.size()), values.data());
}

py::dict Figures(orvanmeasure::BandFigures const& band, bool twoEars, bool curves) {
    py::dict figures, missing, inexact;
    for (program::FigureColumn const& column : program::FigureColumns()) {
        if (column.needsEars && !twoEars) continue;
        const py::str key = KeyOf(column);
        orvanmeasure::Figure figure = column.get(band);
        if (std::string_view(column.key) == "ts_ms") figure.value /= 1000.0;
        figures[key] = Value(figure);
        if (const std::string why = WhyMissing(figure, band, column.lowerDb); !why.empty()) missing[key] = why;
        if (const std::string why = column.whyInexact(band); !why.empty()) inexact[key] = why;
    }
    figures["noise_found"] = band.floor.found;
    figures["missing"] = missing;
    figures["inexact"] = inexact;
    if (curves) figures["curve_db"] = Curve(band.curve);
    return figures;
}

py::dict Pair(orvanmeasure::ChannelPair const& pair) {
    py::dict told;
    told["channels"] = py::make_tuple(pair.first, pair.second);
    told["correlation"] = pair.correlation;
    return told;
}

py::dict Measure(Samples const& response, double rate, bool thirds, bool curves) {
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
    py::list neighbours;
    for (orvanmeasure::BandFigures const& band : measured.bands)
        bands[band.band.name.c_str()] = Figures(band, twoEars, curves);
    for (orvanmeasure::ChannelPair const& pair : measured.neighbours) neighbours.append(Pair(pair));
    const auto optional = [](auto const& from, auto value) -> py::object {
        if (!from) return py::none();
        return value(*from);
    };
    result["bands"] = bands;
    result["all"] = Figures(measured.whole, twoEars, curves);
    result["t30_mid_s"] = Value(measured.Mid(&orvanmeasure::BandFigures::t30));
    result["edt_mid_s"] = Value(measured.Mid(&orvanmeasure::BandFigures::edt));
    result["nearly_mixed_s"] = Value(measured.density.nearlyMixed);
    result["mixing_time_s"] = Value(measured.density.mixingTime);
    result["direct_s"] = optional(
        measured.direct, [&](auto const& direct) { return py::float_(static_cast<double>(direct.sample) / rate); });
    result["direct_to_rest_db"] =
        optional(measured.direct, [](auto const& direct) { return py::float_(direct.directToRestDb); });
    result["neighbours"] = neighbours;
    result["most_alike"] = optional(measured.mostAlike, Pair);
    if (curves) {
        result["curve_step_s"] = orvanmeasure::curveStepSeconds;
        result["echo_density"] = Curve(measured.density.values);
        result["echo_density_step_s"] = measured.density.stepSeconds;
        result["centroid_hz"] = Curve(measured.centroidHz);
        result["centroid_step_s"] = measured.centroidStepSeconds;
    }
    return result;
}

}  // namespace

PYBIND11_MODULE(_orvanverb, m) {
    m.doc() = "The engine of the package orvanverb.";
    m.attr("__version__") = ORVAN_VERSION_STRING;
    orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});  // exceptions say it
    orvanpython::AddProgram(m);
    py::class_<PythonRoom>(m, "Room")
        .def(py::init<unsigned int, unsigned int, unsigned int, float, Order>())
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
        .def_property_readonly("num_outputs", &PythonRoom::NumOutputs)
        .def_readonly("order", &PythonRoom::order)
        .def_property_readonly("num_internals", [](PythonRoom const& r) { return r.room.NumInternals(); })
        .def_property_readonly("bad_inputs", [](PythonRoom const& r) { return r.room.NumBadInputs(); })
        .def_property_readonly("bad_outputs", [](PythonRoom const& r) { return r.room.NumBadOutputs(); });
    m.def("layout", Layout);
    m.def("controls", Controls);
    m.def("measure", Measure);
}
