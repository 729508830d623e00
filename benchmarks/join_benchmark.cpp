// How long it takes to read the share list: there are as many directory records as sections in smb.conf, and
// each record is joined with the section of its folder. Half of the sections share other folders. Also how
// long the application takes to start without a window, with as many users.

#include "FilledRoot.h"
#include "TemporaryFolder.h"
#include "app/BRController.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/SilentPresenter.h"
#include "platform/foundation/Host.h"
#include "platform/host/EmbeddedHost.h"
#include "platform/host/EmbeddedRoot.h"
#include "platform/netinfo/Store.h"

#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

void writeSections(const fs::path& path, std::int64_t count) {
    std::ofstream file(path);
    for (std::int64_t i = 0; i < count; ++i) {
        file << "[share" << i << "]\npath = /nonexistent/folder" << (i % 2 == 0 ? i : i + count)
             << "\nguest ok = yes\n";
    }
}

void writeRecords(const std::string& storeFile, std::int64_t count) {
    platform::Store store(storeFile);
    const std::vector<std::string> place{"config", "Brindle"};
    const auto parent = store.find(place);
    if (!parent) {
        throw std::runtime_error("the directory has no place for shares");
    }
    for (std::int64_t i = 0; i < count; ++i) {
        const std::string name = "share" + std::to_string(i);
        const auto record = store.addRecord(*parent, name);
        const auto set = [&](const char* property, const std::string& value) {
            store.setValues(record, property, std::array{value});
        };
        set("directory_path", "/nonexistent/folder" + std::to_string(i));
        set("afp_shared", "1");
        set("afp_name", name);
        set("afp_use_parent_privs", "0");
        set("afp_use_parent_owner", "0");
    }
    if (!store.commit().isOk()) {
        throw std::runtime_error(store.status().text());
    }
}

/// The application, started on a root with that many shares.
class Application {
  public:
    explicit Application(std::int64_t count) : host_(prepared(folder_.path(), count)) {
        host_.setPresenter(std::make_shared<platform::SilentPresenter>());
        interface_ = std::move(*BRController::loadInterface());
        controller().startUp();
    }

    [[nodiscard]] BRController& controller() const {
        return *static_cast<BRController*>(interface_->owner());
    }

  private:
    static platform::Services prepared(const fs::path& root, std::int64_t count) {
        fs::create_directories(root / "etc");
        writeSections(root / "etc/smb.conf", count);
        platform::EmbeddedHostOptions options;
        options.root = root.string();
        options.home = root.string();
        options.keepsUserDefaults = false;
        platform::Services services = *platform::makeEmbeddedServices(options);
        writeRecords(platform::EmbeddedRoot(root.string()).storeFile(), count);
        return services;
    }

    TemporaryFolder folder_;
    platform::Host host_;
    std::unique_ptr<platform::Interface> interface_;
};

void startUp(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const TemporaryFolder folder;
    fillRoot(folder.path(), 0, count);
    writeSections(folder.path() / "etc/smb.conf", count);
    writeRecords(platform::EmbeddedRoot(folder.path().string()).storeFile(), count);
    for (auto _ : state) {
        platform::Host host(*platform::makeEmbeddedServices(optionsFor(folder.path().string())));
        host.setPresenter(std::make_shared<platform::SilentPresenter>());
        const auto interface = std::move(*BRController::loadInterface());
        static_cast<BRController*>(interface->owner())->startUp();
    }
}

void parseCurrentShares(benchmark::State& state) {
    const Application application(state.range(0));
    for (auto _ : state) {
        application.controller().parseCurrentShares();
    }
    const std::size_t rows = application.controller().currentShares().size();
    if (rows != static_cast<std::size_t>(state.range(0) * 3 / 2)) {
        state.SkipWithError("the join has not found every share");
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(parseCurrentShares)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);
BENCHMARK(startUp)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
