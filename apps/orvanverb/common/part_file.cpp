#include "orvanverb/common/part_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/reader_left.h"

namespace program {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t numLetters = 8;

/// Where a path leads in the end, also if nothing is there yet.
fs::path BehindLinks(fs::path path) {
    constexpr int maxLinks = 40;  // as the system has it
    std::error_code error;
    for (int i = 0; i < maxLinks && fs::is_symlink(path, error); ++i) {
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

[[noreturn]] void Refuse(std::string const& path, std::string const& why) {
    throw WorkError(path + ": can't be written: " + why);
}

void RefuseTerminal() {
    if (isatty(STDOUT_FILENO) != 0) Refuse("standard output", "is a terminal; send it to a file or into a pipe");
}

bool IsPartName(std::string_view name, std::string_view prefix) {
    return name.size() == prefix.size() + numLetters && name.starts_with(prefix) &&
           name.find_first_not_of(letters, prefix.size()) == std::string_view::npos;
}

}  // namespace

bool IsReplaceable(std::string const& path) {
    std::error_code ignored;
    return path != standardOutputName && (!fs::exists(path, ignored) || fs::is_regular_file(path, ignored));
}

bool IsPipe(std::string const& path) {
    struct stat status {};
    const int failed = path == standardOutputName ? fstat(STDOUT_FILENO, &status) : stat(path.c_str(), &status);
    return failed == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

void RequireWritable(std::string const& path) {
    std::error_code ignored;
    if (path == standardOutputName) return RefuseTerminal();
    const fs::path target = fs::absolute(BehindLinks(path), ignored);
    const bool isThere = fs::exists(target, ignored);
    if (isThere && access(target.c_str(), W_OK) != 0) Refuse(path, std::generic_category().message(errno));
    if (!IsReplaceable(path)) return;
    if (access(target.parent_path().c_str(), W_OK | X_OK) != 0) Refuse(path, std::generic_category().message(errno));
}

PartFile::PartFile(std::string newPath) : path(std::move(newPath)) {
    std::error_code ignored;
    if (!IsReplaceable(path)) {
        OpenInPlace();
        return;
    }
    const fs::path target = BehindLinks(path);
    finalPath = fs::absolute(target, ignored).string();  // the working folder may be another at times
    if (finalPath.empty()) finalPath = target.string();
    // A file that may not be written isn't replaced either, although its folder would let it.
    if (fs::exists(target, ignored) && access(finalPath.c_str(), W_OK) != 0) FailAsErrno();
    constexpr std::size_t longest = 200;  // of a name, so that there is room for the rest
    prefix = target.filename().string().substr(0, longest) + ".orvanverb-part-";
    RemoveStaleParts();
    Open();
    KeepRights();
}

PartFile::~PartFile() {
    if (!partPath.empty()) std::remove(partPath.c_str());
    if (descriptor >= 0) close(descriptor);
}

void PartFile::Fail(std::string const& why) const {
    Refuse(path, why);
}

void PartFile::FailAsErrno() const {
    if (errno == EPIPE) throw ReaderLeft(path + ": nobody reads it any more");
    Fail(std::generic_category().message(errno != 0 ? errno : EIO));
}

void PartFile::RemoveStaleParts() const {
    fs::path folder = fs::path(finalPath).parent_path();
    if (folder.empty()) folder = ".";
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (!IsPartName(entry->path().filename().string(), prefix)) continue;
        const int part = open(entry->path().c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
        if (part < 0) continue;
        if (flock(part, LOCK_EX | LOCK_NB) == 0) std::remove(entry->path().c_str());
        close(part);
    }
}

void PartFile::OpenInPlace() {
    const bool isStandard = path == standardOutputName;
    if (isStandard) path = "standard output";
    if (isStandard) RefuseTerminal();
    // libsndfile also reads where it can go back.
    const int mode = IsPipe(path) ? O_WRONLY : O_RDWR;
    descriptor = isStandard ? dup(STDOUT_FILENO) : open(path.c_str(), mode | O_CLOEXEC);
    if (descriptor < 0) FailAsErrno();
}

void PartFile::Open() {
    std::random_device random;
    std::uniform_int_distribution<std::size_t> letter(0, letters.size() - 1);
    const fs::path folder = fs::path(finalPath).parent_path();
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = prefix;
        std::generate_n(std::back_inserter(name), numLetters, [&] { return letters[letter(random)]; });
        const std::string beside = (folder / name).string();
        const int opened = open(beside.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (opened < 0 && errno == EEXIST) continue;
        if (opened < 0) FailAsErrno();
        onSignal.emplace(beside);
        descriptor = opened;
        partPath = beside;
        // Somebody who looked for stale parts may have come between. Where files can't be locked, nobody removes any.
        struct stat status {};
        const bool locked = flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        if (locked && fstat(descriptor, &status) == 0 && status.st_nlink > 0) return;
        close(std::exchange(descriptor, -1));
        std::remove(std::exchange(partPath, {}).c_str());
    }
    Fail("no free name beside it");
}

void PartFile::KeepRights() const {
    struct stat status {};
    if (stat(finalPath.c_str(), &status) != 0) return;
    // Only root may give files away; others keep at least the rights. Where that fails the file is theirs as usual.
    [[maybe_unused]] const int owner = fchown(descriptor, status.st_uid, status.st_gid);
    [[maybe_unused]] const int rights = fchmod(descriptor, status.st_mode & 0777);
}

void PartFile::Commit() {
    errno = 0;
    if (partPath.empty()) {
        if (close(std::exchange(descriptor, -1)) != 0) FailAsErrno();
        return;
    }
    // Some file systems tell only at a close what could not be written. It mustn't be the last one, which unlocks.
    if (close(dup(descriptor)) != 0 || std::rename(partPath.c_str(), finalPath.c_str()) != 0) FailAsErrno();
    partPath.clear();
    onSignal.reset();
}

}  // namespace program
