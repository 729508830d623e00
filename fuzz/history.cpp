// The history: an entry is read as it was stored, and an entry with damaged content says so instead of
// describing something else.

#include "Fuzz.h"
#include "platform/netinfo/Sqlite.h"
#include "review/HistoryStore.h"

#include <algorithm>
#include <utility>

namespace {

using platform::SqliteStatement;
using review::HistoryEntry;

/// Returns the content of the newest entry, after replacing it if `replacement` is not null.
std::string content(const std::string& file, const std::string* replacement = nullptr) {
    sqlite3* opened = nullptr;
    const int error = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const platform::SqliteConnection database(opened);
    fuzz::require(error == SQLITE_OK, "the history's file can be opened");
    if (replacement != nullptr) {
        SqliteStatement change(
            opened, "UPDATE entry SET content = ?1 WHERE number = (SELECT max(number) FROM entry)");
        static_cast<void>(change.bindBytes(1, *replacement).step());
    }
    SqliteStatement row(opened, "SELECT content FROM entry ORDER BY number DESC LIMIT 1");
    fuzz::require(row.step(), "there is an entry");
    return std::string(row.text(0));
}

HistoryEntry newest(const review::HistoryStore& store) {
    auto entries = store.entries();
    fuzz::require(entries.isOk() && !entries->empty(), "the history can be read");
    return std::move(entries->front());
}

void keep(const review::HistoryStore& store, const HistoryEntry& entry) {
    const auto status = store.add(entry);
    fuzz::require(status.isOk(), "an entry can be kept", status.status().text());
}

std::optional<std::string> drawnText(fuzz::Draw& draw) {
    return draw.below(4) == 0 ? std::nullopt : std::optional(draw.upTo('\n'));
}

review::RecordChange::State drawnState(fuzz::Draw& draw) {
    review::RecordChange::State state;
    if (draw.below(4) != 0) {
        state.emplace();
        for (std::size_t count = draw.below(3); count > 0; --count) {
            auto& property = state->emplace_back();
            property.name = draw.upTo('\n');
            property.values.assign(draw.below(3), draw.upTo('\n'));
        }
    }
    return state;
}

review::FolderState drawnFolder(fuzz::Draw& draw) {
    return {static_cast<uid_t>(draw.below(256)), static_cast<gid_t>(draw.below(256)),
            static_cast<mode_t>(draw.below(256)), draw.upTo('\n')};
}

HistoryEntry drawnEntry(fuzz::Draw& draw) {
    HistoryEntry entry;
    entry.time = static_cast<std::int64_t>(draw.below(256));
    entry.user = draw.upTo('\n');
    entry.title = draw.upTo('\n');
    entry.hasFailed = draw.below(2) == 1;
    while (!draw.isAtEnd()) {
        switch (draw.below(4)) {
        case 0:
            entry.runs.push_back({draw.upTo('\n'), {draw.upTo('\n')}, draw.upTo('\n'), draw.below(2) == 1});
            break;
        case 1:
            entry.records.push_back({draw.upTo('\n'), drawnState(draw), drawnState(draw)});
            break;
        case 2:
            entry.files.push_back({draw.upTo('\n'), drawnText(draw), drawnText(draw)});
            break;
        default:
            entry.folders.push_back({draw.upTo('\n'), drawnFolder(draw), drawnFolder(draw)});
        }
    }
    return entry;
}

/// Returns an entry as text, to compare two.
std::string told(const HistoryEntry& entry) {
    std::string text =
        std::to_string(entry.time) + "\n" + entry.user + "\n" + entry.title + "\n" + outcomeOf(entry);
    const auto add = [&text](std::string_view part) { (text += '\n') += part; };
    const auto addState = [&add](const review::RecordChange::State& state) {
        add(state ? "there" : "none");
        for (const auto& property : state.value_or(DirectoryView::Record())) {
            add("property " + property.name);
            std::ranges::for_each(property.values, add);
        }
    };
    const auto addFolder = [&add](const review::FolderState& folder) {
        add(std::to_string(folder.owner) + ":" + std::to_string(folder.group) + ":" +
            std::to_string(folder.mode));
        add(folder.accounts);
    };
    for (const auto& run : entry.runs) {
        add((run.hasFailed ? "failed " : "ran ") + run.tool);
        add(run.output);
        std::ranges::for_each(run.arguments, add);
    }
    for (const auto& record : entry.records) {
        add("record " + record.path);
        addState(record.before);
        addState(record.after);
    }
    for (const auto& change : entry.files) {
        add("file " + change.path);
        add(change.before ? "was " + *change.before : "none");
        add(change.after ? "is " + *change.after : "none");
    }
    for (const auto& folder : entry.folders) {
        add("folder " + folder.path);
        addFolder(folder.before);
        addFolder(folder.after);
    }
    return text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::ScratchFolder folder;
    const std::string file = folder.file("history.db");
    std::filesystem::remove(file);
    const review::HistoryStore store(file);
    const std::string_view bytes = fuzz::textOf(data, size);
    fuzz::Draw draw(bytes);
    const std::size_t place = draw.below(256);
    const HistoryEntry entry = drawnEntry(draw);
    keep(store, entry);
    fuzz::require(told(newest(store)) == told(entry), "what was kept is read", told(entry));

    std::string damaged = content(file);
    if (place < damaged.size()) {
        damaged[place] = static_cast<char>(damaged[place] ^ 1);
    }
    for (const std::string& each : {damaged, std::string(bytes)}) {
        static_cast<void>(content(file, &each));
        const HistoryEntry read = newest(store);
        if (!read.isDamaged) {
            keep(store, read);
            fuzz::require(content(file) == each, "what was read is all that there is");
        } else {
            fuzz::require(!read.canComeBack() && read.runs.empty(),
                          "a damaged entry tells nothing of what it did");
        }
    }
    return 0;
}
