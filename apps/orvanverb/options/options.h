#pragma once

#include <optional>
#include <string>
#include <vector>

#include "geometry/orientation.h"
#include "orvanverb/audio/audio_format.h"
#include "orvanverb/audio/tail.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/layout/listener_position.h"

namespace program {

/// What the user asked for, as far as several commands know of it: every word checked on its own, nothing opened yet.
/// What only one command knows stands in its folder.
struct Options {
    struct NamedFile {
        std::string role;  // in the call, in words
        std::string path;
    };
    struct SourcePlace {
        unsigned int number = 1;  // counted from 1
        ListenerPosition position;
    };
    struct Setting {
        std::string name;
        std::vector<std::string> values;
    };

    std::vector<std::string> attributes;  // of the object box: @name value ...
    std::vector<std::string> inputs;
    std::string output;
    std::vector<NamedFile> otherReads, otherWrites;  // files of one command
    void AlsoReads(char const* role, std::optional<std::string> const& path) {
        if (path) otherReads.push_back({role, *path});
    }
    void AlsoWrites(char const* role, std::optional<std::string> const& path) {
        if (path) otherWrites.push_back({role, *path});
    }
    std::optional<std::string> speakers;  // a count or a file; none: those of the state, or defaultSpeakers
    std::optional<std::string> hrtf;      // ears of the headphones; none: the built-in ones
    bool noCache = false;                 // fit measured ears anew, and keep nothing
    std::string method;                   // of panning; empty: the command's own
    bool ambix = false;                   // ambisonic channels as other tools have them
    std::optional<unsigned int> order;    // of ambisonic channels
    std::vector<SourcePlace> sources;
    std::optional<Lume::Orientation> orientation;  // of the listener
    std::optional<int> rate;                       // [Hz]
    FormatWish format;                             // beyond what the output's name tells
    bool force = false;                            // an output may take the place of a file
    std::optional<std::string> preset;
    std::optional<std::string> scene;
    std::optional<std::string> state;
    std::optional<std::string> saveState;
    bool report = false, reportJson = false;  // of the room, measured
    bool quiet = false;                       // warnings and errors alone
    bool dryRun = false;                      // only say what would be done
    bool json = false;                        // a summary on standard output
    std::vector<Setting> settings;
    Tail tail{std::nullopt};
    float gain = 1.0f;                     // of the output
    std::optional<float> normalizeDb;      // peak that the output is brought to [dBFS]
    float directDb = 0.0f, roomDb = 0.0f;  // levels of the direct sound and of the room's answer
    bool tailGiven = false;                // otherwise the command's own default
    std::optional<double> inTurnSeconds;
    unsigned int vectorSize = defaultVectorSize;
    bool vectorGiven = false;  // otherwise that of a state
};

}  // namespace program
