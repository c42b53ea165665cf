#pragma once

#include <memory>
#include <string>

#include "orvanverb-live/room/desk.h"
#include "orvanverb/room/room_form.h"

namespace live {

struct PagePorts {
    std::string bind;  ///< address to listen at
    int port = 0;
    std::string token;  ///< that pages need off this machine; empty: one is made up
};

/// Serves the page, and the sockets of those who have it open, which see what happens at the desk and change it. One
/// that doesn't read what it gets is dropped.
///
/// A page of another origin is refused, or any site that somebody visits could play the room; and so is one that
/// doesn't know the token, unless the server listens at this machine alone.
class PageServer {
public:
    /// @throws program::WorkError if it can't listen
    PageServer(Desk& desk, program::RoomForm const& form, PagePorts const& ports);
    ~PageServer();

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

}  // namespace live
