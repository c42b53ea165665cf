#include "hrtf/asymmetric_transaural_data_loader.h"

#include <utility>

#include "dsp/orvan_dsp_exception.h"
#include "hrtf/coll_file.h"
#include "hrtf/sdif_set.h"

namespace Lume {

AsymmetricTransauralDataLoader::AsymmetricTransauralDataLoader(std::string const& fileName) {
    AsymmetricTransauralDataLoader::LoadFromFile(fileName);
}

void AsymmetricTransauralDataLoader::LoadFromFile(std::string const& fileName) {
    if (!CheckFileExtension(fileName, ".bin2trans"))
        throw orvandsp::OrvanDspException("invalid file extension " + fileName, __FILE__, __LINE__);
    LoadFromB2T(fileName);
}

void AsymmetricTransauralDataLoader::LoadFromB2T(std::string const& fileName) {
    SdifSet set = ReadSdifSet(fileName, 2);
    std::vector<TransauralPoint> newPoints(set.points.size());
    for (std::size_t i = 0; i < newPoints.size(); ++i) {
        TransauralPoint& point = newPoints[i];
        SdifSetPoint& read = set.points[i];
        if (!read.positions.empty()) {
            point.leftPosition = read.positions[0];
            point.rightPosition = read.positions[1];
        }
        point.numCoefficients = set.header.numCoefficients;
        point.numChannels = set.header.numChannels;
        point.itd = read.itd;
        point.coefficients = std::move(read.coefficients);
        point.index = static_cast<unsigned int>(i);
    }
    points = std::move(newPoints);
    header = std::move(set.header);
}

}  // namespace Lume
