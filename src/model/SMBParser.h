#pragma once

#include "SMBConf.h"

#include <memory>
#include <memory_resource>
#include <string_view>
#include <utility>
#include <vector>

/// Reads the text of smb.conf into entries, once. Nothing is refused: a line that fits no rule is dropped,
/// and noted when a user would miss it. Linear in the text's length, and copies no parameter.
class SMBParser {
  public:
    /// `text` and `memory` must outlive the entries that are made of it.
    SMBParser(std::string_view text, std::pmr::memory_resource* memory);

    /// Reads everything; then the results below stand. At least one entry is made.
    void parse();

    SMBConf::EntryList entries;
    SMBShare* global = nullptr;
    SMBShare* homes = nullptr;
    std::vector<SMBLossNotice> lossNotices;

  private:
    enum class State { Start, Comment, Closed };

    [[nodiscard]] bool nextLine();
    void beginEntry(std::int32_t type);
    void parseLine();
    void readCommentGroup();
    void readGroup();
    void addPair(std::string_view text, bool commentedOut);
    void takePairs();
    void appendLineToText();
    void note(SMBLoss loss);
    void numberNotices();

    const char* _position;
    std::string_view _text;
    // Looked for once, because most files hold neither and every line would be searched for them.
    bool _hasCarriageReturn;
    bool _hasValueEndMark;
    std::string_view _line; ///< the line that was read last
    bool _haveLine = false; ///< `_line` ended an entry and is still to be looked at
    State _state = State::Start;
    std::pmr::memory_resource* _memory;
    std::unique_ptr<SMBShare> _current;
    /// Keys and values of the current entry, until it ends and their number is known.
    std::vector<std::pair<std::string_view, std::string_view>> _pairs;
};
