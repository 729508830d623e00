#include "review/UndoRuns.h"

#include "platform/foundation/SystemPaths.h"

#include <algorithm>

namespace review {

namespace {

using Properties = DirectoryView::Record;

PlannedRun niclRun(const char* operation, const std::string& path, const std::string& property = {},
                   const std::vector<std::string>& values = {}) {
    PlannedRun run{platform::systempath::nicl, {".", operation, path}, ""};
    if (!property.empty()) {
        run.arguments.push_back(property);
        run.arguments.insert(run.arguments.end(), values.begin(), values.end());
    }
    return run;
}

const DirectoryView::Property* find(const Properties& properties, const std::string& name) {
    const auto found = std::ranges::find(properties, name, &DirectoryView::Property::name);
    return found == properties.end() ? nullptr : &*found;
}

void addRecord(const std::string& path, const Properties& properties, std::vector<PlannedRun>* runs) {
    runs->push_back(niclRun("-create", path));
    for (const DirectoryView::Property& property : properties) {
        if (property.name != "name") {
            runs->push_back(niclRun("-create", path, property.name, property.values));
        }
    }
}

/// Appends the runs that change the properties of the record at `path` from `now` to `before`, including
/// their order.
void restoreProperties(const std::string& path, Properties now, const Properties& before,
                       std::vector<PlannedRun>* runs) {
    const auto take = [&](std::size_t index) {
        runs->push_back(niclRun("-delete", path, now[index].name));
        now.erase(now.begin() + static_cast<std::ptrdiff_t>(index));
    };
    for (std::size_t i = now.size(); i > 0; --i) {
        if (find(before, now[i - 1].name) == nullptr) {
            take(i - 1);
        }
    }
    std::size_t same = 0;
    while (same < now.size() && same < before.size() && now[same].name == before[same].name) {
        ++same;
    }
    // A new property is added at the end, so properties in a different place are deleted and made again.
    while (now.size() > same && now.back().name != "name") {
        take(now.size() - 1);
    }
    for (const DirectoryView::Property& property : before) {
        const DirectoryView::Property* current = find(now, property.name);
        if (current == nullptr || current->values != property.values) {
            runs->push_back(niclRun("-create", path, property.name, property.values));
        }
    }
}

} // namespace

std::vector<PlannedRun> recordRuns(const std::string& path, const RecordChange::State& now,
                                   const RecordChange::State& before) {
    std::vector<PlannedRun> runs;
    if (!before) {
        runs.push_back(niclRun("-delete", path));
    } else if (!now) {
        addRecord(path, *before, &runs);
    } else {
        restoreProperties(path, *now, *before, &runs);
    }
    return runs;
}

} // namespace review
