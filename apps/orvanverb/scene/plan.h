#pragma once

#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace program {

/// Where the sources of a scene stand over time, and what stands around the listener.
struct Plan {
    struct Moment {
        double seconds;
        std::vector<Lume::CartesianVector> positions;  // of each source [m]
    };

    std::string title;
    std::vector<Moment> moments;
    std::vector<Lume::CartesianVector> speakers;  // none for headphones
};

/// Draws the listener, the loudspeakers and the sources' paths from above, with times, and below it the distances over
/// time.
/// @throws WorkError as DrawPicture
void DrawPlan(std::string const& path, Plan const& plan);

}  // namespace program
