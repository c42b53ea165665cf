#include "orvanverb/hrtf/coll_writer.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "geometry/vector_algebra.h"
#include "hrtf/hrtf.h"
#include "orvanverb/common/text.h"

namespace program {

std::string CollText(Lume::SdifSet const& set) {
    constexpr float largestGap = 0.01f;  // of positions on the unit sphere: measurers write whole degrees
    const Lume::Hrtf grid("");
    const std::size_t numCoefficients = grid.GetNumCoefficients();
    if (set.header.filterType != Lume::hrtfBiquadCells || set.header.numCoefficients != numCoefficients ||
        set.header.numChannels != 2)
        throw std::invalid_argument("a text of rows holds two ears of six sections each");
    const auto pointAt = [&](Lume::CartesianVector const& position) -> Lume::SdifSetPoint const& {
        for (Lume::SdifSetPoint const& point : set.points)
            if (Length(point.positions.at(0) - position) < largestGap) return point;
        throw std::invalid_argument("a text of rows holds the 710 directions of the built-in set");
    };
    std::string text;
    for (unsigned int i = 0; i < grid.GetNumPoints(); ++i) {
        const Lume::CartesianVector position = grid.GetHrtfPoint(i).position;
        Lume::SdifSetPoint const& point = pointAt(position);
        Lume::SdifSetPoint const& mirrored = pointAt({-position.x, position.y, position.z});
        const auto middle = point.coefficients.begin() + static_cast<std::ptrdiff_t>(numCoefficients);
        if (!std::equal(middle, point.coefficients.end(), mirrored.coefficients.begin()))
            throw std::invalid_argument("a text of rows holds a head whose ears are alike");
        // Half of the delay on either ear, from 1 ms: the difference to the mirrored row is the whole.
        text.append(std::to_string(i + 1)).append(", ").append(NumberText(1.0f + 0.5f * point.itd));
        for (auto value = point.coefficients.begin(); value != middle; ++value)
            text.append(" ").append(NumberText(*value));
        text.append(";\n");
    }
    return text;
}

}  // namespace program
