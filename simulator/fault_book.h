/// Keeps track of when each fault is due.
#pragma once

#include "simulator/fault.h"

#include <mutex>
#include <string>
#include <vector>

namespace units {

/// The faults that happen at one occurrence of a place.
class ActiveFaults {
public:
    ActiveFaults() = default;
    explicit ActiveFaults(std::vector<Fault> faults) : faults_(std::move(faults)) {}

    bool empty() const { return faults_.empty(); }
    bool has(FaultKind kind) const { return find(kind) != nullptr; }

    /// The first fault of a kind, or null.
    const Fault* find(FaultKind kind) const;

    /// Whether they can leave the client one answer ahead or behind.
    bool upsetOrder() const;

    auto begin() const { return faults_.begin(); }
    auto end() const { return faults_.end(); }

    /// The faults as given, for the journal.
    std::string text() const;

private:
    std::vector<Fault> faults_;
};

/// Counts the occurrences of each fault's place. Thread-safe.
class FaultBook {
public:
    /// @throws std::invalid_argument  a fault cannot be read
    explicit FaultBook(const std::vector<std::string>& faults);

    /// Counts an occurrence of the place.
    /// @return the faults that are due at it
    ActiveFaults occur(const Place& place);

    /// The faults that have not happened yet, as given.
    std::vector<std::string> unused() const;

private:
    struct Entry {
        Fault fault;
        unsigned seen = 0;
        bool used = false;
    };

    mutable std::mutex mutex_;
    std::vector<Entry> entries_;
};

}  // namespace units
