#include "frontends/cli/JSONRows.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace frontend {

namespace {

bool isPlain(char byte) {
    return byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
}

void appendQuoted(std::string& text, std::string_view value) {
    if (std::ranges::all_of(value, isPlain)) {
        text.append(1, '"').append(value).append(1, '"');
        return;
    }
    text += nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

JSONRows::JSONRows(std::string_view name) {
    text_ = "{\n  ";
    appendQuoted(text_, name);
    text_ += ": [";
}

void JSONRows::beginRow() {
    text_ += isFirstRow_ ? "\n    {" : "\n    },\n    {";
    isFirstRow_ = false;
    isFirstField_ = true;
}

void JSONRows::beginField(std::string_view key) {
    text_ += isFirstField_ ? "\n      " : ",\n      ";
    isFirstField_ = false;
    appendQuoted(text_, key);
    text_ += ": ";
}

void JSONRows::addText(std::string_view key, std::string_view text) {
    beginField(key);
    appendQuoted(text_, text);
}

void JSONRows::addNumber(std::string_view key, long long number) {
    beginField(key);
    text_ += std::to_string(number);
}

void JSONRows::addTruth(std::string_view key, bool isTrue) {
    beginField(key);
    text_ += isTrue ? "true" : "false";
}

std::string JSONRows::finish() {
    text_ += isFirstRow_ ? "]\n}" : "\n    }\n  ]\n}";
    return std::move(text_);
}

} // namespace frontend
