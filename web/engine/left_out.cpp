/// What stands in for parts of the engine that a page can't reach: readers of files, as it has none, and panners that
/// no room chooses. They would be a third of what it downloads. The linker takes these instead of the engine's.

#include <cstdint>
#include <filesystem>
#include <string>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "hrtf/max_msp_coll_file_parser.h"
#include "hrtf/sdif_set.h"
#include "pan/binaural/binaural_panning_nearfield.h"
#include "pan/binaural/binaural_panning_snowman_model.h"
#include "pan/binaural/binaural_panning_spherical_harmonics.h"
#include "pan/binaural/binaural_panning_spherical_head_model.h"
#include "pan/null_panning.h"
#include "room/file_checksum.h"

namespace {

[[noreturn]] void Refuse(std::string const& file) {
    throw orvandsp::OrvanDspException("a page reads no files " + file, __FILE__, __LINE__);
}

}  // namespace

namespace orvandsp {

void WriteToConsole(Console /*console*/, std::string const& /*line*/) {}

}  // namespace orvandsp

namespace Lume {

bool GetTrimmedLine(std::istream& /*stream*/, std::string& /*line*/) {
    return false;
}

std::vector<float> ParseFloats(std::string const& /*text*/, std::size_t /*maxCount*/) {
    return {};
}

MaxMSPCollFileParser MaxMSPCollFileParser::OfFile(std::string const& fileName) {
    Refuse(fileName);
}

bool MaxMSPCollFileParser::HasEqualRows() const {
    return false;
}

SdifSet ReadSdifSet(std::string const& fileName, unsigned int /*numPositions*/) {
    Refuse(fileName);
}

std::uint64_t FileChecksum(std::filesystem::path const& file) {
    Refuse(file.string());
}

Pan* BinauralPanningNearfield::Create(unsigned int /*numInputs*/, unsigned int /*numOutputs*/) {
    return new NullPanning;
}
Pan* BinauralPanningSnowmanModel::Create(unsigned int /*numInputs*/, unsigned int /*numOutputs*/) {
    return new NullPanning;
}
Pan* BinauralPanningSphericalHarmonics::Create(unsigned int /*numInputs*/, unsigned int /*numOutputs*/) {
    return new NullPanning;
}
Pan* BinauralPanningSphericalHeadModel::Create(unsigned int /*numInputs*/, unsigned int /*numOutputs*/) {
    return new NullPanning;
}

}  // namespace Lume
