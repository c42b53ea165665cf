/// What stands in for the readers of files: a page has none, and they would be a third of what it downloads. The linker
/// takes these instead of the engine's.

#include <cstdint>
#include <filesystem>
#include <string>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "hrtf/max_msp_coll_file_parser.h"
#include "hrtf/sdif_set.h"
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

}  // namespace Lume
