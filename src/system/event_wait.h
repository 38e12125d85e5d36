/// Waiting while the windows stay alive.
#pragma once

#include <chrono>
#include <functional>

/// Handles window events until `done` returns true or `limit` has passed, asleep in between.
///
/// `done` is asked after every batch of events. The limit is kept to the millisecond.
/// @return the last answer of `done`
bool waitServingEvents(std::chrono::milliseconds limit, const std::function<bool()>& done);
