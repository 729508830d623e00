#pragma once

#include <QAbstractButton>
#include <QSet>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace frontend {

// Mnemonics: the underlined letters in titles, which are pressed with Alt (in an open menu without it). They
// are chosen from the shown texts, so that every language has its own, and no string table contains them.

/// Something that can have a mnemonic.
struct Titled {
    QString text;      ///< the text without marks
    QString name;      ///< its internal name in Latin letters, used when the text has none; may be empty
    QChar letter = {}; ///< the letter that it has already; a null character for none
};

/// Returns each text as a title with its letter marked. No letter is used twice, none is in `taken`, and as
/// many texts as possible get one; earlier texts get better letters. A text that has a letter keeps it, if
/// possible. Letters in `shared` are also used
/// elsewhere in the window, and only for texts that would get none; letters that are rare on keyboards are
/// only for texts that would still get none. If a script has no letters on the keyboard, one is appended to
/// the text: "(&S)". A text without a letter stays unchanged. The used letters are added to `taken`.
[[nodiscard]] QStringList titlesWithMnemonics(const std::vector<Titled>& texts, QSet<QChar>& taken,
                                              const QSet<QChar>& shared = {});

/// Returns the text that such a title, or a title from title(), shows.
[[nodiscard]] QString plainTitle(const QString& title);

/// Sets the button's title, unless it already has that title, with or without a mnemonic.
void setTitle(QAbstractButton& button, const std::string& text);

} // namespace frontend
