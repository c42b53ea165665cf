#include "orvanverb/hrtf/sofa_file.h"

#include <mysofa.h>

#include <cerrno>
#include <cmath>
#include <fstream>
#include <memory>
#include <string_view>
#include <system_error>

#include "orvanverb/common/program_error.h"

namespace program {

namespace {

struct SofaCloser {
    void operator()(MYSOFA_HRTF* set) const noexcept { mysofa_free(set); }
};
using Sofa = std::unique_ptr<MYSOFA_HRTF, SofaCloser>;

std::string Explain(int error) {
    switch (error) {
        case MYSOFA_INVALID_DIMENSIONS:
        case MYSOFA_INVALID_DIMENSION_LIST:
            return "its dimensions are not those of impulse responses at two ears";
        case MYSOFA_ONLY_THE_SAME_SAMPLING_RATE_SUPPORTED:
            return "its responses have different sample rates";
        case MYSOFA_INVALID_RECEIVER_POSITIONS:
        case MYSOFA_RECEIVERS_WITH_CARTESIAN_SUPPORTED:
        case MYSOFA_RECEIVERS_WITH_RCI_SUPPORTED:
            return "its two receivers are not a left and a right ear";
        case MYSOFA_INVALID_ATTRIBUTES:
        case MYSOFA_UNSUPPORTED_FORMAT:
        case MYSOFA_ONLY_SOURCES_WITH_MC_SUPPORTED:
        case MYSOFA_ONLY_DELAYS_WITH_IR_OR_MR_SUPPORTED:
            return "is not of the form SimpleFreeFieldHRIR";
        default:
            return "is no SOFA file, or a damaged one";
    }
}

std::string Attribute(MYSOFA_HRTF const& set, std::string name) {
    char const* const value = mysofa_getAttribute(set.attributes, name.data());
    return value != nullptr ? value : "";
}

std::string FirstOf(std::initializer_list<std::string> values) {
    for (std::string const& value : values)
        if (!value.empty()) return value;
    return "unknown";
}

bool AllFinite(MYSOFA_ARRAY const& array) {
    for (unsigned int i = 0; i < array.elements; ++i)
        if (!std::isfinite(array.values[i])) return false;
    return true;
}

/// What the library's own check leaves open, and the loops below rely on.
void RequireShape(MYSOFA_HRTF const& set, std::string const& path) {
    constexpr unsigned int minLength = 16, maxLength = 1 << 16;
    const std::size_t numValues = std::size_t{set.M} * set.R * set.N;
    if (set.M == 0 || set.R != 2 || set.DataIR.elements != numValues || set.SourcePosition.elements != 3 * set.M ||
        set.DataSamplingRate.elements == 0)
        throw WorkError(path + ": " + Explain(MYSOFA_INVALID_DIMENSIONS));
    if (set.N < minLength || set.N > maxLength)
        throw WorkError(path + ": its responses have " + std::to_string(set.N) + " samples; " +
                        std::to_string(minLength) + " to " + std::to_string(maxLength) + " can be used");
    const float rate = set.DataSamplingRate.values[0];
    if (!(rate >= 8000.0f && rate <= 384000.0f)) throw WorkError(path + ": its sample rate can't be used");
    if (!AllFinite(set.DataIR) || !AllFinite(set.SourcePosition) || !AllFinite(set.DataDelay))
        throw WorkError(path + ": holds values that are no numbers");
    // They become lengths: a response begins so many samples late.
    for (unsigned int i = 0; i < set.DataDelay.elements; ++i)
        if (!(set.DataDelay.values[i] >= 0.0f && set.DataDelay.values[i] <= rate))
            throw WorkError(path + ": holds a delay that isn't from 0 to 1 second");
}

double Delay(MYSOFA_HRTF const& set, unsigned int measurement, unsigned int ear) {
    const unsigned int each = set.M * set.R;
    if (set.DataDelay.elements == each) return static_cast<double>(set.DataDelay.values[measurement * set.R + ear]);
    return set.DataDelay.elements == set.R ? static_cast<double>(set.DataDelay.values[ear]) : 0.0;
}

}  // namespace

bool IsSofa(std::string const& path) {
    return path.ends_with(".sofa") || path.ends_with(".SOFA");
}

MeasuredSet ReadSofaFile(std::string const& path) {
    if (!std::ifstream(path)) throw WorkError(path + ": " + std::generic_category().message(errno));
    int error = MYSOFA_OK;
    const Sofa sofa(mysofa_load(path.c_str(), &error));
    if (!sofa) throw WorkError(path + ": " + Explain(error));
    if (const int problem = mysofa_check(sofa.get()); problem != MYSOFA_OK)
        throw WorkError(path + ": " + Explain(problem));
    RequireShape(*sofa, path);
    mysofa_tocartesian(sofa.get());

    MeasuredSet set;
    set.samplerate = static_cast<int>(std::lround(sofa->DataSamplingRate.values[0]));
    set.owner = FirstOf({Attribute(*sofa, "Organization"), Attribute(*sofa, "AuthorContact")});
    set.subject = FirstOf({Attribute(*sofa, "ListenerShortName")});
    set.copyright = FirstOf({Attribute(*sofa, "License")});
    set.database = FirstOf({Attribute(*sofa, "DatabaseName"), Attribute(*sofa, "Title")});
    set.date = FirstOf({Attribute(*sofa, "DateCreated")});
    set.directions.resize(sofa->M);
    for (unsigned int m = 0; m < sofa->M; ++m) {
        MeasuredSet::Direction& direction = set.directions[m];
        // SOFA has x ahead and y to the left, the engine x to the right and y ahead.
        float const* const place = sofa->SourcePosition.values + std::size_t{3} * m;
        direction.position = {-place[1], place[0], place[2]};
        if (Lume::CartesianVector const& p = direction.position; p.x == 0.0f && p.y == 0.0f && p.z == 0.0f)
            throw WorkError(path + ": direction " + std::to_string(m + 1) + " is none: it lies in the head's centre");
        for (unsigned int ear = 0; ear < 2; ++ear) {
            float const* const begin = sofa->DataIR.values + (std::size_t{m} * 2 + ear) * sofa->N;
            direction.ears[ear] = {{begin, begin + sofa->N}, Delay(*sofa, m, ear)};
        }
    }
    return set;
}

}  // namespace program
