#pragma once

#include "platform/foundation/Services.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

class NSBundle;
class NSNotificationCenter;
class NSUserDefaults;

namespace platform {

/// All state that the whole process shares: the services that the platform's free functions use, the
/// notification centre, the user defaults, the main bundle, and the shared instances.
///
/// The constructor makes this host the current one. The destructor makes the previous host current again and
/// destroys all that this one owns, shared instances first and the youngest first among them, so that nothing
/// outlives a scope or a test. Hosts nest like scopes. Main thread only.
class Host {
  public:
    explicit Host(Services services);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// The current host. Throws std::logic_error when there is none.
    [[nodiscard]] static Host& current();

    /// The current host, or null.
    [[nodiscard]] static Host* currentIfAny();

    /// Settles the current host's pending writes (PendingWrites). Does nothing when there is no host or it
    /// has none. Called before anything is read that a tool run may have changed, and before the user is
    /// asked something, because other programs must not wait for the user's answer.
    static void settlePendingWrites();

    /// Tells the host that an action has ended.
    void endAction();

    /// How many actions have ended. Whatever is kept for one action only compares this number to know whether
    /// the action is over.
    [[nodiscard]] std::uint64_t endedActions() const { return endedActions_; }

    [[nodiscard]] const Services& services() const { return services_; }

    [[nodiscard]] Log& log() const { return require(services_.log, "log"); }

    [[nodiscard]] Clock& clock() const { return require(services_.clock, "clock"); }

    [[nodiscard]] Paths& paths() const { return require(services_.paths, "paths"); }

    [[nodiscard]] AccountNames& accountNames() const {
        return require(services_.accountNames, "account names");
    }

    [[nodiscard]] Processes& processes() const { return require(services_.processes, "processes"); }

    [[nodiscard]] LocalDomain& localDomain() const { return require(services_.localDomain, "local domain"); }

    [[nodiscard]] Authority& authority() const { return require(services_.authority, "authority"); }

    [[nodiscard]] Presenter& presenter() const { return require(services_.presenter, "presenter"); }

    /// Replaces the presenter: a host is made before the front-end that shows it.
    void setPresenter(std::shared_ptr<Presenter> presenter) { services_.presenter = std::move(presenter); }

    /// Replaces the log, for example by one that also shows each line.
    void setLog(std::shared_ptr<Log> log) { services_.log = std::move(log); }

    void setPatience(std::shared_ptr<Patience> patience) { services_.patience = std::move(patience); }

    [[nodiscard]] NSNotificationCenter& notificationCenter();
    [[nodiscard]] NSUserDefaults& userDefaults();
    [[nodiscard]] NSBundle& mainBundle();

    /// The one instance of T, made by `make` on the first call. T is destroyed with the host.
    template <class T, class Make>
    [[nodiscard]] T& sharedInstance(Make make) {
        for (auto& [type, instance] : shared_) {
            if (type == std::type_index(typeid(T))) {
                return *static_cast<T*>(instance.get());
            }
        }
        std::shared_ptr<T> made = make();
        T& result = *made;
        shared_.emplace_back(std::type_index(typeid(T)), std::move(made));
        return result;
    }

    template <class T>
    [[nodiscard]] T& sharedInstance() {
        return sharedInstance<T>([] { return std::make_shared<T>(); });
    }

  private:
    template <class T>
    static T& require(const std::shared_ptr<T>& service, const char* name) {
        if (!service) {
            throw std::logic_error(std::string("the host has no ") + name);
        }
        return *service;
    }

    Services services_;
    Host* previous_;
    std::uint64_t endedActions_ = 0;
    std::unique_ptr<NSNotificationCenter> notificationCenter_;
    std::unique_ptr<NSUserDefaults> userDefaults_; ///< read on first use
    std::unique_ptr<NSBundle> mainBundle_;         ///< read on first use
    std::vector<std::pair<std::type_index, std::shared_ptr<void>>> shared_;
};

} // namespace platform
