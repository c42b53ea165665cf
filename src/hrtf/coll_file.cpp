#include "hrtf/coll_file.h"

#include <charconv>
#include <fstream>

#include "hrtf/max_msp_coll_file_parser.h"

namespace Lume {

bool CheckFileExtension(std::string const& fileName, std::string const& extension) {
    return fileName.find(extension) != std::string::npos;
}

std::string GetSubjectFromCollFilename(std::string const& fileName, std::string const& defaultSubject) {
    const std::size_t dash = fileName.find('-');
    return dash == std::string::npos ? defaultSubject : fileName.substr(dash + 1, dash);
}

unsigned int GetSamplingRateFromCollFileName(std::string const& fileName, unsigned int defaultRate) {
    const std::size_t dash = fileName.rfind('-');
    const std::size_t end = fileName.find_last_of(".col");  // any of these characters
    if (dash == std::string::npos || end == std::string::npos || end <= dash) return defaultRate;
    unsigned int rate = 0;
    const auto result = std::from_chars(fileName.data() + dash + 1, fileName.data() + end, rate);
    return result.ec == std::errc() ? rate : defaultRate;
}

bool ReadPositionsFromTextFile(std::string const& fileName, std::vector<CartesianVector>& positions) {
    positions.clear();
    std::ifstream stream(fileName, std::ios::binary);
    if (!stream) return false;
    bool inTable = false;
    std::string line;
    while (GetTrimmedLine(stream, line)) {
        if (line.size() < 2) continue;
        if (!inTable) {
            if (line.find("xyz") == std::string::npos) return false;
            inTable = true;
            continue;
        }
        const std::vector<float> values = ParseFloats(line, 3);
        if (values.size() != 3) return false;
        positions.push_back({values[0], values[1], values[2]});
    }
    return inTable;
}

}  // namespace Lume
