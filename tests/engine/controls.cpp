#include "engine/controls.h"

#include <iterator>

#include "engine/engine_rig.h"
#include "engine/room_controls.h"

namespace {

using Lume::OrvanVerb;

/// What a control of the table does to a tone at most, for a small change to that value and for a full one [dB].
struct Limits {
    char const* name;
    float small;
    double smallLimit, fullLimit;
};

constexpr Limits limits[] = {
    {"direct_gain", 1.0f, -60, -53},
    {"direct_gain_low", 1.0f, -60, -28},
    {"direct_gain_medium", 1.0f, -60, -34},
    {"direct_gain_high", 1.0f, -60, -39},
    {"direct_freq_low", 275.0f, -60, -30},
    {"direct_freq_high", 4400.0f, -60, -7},
    {"room_gain", 1.0f, -60, -54},
    {"room_gain_low", 1.0f, -60, -34},
    {"room_gain_medium", 1.0f, -60, -34},
    {"room_gain_high", 1.0f, -60, -46},
    {"room_freq_low", 275.0f, -60, -36},
    {"room_freq_high", 4400.0f, -60, -16},
    {"early_gain", 1.0f, -60, -46},
    {"early_gain_low", 1.0f, -60, -38},
    {"early_gain_medium", 1.0f, -60, -30},
    {"early_gain_high", 1.0f, -60, -40},
    {"early_freq_low", 275.0f, -60, -48},
    {"early_freq_high", 4400.0f, -60, -10},
    {"cluster_gain", 1.0f, -60, -48},
    {"cluster_gain_low", 1.0f, -60, -40},
    {"cluster_gain_medium", 1.0f, -60, -31},
    {"cluster_gain_high", 1.0f, -60, -47},
    {"cluster_freq_low", 275.0f, -60, -44},
    {"cluster_freq_high", 4400.0f, -60, -19},
    {"early_start", 23.22f, -27, -1},
    {"early_end", 40.71f, -25, -5},
    {"early_distr", 0.52f, -30, -9},
    {"early_shape", 0.52f, -39, -7},
    {"early_width", 35.0f, -60, -47},
    {"cluster_start", 43.47f, -14, -3},
    {"cluster_end", 106.64f, -47, -2},
    {"cluster_distr", 0.52f, -38, -5},
    {"gain", 1.0f, -60, -41},
    {"tr0", 2.195f, -41, -16},
    {"trl", 1.1f, -52, -19},
    {"trm", 1.1f, -42, -11},
    {"trh", 0.55f, -55, -16},
    {"fl", 275.0f, -60, -44},
    {"fh", 8800.0f, -60, -10},
    {"reverb_start", 96.37f, -15, -8},
    {"modaldensity", 0.9f, -15, -13},
    {"airfreq", 11000.0f, -57, 2},
    {"air", 0.0f, -38, -38},
    {"infinite", 1.0f, -19, -19},
};
static_assert(std::size(limits) == Lume::roomControls.size());

std::vector<Control> MakeControls() {
    std::vector<Control> controls;
    const OrvanVerb untold(2);
    for (Limits const& limit : limits) {
        Lume::RoomControl const& row = Lume::roomControls[Lume::FindControl(limit.name).value()];
        controls.push_back({row.name, row.least, row.greatest, row.get(untold), limit.small, limit.smallLimit,
                            limit.fullLimit, row.set});
    }
    const auto add = [&](std::string const& name, float low, float high, float usual, float small, double smallLimit,
                         double fullLimit, std::function<void(OrvanVerb&, float)> const& set) {
        controls.push_back({name, low, high, usual, small, smallLimit, fullLimit, set});
    };
    add("source distance", 0.3f, 100.0f, 1.0f, 1.1f, -60, -38,
        [](OrvanVerb& e, float m) { e.SetSourcePosition(0, At(-45.0, 0.0, static_cast<double>(m))); });
    add("source azimuth", -180.0f, 180.0f, -45.0f, -40.0f, -60, -43,
        [](OrvanVerb& e, float degrees) { e.SetSourcePosition(0, At(static_cast<double>(degrees))); });
    add("elevation", -80.0f, 80.0f, 0.0f, 5.0f, -60, -74, [](OrvanVerb& e, float degrees) { e.SetElevation(degrees); });
    add("loudspeaker ring", -180.0f, 180.0f, 0.0f, 5.0f, -60, -45, [](OrvanVerb& e, float turn) {
        const std::vector<Lume::CartesianVector> ring = Ring(e.GetNumOutputs(), static_cast<double>(turn));
        e.SetSpeakersPositions(ring.data());
    });
    return controls;
}

}  // namespace

std::vector<Control> const& AllControls() {
    static const std::vector<Control> controls = MakeControls();
    return controls;
}
