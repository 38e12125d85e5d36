#include "simulator/simulator.h"

namespace units {

Simulator::Simulator(const Options& options)
    : journal_(options.journal, options.violationsToStderr),
      faults_(options.faults),
      devices_(options),
      engine_(options, devices_, faults_, journal_),
      thread_([this] { engine_.run(); }) {}

Simulator::~Simulator() { stop(); }

void Simulator::stop() {
    engine_.stop();
    if (thread_.joinable())
        thread_.join();
}

}  // namespace units
