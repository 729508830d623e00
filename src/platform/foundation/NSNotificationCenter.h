#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct NSNotification {
    std::string name;
    const void* object = nullptr; ///< the sender, compared by identity; null for none
};

/// Delivers notifications to observers immediately, in the order in which the observers were added.
class NSNotificationCenter {
  public:
    using Handler = std::function<void(const NSNotification&)>;

    /// The notification centre of the current host.
    [[nodiscard]] static NSNotificationCenter& defaultCenter();

    /// Calls `handler` for every notification named `name` whose object is `object` (null: any object), until
    /// removeObserver is called with the same `observer`. `observer` only serves as an identity.
    void addObserver(const void* observer, Handler handler, std::string name, const void* object);
    /// Removes everything that was added for `observer`, if anything.
    void removeObserver(const void* observer);
    /// Calls the observers at once. One that an earlier handler has removed is not called.
    void postNotificationName(const std::string& name, const void* object);

  private:
    struct Observation {
        const void* observer;
        Handler handler;
        std::string name;
        const void* object;
        bool isRemoved = false; ///< removed while a notification was being delivered
    };

    std::vector<std::shared_ptr<Observation>> observations_;
};
