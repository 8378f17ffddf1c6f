// What must not happen in the middle of something else waits for its turn.
#pragma once

#include <deque>
#include <functional>

namespace murkwell {

// Main thread only. Operations may begin further things, and may ask for turns of their own.
class Turns {
public:
    using Operation = std::function<void()>;

    // Runs it now, or as soon as nothing is under way any more, in the order of asking. It is
    // itself under way while it runs, and with it the event loops of the panels that it shows.
    void take(Operation operation);

    // Something that is no operation, such as a gesture, is under way. Every begin() has its end(),
    // which runs what waits.
    void begin() { ++underWay; }
    void end();

    // What waits is not run any more.
    void drop() { waiting.clear(); }

private:
    int underWay = 0;
    std::deque<Operation> waiting;
};

} // namespace murkwell
