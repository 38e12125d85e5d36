/// The faults that the sweep and the soak run choose from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

using FaultKinds = std::vector<std::string>;

/// What can happen at a place. "delay:400" is later than the program waits anywhere in these sessions.
inline FaultKinds faultKindsAt(std::string_view where) {
    const auto kindsWith = [](FaultKinds kinds) {
        for (const char* everywhere : {"lost", "delay:20", "repeat", "unplug", "unplugafter"})
            kinds.emplace_back(everywhere);
        return kinds;
    };
    if (where == "start")
        return kindsWith({"answer:39", "can:2", "noise:39"});
    if (where == "eot")
        return kindsWith({"silence", "delay:400", "answer:39", "nak", "can:2", "noise:39"});
    if (where.starts_with("eot"))
        return kindsWith({"delay:400", "answer:39", "can:2", "noise:39"});
    if (where.starts_with("packet"))
        return kindsWith({"silence", "delay:400", "answer:39", "nak", "can:2", "noise:39", "unplugin"});
    if (where.starts_with("block"))
        return kindsWith({"delay:400", "bcc", "garble", "cut:70", "number:77", "can:2", "noise:39", "unplugin"});
    return kindsWith({"silence", "delay:400", "bcc", "garble", "cut:3", "cut:12", "endcode:11", "response:2203",
                      "noise:00ff39", "unplugin"});
}
