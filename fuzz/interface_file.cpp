// Interface files, for a class with three outlets and one operation. A file is either loaded with every
// outlet and name in its place, or refused with an error that names one of its lines, and nothing is
// connected.

#include "Fuzz.h"
#include "platform/appkit/Interface.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/ObjectClass.h"
#include "platform/appkit/SilentPresenter.h"

#include <algorithm>

namespace {

struct Owner : platform::OutletOwner {
    NSTextField* name = outlet("name", name);
    NSButton* press = outlet("press", press);
    NSTableView* table = outlet("table", table);

    void pressed(NSControl* /*sender*/) {}
};

class Presenter : public platform::SilentPresenter {
  public:
    void interfaceDidLoad(platform::Interface& /*interface*/) override { ++loaded; }

    int loaded = 0;
};

/// A new host for every input, because the application remembers loaded files.
struct Place {
    Place() : host(services()) {
        platform::registerClass(
            platform::describeClass<Owner>("Owner").action("press:", &Owner::pressed).take());
    }

    platform::Services services() {
        auto made = fuzz::quietServices();
        made.presenter = presenter;
        return made;
    }

    std::shared_ptr<Presenter> presenter = std::make_shared<Presenter>();
    platform::Host host;
};

/// Returns the line number in a refusal: "FILE:LINE: why".
int lineIn(const std::string& refusal, const std::string& file) {
    fuzz::require(refusal.starts_with(file + ":"), "a refusal names the file", refusal);
    return std::atoi(refusal.c_str() + file.size() + 1); // NOLINT(cert-err34-c): 0 is not a line
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFolder folder;
    const std::string file = folder.file("interface.xml");
    const std::string_view text = fuzz::textOf(data, size);
    fuzz::writeFile(file, text);
    const auto lineCount = 1 + std::count(text.begin(), text.end(), '\n');
    const Place place;
    Owner owner;
    const auto loaded = platform::Interface::load(file, "Owner", &owner);
    const std::vector<platform::Element*> outlets{owner.name, owner.press, owner.table};
    if (!loaded.isOk()) {
        const int line = lineIn(loaded.status().text(), file);
        fuzz::require(line >= 1 && line <= lineCount, "a refusal names a line", loaded.status().text());
        fuzz::require(std::ranges::count(outlets, nullptr) == 3 && place.presenter->loaded == 0,
                      "a file that is refused leaves nothing", loaded.status().text());
        return 0;
    }
    fuzz::require(std::ranges::count(outlets, nullptr) == 0 && place.presenter->loaded == 1,
                  "all outlets are connected");
    visitNodes((*loaded)->root(), [&](const platform::InterfaceNode& node) {
        fuzz::require(node.line >= 1 && node.line <= lineCount, "an element stands in a line");
        const std::string& outlet = node.attribute("outlet");
        const std::string& name = outlet.empty() ? node.attribute("name") : outlet;
        fuzz::require(name.empty() || (*loaded)->findNode(name) == &node, "an element is found by its name",
                      name);
    });
    fuzz::require((*loaded)->find("press") == owner.press, "an outlet is found by its name");
    return 0;
}
