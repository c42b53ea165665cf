#include "orvanverb/option_values.h"

#include <bit>
#include <optional>

#include "orvanverb/limits.h"
#include "orvanverb/program_error.h"
#include "orvanverb/text.h"

namespace program {

int ParseRate(std::string const& word) {
    const std::optional<unsigned int> rate = ParseCount(word);
    if (!rate || *rate < minRate || *rate > maxRate)
        throw UsageError("--rate: '" + word + "' is no sample rate from " + std::to_string(minRate) + " to " +
                         std::to_string(maxRate) + " Hz");
    return static_cast<int>(*rate);
}

unsigned int ParseVectorSize(std::string const& word) {
    const std::optional<unsigned int> size = ParseCount(word);
    if (!size || *size < minVectorSize || *size > maxVectorSize || !std::has_single_bit(*size))
        throw UsageError("--vector: '" + word + "' is no power of two from " + std::to_string(minVectorSize) + " to " +
                         std::to_string(maxVectorSize));
    return *size;
}

SampleFormat ParseFormat(std::string const& word) {
    const std::optional<SampleFormat> format = ParseSampleFormat(word);
    if (!format) throw UsageError("--format: '" + word + "' is none of pcm16, pcm24, float and flac");
    return *format;
}

}  // namespace program
