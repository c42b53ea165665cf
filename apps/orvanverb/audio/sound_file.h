#pragma once

#include <sndfile.h>

#include <memory>

namespace program {

struct SoundFileCloser {
    void operator()(SNDFILE* file) const noexcept { sf_close(file); }
};

/// An open file of libsndfile.
using SoundFile = std::unique_ptr<SNDFILE, SoundFileCloser>;

}  // namespace program
