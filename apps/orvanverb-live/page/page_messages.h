#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orvanverb-live/room/desk.h"

/// What pages and the desk say to each other: objects of JSON, as web/page/README.md has them.
namespace live {

/// A loudspeaker as a page shows it, or an ear.
struct OutputName {
    std::string name;
    bool hasPlace = false;
};

/// Everything, for a page that has come.
std::string SnapshotMessage(Desk const& desk, News const& news, std::vector<OutputName> const& outputs);

/// What has changed; empty if nothing has.
std::string ChangeMessage(News const& news, Desk const& desk);

/// Levels and status, which change all the time.
std::string LevelMessage(News const& news);

std::string ErrorMessage(std::string_view line);

/// Does what a page wishes. Of a message that holds several wishes each is tried.
/// @return lines to answer with; most often none
std::vector<std::string> TakePageMessage(std::string_view text, Desk& desk);

}  // namespace live
