#pragma once

#include <cstddef>
#include <vector>

namespace Lume {

/// What a binaural panner holds for each source: a block for the left ear and one for the right ear.
template <typename Ear>
class EarPairs {
public:
    struct Pair {
        template <typename... Arguments>
        explicit Pair(Arguments const&... arguments) : left(arguments...), right(arguments...) {}

        Ear left, right;
    };

    Pair& operator[](std::size_t source) { return pairs[source]; }

    /// Calls function with each ear.
    template <typename Function>
    void ForEach(Function function) {
        for (Pair& pair : pairs) {
            function(pair.left);
            function(pair.right);
        }
    }

    /// Drops the last sources, or makes ears for new ones from the arguments and calls prepare with each of these.
    template <typename Function, typename... Arguments>
    void Resize(std::size_t numSources, Function prepare, Arguments const&... arguments) {
        while (pairs.size() > numSources) pairs.pop_back();
        while (pairs.size() < numSources) {
            Pair& pair = pairs.emplace_back(arguments...);
            prepare(pair.left);
            prepare(pair.right);
        }
    }

private:
    std::vector<Pair> pairs;
};

}  // namespace Lume
