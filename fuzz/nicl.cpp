// Runs of nicl on a new directory, one per line, with words separated by tabs. Whatever they are, the
// directory keeps its rules, and making and deleting a record leaves the directory unchanged.

#include "Fuzz.h"
#include "directory/DirectoryRules.h"
#include "platform/netinfo/Store.h"
#include "tools/DirectorySession.h"

#include <algorithm>
#include <utility>

namespace {

using platform::Store;

/// Makes a store with the records that always exist, and returns its file.
std::string madeStore(const std::string& file) {
    Store store(file, Store::Opening::Create);
    store.addRecord(Store::root, "users");
    store.addRecord(Store::root, "groups");
    store.addRecord(store.addRecord(Store::root, "config"), "Brindle");
    fuzz::require(store.commit().isOk(), "a directory can be made");
    return file;
}

bool isText(std::string_view text) {
    return std::ranges::none_of(text, [](unsigned char each) { return each < 0x20 || each == 0x7f; });
}

void checkRecord(const platform::RecordBlock& block, const platform::RecordBlock::Record& record,
                 const std::string& path) {
    const auto isKept = [&](std::optional<std::string> property, std::vector<std::string> values) {
        return checkDirectoryChange({"-create", path, std::move(property), std::move(values)}).isOk();
    };
    fuzz::require(isKept(std::nullopt, {}), "a record may be called what it is called", path);
    for (const auto& property : block.properties(record)) {
        const auto views = block.values(property);
        const std::vector<std::string> values(views.begin(), views.end());
        if (property.name == "name") {
            fuzz::require(values == std::vector<std::string>{recordPath(path)->back()},
                          "a record has its name", path);
        } else {
            fuzz::require(isKept(std::string(property.name), values), "a property keeps the rules", path);
        }
        fuzz::require(!property.name.empty() && isText(property.name) && std::ranges::all_of(values, isText),
                      "a property is text", path);
    }
}

/// Adds all records with their paths to `all`, and checks each.
void addRecords(Store& store, Store::Record parent, const std::string& path, std::string* all) {
    const auto block = store.children(parent);
    for (const auto& record : block.records()) {
        const auto* name = block.property(record, "name");
        fuzz::require(name != nullptr && name->valueCount == 1, "a record has a name", path);
        const std::string below = path + "/" + std::string(block.values(*name).front());
        checkRecord(block, record, below);
        *all += below + "\n" + std::string(record.content) + "\n";
        addRecords(store, record.id, below, all);
    }
}

std::string recordsIn(const std::string& file) {
    std::string all;
    Store store(file);
    addRecords(store, Store::root, "", &all);
    fuzz::require(store.status().isOk(), "the directory can be read", store.status().text());
    return all;
}

std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words{"."};
    for (fuzz::Draw draw(line); !draw.isAtEnd();) {
        words.push_back(draw.upTo('\t'));
    }
    return words;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFolder folder;
    static const std::string pristine = madeStore(folder.file("pristine.db"));
    static platform::Host host(fuzz::quietServices());
    const std::string file = folder.file("directory.db");
    std::error_code error;
    do { // the fuzzer's timer interrupts
        std::filesystem::copy_file(pristine, file, std::filesystem::copy_options::overwrite_existing, error);
    } while (error == std::errc::interrupted);
    fuzz::require(!error, "a new directory can be made", error.message());
    tools::DirectorySession session{tools::DirectoryPlace(file)};
    std::string path;
    for (fuzz::Draw draw(fuzz::textOf(data, size)); !draw.isAtEnd();) {
        const auto words = wordsOf(draw.upTo('\n'));
        const tools::ToolResult result = session.nicl(words);
        fuzz::require((result.status == 0) == result.output.empty(),
                      "a run that fails says why, and no other", result.output);
        path = words.size() > 2 ? words[2] : path;
    }
    const auto committed = session.commit();
    fuzz::require(committed.isOk(), "the changes can be committed", committed.text());
    const std::string before = recordsIn(file);
    // Make a record at the last path, and one below it.
    for (const std::string& made : {path, path + "/made"}) {
        const bool isThere = ("\n" + before).find("\n" + made + "\n") != std::string::npos;
        if (isThere || tools::runNicl(file, std::vector<std::string>{".", "-create", made}).status != 0) {
            continue;
        }
        const tools::ToolResult deleted =
            tools::runNicl(file, std::vector<std::string>{".", "-delete", made});
        fuzz::require(made == "/" || deleted.status == 0, "what was made can be deleted", deleted.output);
        fuzz::require(recordsIn(file) == before, "what was made and deleted leaves what was before", made);
    }
    return 0;
}
