/// The faults that the sweep and the soak run choose from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

using FaultKinds = std::vector<std::string>;

/// What can happen at a place. "delay:400" is later than the program waits anywhere in these sessions.
inline const FaultKinds& faultKindsAt(std::string_view where) {
    static const FaultKinds kCommand{"silence",       "lost",         "delay:20", "delay:400", "bcc",
                                     "garble",        "cut:3",        "cut:12",   "repeat",    "endcode:11",
                                     "response:2203", "noise:00ff39", "unplug",   "unplugin",  "unplugafter"};
    static const FaultKinds kStart{"lost",  "delay:20", "answer:39", "repeat",
                                   "can:2", "noise:39", "unplug",    "unplugafter"};
    static const FaultKinds kPacket{"silence", "lost",  "delay:20", "delay:400", "answer:39", "repeat",
                                    "nak",     "can:2", "noise:39", "unplug",    "unplugin",  "unplugafter"};
    static const FaultKinds kEot{"silence", "lost",  "delay:20", "delay:400", "answer:39",  "repeat",
                                 "nak",     "can:2", "noise:39", "unplug",    "unplugafter"};
    static const FaultKinds kBlock{"lost",   "delay:20", "delay:400", "bcc",    "garble",   "cut:70",     "number:77",
                                   "repeat", "can:2",    "noise:39",  "unplug", "unplugin", "unplugafter"};
    static const FaultKinds kUploadEot{"lost",  "delay:20", "delay:400", "answer:39",  "repeat",
                                       "can:2", "noise:39", "unplug",    "unplugafter"};
    if (where == "start")
        return kStart;
    if (where == "eot")
        return kEot;
    if (where.starts_with("eot"))
        return kUploadEot;
    if (where.starts_with("packet"))
        return kPacket;
    return where.starts_with("block") ? kBlock : kCommand;
}
