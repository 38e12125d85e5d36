/// The faults that the sweep and the soak run choose from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

using FaultKinds = std::vector<std::string>;

/// What can happen at a place. "delay:300" exceeds the wait without window events, "delay:12000" that for any answer.
inline FaultKinds faultKindsAt(std::string_view where) {
    FaultKinds kinds{"lost", "delay:300", "repeat", "unplug", "unplugafter"};
    const auto with = [&kinds](const FaultKinds& more) {
        kinds.insert(kinds.end(), more.begin(), more.end());
        return kinds;
    };
    if (where == "start")
        return with({"answer:39", "can:2", "noise:39"});
    if (where == "eot")
        return with({"silence", "delay:12000", "answer:39", "nak", "can:2", "noise:39"});
    if (where.starts_with("eot"))
        return with({"delay:12000", "answer:39", "can:2", "noise:39"});
    if (where.starts_with("packet"))
        return with({"silence", "delay:12000", "answer:39", "nak", "can:2", "noise:39", "unplugin"});
    if (where.starts_with("block"))
        return with({"delay:12000", "bcc", "garble", "cut:70", "number:77", "can:2", "noise:39", "unplugin"});
    return with({"silence", "delay:12000", "bcc", "garble", "cut:3", "cut:12", "endcode:11", "response:2203",
                 "noise:00ff39", "unplugin"});
}
