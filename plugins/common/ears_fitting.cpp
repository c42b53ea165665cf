#include "common/ears_fitting.h"

#include <pthread.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <mutex>

#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/hrtf/sofa_file.h"

namespace plugin {

namespace {

/// Thrown through a fit to end it.
struct GivenUp {};

/// A host's thread may have the priority of audio, which new threads inherit: filters can wait.
void StepBack() {
    const sched_param none{};
    pthread_setschedparam(pthread_self(), SCHED_OTHER, &none);
#ifdef __linux__
    constexpr int behindOthers = 10;
    setpriority(PRIO_PROCESS, 0, behindOthers);  // of this thread, and those that it starts
#endif
}

}  // namespace

struct EarsFitting::Work {
    explicit Work(int samplerate)
        : cache(samplerate, program::EarsCache::Fitting::kept,
                {[this](std::string const& line) { Add(max::ConsoleLevel::post, line); },
                 [this](std::string const& line) { Add(max::ConsoleLevel::warn, line.substr(line.find(": ") + 2)); },
                 [this](double part) { Tell(part); }}) {}

    void Add(max::ConsoleLevel level, std::string const& line) {
        const std::lock_guard lock(mutex);
        lines.emplace_back(level, line);
    }

    void Tell(double part) {
        if (givenUp) throw GivenUp();
        if (const int quarter = static_cast<int>(4.0 * part); quarter > quarters) {
            quarters = quarter;
            Add(max::ConsoleLevel::post, file.string() + ": " + std::to_string(25 * quarter) + " %");
        }
    }

    program::EarsCache cache;
    std::filesystem::path file;
    int quarters = 0;  // that were told
    std::atomic<bool> givenUp = false;
    std::mutex mutex;
    std::vector<std::pair<max::ConsoleLevel, std::string>> lines;
    std::future<std::filesystem::path> result;
};

EarsFitting::EarsFitting() = default;

EarsFitting::~EarsFitting() {
    GiveUp();
}

bool EarsFitting::IsFor(std::filesystem::path const& file) {
    return program::IsSofa(file.string());
}

void EarsFitting::Begin(Lume::EarsFile newMeasurements, float newSamplerate) {
    GiveUp();
    measurements = std::move(newMeasurements);
    samplerate = newSamplerate;
    set.clear();
    work = std::make_unique<Work>(static_cast<int>(std::lround(samplerate)));
    work->file = measurements.path;
    work->result = std::async(std::launch::async, [&begun = *work, file = measurements] {
        StepBack();
        return begun.cache.Playable(file).path;
    });
}

void EarsFitting::GiveUp() {
    if (!IsBusy()) return;
    work->givenUp = true;
    work->result.wait();
    work->result = {};
}

bool EarsFitting::IsBusy() const {
    return work != nullptr && work->result.valid();
}

std::optional<std::filesystem::path> EarsFitting::Take() {
    if (!IsBusy() || work->result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return std::nullopt;
    set = work->result.get();
    return set;
}

std::vector<std::pair<max::ConsoleLevel, std::string>> EarsFitting::TakeLines() {
    if (work == nullptr) return {};
    const std::lock_guard lock(work->mutex);
    return std::exchange(work->lines, {});
}

}  // namespace plugin
