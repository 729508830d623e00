#include "frontends/script/ScriptOutput.h"

#include "frontends/script/ScriptWords.h"

namespace frontend {

void ScriptOutput::line(std::string_view text) {
    if (!silent_) {
        stream_ << text << '\n' << std::flush;
    }
}

void ScriptLog::write(std::string_view text) {
    if (output_->isSilent()) {
        return;
    }
    output_->line("log " + quotedText(text));
    if (kept_) {
        kept_->write(text);
    }
}

void ScriptLog::explain(std::string_view text) {
    errors_ << "brindle: " << text << '\n';
    if (kept_) {
        kept_->write(text);
    }
}

} // namespace frontend
