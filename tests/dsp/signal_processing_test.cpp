#include "dsp/signal_processing.h"

#include <gtest/gtest.h>

#include <array>
#include <cfenv>
#include <cmath>
#include <limits>
#include <string>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "filters/fir_time_domain_filter.h"

namespace {

/// Writes down the order in which it is configured.
class Recorder : public orvandsp::SignalProcessing {
public:
    Recorder(unsigned int inputs, unsigned int outputs) {
        numInputs = inputs;
        numOutputs = outputs;
    }
    void Process(float**, float**, unsigned long, short const*) override {}
    void SetSamplerate(float rate) override {
        samplerate = rate;
        calls += "r";
    }
    void SetMaxBlockSize(unsigned int size) override {
        buffersize = size;
        calls += "b";
    }
    void Clear() override { calls += "c"; }

    std::string calls;
};

// Red if an unchanged configuration clears or forgets the denormal mode, a forced one doesn't clear, or the order
// changes.
TEST(SignalProcessing, ConfigureAnnouncesOnlyWhatIsNewUnlessForced) {
    Recorder block(1, 1);
    std::fesetenv(FE_DFL_ENV);
    block.Configure(block.GetSamplerate(), block.GetBuffersize(), false);
    volatile float tiny = std::numeric_limits<float>::min();
    EXPECT_EQ(tiny * 0.5f, 0.0f);
    EXPECT_EQ(block.calls, "");
    block.Configure(48000.0f, 64, false);
    EXPECT_EQ(block.calls, "rbc");
    block.Configure(48000.0f, 64, false);
    block.Configure(std::nanf(""), 64, false);
    EXPECT_EQ(block.calls, "rbc");
    block.Configure(48000.0f, 64, true);
    EXPECT_EQ(block.calls, "rbcrbc");
}

TEST(SignalProcessing, BypassCopiesWhatBothSidesHave) {
    float in[4] = {1, 2, 3, 4}, out[4] = {9, 9, 9, 9};
    float* ins[] = {&in[0], &in[1], &in[2], &in[3]};
    float* outs[] = {&out[0], &out[1], &out[2], &out[3]};
    Recorder(2, 4).Bypass(outs, ins, 1);
    EXPECT_EQ(std::to_array(out), (std::array<float, 4>{1, 2, 0, 0}));
    out[2] = 9;
    Recorder(4, 2).Bypass(outs, ins, 1);
    EXPECT_EQ(std::to_array(out), (std::array<float, 4>{1, 2, 9, 0}));
}

// Ground truth: products of first-order sections with known zeros.
TEST(Filter, StepDownRecursionFindsZerosOutsideTheUnitCircle) {
    const Lume::FIRTimeDomainFilter filter;
    const auto product = [](std::vector<float> const& zeros) {
        std::vector<float> p{1.0f};
        for (const float zero : zeros) {
            p.push_back(0.0f);
            for (std::size_t i = p.size() - 1; i > 0; --i) p[i] -= zero * p[i - 1];
        }
        return p;
    };
    EXPECT_TRUE(filter.DurbinStepDownRecursion({1.0f}));
    EXPECT_TRUE(filter.DurbinStepDownRecursion(product({0.9f, -0.8f, 0.5f, 0.95f})));
    EXPECT_FALSE(filter.DurbinStepDownRecursion(product({0.9f, -0.8f, 1.1f, 0.2f})));
    EXPECT_FALSE(filter.DurbinStepDownRecursion({1.0f, 0.3f, 1.0f}));
    EXPECT_FALSE(filter.DurbinStepDownRecursion({1.0f, -1.0f}));
}

TEST(Filter, InactiveInputLeavesTheOutputUntouchedAndUnknownNamesAreTimeDomain) {
    Lume::FIRTimeDomainFilter filter;
    float in = 2.0f, out = 7.0f;
    float* ins[] = {&in};
    float* outs[] = {&out};
    const short inactive[] = {0};
    for (short const* const active : {inactive, orvandsp::allActiveInputs}) {
        EXPECT_EQ(out, 7.0f);
        static_cast<orvandsp::SignalProcessing&>(filter).Process(outs, ins, 1, active);
    }
    EXPECT_EQ(out, 0.0f);  // its taps are 0

    using orvandsp::Filter;
    EXPECT_EQ(Filter::GetFIRImplementation("fftconvolution"), Filter::fftconvolution);
    EXPECT_EQ(Filter::GetFIRImplementation("nonsense"), Filter::timedomain);
    EXPECT_STREQ(Filter::GetFIRImplementationName(static_cast<Filter::FIRImplementation>(7)), "timedomain");
}

// Red if a line goes past whoever has taken them over, or if it still does so when they are given back.
TEST(OrvanDspException, LeavesOneLineOnTheConsole) {
    const auto lineOnStandardError = [] {
        testing::internal::CaptureStderr();
        const orvandsp::OrvanDspException exception("no such set", "reader.cpp", 12);
        EXPECT_STREQ(exception.what(), "no such set");
        return testing::internal::GetCapturedStderr();
    };
    const std::string line = "OrvanDspException : reader.cpp 12 : no such set";
    EXPECT_EQ(lineOnStandardError(), line + "\n");
    static std::string taken;
    orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const& text) { taken += text; });
    EXPECT_EQ(lineOnStandardError(), "");
    EXPECT_EQ(taken, line);
    orvandsp::SetConsoleWriter(nullptr);
    EXPECT_EQ(lineOnStandardError(), line + "\n");
}

}  // namespace
