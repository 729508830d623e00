#include "platform/netinfo/StoreSchema.h"

#include "platform/netinfo/RecordContent.h"
#include "platform/netinfo/Sqlite.h"

#include <array>
#include <cstdint>
#include <string>

namespace platform {

int addStandingRecords(sqlite3* database) {
    struct Standing {
        std::int64_t id;
        std::int64_t parent;
        const char* name;
    };

    constexpr std::array records = {Standing{1, 0, "users"}, Standing{2, 0, "groups"},
                                    Standing{3, 0, "config"}, Standing{4, 3, "Brindle"}};
    SqliteStatement insert(database,
                           "INSERT INTO record (id, parent, name, content) VALUES (?1, ?2, ?3, ?4)");
    for (const auto& [id, parent, name] : records) {
        const std::array properties = {StoredProperty{"name", {name}}};
        const std::string content = packedContent(properties);
        insert.reset();
        insert.bind(1, id).bind(2, parent).bind(3, std::string_view(name)).bindBytes(4, content);
        while (insert.step()) {
        }
    }
    return insert.error();
}

} // namespace platform
