#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "orvanverb/common/interrupt.h"
#include "room/room_state.h"

namespace program {

/// The sets of filters for headphones that a user names, as the engine reads them, at one sample rate.
///
/// Measurements (SOFA) are fitted for the rate, which takes up to minutes and is told. The result is
/// kept in $XDG_CACHE_HOME/orvanverb, usually ~/.cache/orvanverb, under the contents of the file, the rate and the
/// program's version; its own checksum is part of the name too, so that a damaged one is fitted anew.
class EarsCache {
public:
    /// What becomes of measurements.
    enum class Fitting : int {
        kept,   ///< fitted once, and kept
        anew,   ///< what was fitted before isn't looked for, and the result goes with this object
        quick,  ///< where nothing is kept they stay as they are: to check them, not to listen
    };

    /// Who hears of the work; for what is empty, standard error does.
    struct Listener {
        std::function<void(std::string const&line)> say, warn;
        /// How much of a fit is done, 0 to 1. From any thread, one call at a time. What it throws ends the fit.
        std::function<void(double part)> tell;
    };

    /// @param newSamplerate  [Hz]
    EarsCache(int newSamplerate, Fitting newFitting, Listener newListener);
    EarsCache(int newSamplerate, Fitting newFitting) : EarsCache(newSamplerate, newFitting, Listener()) {}

    /// The file to load for one that the user named: itself, unless it holds measurements.
    /// @throws WorkError that names the file
    std::filesystem::path Playable(std::filesystem::path const& path);

    /// What a state says about ears, with the file to load instead of measurements.
    /// @throws WorkError as above, and if the measurements have changed since
    Lume::EarsFile Playable(Lume::EarsFile const& ears);

    /// What a state is to say about ears that were loaded from a Playable file: what the user named.
    Lume::EarsFile Original(Lume::EarsFile const& ears) const;

private:
    struct Fitted {
        Lume::EarsFile measurements;
        std::filesystem::path set;
    };

    /// A file that goes with this object.
    struct Temporary {
        explicit Temporary(std::filesystem::path file) : path(std::move(file)), onSignal(path.string()) {}
        ~Temporary();
        Temporary(Temporary const&) = delete;
        Temporary& operator=(Temporary const&) = delete;

        std::filesystem::path path;
        RemovedOnSignal onSignal;
    };

    std::filesystem::path FittedFor(Lume::EarsFile const& measurements);
    std::filesystem::path Fit(Lume::EarsFile const& measurements);
    std::string FittedBytes(std::filesystem::path const& path) const;

    int samplerate;
    Fitting fitting;
    Listener listener;
    std::vector<Fitted> fitted;
    std::vector<std::unique_ptr<Temporary>> temporary;
};

}  // namespace program
