#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Finds the point of a set that is nearest to a position, of equally near ones the first: the same one, whatever the
/// position, that comparing all points in a row finds.
///
/// A tree of boxes (a k-d tree). A box is passed over if no point in it can be nearer: its least distance is worked out
/// by the steps of the distance of a point, and rounding keeps their order.
class NearestPointSearch {
public:
    /// Takes a set [m]. Takes memory.
    void SetPoints(std::span<CartesianVector const> points);

    /// The index in the set; 0 for a position that isn't finite. The set holds a point. Real-time safe.
    std::size_t Find(CartesianVector const& position) const noexcept;

private:
    struct Box {
        CartesianVector least, most;
        std::size_t begin = 0, end = 0;                      // places in `order`
        float CartesianVector::*axis = &CartesianVector::x;  // the widest one, which is halved
        float middle = 0.0f;                                 // there [m]
        std::size_t upper = 0;  // the box of the upper half, behind those of the lower one; 0: isn't halved
    };
    struct Found {
        float squared;  // [m^2]
        std::size_t index;
    };
    /// Makes a box around the points at these places of `order`, and boxes in it.
    /// @param aside  room for as many indices
    void Enclose(std::span<CartesianVector const> points, std::size_t begin, std::size_t end, std::size_t* aside);
    void Find(std::size_t box, CartesianVector const& position, Found& found) const;

    std::vector<Box> boxes;          // a lower half stands behind its whole
    std::vector<std::size_t> order;  // indices of the points, box by box, ascending in each
    std::vector<float> coordinates;  // in that order: all x, all y, all z
};

}  // namespace Lume
