#pragma once

#include <cstdint>
#include <vector>

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Vector-base amplitude panning in space, after Pulkki, "Virtual sound source positioning using vector base amplitude
/// panning", J. Audio Eng. Soc. 45(6), 1997, with his later way of choosing the triplets of loudspeakers.
///
/// The sphere around the listener is cut into triangles of three loudspeakers; the three around the source share it,
/// so that their position vectors, weighted by the gains, point at it, with constant power. Loudspeakers that all lie
/// in one plane with the listener form no triplet: the panner is then silent, and GetNumTriplets says so.
class VbapPanning : public AmplitudePanning {
public:
    /// A 3 x 3 matrix, row by row.
    class Matrix3D {
    public:
        /// Becomes the matrix that turns a vector v into the coefficients with which a, b and c add up to v. If a, b
        /// and c lie in one plane exactly, all elements become 0.
        void createInverseFrom(CartesianVector const& a, CartesianVector const& b, CartesianVector const& c);

        /// Row i of the matrix times v is element i of the result.
        void matrixProduct(CartesianVector& result, CartesianVector const& v) const;
        void matrixProduct(float* result, CartesianVector const& v) const;

    private:
        float elements[9] = {};
    };

    struct Triplet {
        Matrix3D matrix;  // from a direction to the three gains
        unsigned int first = 0;
        unsigned int second = 0;
        unsigned int third = 0;
    };

    /// Lays a provisional zigzag ring at elevations of +45 and -45 degrees.
    VbapPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning below three outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<VbapPanning>(requestedOutputs >= 3, requestedInputs, requestedOutputs);
    }

    /// Chooses the triplets anew: 0.1 ms for 12 loudspeakers, 1 ms for 24, up to 7 ms for 64. Allocates nothing, unless
    /// there are more triplets than four for each loudspeaker, which no layout was seen to have.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

    /// The number of triplets; 0 for a layout that this method can't serve.
    unsigned int GetNumTriplets();
    /// @param indices  three loudspeakers, in ascending order, for each triplet
    void GetTriplets(unsigned int* indices);
    /// The triplet that serves a position. @param indices  three loudspeakers; 0, 0, 0 if there is no triplet
    void GetActiveTriplet(CartesianVector const& position, unsigned int* indices);

    // The steps of the choice, open to tools that show a layout.

    /// Chooses the triplets and computes their matrices.
    void compute();
    /// Chooses the triplets: of all triangles of some volume those are kept whose sides aren't crossed by a shorter
    /// connection and that hold no further loudspeaker.
    void choose_triplets();
    /// Finds the triplet for a position: of those with the fewest gains below -0.01 the one whose smallest gain is the
    /// largest, as the list is searched in order. A triplet found early with few negative gains thus keeps out later
    /// ones with more of them, but not the other way round.
    /// @param gains    three gains of power 1; those below -0.01 are cut to 0, slightly negative ones stay
    /// @param indices  the three loudspeakers they belong to. All 0, gains too, if there is no triplet.
    void find_triplet(CartesianVector const& position, float* gains, unsigned int* indices) const;
    /// Volume of the parallelepiped over loudspeakers i, j and k, with i x j normalised, by the length of the
    /// triangle's three sides: how useful a triplet is.
    float vol_p_side_lgth(unsigned int i, unsigned int j, unsigned int k) const;
    /// Whether the arcs from loudspeaker i to j and from k to l cross. A loudspeaker at the crossing isn't crossed.
    bool lines_intersect(unsigned int i, unsigned int j, unsigned int k, unsigned int l) const;
    /// Whether another loudspeaker lies inside the triangle or on its edge.
    bool any_ls_inside_triplet(unsigned int a, unsigned int b, unsigned int c) const;

private:
    struct Speaker {
        CartesianVector position;
        unsigned int index = 0;  // output channel
    };

    struct Side {
        float length;  // [rad]
        unsigned int first, second;
    };

    bool needsComputing = true;
    std::vector<Triplet> triplets;
    std::vector<Speaker> speakers;
    // Room for the choice, so that it needs none of its own when loudspeakers move.
    std::vector<CartesianVector> directions;
    std::vector<float> arcs;        // between any two [rad]
    std::vector<char> connections;  // of any two
    std::vector<Side> sides;
};

/// The angle between two vectors [rad]. Where one of them has no length, the mathematical azimuth of the other.
float angle(CartesianVector const& a, CartesianVector const& b);

}  // namespace Lume
