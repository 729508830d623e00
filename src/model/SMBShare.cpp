#include "model/SMBShare.h"

#include "platform/foundation/NSString.h"

#include <algorithm>
#include <initializer_list>

namespace {

std::string propsDescription(const SMBPairs& props) {
    std::string text = "(\n";
    for (const SMBPair& pair : props) {
        text += stringWithFormat("    {Name = %@; Value = %@;}\n", pair.Name.view(), pair.Value.view());
    }
    return text + ")";
}

/// Never destroyed, because entries may be destroyed by other static objects.
std::pmr::memory_resource& entryMemory() {
    static auto& pool = *new std::pmr::synchronized_pool_resource();
    return pool;
}

} // namespace

void* SMBShare::operator new(std::size_t size) {
    return entryMemory().allocate(size, alignof(SMBShare));
}

void SMBShare::operator delete(void* entry, std::size_t size) {
    entryMemory().deallocate(entry, size, alignof(SMBShare));
}

SMBPair* SMBShare::firstProp(std::string_view key) {
    const auto found =
        std::find_if(_props.begin(), _props.end(), [&](const SMBPair& p) { return p.Name == key; });
    return found == _props.end() ? nullptr : &*found;
}

void SMBShare::setProp(std::string_view key, std::string_view value) {
    if (SMBPair* pair = firstProp(key)) {
        pair->Value = value;
    } else {
        _props.push_back({key, value});
    }
}

void SMBShare::removeProp(std::string_view key) {
    const auto found =
        std::find_if(_props.begin(), _props.end(), [&](const SMBPair& p) { return p.Name == key; });
    if (found != _props.end()) {
        _props.erase(found);
    }
}

void SMBShare::appendTo(std::string& text) const {
    const auto append = [&text](std::initializer_list<std::string_view> pieces) {
        for (const std::string_view piece : pieces) {
            text += piece;
        }
    };
    if (isSection()) {
        const std::string_view mark = _type == SMBCommentGroup ? ";" : "";
        if (isUnnamed_) {
            append({_sharename, "\n"});
        } else {
            append({mark, "[", _sharename, "]\n"});
        }
        for (const SMBPair& pair : _props) {
            append({mark, pair.Name.view(), " = ", pair.Value.view(), "\n"});
        }
    }
    text += Text();
}

std::string SMBShare::smbTypeToText() const {
    switch (_type) {
    case SMBCommentGroup:
        return "SMBCommentGroup";
    case SMBComment:
        return "SMBComment";
    case SMBGroup:
        return "SMBGroup";
    default:
        return "Error";
    }
}

std::string SMBShare::description() const {
    return stringWithFormat("Share Name: %@   Type: %@\n%@\nText: %@\n", _sharename.view(), smbTypeToText(),
                            propsDescription(_props), Text());
}
