#include "simulator/script.h"

#include "simulator/fault.h"
#include "simulator/wire.h"

#include <algorithm>
#include <cstddef>

namespace units {

namespace {

using std::chrono::milliseconds;

void damage(Bytes& answer, const Fault& fault) {
    if (answer.empty())
        return;
    switch (fault.kind) {
    case FaultKind::garble:
        answer[answer.size() / 2] ^= 0x01;
        break;
    case FaultKind::bcc:
        answer.back() ^= 0xFF;
        break;
    case FaultKind::cut:
        answer.resize(std::min<std::size_t>(answer.size(), fault.number));
        break;
    default:
        break;
    }
}

Bytes content(Bytes answer, const ActiveFaults& faults) {
    if (faults.has(FaultKind::lost))
        return {};
    if (const Fault* other = faults.find(FaultKind::answer))
        return other->bytes;
    if (const Fault* cancel = faults.find(FaultKind::can))
        return Bytes(cancel->number, kCan);
    for (const Fault& fault : faults)
        damage(answer, fault);
    if (faults.has(FaultKind::repeat)) {
        const Bytes once = answer;
        answer.insert(answer.end(), once.begin(), once.end());
    }
    return answer;
}

Step opening(const ActiveFaults& faults) {
    Step step;
    for (const Fault& fault : faults) {
        if (fault.kind == FaultKind::delay)
            step.pause += milliseconds(fault.number);
        else if (fault.kind == FaultKind::flood)
            step.flood += milliseconds(fault.number);
        else if (fault.kind == FaultKind::noise)
            step.bytes.insert(step.bytes.end(), fault.bytes.begin(), fault.bytes.end());
    }
    return step;
}

void addSplit(std::vector<Step>& steps, const Bytes& bytes, std::size_t partSize, milliseconds gap) {
    for (std::size_t at = 0; at < bytes.size(); at += partSize) {
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto size = static_cast<std::ptrdiff_t>(std::min(partSize, bytes.size() - at));
        steps.push_back({at == 0 ? Time{0} : Time(gap), Time{0}, Bytes(begin, begin + size)});
    }
}

void addContent(std::vector<Step>& steps, const Bytes& bytes, const ActiveFaults& faults) {
    if (const Fault* split = faults.find(FaultKind::split)) {
        addSplit(steps, bytes, 1, milliseconds(split->number));
    } else if (const Fault* two = faults.find(FaultKind::splitat); two != nullptr && two->number < bytes.size()) {
        const auto middle = bytes.begin() + static_cast<std::ptrdiff_t>(two->number);
        steps.push_back({Time{0}, Time{0}, Bytes(bytes.begin(), middle)});
        steps.push_back({milliseconds(two->pause), Time{0}, Bytes(middle, bytes.end())});
    } else {
        steps.back().bytes.insert(steps.back().bytes.end(), bytes.begin(), bytes.end());
    }
}

}  // namespace

Script shape(Bytes answer, const ActiveFaults& faults) {
    Script script;
    script.excusesEarlyBytes = faults.upsetOrder();
    script.steps.push_back(opening(faults));
    if (faults.has(FaultKind::mute) || faults.has(FaultKind::unplug)) {
        script.steps.back().ending = faults.has(FaultKind::mute) ? Step::Ending::mute : Step::Ending::unplug;
        return script;
    }
    Bytes bytes = content(std::move(answer), faults);
    if (faults.has(FaultKind::unplugin))
        bytes.resize(bytes.size() / 2);
    addContent(script.steps, bytes, faults);
    if (faults.has(FaultKind::unplugin) || faults.has(FaultKind::unplugafter))
        script.steps.back().ending = Step::Ending::unplug;
    return script;
}

Bytes bytesOf(const Script& script) {
    Bytes bytes;
    for (const Step& step : script.steps)
        bytes.insert(bytes.end(), step.bytes.begin(), step.bytes.end());
    return bytes;
}

}  // namespace units
