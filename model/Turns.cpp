#include "model/Turns.h"

#include <utility>

namespace murkwell {

void Turns::take(Operation operation) {
    waiting.push_back(std::move(operation));
    begin();
    end();
}

void Turns::end() {
    --underWay;
    while (underWay == 0 && !waiting.empty()) {
        const Operation next = std::move(waiting.front());
        waiting.pop_front();
        begin();
        next();
        --underWay;
    }
}

} // namespace murkwell
