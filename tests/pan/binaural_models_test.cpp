#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

#include "dsp/orvan_dsp_exception.h"
#include "pan/binaural_panning_snowman_model.h"
#include "pan/binaural_panning_spherical_head_model.h"
#include "pan/head_shadow.h"
#include "pan/panning_support.h"
#include "support/allocation_count.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

using Lume::BinauralPanning;
using Lume::BinauralPanningSnowmanModel;
using Lume::BinauralPanningSphericalHeadModel;
using Lume::CartesianVector;
using orvandsp::allActiveInputs;

constexpr double pi = std::numbers::pi;
constexpr double rate = 44100.0;
constexpr double headRadius = 0.0875, torsoRadius = 0.169, speed = 340.0;

/// The responses of both ears to an impulse from a position, once glides and fades are over.
Channels Render(BinauralPanning& panner, CartesianVector const& position) {
    Channels silence(1, 512, 0.0f), out(2, 2048, 0.0f), in(1, 512, 0.0f);
    const auto wait = [&] {
        for (int i = 0; i < 8; ++i) panner.Process(out.pointers.data(), silence.pointers.data(), 512, allActiveInputs);
    };
    panner.SetSourcePosition(0, position, false);
    wait();
    panner.SetSourcePosition(0, position, true);  // a glide ends beside its target, a jump on it
    wait();
    in.data[0][0] = 1.0f;
    for (std::size_t i = 0; i < 2048; i += 512)
        panner.Process(out.From(i).data(), (i == 0 ? in : silence).pointers.data(), 512, allActiveInputs);
    panner.Clear();
    return out;
}

/// (b + alpha S) / (b + S), S = i tan(pi f / fs): the filter of a point on a sphere.
std::complex<double> ShadowAt(double angle, double radius, double hertz, double fs = rate) {
    const double alpha = 1.05 + 0.95 * std::cos(1.2 * angle), b = speed / (radius * fs);
    const std::complex<double> s(0.0, std::tan(pi * hertz / fs));
    return (b + alpha * s) / (b + s);
}

/// What a point of a sphere hears later than its centre [s]: straight to the plane that touches the sphere, and around.
double SphereDelay(double angle, double radius) {
    const double way = angle < pi / 2.0 ? 1.0 - std::cos(angle) : 1.0 + angle - pi / 2.0;
    return way * radius / speed;
}

double DelayOf(std::complex<double> response, double hertz) {
    return -std::arg(response) / (2.0 * pi * hertz);
}

TEST(HeadShadow, DelayFallsToNothingBehind) {
    for (const double angle : {0.3, 1.5, 1.6, 3.1, -2.0})
        EXPECT_NEAR(Lume::HeadShadowDelay(static_cast<float>(angle), 0.1f), SphereDelay(std::abs(angle), 0.1) * 1000.0,
                    1e-5);
    EXPECT_EQ(Lume::HeadShadowDelay(3.1415927f, 0.1f), 0.0f);
    EXPECT_EQ(Lume::HeadShadowDelay(-4.0f, 0.1f), 0.0f);
    EXPECT_EQ(Lume::HeadShadowDelay(std::nanf(""), 0.1f), 0.0f);
}

// Red if a side, an angle, the head's size or the rate goes wrong: filters to 0.01 dB, delays to a microsecond.
TEST(BinauralPanningSphericalHeadModel, FollowsItsSphere) {
    BinauralPanningSphericalHeadModel panner(1, 2);
    for (const double radius : {headRadius, 0.12}) {
        panner.SetListenerHeadRadius(static_cast<float>(radius));
        for (const auto& [azimuth, elevation] : {std::pair{0.0, 0.0}, {90.0, 0.0}, {-50.0, 30.0}, {130.0, -40.0}}) {
            const Channels out = Render(panner, At(azimuth, elevation, 2.0));
            const double lateral = std::sin(azimuth * pi / 180.0) * std::cos(elevation * pi / 180.0);
            const double half = 0.5 * radius / speed * (std::asin(lateral) + lateral);
            for (const std::size_t ear : {0u, 1u}) {
                const double angle = std::acos(ear == 0 ? -lateral : lateral);
                for (const double hertz : {100.0, 1000.0, 5000.0, 15000.0})
                    EXPECT_NEAR(GainDbAt(out.data[ear], hertz / rate),
                                20.0 * std::log10(std::abs(ShadowAt(angle, radius, hertz))), 0.01)
                        << azimuth << " " << ear << " " << hertz;
                const std::complex<double> rest =
                    ResponseAt(out.data[ear], 200.0 / rate) / ShadowAt(angle, radius, 200.0);
                EXPECT_NEAR(DelayOf(rest, 200.0), 0.001 + (ear == 0 ? half : -half), 1e-6) << azimuth << " " << ear;
            }
        }
    }
    // In the head's centre the angles are those of the ears: pi and 0.
    const Channels inside = Render(panner, {0.0f, 0.0f, 0.0f});
    EXPECT_NEAR(GainDbAt(inside.data[0], 0.4), 20.0 * std::log10(std::abs(ShadowAt(pi, 0.12, 0.4 * rate))), 0.01);
    EXPECT_NEAR(GainDbAt(inside.data[1], 0.4), 20.0 * std::log10(std::abs(ShadowAt(0.0, 0.12, 0.4 * rate))), 0.01);
    panner.SetSamplerate(96000.0f);
    const Channels behind = Render(panner, At(90.0));
    EXPECT_NEAR(GainDbAt(behind.data[0], 1.0 / 96.0), 20.0 * std::log10(std::abs(ShadowAt(pi, 0.12, 1000.0, 96000.0))),
                0.01);
}

// Where the snowman's parts are, in double precision.
struct Vector {
    double x, y, z;
    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vector operator*(double s, Vector a) { return {s * a.x, s * a.y, s * a.z}; }
};
double Dot(Vector a, Vector b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
double Length(Vector a) {
    return std::sqrt(Dot(a, a));
}
Vector Unit(CartesianVector const& p) {
    const Vector v{static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)};
    return 1.0 / Length(v) * v;
}
constexpr Vector torso{0.0, 0.0, -(headRadius + torsoRadius + 0.053)};

/// Whether the straight line from an ear in a direction meets the torso.
bool Hidden(Vector ear, Vector direction) {
    const Vector toTorso = torso - ear;
    const double along = Dot(toTorso, direction);
    return along > 0.0 && Length(toTorso - along * direction) < torsoRadius;
}

/// What an ear hears of the torso's reflection alone: the ear's response is (direct + c reflection) / (1 + c).
struct Parts {
    std::vector<float> direct, reflection;
};
std::array<Parts, 2> RenderParts(BinauralPanningSnowmanModel& panner, CartesianVector const& position) {
    panner.SetTorsoReflectionCoefficient(-1.0f);  // becomes 0
    const Channels without = Render(panner, position);
    panner.SetTorsoReflectionCoefficient(2.0f);  // becomes 1
    const Channels with = Render(panner, position);
    std::array<Parts, 2> ears;
    for (const std::size_t ear : {0u, 1u}) {
        ears[ear] = {without.data[ear], with.data[ear]};
        for (std::size_t n = 0; n < 2048; ++n)
            ears[ear].reflection[n] = 2.0f * with.data[ear][n] - without.data[ear][n];
    }
    return ears;
}

float LargestDifference(std::vector<float> const& a, std::vector<float> const& b) {
    float largest = 0.0f;
    for (std::size_t n = 0; n < a.size(); ++n) largest = std::max(largest, std::abs(a[n] - b[n]));
    return largest;
}

// Red if the cone of the torso's shadow is on the wrong side or has another width, or if the torso moves with the
// head's size, which it doesn't: its centre stays where the default sizes put it.
TEST(BinauralPanningSnowmanModel, TorsoHidesWhatIsBehindIt) {
    BinauralPanningSnowmanModel panner(1, 2);
    Uniform uniform(11);
    int numHidden = 0;
    for (int i = 0; i < 60; ++i) {
        const double radius = i % 2 == 0 ? headRadius : 0.13;
        panner.SetListenerHeadRadius(static_cast<float>(radius));
        panner.SetListenerNeckHeight(static_cast<float>(uniform(0.0, 0.2)));
        const CartesianVector position = At(uniform(-180.0, 180.0), uniform(-90.0, -30.0), 3.0);
        panner.SetTorsoReflectionCoefficient(0.0f);
        const Channels without = Render(panner, position);
        panner.SetTorsoReflectionCoefficient(1.0f);
        const Channels with = Render(panner, position);
        for (const std::size_t ear : {0u, 1u}) {
            const bool hidden = Hidden({ear == 0 ? -radius : radius, 0.0, 0.0}, Unit(position));
            EXPECT_EQ(LargestDifference(with.data[ear], without.data[ear]) < 1e-3f, hidden)
                << position.x << " " << position.y << " " << ear;
            numHidden += hidden;
        }
    }
    EXPECT_GT(numHidden, 30);
    EXPECT_LT(numHidden, 90);
}

// Red if the direct path isn't that of a sphere, or if the reflection's detour isn't that of the shortest way over the
// torso, which the model finds to within 0.1 ms. The reflection goes around a sphere of the torso's size, not of the
// head's: red if somebody tidies that up.
TEST(BinauralPanningSnowmanModel, TorsoReflectsWhatIsAboveIt) {
    BinauralPanningSnowmanModel panner(1, 2);
    for (const auto& [azimuth, elevation] :
         {std::pair{20.0, 0.0}, {-60.0, 25.0}, {130.0, 50.0}, {45.0, 80.0}, {-100.0, -15.0}}) {
        const CartesianVector position = At(azimuth, elevation, 2.0);
        const Vector u = Unit(position);
        const auto ears = RenderParts(panner, position);
        for (const std::size_t side : {0u, 1u}) {
            const Vector ear{side == 0 ? -headRadius : headRadius, 0.0, 0.0};
            const double directAngle = std::acos(Dot(ear, u) / headRadius);
            for (const double hertz : {200.0, 3000.0, 16000.0})
                EXPECT_NEAR(GainDbAt(ears[side].direct, hertz / rate),
                            20.0 * std::log10(std::abs(ShadowAt(directAngle, headRadius, hertz))), 0.01);
            EXPECT_NEAR(
                DelayOf(ResponseAt(ears[side].direct, 200.0 / rate) / ShadowAt(directAngle, headRadius, 200.0), 200.0),
                SphereDelay(directAngle, headRadius), 2e-6);

            // The point of the torso from which the way is shortest (Fermat), found by search.
            double detour = 1e9;
            Vector point{};
            for (int i = 0; i <= 300; ++i)
                for (int j = 0; j < 600; ++j) {
                    const double t = pi * i / 300, p = 2.0 * pi * j / 600;
                    const Vector candidate =
                        torso + torsoRadius * Vector{std::sin(t) * std::cos(p), std::sin(t) * std::sin(p), std::cos(t)};
                    const double way = Length(candidate - ear) - Dot(candidate - ear, u);
                    // The side of the torso that both see.
                    if (Dot(candidate - torso, u) < 0.0 || Dot(candidate - torso, ear - candidate) < 0.0) continue;
                    if (way < detour) detour = way, point = candidate;
                }
            const double angle = std::acos(Dot(ear, 1.0 / Length(point - ear) * (point - ear)) / headRadius);
            const std::complex<double> rest =
                ResponseAt(ears[side].reflection, 150.0 / rate) / ShadowAt(angle, torsoRadius, 150.0);
            EXPECT_NEAR(DelayOf(rest, 150.0), SphereDelay(angle, torsoRadius) + detour / speed, 1e-4)
                << azimuth << " " << elevation << " " << side;
            for (const double hertz : {1000.0, 16000.0})
                EXPECT_NEAR(GainDbAt(ears[side].reflection, hertz / rate),
                            20.0 * std::log10(std::abs(ShadowAt(angle, torsoRadius, hertz))), 0.5);
        }
    }
}

// Red if the way around the torso, which leaves it on a tangent, or the delay's mapping of the shadow is changed.
TEST(BinauralPanningSnowmanModel, ShadowGoesAroundTheTorso) {
    BinauralPanningSnowmanModel panner(1, 2);
    for (const double azimuth : {0.0, 35.0, -160.0}) {
        const CartesianVector position = At(azimuth, -80.0, 2.0);
        const Vector u = Unit(position);
        const Channels out = Render(panner, position);
        for (const std::size_t side : {0u, 1u}) {
            const Vector ear{side == 0 ? -headRadius : headRadius, 0.0, 0.0};
            ASSERT_TRUE(Hidden(ear, u));
            const Vector d = ear - torso;
            const Vector axis = 1.0 / Length(d) * d;
            Vector across = u - Dot(u, axis) * axis;
            across = -1.0 / Length(across) * across;  // the side away from the source
            const double opening = std::acos(torsoRadius / Length(d));
            const Vector tangentPoint = torso + torsoRadius * (std::cos(opening) * axis + std::sin(opening) * across);
            const Vector way = tangentPoint - ear;
            const double headAngle = std::acos(Dot(ear, way) / (Length(way) * headRadius));
            const double torsoAngle = std::acos(Dot(ear, u) / headRadius);
            for (const double hertz : {500.0, 4000.0, 16000.0}) {
                const double expected =
                    std::abs(ShadowAt(torsoAngle, torsoRadius, hertz) * ShadowAt(headAngle, headRadius, hertz));
                EXPECT_NEAR(GainDbAt(out.data[side], hertz / rate), 20.0 * std::log10(expected), 0.01);
            }
            // From the edge of the shadow to the middle the delay angle goes from 1.3526 to pi.
            const double edge = opening + pi / 2.0;
            const double depth = (std::acos(Dot(u, axis)) - edge) / (pi - edge);
            const double delay = SphereDelay(1.3526301 + depth * (pi - 1.3526301), torsoRadius);
            const std::complex<double> rest = ResponseAt(out.data[side], 200.0 / rate) /
                                              ShadowAt(torsoAngle, torsoRadius, 200.0) /
                                              ShadowAt(headAngle, headRadius, 200.0);
            EXPECT_NEAR(DelayOf(rest, 200.0), delay, 2e-6);
        }
    }
}

// Red if a source, or a torso, in a singular place makes something that isn't a number: filters never get rid of it.
TEST(BinauralPanningSnowmanModel, StaysFinite) {
    BinauralPanningSnowmanModel panner(1, 2);
    for (const float torsoSize : {0.169f, 0.0f, -1.0f, 5.0f})
        for (const CartesianVector position : {CartesianVector{0, 0, 0},
                                               {1, 0, 0},
                                               {-1, 0, 0},
                                               {0, 0, 1},
                                               {0, 0, -1},
                                               {0.0875f, 0, 0.3095f},
                                               {-0.0875f, 0, -0.3095f},
                                               {0, 0, -0.3095f},
                                               {1e-25f, 0, 0}}) {
            panner.SetListenerTorsoRadius(torsoSize);
            const Channels out = Render(panner, position);
            for (auto const& ear : out.data)
                for (const float sample : ear) ASSERT_TRUE(std::abs(sample) < 10.0f) << torsoSize << " " << position.x;
        }
    // Close to the axis of the ears rounding may leave a cosine above 1.
    Channels in(1, 16, 1.0f), out(2, 16, 0.0f);
    panner.SetListenerTorsoRadius(0.169f);
    Uniform uniform(3);
    for (int i = 0; i < 5000; ++i) {
        panner.SetSourcePosition(
            0, At(i % 2 == 0 ? 90.0 : -90.0, i % 3 == 0 ? 0.0 : uniform(-0.05, 0.05), uniform(0.1, 3.0)), false);
        panner.Process(out.pointers.data(), in.pointers.data(), 16, allActiveInputs);
        for (auto const& ear : out.data) ASSERT_TRUE(std::abs(ear[15]) < 10.0f) << i;
    }
}

// Red if several inputs aren't the sum of each, if outputs that are inputs are read after they were written, or if a
// block allocates.
TEST(BinauralModels, SeveralInputsAddUpAlsoInPlace) {
    for (char const* model : {"snowman", "sphericalheadmodel"}) {
        std::unique_ptr<Lume::Pan> both(Lume::Pan::factory(2, 2, "binaural", model));
        std::unique_ptr<Lume::Pan> first(Lume::Pan::factory(1, 2, "binaural", model));
        std::unique_ptr<Lume::Pan> second(Lume::Pan::factory(1, 2, "binaural", model));
        ASSERT_EQ(both->GetNumInputs(), 2u) << model;
        for (auto* panner : {both.get(), first.get(), second.get()}) panner->Configure(48000.0f, 64, true);
        both->SetSourcePosition(0, At(40.0), false);
        first->SetSourcePosition(0, At(40.0), false);
        both->SetSourcePosition(1, At(-70.0), false);
        second->SetSourcePosition(0, At(-70.0), false);
        Channels inPlace(2, 1024, 0.0f), expected(2, 1024, 0.0f), once(2, 64, 0.0f);
        for (const std::uint32_t c : {0u, 1u}) std::ranges::copy(MakeNoise(c + 1, 1024), inPlace.pointers[c]);
        for (std::size_t i = 0; i < 1024; i += 64) {
            auto in = inPlace.From(i), sum = expected.From(i);
            const short active[] = {1, static_cast<short>(i < 512)};
            first->ProcessAdding(sum.data(), &in[0], 64, &active[0]);
            second->Process(once.pointers.data(), &in[1], 64, &active[1]);
            for (std::size_t e = 0; e < 2; ++e)
                for (std::size_t n = 0; n < 64; ++n) sum[e][n] += once.data[e][n];
            const long allocations = AllocationCount();
            both->Process(in.data(), in.data(), 64, active);
            EXPECT_EQ(AllocationCount(), allocations);
        }
        EXPECT_EQ(inPlace.data, expected.data) << model;
        EXPECT_GT(LevelDb(inPlace.data[0]), -20.0);

        auto& binaural = dynamic_cast<BinauralPanning&>(*both);
        EXPECT_THROW(binaural.LoadFromFile("kemar"), orvandsp::OrvanDspException);
        EXPECT_EQ(binaural.GetHrtfHeaderInfos(), nullptr);
        both.reset(Lume::Pan::factory(2, 3, "binaural", model));
        EXPECT_EQ(both->GetNumInputs(), 0u);
    }
}

// Red if another number of outputs than two leaves an ear undefined.
TEST(BinauralModels, SilenceIsForBothEars) {
    const short inactive[] = {0, 0};
    for (char const* role : {"direct", "diffuse", "nearfield", "sh", "sphericalheadmodel", "snowman"}) {
        const bool isDiffuse = std::string(role) == "diffuse";
        std::unique_ptr<Lume::Pan> panner(Lume::Pan::factory(isDiffuse ? 2 : 1, 2, "binaural", role));
        panner->SetNumOutputs(1);
        Channels in(2, 64, 1.0f), out(2, 64, 5.0f);
        panner->Process(out.pointers.data(), in.pointers.data(), 64, inactive);
        EXPECT_EQ(out.data, Channels(2, 64, 0.0f).data) << role;
    }
}

}  // namespace
