#pragma once

namespace Lume {

/// The sum of delays that a number of delays can honestly reach: enough modes, and not too few echoes.
/// @param sum          wanted sum of all delays [s], the modal density
/// @param minimum      shortest delay [ms]
/// @param echoDensity  least echo density wanted [echoes per ms]
/// @return the sum [s]
float fdens(float sum, float minimum, unsigned int numDelays, float echoDensity);

/// The same, with what it found on the way.
/// @param minimumSum, maximumSum  the least and greatest sensible sum [s]
/// @param densityBound            the sum beyond which the echoes get too sparse [s]
/// @param maximumDelay, resultEchoDensity  the longest delay and the echo density that come with the result, in the
///                                scale in which their users have always read them: a million times seconds, and a mix
///                                of milliseconds and seconds in the density
float fdens(float sum, float minimum, unsigned int numDelays, float echoDensity, float& minimumSum, float& maximumSum,
            float& densityBound, float& maximumDelay, float& resultEchoDensity);

}  // namespace Lume
