// Fields that tell their observers before they change.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace murkwell {

class RedactModel;

// Who wants to know. Main thread only.
class Observers {
public:
    using Callback = std::function<void()>;

    // Observing ends when the returned object goes, which may happen during a notification and
    // after the Observers are gone.
    using Observation = std::shared_ptr<const Callback>;

    [[nodiscard]] Observation add(Callback callback) {
        auto observation = std::make_shared<const Callback>(std::move(callback));
        observations.push_back(observation);
        return observation;
    }

    // Those that join during a notification hear of the next one.
    void notify() {
        std::erase_if(observations, [](const auto& observation) { return observation.expired(); });
        const auto current = observations;
        for (const auto& observation : current) {
            if (const auto callback = observation.lock()) {
                (*callback)();
            }
        }
    }

private:
    std::vector<std::weak_ptr<const Callback>> observations;
};

// A field that only the model writes. Every assignment notifies first and stores then, also when
// the new value equals the old one; so observers still read the old value, and re-read later.
template <typename T>
class Published {
public:
    Published(Observers& observers, T initial) : notified(observers), value(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const T& operator()() const { return value; }

protected:
    void set(T newValue) {
        notified.notify();
        value = std::move(newValue);
    }

private:
    friend class RedactModel;

    Published& operator=(T newValue) {
        set(std::move(newValue));
        return *this;
    }

    // An assignment of a value that differs from the old one in a part.
    template <typename Change>
    void change(Change change) {
        notified.notify();
        change(value);
    }

    Observers& notified;
    T value;
};

// A field that the window may write as well.
template <typename T>
class PublishedSetting : public Published<T> {
public:
    using Published<T>::Published;

    PublishedSetting& operator=(T newValue) {
        this->set(std::move(newValue));
        return *this;
    }
};

} // namespace murkwell
