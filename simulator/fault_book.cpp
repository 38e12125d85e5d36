#include "simulator/fault_book.h"

#include <algorithm>

namespace units {

const Fault* ActiveFaults::find(FaultKind kind) const {
    const auto found =
        std::find_if(faults_.begin(), faults_.end(), [kind](const Fault& fault) { return fault.kind == kind; });
    return found == faults_.end() ? nullptr : &*found;
}

bool ActiveFaults::upsetOrder() const {
    using enum FaultKind;
    constexpr FaultKind kUpsetting[] = {delay, cut, split, splitat, repeat, noise, flood, answer, unplugin};
    return std::any_of(std::begin(kUpsetting), std::end(kUpsetting), [this](FaultKind kind) { return has(kind); });
}

std::string ActiveFaults::text() const {
    std::string text;
    for (const Fault& fault : faults_)
        text += (text.empty() ? "" : ", ") + fault.text;
    return text;
}

FaultBook::FaultBook(const std::vector<std::string>& faults) {
    for (const std::string& text : faults)
        entries_.push_back({parseFault(text)});
}

ActiveFaults FaultBook::occur(const Place& place) {
    const std::lock_guard lock(mutex_);
    std::vector<Fault> due;
    for (Entry& entry : entries_) {
        if (!matches(entry.fault.place, place))
            continue;
        ++entry.seen;
        if (entry.seen < entry.fault.first || entry.seen - entry.fault.first >= entry.fault.times)
            continue;
        entry.used = true;
        due.push_back(entry.fault);
    }
    return ActiveFaults(std::move(due));
}

std::vector<std::string> FaultBook::unused() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> texts;
    for (const Entry& entry : entries_)
        if (!entry.used)
            texts.push_back(entry.fault.text);
    return texts;
}

}  // namespace units
