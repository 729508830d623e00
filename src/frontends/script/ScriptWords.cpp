#include "frontends/script/ScriptWords.h"

namespace frontend {

namespace {

bool isBlank(char character) {
    return character == ' ' || character == '\t';
}

char unescaped(char escape) {
    switch (escape) {
    case '"':
    case '\\':
        return escape;
    case 'n':
        return '\n';
    case 't':
        return '\t';
    default:
        throw ScriptSyntaxError(std::string("\\") + escape +
                                R"( stands for nothing: inside quotes write \", \\, \n or \t)");
    }
}

/// Reads the quoted word whose opening quote is at `position`, and moves `position` past its closing quote.
std::string readQuoted(std::string_view line, std::size_t& position) {
    std::string word;
    for (++position; position < line.size(); ++position) {
        const char character = line[position];
        if (character == '"') {
            ++position;
            return word;
        }
        if (character == '\\' && position + 1 < line.size()) {
            word += unescaped(line[++position]);
        } else {
            word += character;
        }
    }
    throw ScriptSyntaxError("a quote is opened and not closed");
}

std::string readBare(std::string_view line, std::size_t& position) {
    const std::size_t begin = position;
    while (position < line.size() && !isBlank(line[position]) && line[position] != '#') {
        if (line[position] == '"') {
            throw ScriptSyntaxError(
                "a quote inside a word: put the whole word in quotes and write \\\" for the quote");
        }
        ++position;
    }
    return std::string(line.substr(begin, position - begin));
}

} // namespace

std::vector<std::string> splitScriptLine(std::string_view line) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1); // the lines may end with \r\n
    }
    std::vector<std::string> words;
    std::size_t position = 0;
    while (position < line.size() && line[position] != '#') {
        if (isBlank(line[position])) {
            ++position;
        } else if (line[position] == '"') {
            words.push_back(readQuoted(line, position));
            if (position < line.size() && !isBlank(line[position]) && line[position] != '#') {
                throw ScriptSyntaxError("a blank is missing after a closing quote");
            }
        } else {
            words.push_back(readBare(line, position));
        }
    }
    return words;
}

std::string quotedText(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        switch (character) {
        case '"':
            quoted += "\\\"";
            break;
        case '\\':
            quoted += "\\\\";
            break;
        case '\n':
            quoted += "\\n";
            break;
        case '\t':
            quoted += "\\t";
            break;
        default:
            quoted += character;
        }
    }
    quoted += '"';
    return quoted;
}

std::string scriptWord(std::string_view text) {
    const bool bare = !text.empty() && !text.starts_with('#') &&
                      text.find_first_of(" \"\\\n\r\t") == std::string_view::npos;
    return bare ? std::string(text) : quotedText(text);
}

std::string scriptWords(const std::string& tool, std::span<const std::string> arguments) {
    std::string words = scriptWord(tool);
    for (const std::string& argument : arguments) {
        words += ' ' + scriptWord(argument);
    }
    return words;
}

} // namespace frontend
