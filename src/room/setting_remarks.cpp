#include "room/setting_remarks.h"

#include <algorithm>
#include <string_view>

#include "room/control_range.h"
#include "room/layout_remarks.h"

namespace Lume {

namespace {

std::vector<std::string> OrderRemarks(Room const& room) {
    struct Pair {
        std::size_t low, high;
    };
    constexpr Pair ordered[] = {{ControlIndex("fl"), ControlIndex("fh")},
                                {ControlIndex("early_start"), ControlIndex("early_end")},
                                {ControlIndex("cluster_start"), ControlIndex("cluster_end")}};
    std::vector<std::string> remarks;
    for (Pair const& pair : ordered) {
        const float least = room.Get(pair.low), greatest = room.Get(pair.high);
        RoomControl const& low = roomControls[pair.low];
        if (least > greatest)
            remarks.push_back(std::string(low.name) + " " + NumberText(least) + " lies above " +
                              roomControls[pair.high].name + " " + NumberText(greatest) + " " + low.unit);
    }
    return remarks;
}

std::string WithoutNumbers(std::string text) {
    std::erase_if(text, [](char c) { return std::string_view("0123456789.-+").find(c) != std::string_view::npos; });
    return text;
}

}  // namespace

std::vector<std::string> SettingRemarks::Of(Room const& room, bool speakersMoved) {
    std::vector<std::string> remarks = speakersMoved ? LayoutRemarks(room) : std::vector<std::string>{};
    for (std::string& remark : OrderRemarks(room)) remarks.push_back(std::move(remark));
    if (std::string remark = room.InternalsRemark(); !remark.empty()) remarks.push_back(std::move(remark));
    // Two of a kind at a time are two faults.
    std::erase_if(remarks, [&](std::string const& remark) { return said.contains(WithoutNumbers(remark)); });
    for (std::string const& remark : remarks) said.insert(WithoutNumbers(remark));
    return remarks;
}

}  // namespace Lume
