// How long Brindle takes from its start until its window is painted, with 1,000 shares and 10,000 users,
// compared with a program that only shows an empty window; and how long a selection takes in the window. The
// first two are whole programs. Both use Qt's offscreen platform, so that the display's speed does not
// matter, unless QT_QPA_PLATFORM names another.

#include "FilledRoot.h"
#include "FirstPaint.h"
#include "TemporaryFolder.h"
#include "WholeProgram.h"
#include "frontends/Application.h"
#include "frontends/qt/QtFrontend.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/NSUserDefaults.h"

#include <benchmark/benchmark.h>

#include <QAction>
#include <QApplication>
#include <QTableView>

#include <filesystem>
#include <string_view>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr int shares = 1000;
constexpr int users = 10000;

/// Does what Brindle does when it starts on a display, up to the first paint with all tables filled.
int showBrindle(const std::string& root, char** argv) {
    frontend::Application application(*platform::makeEmbeddedServices(optionsFor(root)));
    int argc = 1;
    frontend::QtFrontend window(argc, argv, frontend::QtFrontend::Manner::Interactive);
    application.setPresenter(window.presenter());
    EndAtFirstPaint end;
    qApp->installEventFilter(&end);
    // The reminder is turned off, so that no alert precedes the window.
    NSUserDefaults::standardUserDefaults().setInteger(0, "BrindleDonationReminder");
    if (!application.load().isOk()) {
        return 1;
    }
    return window.run([&] {
        application.launch();
        end.begin();
    });
}

/// Selects a share until its editor is filled and drawn, with a hundred thousand users in the menus (goal:
/// under 16 ms, one frame).
void selectShare(benchmark::State& state, char** argv) {
    constexpr int manyUsers = 100000;
    constexpr int fewShares = 100;
    const TemporaryFolder root;
    fillRoot(root.path(), fewShares, manyUsers);
    frontend::Application application(*platform::makeEmbeddedServices(optionsFor(root.path().string())));
    int argc = 1;
    frontend::QtFrontend window(argc, argv, frontend::QtFrontend::Manner::Interactive);
    application.setPresenter(window.presenter());
    NSUserDefaults::standardUserDefaults().setInteger(0, "BrindleDonationReminder");
    if (!application.load().isOk()) {
        state.SkipWithError("the application cannot be loaded");
        return;
    }
    NSApp().mainWindow()->makeKeyAndOrderFront();
    application.launch();
    QApplication::processEvents();
    QTableView* table = nullptr;
    for (QWidget* each : QApplication::allWidgets()) {
        table =
            each->objectName() == QLatin1String("normalTableView") ? qobject_cast<QTableView*>(each) : table;
    }
    if (table == nullptr || table->model()->rowCount() != fewShares) {
        state.SkipWithError("the window does not show the shares");
        return;
    }
    for (QAction* action : table->window()->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence(QStringLiteral("Ctrl+E"))) {
            action->trigger(); // opens the editor
        }
    }
    QApplication::processEvents();
    int row = 0;
    for (auto _ : state) {
        table->selectRow(++row % fewShares);
        QApplication::processEvents();
    }
}

/// Measures a program from its start to its end, repeatedly.
void program(benchmark::State& state, const std::vector<std::string>& words) {
    for (auto _ : state) {
        if (!runProgram(words)) {
            state.SkipWithError("the program cannot be run, or failed");
            break;
        }
    }
}

void measure(const std::string& root) {
    const std::string self = fs::read_symlink("/proc/self/exe").string();
    const std::string empty = (fs::path(self).parent_path() / "empty_window").string();
    for (const auto& [name, words] :
         {std::pair{"emptyWindow", std::vector{empty}},
          std::pair{"brindleWindow", std::vector{self, std::string("--brindle"), root}}}) {
        benchmark::RegisterBenchmark(name, [words](benchmark::State& state) { program(state, words); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    benchmark::RunSpecifiedBenchmarks();
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (argc == 3 && std::string_view(argv[1]) == "--brindle") {
        return showBrindle(argv[2], argv);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark("selectShare", selectShare, argv)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    const TemporaryFolder root;
    fillRoot(root.path(), shares, users);
    measure(root.path().string());
    benchmark::Shutdown();
    return 0;
}
