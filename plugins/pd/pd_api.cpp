#include "pd/pd_api.h"

#include <dlfcn.h>

namespace pd {

namespace {

/// How a signal begins since 0.54; before, something else stands behind the rate.
struct SignalWithChannels {
    int length;  // of each channel [samples]
    t_sample* samples;
    t_float rate;
    int numChannels;
};

}  // namespace

SetChannels FindSetChannels() {
    static auto const found = reinterpret_cast<SetChannels>(dlsym(RTLD_DEFAULT, "signal_setmultiout"));
    return found;
}

int NumChannels(t_signal const& signal) {
    return FindSetChannels() != nullptr ? reinterpret_cast<SignalWithChannels const&>(signal).numChannels : 1;
}

}  // namespace pd
